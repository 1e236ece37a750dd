// Snapping: turns a raw pointer position into the point that a tool uses, and reports why. Pure functions
// over the entity list, the viewport and a few flags; nothing here holds state.
//
// Three decisions shape everything. Pixels decide what is near: each radius is 8 view points, divided
// by the viewport's scale, so that snapping feels the same at every zoom. The order of preference is
// fixed: entity point, then tracking, then grid, then axis lock. And a draft end that nothing else
// claimed still lands on whole sketch units, since the axis lock rounds.
//
// The entities come as a list or as the index over it; both give the same answer, which is defined by
// the order of the list.
//
// Points and distances are sketch units, angles are degrees, `scale` is view points a sketch unit.
// Rounding is half away from zero. A coordinate that is not a number is near nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/entity_set.h"
#include "core/entity_source.h"
#include "core/sketch_entity.h"
#include "core/sketch_point.h"
#include "core/sketch_viewport.h"
#include "interaction/select_drag_state.h"
#include "interaction/snap_types.h"

namespace ostrelon::SketchSnapping {

/// How near the pointer must come to an entity point or a grid line, view points.
inline constexpr double kSnapRadius = 8.0;
/// How far a direction may be off a multiple of 45 degrees and still lock, degrees, inclusive.
inline constexpr double kAxisLockTolerance = 8.0;
/// How far a locked direction may lie from the reference angle of a handle, degrees, inclusive.
inline constexpr double kAxisLockReach = 90.0;
/// Below this distance from the start neither an axis lock nor tracking applies, sketch units.
inline constexpr double kMinimumSnapSpan = 0.5;
/// An anchor this near to the line of a tracked point is already aligned with it, sketch units.
inline constexpr double kTrackingAlignTolerance = 0.001;
/// How far a coordinate may be off a major grid line and still lie on it, sketch units.
inline constexpr double kMajorLineTolerance = 0.0001;

using EntityIDs = EntitySet;

// --- Points of entities

/// The snap points of an entity in the order that decides ties. `fromPoint` is where the drawing
/// comes from; with it a circle also offers the two points at which a line from there touches it.
std::vector<EntitySnapTarget> entitySnapTargets(const SketchEntity& entity, const std::string& entityName,
                                                std::optional<SketchPoint> fromPoint = std::nullopt);

/// The nearest snap point within the snap radius, of all entities but the excluded ones. Every kind competes
/// on distance alone; of equally near points the first in list order wins.
std::optional<EntitySnapTarget> nearestEntityTarget(EntitySource entities, const EntityIDs& excluded,
                                                    SketchPoint point, double scale,
                                                    std::optional<SketchPoint> fromPoint = std::nullopt);

/// The nearest snap point if tracking may lock it, that is, if it is an endpoint or a midpoint. A nearer
/// point of another kind hides those farther away.
std::optional<EntitySnapTarget> nearestAcquirableTarget(EntitySource entities, const EntityIDs& excluded,
                                                        SketchPoint point, double scale);

// --- Grid

/// The grid lines within the snap radius; absent when there are none or `scale` is not above 0.
std::optional<GridSnapTarget> gridSnap(SketchPoint point, double scale);

// --- Directions

/// The axis of an angle that is exactly a multiple of 45 degrees; empty for any other.
std::vector<AxisSnap> axesForAngle(double angle);

/// The multiple of 45 degrees, 0 up to 315, onto which the direction (dx, dy) locks. With a
/// `reference` angle only directions within 90 degrees of it count, and those on its side of the
/// pointer come first. Absent when none is near enough.
std::optional<double> lockAngle(std::optional<double> reference, double dx, double dy);

/// `current` locked onto an axis through `start` in whole units of length; or rounded to whole
/// coordinates, with no axes, when no axis is near.
SketchSnapResult axisSnap(SketchPoint start, SketchPoint current,
                          std::optional<double> reference = std::nullopt);

/// A movement projected onto an axis, unrounded; or the movement itself. `point` is the movement.
SketchSnapResult axisSnapDelta(double dx, double dy);

// --- Whole pipelines

/// Entity point, then grid if asked for, then the raw point: for the first point of a gesture, for
/// the tools without an axis lock, and for hovering.
SketchSnapResult snapPoint(SketchPoint point, const SketchViewport& viewport, EntitySource entities,
                           const EntityIDs& excluded, bool useGrid);

/// A proposed end of a draft in line with a tracked point.
struct TrackingCandidate {
  SketchPoint point;
  std::vector<AxisSnap> axes;  ///< direction from the anchor
  std::int64_t priority = 0;
  friend bool operator==(const TrackingCandidate&, const TrackingCandidate&) = default;
};

/// The best alignment, horizontal, vertical or diagonal, of a draft that starts at `anchor` with the
/// tracked `target`, at any distance but on the pointer's side of the anchor. `axes` is the axis lock
/// of the pointer, `lastAxes` that of the step before.
std::optional<TrackingCandidate> trackingCandidate(SketchPoint anchor, SketchPoint pointer,
                                                   SketchPoint target, const std::vector<AxisSnap>& axes,
                                                   const std::vector<AxisSnap>& lastAxes);

/// For an entity moved as a whole: its own snap point and the point of another entity that come
/// nearest to each other, within the snap radius, when it is moved by `delta`. Ties keep the first
/// point of the moved entity, then the first in list order. The moved entity and the excluded ones
/// are no targets.
std::optional<std::pair<EntitySnapTarget, EntitySnapTarget>> snapEntityMove(SketchPoint delta,
                                                                            const SketchViewport& viewport,
                                                                            const SketchEntity& moved,
                                                                            EntitySource entities,
                                                                            const EntityIDs& excluded = {});

/// The point that stays while the handle moves; absent for handles that turn about nothing.
std::optional<SketchPoint> handleAnchor(const SelectionHandle& handle, const SketchEntity& entity);

/// Where a dragged handle goes: entity point, then the axis lock about the point that stays, then
/// grid. `referenceAngle` is the direction from that point to the handle when the drag began.
SketchSnapResult snapHandleDrag(const SelectionHandle& handle, const SketchEntity& entity,
                                EntitySource entities, SketchPoint point, const SketchViewport& viewport,
                                bool useGrid, std::optional<double> referenceAngle);

}  // namespace ostrelon::SketchSnapping
