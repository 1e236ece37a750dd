#include "geometry/dimension_ends.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

#include "core/plan_following.h"
#include "core/plan_items.h"
#include "geometry/dimension_strings.h"
#include "geometry/openings.h"

namespace ostrelon {
namespace {

/// A mitred corner lies beyond the end of its wall by no more thicknesses than these.
constexpr double kMostMitre = 2;
/// Points so near, feet, are one, and what is told of them decides.
constexpr double kSamePoint = 1e-6;

/// Where nothing is said: 1/4" = 1'.
constexpr double kUnitsPerInch = 4;

/// What other than corners and jambs an end can hold on to; of equal ones the first is meant.
constexpr std::array kPlaces{AnchorKind::start,     AnchorKind::end,        AnchorKind::center,
                             AnchorKind::startLeft, AnchorKind::startRight, AnchorKind::endLeft,
                             AnchorKind::endRight};

class EndSearch {
 public:
  EndSearch(SketchPoint point, SketchPoint axis, const Drawing& drawing, double tolerance)
      : point_(point), axis_(axis), drawing_(drawing), tolerance_(tolerance) {
    found_.point = point;
  }

  void tryAnchors(const SketchEntity& entity) {
    const UUID& id = entityID(entity);
    const double weight = squareness(entity);
    for (const AnchorKind kind : kPlaces) {
      const DimensionEnd end{point_, kind, id};
      offer(end, anchorPoint(end, entity, drawing_.wallSystemSpecs), weight);
    }
    for (std::uint32_t i = 0; i < cornersOf(entity); ++i) {
      const DimensionEnd end{point_, AnchorKind::corner, id, i};
      offer(end, anchorPoint(end, entity, drawing_.wallSystemSpecs), weight);
    }
  }

  void tryJambs(const Opening& opening, const OpeningWall& wall) {
    const SketchPoint normal = perpendicular(wall.to - wall.from) * (wall.thickness / 2 / wall.length());
    for (const AnchorKind kind : {AnchorKind::jambNear, AnchorKind::jambFar}) {
      const bool isFar = kind == AnchorKind::jambFar;
      const SketchPoint middle = wall.at(opening.distance + (isFar ? opening.width : 0));
      for (const SketchPoint place : {middle, middle + normal, middle - normal}) {
        offer({point_, kind, opening.id}, place, 1);
      }
    }
  }

  // Of a wall whose face the point is on, the nearer end of that face; the point stays where it is.
  void tryFaces(const OpeningWall& wall) {
    const double along = wall.along(point_);
    const double beyond = kMostMitre * wall.thickness;
    if (along < -beyond || along > wall.length() + beyond) return;
    const SketchPoint direction = (wall.to - wall.from) * (1 / wall.length());
    const double left = cross(direction, point_ - wall.from);
    const double off = std::abs(std::abs(left) - wall.thickness / 2);
    const double weight = std::abs(cross(direction, axis_));
    if (!(off <= tolerance_) || weight <= weight_) return;
    const bool isAtStart = along < wall.length() / 2;
    const AnchorKind nearStart = left > 0 ? AnchorKind::startLeft : AnchorKind::startRight;
    const AnchorKind nearEnd = left > 0 ? AnchorKind::endLeft : AnchorKind::endRight;
    found_ = {point_, isAtStart ? nearStart : nearEnd, wall.id};
    weight_ = weight;
  }

  bool isFound() const { return found_.anchor != AnchorKind::none; }
  const DimensionEnd& found() const { return found_; }

 private:
  static std::uint32_t cornersOf(const SketchEntity& entity) {
    if (std::holds_alternative<RectangleEntity>(entity)) return 4;
    const auto* polygon = std::get_if<PolygonEntity>(&entity);
    return polygon == nullptr ? 0 : static_cast<std::uint32_t>(polygon->vertices.size());
  }

  // 1 for what runs at a right angle to the axis, 0 for what runs along it and for what has no direction.
  double squareness(const SketchEntity& entity) const {
    const auto from = anchorPoint({{}, AnchorKind::start, {}}, entity, {});
    const auto to = anchorPoint({{}, AnchorKind::end, {}}, entity, {});
    const double length = from && to ? distanceBetween(*from, *to) : 0;
    return length > 0 ? std::abs(cross(*to - *from, axis_)) / length : 0;
  }

  void offer(DimensionEnd end, const std::optional<SketchPoint>& place, double weight) {
    if (!place || !isFinite(*place)) return;
    const double distance = distanceBetween(*place, point_);
    if (!(distance <= tolerance_)) return;
    const bool isNearer = distance < distance_ - kSamePoint;
    const bool isAsNear = distance < distance_ + kSamePoint;
    if (isFound() && !isNearer && !(isAsNear && weight > weight_ + kSamePoint)) return;
    end.point = *place;
    found_ = end;
    distance_ = distance;
    weight_ = weight;
  }

  SketchPoint point_;
  SketchPoint axis_;
  const Drawing& drawing_;
  double tolerance_;
  DimensionEnd found_;
  double distance_ = 0;
  double weight_ = -1;
};

}  // namespace

DimensionEnd dimensionEndAt(SketchPoint point, SketchPoint axis, const Drawing& drawing,
                            const EntitySource& entities, double tolerance) {
  double thickest = kUnknownWallThickness;
  for (const WallSystemSpec& system : drawing.wallSystemSpecs) {
    if (std::isfinite(system.thickness)) thickest = std::max(thickest, system.thickness);
  }
  EndSearch search(point, axis, drawing, tolerance);
  std::vector<OpeningWall> walls;
  entities.visitNear(SketchBox::centered(point, tolerance + (kMostMitre + 1) * thickest),
                     [&](const SketchEntity& entity, std::size_t position) {
                       search.tryAnchors(entity);
                       if (auto wall = openingWall(entity, position, drawing.wallSystemSpecs)) {
                         walls.push_back(*wall);
                       }
                     });
  for (const Opening& opening : drawing.plan.openings) {
    for (const OpeningWall& wall : walls) {
      if (wall.id == opening.wallID) search.tryJambs(opening, wall);
    }
  }
  if (search.isFound()) return search.found();
  for (const OpeningWall& wall : walls) search.tryFaces(wall);
  return search.found();
}

Dimension dimensionBetween(SketchPoint from, SketchPoint to, DimensionDirection direction,
                           std::optional<double> offset, const Drawing& drawing, const EntitySource& entities,
                           double tolerance) {
  Dimension dimension;
  dimension.id = UUID::random();
  dimension.direction = direction;
  dimension.from.point = from;
  dimension.to.point = to;
  const SketchPoint axis = dimensionAxis(dimension);
  dimension.from = dimensionEndAt(from, axis, drawing, entities, tolerance);
  dimension.to = dimensionEndAt(to, axis, drawing, entities, tolerance);
  const double scale = drawing.plan.sheet.unitsPerInch > 0 ? drawing.plan.sheet.unitsPerInch : kUnitsPerInch;
  dimension.offset = offset.value_or(stringDistance(StringRow::openings) * scale);
  return dimension;
}

DimensionDirection directionTowards(SketchPoint from, SketchPoint to, SketchPoint line) {
  const SketchPoint span = to - from;
  if (std::abs(span.y) < kSamePoint) return DimensionDirection::horizontal;
  if (std::abs(span.x) < kSamePoint) return DimensionDirection::vertical;
  // The line runs at a right angle to the direction in which it lies from the middle, as nearly as it can.
  const SketchPoint off = line - (from + span * 0.5);
  const double aligned = std::abs(cross(span, off)) / lengthOf(span);
  const double most = std::max(std::abs(off.x), std::abs(off.y));
  if (aligned >= most) return DimensionDirection::aligned;
  return std::abs(off.y) >= std::abs(off.x) ? DimensionDirection::horizontal : DimensionDirection::vertical;
}

std::string dimensionRefusal(const Dimension& dimension) {
  if (measuredLength(dimension) * 192 >= 0.5) return {};
  switch (dimension.direction) {
    case DimensionDirection::horizontal:
      return "There is nothing to measure: the points lie above each other.";
    case DimensionDirection::vertical:
      return "There is nothing to measure: the points lie side by side.";
    case DimensionDirection::aligned:
      return "There is nothing to measure: the points are the same.";
  }
  return {};
}

std::string heldText(const Sketch& sketch, const DimensionEnd& end) {
  if (end.anchor == AnchorKind::none || end.lost) return {};
  if (const auto item = findPlanItem(sketch.drawing->plan, end.entityID)) return planItemLabel(sketch, *item);
  const auto position = sketch.positionOf(end.entityID);
  if (!position) return {};
  return std::string(entityTypeLabel(sketch.entities()[*position])) + " " + std::to_string(*position + 1);
}

std::string dimensionAddedText(const Sketch& sketch, const Dimension& dimension) {
  std::string text = planItemTitle(dimension) + " added";
  std::string from = heldText(sketch, dimension.from);
  std::string to = heldText(sketch, dimension.to);
  if (from.empty() || from == to) std::swap(from, to);
  if (from == to) to.clear();
  if (!from.empty()) text += ", following " + from;
  if (!to.empty()) text += " and " + to;
  return text + ".";
}

}  // namespace ostrelon
