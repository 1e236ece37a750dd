#include "interaction/face_snapping.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "geometry/joined_walls.h"
#include "geometry/openings.h"

namespace ostrelon {
namespace {

/// With more walls around the pointer than this, each is a few pixels.
constexpr std::size_t kMostWalls = 60;
/// How far from its axis a wall may reach: the longest mitre, in half thicknesses.
constexpr double kLongestReach = 8;
/// Of an entity with more points of its own, as a polygon of many corners, none is moved to a face.
constexpr std::size_t kMostSources = 32;

SketchPoint nearestOn(const WallEdge& edge, SketchPoint point) {
  const SketchPoint along = edge.to - edge.from;
  const double share = dot(point - edge.from, along) / squaredLength(along);
  return edge.from + along * std::clamp(share, 0.0, 1.0);
}

// Where the line through two points crosses the edge.
std::optional<SketchPoint> crossing(const WallEdge& edge, SketchPoint a, SketchPoint b) {
  const SketchPoint along = edge.to - edge.from;
  const SketchPoint ray = b - a;
  const double turn = cross(along, ray);
  if (turn == 0) return std::nullopt;
  const double share = cross(a - edge.from, ray) / turn;
  if (!(share >= 0 && share <= 1)) return std::nullopt;
  return edge.from + along * share;
}

// What is known of a wall around the point.
struct NearWall {
  std::size_t position = 0;  // 0-based, in the document
  std::vector<WallGap> gaps;
};

// What an edge of the wall ends at.
EntitySnapKind endOf(const JoinedWall& joined, const NearWall& wall, SketchPoint end) {
  const double along = dot(end - joined.wall.from, joined.wall.direction);
  const auto isAt = [along](double jamb) { return std::abs(along - jamb) < kOpeningTolerance; };
  const bool isJamb = std::any_of(wall.gaps.begin(), wall.gaps.end(),
                                  [&](const WallGap& gap) { return isAt(gap.from) || isAt(gap.to); });
  return isJamb ? EntitySnapKind::jamb : EntitySnapKind::faceCorner;
}

}  // namespace

NearWallFaces::NearWallFaces(const EntitySource& entities, const Drawing& drawing,
                             const SketchSnapping::EntityIDs& excluded, SketchPoint point, double scale)
    : point_(point), radius_(SketchSnapping::kSnapRadius / scale) {
  if (!isFinite(point) || !(scale > 0)) return;
  const std::vector<WallSystemSpec>& systems = drawing.wallSystemSpecs;
  double half = kUnknownWallThickness / 2;
  for (const WallSystemSpec& system : systems) half = std::max(half, system.thickness / 2);
  const SketchBox box = SketchBox::centered(point, radius_ + kLongestReach * half);
  std::vector<SketchEntity> walls;
  std::unordered_map<UUID, NearWall> known;
  entities.visitNear(box, [&](const SketchEntity& entity, std::size_t position) {
    const auto* wall = std::get_if<WallEntity>(&entity);
    if (wall == nullptr || excluded.contains(wall->id) || walls.size() > kMostWalls) return;
    if (!SketchBox::spanning(wall->from, wall->to).overlaps(box)) return;
    walls.push_back(entity);
    known[wall->id].position = position;
  });
  if (walls.empty() || walls.size() > kMostWalls) return;
  for (const Opening& opening : drawing.plan.openings) {
    const auto found = known.find(opening.wallID);
    if (found == known.end()) continue;
    const std::size_t position = found->second.position;
    const auto wall = openingWall(entities.list()[position], position, systems);
    if (wall && placedOpening(opening, *wall, entities, drawing.plan.openings).fit == OpeningFit::fits) {
      found->second.gaps.push_back({opening.distance, opening.distance + opening.width});
    }
  }
  const SketchBox near = SketchBox::centered(point, radius_);
  JoinedWalls::of(EntityList(std::move(walls)), systems, 1).visitAll([&](const JoinedWall& joined) {
    const NearWall& wall = known.at(joined.wall.id);
    for (const WallEdge& edge : edgesBeside(joined, wall.gaps)) {
      if (!SketchBox::spanning(edge.from, edge.to).overlaps(near)) continue;
      faces_.push_back({edge,
                        joined.wall.id,
                        wall.position,
                        2 * joined.wall.half,
                        {endOf(joined, wall, edge.from), endOf(joined, wall, edge.to)}});
    }
  });
  // The same answer whatever the identifiers are.
  std::sort(faces_.begin(), faces_.end(), [](const Face& a, const Face& b) {
    return std::tuple(a.position, a.edge.from.x, a.edge.from.y) <
           std::tuple(b.position, b.edge.from.x, b.edge.from.y);
  });
}

EntitySnapTarget NearWallFaces::targetOf(const Face& face, SketchPoint at, EntitySnapKind kind) const {
  WallEntity wall;
  wall.id = face.wall;
  return {at, kind, face.wall, entityLabel(wall, static_cast<int>(face.position) + 1)};
}

std::optional<EntitySnapTarget> NearWallFaces::orCorner(std::optional<EntitySnapTarget> target) const {
  double best = target ? distanceBetween(target->point, point_) : radius_;
  for (const Face& face : faces_) {
    for (const auto& [corner, kind] :
         {std::pair(face.edge.from, face.ends[0]), std::pair(face.edge.to, face.ends[1])}) {
      const double distance = distanceBetween(corner, point_);
      if (!(target ? distance < best : distance <= best)) continue;
      best = distance;
      target = targetOf(face, corner, kind);
    }
  }
  return target;
}

std::optional<EntitySnapTarget> NearWallFaces::place(
    const std::optional<std::pair<SketchPoint, SketchPoint>>& anchorAndLocked) const {
  std::optional<EntitySnapTarget> found;
  double best = radius_;
  for (const Face& face : faces_) {
    if (!face.edge.isFace || face.thickness < radius_) continue;
    SketchPoint at = nearestOn(face.edge, point_);
    if (anchorAndLocked) {
      const auto crossed = crossing(face.edge, anchorAndLocked->first, anchorAndLocked->second);
      if (crossed && distanceBetween(*crossed, point_) <= radius_) at = *crossed;
    }
    const double distance = distanceBetween(at, point_);
    if (!(found ? distance < best : distance <= best)) continue;
    best = distance;
    found = targetOf(face, at, EntitySnapKind::face);
  }
  return found;
}

std::optional<std::pair<EntitySnapTarget, EntitySnapTarget>> snapEntityMoveToFaces(
    SketchPoint delta, const SketchEntity& moved, double wallThickness,
    const std::function<NearWallFaces(SketchPoint)>& near) {
  std::vector<EntitySnapTarget> sources = SketchSnapping::entitySnapTargets(moved, {});
  if (const auto* wall = std::get_if<WallEntity>(&moved)) {
    for (const SketchPoint corner : wallCorners(wall->from, wall->to, wallThickness)) {
      sources.push_back({corner, EntitySnapKind::faceCorner, wall->id, {}});
    }
  }
  if (sources.size() > kMostSources) return std::nullopt;
  std::optional<std::pair<EntitySnapTarget, EntitySnapTarget>> corner;
  std::optional<std::pair<EntitySnapTarget, EntitySnapTarget>> place;
  const auto take = [delta](auto& best, const EntitySnapTarget& source,
                            const std::optional<EntitySnapTarget>& target) {
    if (!target) return;
    const double distance = distanceBetween(source.point + delta, target->point);
    if (!best || distance < distanceBetween(best->first.point + delta, best->second.point)) {
      best = std::pair(source, *target);
    }
  };
  for (const EntitySnapTarget& source : sources) {
    const NearWallFaces faces = near(source.point + delta);
    take(corner, source, faces.orCorner(std::nullopt));
    take(place, source, faces.place());
  }
  return corner ? corner : place;
}

}  // namespace ostrelon
