#include "interaction/sketch_snapping.h"

#include <array>
#include <cmath>

#include "core/circle.h"
#include "geometry/selection_handles.h"
#include "interaction/axis_directions.h"
#include "interaction/canvas_transform.h"
#include "interaction/snap_points.h"

namespace ostrelon::SketchSnapping {
namespace {

// A snap point on its way to become a target: the name is written for the winner alone.
struct FoundPoint {
  const SketchEntity* entity = nullptr;
  std::size_t position = 0;  // 0-based, in the whole document
  SketchPoint point;
  EntitySnapKind kind = EntitySnapKind::endpoint;
};

// A little wider than what a search can find, so that rounding loses nothing at the edge.
constexpr double kBoxMargin = 1.001;

// All snap points in the box of the entities that are not excluded, in list order; outside an index
// also points beside it.
template <class Visit>
void visitSnapPoints(const SketchBox& box, EntitySource entities, const EntityIDs& excluded,
                     std::optional<SketchPoint> fromPoint, Visit visit) {
  const bool isOver = excluded.isOver(entities.list());
  entities.visitNear(box, [&](const SketchEntity& entity, std::size_t position) {
    if (isOver ? excluded.containsAt(position) : excluded.contains(entityID(entity))) return;
    forEachSnapPoint(entity, fromPoint, [&](SketchPoint point, EntitySnapKind kind) {
      visit(FoundPoint{&entity, position, point, kind});
    });
  });
}

SketchBox boxAroundTargets(const std::vector<EntitySnapTarget>& targets, SketchPoint delta, double reach) {
  SketchBox box = SketchBox::centered(targets.front().point + delta, reach);
  for (const EntitySnapTarget& target : targets) {
    const SketchBox one = SketchBox::centered(target.point + delta, reach);
    box = {std::fmin(box.minX, one.minX), std::fmin(box.minY, one.minY), std::fmax(box.maxX, one.maxX),
           std::fmax(box.maxY, one.maxY)};
  }
  return box;
}

// Entities are numbered from 1 in the order of the whole document.
int numberAt(std::size_t position) { return static_cast<int>(position) + 1; }

EntitySnapTarget targetOf(const FoundPoint& found) {
  return {found.point, found.kind, entityID(*found.entity),
          entityLabel(*found.entity, numberAt(found.position))};
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

std::optional<EntitySnapTarget> nearestEntityTarget(EntitySource entities, const EntityIDs& excluded,
                                                    SketchPoint point, double scale,
                                                    std::optional<SketchPoint> fromPoint) {
  const double radius = kSnapRadius / scale;
  if (!(radius >= 0)) return std::nullopt;
  std::optional<FoundPoint> best;
  double bestDistance = radius;
  visitSnapPoints(SketchBox::centered(point, radius * kBoxMargin), entities, excluded, fromPoint,
                  [&](const FoundPoint& found) {
                    const double distance = distanceBetween(found.point, point);
                    if (!(best ? distance < bestDistance : distance <= radius)) return;
                    best = found;
                    bestDistance = distance;
                  });
  if (!best) return std::nullopt;
  return targetOf(*best);
}

std::optional<EntitySnapTarget> nearestAcquirableTarget(EntitySource entities, const EntityIDs& excluded,
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
  if (!(lengthOf(span) >= kMinimumSnapSpan)) return result;
  const auto angle = lockAngle(reference, span.x, span.y);
  if (!angle) return result;
  const double length = std::round(alongDirection(span, *angle));
  result.point = pointAlongAxis(start, *angle, length);
  result.axes = axesForAngle(*angle);
  return result;
}

SketchSnapResult axisSnapDelta(double dx, double dy) {
  SketchSnapResult result = atPoint({dx, dy});
  if (!(lengthOf({dx, dy}) >= kMinimumSnapSpan)) return result;
  const auto angle = lockAngle(std::nullopt, dx, dy);
  if (!angle) return result;
  result.point = pointAlongAxis({}, *angle, alongDirection({dx, dy}, *angle));
  result.axes = axesForAngle(*angle);
  return result;
}

SketchSnapResult snapPoint(SketchPoint point, const SketchViewport& viewport, EntitySource entities,
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
  if (!(lengthOf(v) >= kMinimumSnapSpan)) return std::nullopt;
  const auto locked = lockAngle(std::nullopt, v.x, v.y);
  const auto lockedAxes = locked ? axesForAngle(*locked) : std::vector<AxisSnap>();
  std::optional<TrackingCandidate> best;

  const auto propose = [&](SketchPoint point, const std::vector<AxisSnap>& direction, bool isAligned) {
    const SketchPoint reach = point - anchor;
    if (!(lengthOf(reach) >= kMinimumSnapSpan)) return;
    if (!(dot(v, reach) > 0)) return;
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

// The snap points of the others that could be near one of the moved ones are gathered first: a polygon
// of a thousand corners must not walk the drawing a thousand times. The order of both lists is that of
// the plain double loop.
std::optional<std::pair<EntitySnapTarget, EntitySnapTarget>> snapEntityMove(SketchPoint delta,
                                                                            const SketchViewport& viewport,
                                                                            const SketchEntity& moved,
                                                                            EntitySource entities,
                                                                            const EntityIDs& excluded) {
  const double radius = kSnapRadius / viewport.scale;
  const UUID& movedID = entityID(moved);
  const auto position = entities.positionOf(movedID);
  const auto sources = entitySnapTargets(moved, entityLabel(moved, position ? numberAt(*position) : 0));
  if (sources.empty() || !(radius >= 0)) return std::nullopt;

  const SketchBox box = boxAroundTargets(sources, delta, radius * kBoxMargin);
  std::vector<FoundPoint> nearby;
  visitSnapPoints(box, entities, excluded, std::nullopt, [&](const FoundPoint& found) {
    if (box.contains(found.point) && entityID(*found.entity) != movedID) nearby.push_back(found);
  });

  const EntitySnapTarget* bestSource = nullptr;
  const FoundPoint* best = nullptr;
  double bestDistance = radius;
  for (const EntitySnapTarget& source : sources) {
    const SketchPoint shifted = source.point + delta;
    for (const FoundPoint& found : nearby) {
      const double distance = distanceBetween(shifted, found.point);
      if (!(best == nullptr ? distance <= radius : distance < bestDistance)) continue;
      bestSource = &source;
      best = &found;
      bestDistance = distance;
    }
  }
  if (best == nullptr) return std::nullopt;
  return std::pair(*bestSource, targetOf(*best));
}

std::optional<SketchPoint> handleAnchor(const SelectionHandle& handle, const SketchEntity& entity) {
  return handleFixedPoint(handle, entity);
}

SketchSnapResult snapHandleDrag(const SelectionHandle& handle, const SketchEntity& entity,
                                EntitySource entities, SketchPoint point, const SketchViewport& viewport,
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
