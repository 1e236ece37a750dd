// The handles of a selected entity: where they are, which one is hit, and what dragging one does.
#pragma once

#include <compare>
#include <map>
#include <optional>

#include "core/sketch_entity.h"

namespace ostrelon {

/// A handle of a selected entity. Only `polygonVertex` uses `index`.
struct SelectionHandle {
  enum class Kind {
    polygonVertex,
    lineStart,
    lineEnd,
    circleCenter,
    circleRadius,
    rectMinXMinY,
    rectMaxXMinY,
    rectMaxXMaxY,
    rectMinXMaxY,
  };

  Kind kind = Kind::lineStart;
  int index = 0;

  static constexpr SelectionHandle polygonVertex(int index) { return {Kind::polygonVertex, index}; }
  // NOLINTNEXTLINE(modernize-use-nullptr)
  friend auto operator<=>(const SelectionHandle&, const SelectionHandle&) = default;
};

/// How near the pointer must come to a handle, view points.
inline constexpr double kHandleHitRadius = 10.0;
/// What a dragged rectangle and circle cannot fall below, sketch units.
inline constexpr double kMinimumRectangleSide = 1.0;
inline constexpr double kMinimumCircleRadius = 1.0;

/// Each handle with its position in sketch units. An arc shows two, which move nothing.
std::map<SelectionHandle, SketchPoint> selectionHandles(const SketchEntity& entity);

/// The nearest handle within the hit radius. `scale` is view points per sketch unit.
std::optional<SelectionHandle> hitSelectionHandle(const SketchEntity& entity, SketchPoint point,
                                                  double scale);

/// The point that stays when the handle moves; absent for handles that have none.
std::optional<SketchPoint> handleFixedPoint(const SelectionHandle& handle, const SketchEntity& entity);

/// `current` with the handle at `point`, all else taken from the `anchor`, which is the entity as it
/// was when the drag began. Absent when the handle does not move that kind of entity, or the two are
/// of different kinds.
std::optional<SketchEntity> applyHandleDrag(const SelectionHandle& handle, const SketchEntity& current,
                                            const SketchEntity& anchor, SketchPoint point);

}  // namespace ostrelon
