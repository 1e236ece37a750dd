#include "interaction/sketch_snapping.h"

#include <array>
#include <cmath>
#include <limits>

#include "geometry/selection_handles.h"
#include "interaction/axis_directions.h"
#include "interaction/canvas_transform.h"
#include "interaction/snap_points.h"

namespace ostrelon::SketchSnapping {
namespace {

// A snap point on its way to become a target: the name is written for the winner alone.
struct FoundPoint {
  const SketchEntity* entity = nullptr;
  std::size_t index = 0;
  SketchPoint point;
  EntitySnapKind kind = EntitySnapKind::endpoint;
  double distance = 0;
};

// The nearest snap point within `radius` that `accepts` the entity's identifier. This scan is the
// definition: entities in list order, points in their own order, and only a nearer one replaces the
// best so far.
template <class Accepts>
std::optional<FoundPoint> nearestPoint(const EntityList& entities, SketchPoint point, double radius,
                                       std::optional<SketchPoint> fromPoint, Accepts&& accepts) {
  std::optional<FoundPoint> best;
  std::size_t index = 0;
  for (const SketchEntity& entity : entities) {
    if (accepts(entityID(entity))) {
      forEachSnapPoint(entity, fromPoint, [&](SketchPoint candidate, EntitySnapKind kind) {
        const double distance = std::hypot(candidate.x - point.x, candidate.y - point.y);
        if (!(distance <= radius) || (best && !(distance < best->distance))) return;
        best = FoundPoint{&entity, index, candidate, kind, distance};
      });
    }
    ++index;
  }
  return best;
}

// A box in sketch units, edges included. A box with a coordinate that is not a number holds nothing.
struct Box {
  double minX = std::numeric_limits<double>::infinity();
  double minY = std::numeric_limits<double>::infinity();
  double maxX = -std::numeric_limits<double>::infinity();
  double maxY = -std::numeric_limits<double>::infinity();

  bool contains(SketchPoint point) const {
    return minX <= point.x && point.x <= maxX && minY <= point.y && point.y <= maxY;
  }
};

Box boxAround(const std::vector<EntitySnapTarget>& targets, SketchPoint delta, double margin) {
  Box box;
  for (const EntitySnapTarget& target : targets) {
    const SketchPoint point = target.point + delta;
    box.minX = std::fmin(box.minX, point.x - margin);
    box.minY = std::fmin(box.minY, point.y - margin);
    box.maxX = std::fmax(box.maxX, point.x + margin);
    box.maxY = std::fmax(box.maxY, point.y + margin);
  }
  return box;
}

template <class Accepts>
std::vector<FoundPoint> pointsAround(const Box& box, const EntityList& entities, Accepts&& accepts) {
  std::vector<FoundPoint> points;
  std::size_t index = 0;
  for (const SketchEntity& entity : entities) {
    if (accepts(entityID(entity))) {
      forEachSnapPoint(entity, std::nullopt, [&](SketchPoint point, EntitySnapKind kind) {
        if (box.contains(point)) points.push_back({&entity, index, point, kind, 0});
      });
    }
    ++index;
  }
  return points;
}

EntitySnapTarget targetOf(const FoundPoint& found) {
  return {found.point, found.kind, entityID(*found.entity),
          entityLabel(*found.entity, static_cast<int>(found.index) + 1)};
}

SketchSnapResult atTarget(const EntitySnapTarget& target) {
  SketchSnapResult result;
  result.point = target.point;
  result.entitySnap = target;
  return result;
}

SketchSnapResult atGrid(GridSnapTarget grid) {
  SketchSnapResult result;
  result.point = grid.point;
  result.gridSnap = std::move(grid);
  return result;
}

SketchSnapResult atPoint(SketchPoint point) {
  SketchSnapResult result;
  result.point = point;
  return result;
}

bool isNearMultiple(double value, double step) {
  return std::abs(value - step * std::round(value / step)) < kMajorLineTolerance;
}

}  // namespace

std::vector<EntitySnapTarget> entitySnapTargets(const SketchEntity& entity, const std::string& entityName,
                                                std::optional<SketchPoint> fromPoint) {
  std::vector<EntitySnapTarget> targets;
  forEachSnapPoint(entity, fromPoint, [&](SketchPoint point, EntitySnapKind kind) {
    targets.push_back({point, kind, entityID(entity), entityName});
  });
  return targets;
}

std::optional<EntitySnapTarget> nearestEntityTarget(const EntityList& entities, const EntityIDs& excluded,
                                                    SketchPoint point, double scale,
                                                    std::optional<SketchPoint> fromPoint) {
  const auto found = nearestPoint(entities, point, kSnapRadius / scale, fromPoint,
                                  [&](const UUID& id) { return excluded.empty() || !excluded.contains(id); });
  if (!found) return std::nullopt;
  return targetOf(*found);
}

std::optional<EntitySnapTarget> nearestAcquirableTarget(const EntityList& entities, const EntityIDs& excluded,
                                                        SketchPoint point, double scale) {
  auto target = nearestEntityTarget(entities, excluded, point, scale);
  if (target && target->kind != EntitySnapKind::endpoint && target->kind != EntitySnapKind::midpoint) {
    target.reset();
  }
  return target;
}

std::optional<GridSnapTarget> gridSnap(SketchPoint point, double scale) {
  if (!(scale > 0)) return std::nullopt;
  const double step = gridStep(scale);
  const double tolerance = kSnapRadius / scale;
  const double gridX = step * std::round(point.x / step);
  const double gridY = step * std::round(point.y / step);
  GridSnapTarget target{point, {}, false};
  if (std::abs(point.x - gridX) <= tolerance) {
    target.point.x = gridX;
    target.axes.push_back(AxisSnap::vertical);
  }
  if (std::abs(point.y - gridY) <= tolerance) {
    target.point.y = gridY;
    target.axes.push_back(AxisSnap::horizontal);
  }
  if (target.axes.empty()) return std::nullopt;
  const double majorStep = kGridMajorEvery * step;
  target.isMajorIntersection =
      target.axes.size() == 2 && isNearMultiple(gridX, majorStep) && isNearMultiple(gridY, majorStep);
  return target;
}

std::vector<AxisSnap> axesForAngle(double angle) {
  const double within = std::fmod(angle, 360);
  if (within == 0 || within == 180) return {AxisSnap::horizontal};
  if (within == 90 || within == 270) return {AxisSnap::vertical};
  if (within == 45 || within == 225) return {AxisSnap::diagonalUp};
  if (within == 135 || within == 315) return {AxisSnap::diagonalDown};
  return {};
}

std::optional<double> lockAngle(std::optional<double> reference, double dx, double dy) {
  if (dx == 0 && dy == 0) return std::nullopt;
  const double angle = directionDegrees(dx, dy);
  if (!reference) {
    const double nearest = 45 * std::round(angle / 45);
    if (!(circularDistance(angle, nearest) <= kAxisLockTolerance)) return std::nullopt;
    return nearest == 360 ? 0 : nearest;
  }

  constexpr std::array<double, 8> kLockedAngles{0, 45, 90, 135, 180, 225, 270, 315};
  // How far the pointer has already turned away from the reference: a locked direction that has not
  // turned further is preferred.
  const double turned = circularDistance(angle, *reference);
  const auto nearest = [&](double reach) {
    std::optional<double> best;
    for (const double candidate : kLockedAngles) {
      if (!(circularDistance(candidate, angle) <= kAxisLockTolerance)) continue;
      const double fromReference = circularDistance(candidate, *reference);
      if (!(fromReference <= kAxisLockReach) || !(fromReference <= reach)) continue;
      if (!best || circularDistance(candidate, angle) < circularDistance(*best, angle)) best = candidate;
    }
    return best;
  };
  const auto preferred = nearest(turned);
  return preferred ? preferred : nearest(kAxisLockReach);
}

SketchSnapResult axisSnap(SketchPoint start, SketchPoint current, std::optional<double> reference) {
  SketchSnapResult result = atPoint({std::round(current.x), std::round(current.y)});
  const SketchPoint span = current - start;
  if (!(std::hypot(span.x, span.y) >= kMinimumSnapSpan)) return result;
  const auto angle = lockAngle(reference, span.x, span.y);
  if (!angle) return result;
  const double length = std::round(alongDirection(span, *angle));
  result.point = pointAlongAxis(start, *angle, length);
  result.axes = axesForAngle(*angle);
  return result;
}

SketchSnapResult axisSnapDelta(double dx, double dy) {
  SketchSnapResult result = atPoint({dx, dy});
  if (!(std::hypot(dx, dy) >= kMinimumSnapSpan)) return result;
  const auto angle = lockAngle(std::nullopt, dx, dy);
  if (!angle) return result;
  result.point = pointAlongAxis({}, *angle, alongDirection({dx, dy}, *angle));
  result.axes = axesForAngle(*angle);
  return result;
}

SketchSnapResult snapPoint(SketchPoint point, const SketchViewport& viewport, const EntityList& entities,
                           const EntityIDs& excluded, bool useGrid) {
  if (const auto target = nearestEntityTarget(entities, excluded, point, viewport.scale)) {
    return atTarget(*target);
  }
  if (useGrid) {
    if (auto grid = gridSnap(point, viewport.scale)) return atGrid(std::move(*grid));
  }
  return atPoint(point);
}

std::optional<TrackingCandidate> trackingCandidate(SketchPoint anchor, SketchPoint pointer,
                                                   SketchPoint target, const std::vector<AxisSnap>& axes,
                                                   const std::vector<AxisSnap>& lastAxes) {
  const SketchPoint v = pointer - anchor;
  if (!(std::hypot(v.x, v.y) >= kMinimumSnapSpan)) return std::nullopt;
  const auto locked = lockAngle(std::nullopt, v.x, v.y);
  const auto lockedAxes = locked ? axesForAngle(*locked) : std::vector<AxisSnap>();
  std::optional<TrackingCandidate> best;

  const auto propose = [&](SketchPoint point, const std::vector<AxisSnap>& direction, bool isAligned) {
    const SketchPoint reach = point - anchor;
    if (!(std::hypot(reach.x, reach.y) >= kMinimumSnapSpan)) return;
    if (!(v.x * reach.x + v.y * reach.y > 0)) return;
    std::int64_t priority = 0;
    if (axes == direction) priority += 4;
    if (lastAxes == direction) priority += 5;
    if (isAligned) priority += 2;
    if (locked && lockedAxes == direction) priority += 3;
    if (!best || priority > best->priority) best = TrackingCandidate{point, direction, priority};
  };

  propose({target.x, anchor.y}, {AxisSnap::horizontal},
          std::abs(target.y - anchor.y) < kTrackingAlignTolerance);
  propose({anchor.x, target.y}, {AxisSnap::vertical},
          std::abs(target.x - anchor.x) < kTrackingAlignTolerance);
  const double across = target.x - anchor.x;
  if (lockedAxes == std::vector{AxisSnap::diagonalUp}) {
    propose({target.x, anchor.y + across}, lockedAxes, false);
  } else if (lockedAxes == std::vector{AxisSnap::diagonalDown}) {
    propose({target.x, anchor.y - across}, lockedAxes, false);
  }
  return best;
}

// The snap points of the moved entity, shifted, and those of the others that could be near one of
// them are gathered first: a polygon of a thousand corners must not walk the whole drawing a thousand
// times. The order of both lists is that of the plain double loop.
std::optional<std::pair<EntitySnapTarget, EntitySnapTarget>> snapEntityMove(SketchPoint delta,
                                                                            const SketchViewport& viewport,
                                                                            const SketchEntity& moved,
                                                                            const EntityList& entities,
                                                                            const EntityIDs& excluded) {
  const double radius = kSnapRadius / viewport.scale;
  const UUID& movedID = entityID(moved);
  const auto targets =
      entitySnapTargets(moved, entityLabel(moved, entityNumber(movedID, entities).value_or(0)));
  const std::vector<FoundPoint> nearby = pointsAround(
      boxAround(targets, delta, radius), entities,
      [&](const UUID& id) { return id != movedID && (excluded.empty() || !excluded.contains(id)); });

  const EntitySnapTarget* source = nullptr;
  const FoundPoint* match = nullptr;
  double bestDistance = radius;
  for (const EntitySnapTarget& target : targets) {
    const SketchPoint shifted = target.point + delta;
    for (const FoundPoint& candidate : nearby) {
      const double distance = distanceBetween(shifted, candidate.point);
      if (!(match == nullptr ? distance <= bestDistance : distance < bestDistance)) continue;
      source = &target;
      match = &candidate;
      bestDistance = distance;
    }
  }
  if (match == nullptr) return std::nullopt;
  return std::pair(*source, targetOf(*match));
}

std::optional<SketchPoint> handleAnchor(const SelectionHandle& handle, const SketchEntity& entity) {
  return handleFixedPoint(handle, entity);
}

SketchSnapResult snapHandleDrag(const SelectionHandle& handle, const SketchEntity& entity,
                                const EntityList& entities, SketchPoint point, const SketchViewport& viewport,
                                bool useGrid, std::optional<double> referenceAngle) {
  const auto anchor = handleAnchor(handle, entity);
  if (!anchor) return snapPoint(point, viewport, entities, {entityID(entity)}, useGrid);
  if (const auto target = nearestEntityTarget(entities, {entityID(entity)}, point, viewport.scale, anchor)) {
    return atTarget(*target);
  }
  SketchSnapResult locked = axisSnap(*anchor, point, referenceAngle);
  if (locked.axes.empty() && useGrid) {
    if (auto grid = gridSnap(point, viewport.scale)) return atGrid(std::move(*grid));
  }
  return locked;
}

}  // namespace ostrelon::SketchSnapping
