#include "geometry/openings.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/circle.h"
#include "geometry/entity_geometry.h"

namespace ostrelon {
namespace {

constexpr double kInchesInFoot = 12;

double paintedThickness(const WallEntity& wall, const std::vector<WallSystemSpec>& systems) {
  const auto found = std::find_if(systems.begin(), systems.end(), [&](const WallSystemSpec& system) {
    return system.id == wall.systemSpecID;
  });
  return found == systems.end() ? kUnknownWallThickness : found->thickness;
}

SketchPoint directionOf(const OpeningWall& wall) { return (wall.to - wall.from) * (1 / wall.length()); }

// Two stretches of a wall that share more than a touch.
bool overlap(const Opening& a, const Opening& b) {
  return a.distance + a.width > b.distance + kOpeningTolerance &&
         b.distance + b.width > a.distance + kOpeningTolerance;
}

// Whether the centre line of another wall comes into the gap: what touches a jamb does not, what ends at a
// face does.
bool comesInto(const Opening& opening, const OpeningWall& wall, const WallEntity& other) {
  const SketchPoint along = directionOf(wall);
  const SketchPoint across = perpendicular(along);
  const SketchPoint from{dot(other.from - wall.from, along), dot(other.from - wall.from, across)};
  const SketchPoint to{dot(other.to - wall.from, along), dot(other.to - wall.from, across)};
  const double reach = std::abs(wall.thickness) / 2 + kOpeningTolerance;
  // The piece of the line between the faces, by the range of its parameter (Liang and Barsky).
  double first = 0;
  double last = 1;
  const auto clip = [&](double start, double end, double low, double high) {
    const double by = end - start;
    if (by == 0) {
      if (start < low || start > high) last = -1;
      return;
    }
    const double a = (low - start) / by;
    const double b = (high - start) / by;
    first = std::max(first, std::min(a, b));
    last = std::min(last, std::max(a, b));
  };
  clip(from.y, to.y, -reach, reach);
  clip(from.x, to.x, opening.distance + kOpeningTolerance,
       opening.distance + opening.width - kOpeningTolerance);
  return first <= last;
}

}  // namespace

// --- Walls

SketchPoint OpeningWall::at(double distance) const { return from + directionOf(*this) * distance; }
double OpeningWall::along(SketchPoint point) const { return dot(point - from, directionOf(*this)); }

std::optional<OpeningWall> openingWall(const SketchEntity& entity, std::size_t position,
                                       const std::vector<WallSystemSpec>& systems) {
  const auto* wall = std::get_if<WallEntity>(&entity);
  if (wall == nullptr) return std::nullopt;
  OpeningWall found{wall->id, position, wall->from, wall->to, paintedThickness(*wall, systems)};
  const double length = found.length();
  if (!(length > 0) || !std::isfinite(length) || !std::isfinite(found.thickness)) return std::nullopt;
  return found;
}

// --- Fitting

namespace {

bool isWithin(const Opening& opening, const OpeningWall& wall) {
  return opening.width > 0 && opening.distance >= -kOpeningTolerance &&
         opening.distance + opening.width <= wall.length() + kOpeningTolerance;
}

// The position of a wall that comes into the gap.
std::optional<std::size_t> crossingWall(const Opening& opening, const OpeningWall& wall,
                                        const EntitySource& entities) {
  const SketchBox gap =
      SketchBox::spanning(wall.at(opening.distance), wall.at(opening.distance + opening.width))
          .grown(std::abs(wall.thickness) / 2 + kOpeningTolerance);
  std::optional<std::size_t> crossing;
  entities.visitNear(gap, [&](const SketchEntity& entity, std::size_t position) {
    const auto* other = std::get_if<WallEntity>(&entity);
    if (crossing || other == nullptr || other->id == wall.id) return;
    if (comesInto(opening, wall, *other)) crossing = position;
  });
  return crossing;
}

// `overlapped`: the position of an opening that is there already.
PlacedOpening judged(const Opening& opening, const OpeningWall& wall, const EntitySource& entities,
                     std::optional<std::size_t> overlapped) {
  if (!isWithin(opening, wall)) return {opening, wall, OpeningFit::beyondWall, 0};
  if (overlapped) return {opening, wall, OpeningFit::overlaps, *overlapped};
  if (const auto crossing = crossingWall(opening, wall, entities)) {
    return {opening, wall, OpeningFit::crossed, *crossing};
  }
  return {opening, wall, OpeningFit::fits, 0};
}

}  // namespace

PlacedOpening placedOpening(const Opening& opening, const OpeningWall& wall, const EntitySource& entities,
                            const SharedList<Opening>& others) {
  std::optional<std::size_t> overlapped;
  for (std::size_t i = 0; i < others.size() && !overlapped; ++i) {
    const Opening& other = others[i];
    if (other.id != opening.id && other.wallID == wall.id && overlap(opening, other)) overlapped = i;
  }
  return judged(opening, wall, entities, overlapped);
}

OpeningLayout::OpeningLayout(const Drawing& drawing, const EntitySource& entities) {
  const SharedList<Opening>& openings = drawing.plan.openings;
  std::vector<std::size_t> numbers;  // of each in `all_`, in the list of openings
  for (std::size_t number = 0; number < openings.size(); ++number) {
    const Opening& opening = openings[number];
    const auto position = entities.positionOf(opening.wallID);
    if (!position) continue;
    const auto wall = openingWall(entities.list()[*position], *position, drawing.wallSystemSpecs);
    if (!wall) {
      ++waiting_;
      continue;
    }
    std::vector<std::size_t>& before = byWall_[wall->id];
    std::optional<std::size_t> overlapped;
    for (const std::size_t other : before) {
      if (all_[other].fit == OpeningFit::fits && overlap(opening, all_[other].opening)) {
        overlapped = numbers[other];
        break;
      }
    }
    before.push_back(all_.size());
    numbers.push_back(number);
    all_.push_back(judged(opening, *wall, entities, overlapped));
  }
  for (auto& [wall, places] : byWall_) {
    std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) {
      return all_[a].opening.distance < all_[b].opening.distance;
    });
  }
}

const std::vector<std::size_t>& OpeningLayout::ofWall(const UUID& wallID) const {
  static const std::vector<std::size_t> none;
  const auto found = byWall_.find(wallID);
  return found == byWall_.end() ? none : found->second;
}

const PlacedOpening* OpeningLayout::find(const UUID& openingID) const {
  const auto found = std::find_if(
      all_.begin(), all_.end(), [&](const PlacedOpening& placed) { return placed.opening.id == openingID; });
  return found == all_.end() ? nullptr : &*found;
}

std::size_t OpeningLayout::misfits() const {
  return static_cast<std::size_t>(std::count_if(
      all_.begin(), all_.end(), [](const PlacedOpening& placed) { return placed.fit != OpeningFit::fits; }));
}

std::vector<std::pair<double, double>> wallBesideOpenings(const OpeningWall& wall,
                                                          const OpeningLayout& layout) {
  std::vector<std::pair<double, double>> pieces;
  double from = 0;
  const auto add = [&](double to) {
    if (to - from > kOpeningTolerance) pieces.emplace_back(from, to);
  };
  for (const std::size_t place : layout.ofWall(wall.id)) {
    const PlacedOpening& placed = layout.all()[place];
    if (placed.fit != OpeningFit::fits) continue;
    add(placed.opening.distance);
    from = placed.opening.distance + placed.opening.width;
  }
  if (from == 0) return {{0, wall.length()}};
  add(wall.length());
  return pieces;
}

EntityList cutOpen(const EntityList& entities, const OpeningLayout& openings) {
  if (openings.empty()) return entities;
  std::vector<SketchEntity> left;
  for (const SketchEntity& entity : entities) {
    const auto& ofWall = openings.ofWall(entityID(entity));
    const auto* wall = std::get_if<WallEntity>(&entity);
    if (wall == nullptr || ofWall.empty()) {
      left.push_back(entity);
      continue;
    }
    const OpeningWall& host = openings.all()[ofWall.front()].wall;
    WallEntity stretch = *wall;
    for (const auto& [from, to] : wallBesideOpenings(host, openings)) {
      stretch.from = host.at(from);
      stretch.to = host.at(to);
      left.emplace_back(stretch);
      // Not a random one: the same drawing gives the same file.
      stretch.id.low += 0x9E3779B97F4A7C15ULL;
    }
  }
  return EntityList(std::move(left));
}

// --- Neighbours

OpeningRoom openingRoom(const OpeningWall& wall, double at, const SharedList<Opening>& openings,
                        const std::optional<UUID>& without) {
  OpeningRoom room{0, wall.length()};
  for (const Opening& other : openings) {
    if (other.wallID != wall.id || other.id == without) continue;
    const double middle = other.distance + other.width / 2;
    if (middle <= at) {
      room.from = std::max(room.from, other.distance + other.width);
    } else {
      room.to = std::min(room.to, other.distance);
    }
  }
  return room;
}

double roundedDistance(const OpeningWall& wall, double middle, double width,
                       const SharedList<Opening>& openings, const std::optional<UUID>& without) {
  const double distance = std::round((middle - width / 2) * kInchesInFoot) / kInchesInFoot;
  const OpeningRoom room = openingRoom(wall, middle, openings, without);
  if (room.to - room.from < width) return distance;
  return std::clamp(distance, room.from, room.to - width);
}

// --- What is drawn

OpeningShape openingShape(const Opening& opening, const OpeningWall& wall) {
  const SketchPoint along = directionOf(wall);
  const SketchPoint left = perpendicular(along) * (std::abs(wall.thickness) / 2);
  const SketchPoint near = wall.at(opening.distance);
  const SketchPoint far = wall.at(opening.distance + opening.width);
  OpeningShape shape;
  shape.gap = {near + left, near - left, far - left, far + left};
  shape.jambs = {{{near + left, near - left}, {far - left, far + left}}};
  if (opening.kind == OpeningKind::window) {
    shape.lines = {{near + left, far + left}, {near - left, far - left}, {near, far}};
  }
  if (opening.kind == OpeningKind::door) {
    const bool isLeft = opening.hinge == DoorHinge::left;
    const SketchPoint side = opening.swing == DoorSwing::in ? left : left * -1;
    const SketchPoint hinge = (isLeft ? near : far) + side;
    const SketchPoint closed = (isLeft ? far : near) + side;
    const SketchPoint open =
        hinge +
        (opening.swing == DoorSwing::in ? perpendicular(along) : perpendicular(along) * -1) * opening.width;
    shape.leaf = {hinge, open};
    const double closedAngle = angleFrom(hinge, closed);
    const double openAngle = angleFrom(hinge, open);
    const bool opensLeft = isLeft == (opening.swing == DoorSwing::in);
    shape.arc = OpeningArc{hinge, opening.width, opensLeft ? closedAngle : openAngle,
                           opensLeft ? openAngle : closedAngle};
  }
  return shape;
}

SketchBox openingBounds(const OpeningShape& shape) {
  SketchBox box = SketchBox::spanning(shape.gap[0], shape.gap[2]);
  for (const SketchPoint corner : shape.gap) box = box.united(corner);
  if (shape.leaf) {
    // The quarter arc lies within the square of the closed and the open leaf.
    box = box.united(shape.leaf->second);
    box = box.united(pointOnCircle(shape.arc->center, shape.arc->radius, shape.arc->startAngle));
    box = box.united(pointOnCircle(shape.arc->center, shape.arc->radius, shape.arc->endAngle));
    const double middle = shape.arc->startAngle + arcSpan(shape.arc->startAngle, shape.arc->endAngle) / 2;
    box = box.united(pointOnCircle(shape.arc->center, shape.arc->radius * std::sqrt(2), middle));
  }
  return box;
}

double distanceToOpening(const OpeningShape& shape, SketchPoint point) {
  const SketchPoint near = middleOf(shape.gap[0], shape.gap[1]);
  const SketchPoint along = middleOf(shape.gap[2], shape.gap[3]) - near;
  const double width = lengthOf(along);
  double least = std::numeric_limits<double>::infinity();
  if (width > 0) {
    const double place = dot(point - near, along) / width;
    const double beside = std::abs(dot(point - near, perpendicular(along))) / width;
    const double reach = distanceBetween(shape.gap[0], shape.gap[1]) / 2;
    if (place >= 0 && place <= width) least = std::max(0.0, beside - reach);
  }
  if (shape.leaf) least = std::min(least, distanceToSegment(point, shape.leaf->first, shape.leaf->second));
  if (shape.arc) {
    const OpeningArc& arc = *shape.arc;
    const ArcEntity swing{{}, arc.center, arc.radius, arc.startAngle, arc.endAngle};
    least = std::min(least, distanceToEntity(swing, point));
  }
  return least;
}

}  // namespace ostrelon
