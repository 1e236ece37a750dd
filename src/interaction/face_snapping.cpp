#include "interaction/face_snapping.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "geometry/joined_walls.h"

namespace ostrelon {
namespace {

/// With more walls around the pointer than this, each is a few pixels.
constexpr std::size_t kMostWalls = 60;
/// How far from its axis a wall may reach: the longest mitre, in half thicknesses.
constexpr double kLongestReach = 8;

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

}  // namespace

NearWallFaces::NearWallFaces(const EntitySource& entities, std::span<const WallSystemSpec> systems,
                             const SketchSnapping::EntityIDs& excluded, SketchPoint point, double scale)
    : point_(point), radius_(SketchSnapping::kSnapRadius / scale) {
  if (!isFinite(point) || !(scale > 0)) return;
  double half = kUnknownWallThickness / 2;
  for (const WallSystemSpec& system : systems) half = std::max(half, system.thickness / 2);
  const SketchBox box = SketchBox::centered(point, radius_ + kLongestReach * half);
  std::vector<SketchEntity> walls;
  std::unordered_map<UUID, std::size_t> positions;
  entities.visitNear(box, [&](const SketchEntity& entity, std::size_t position) {
    const auto* wall = std::get_if<WallEntity>(&entity);
    if (wall == nullptr || excluded.contains(wall->id) || walls.size() > kMostWalls) return;
    if (!SketchBox::spanning(wall->from, wall->to).overlaps(box)) return;
    walls.push_back(entity);
    positions.emplace(wall->id, position);
  });
  if (walls.empty() || walls.size() > kMostWalls) return;
  const SketchBox near = SketchBox::centered(point, radius_);
  JoinedWalls::of(EntityList(std::move(walls)), systems, 1).visitAll([&](const JoinedWall& wall) {
    for (const WallEdge& edge : wall.edges) {
      if (!SketchBox::spanning(edge.from, edge.to).overlaps(near)) continue;
      faces_.push_back({edge, wall.wall.id, positions.at(wall.wall.id), 2 * wall.wall.half});
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
    for (const SketchPoint corner : {face.edge.from, face.edge.to}) {
      const double distance = distanceBetween(corner, point_);
      if (!(target ? distance < best : distance <= best)) continue;
      best = distance;
      target = targetOf(face, corner, EntitySnapKind::faceCorner);
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

}  // namespace ostrelon
