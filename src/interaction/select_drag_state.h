// Gestures of the select tool in progress: the marquee, and the drag of a handle, of
// entities or of an item of the plan.
#pragma once

#include <cstddef>
#include <variant>

#include "core/entity_list.h"
#include "core/entity_set.h"
#include "core/plan_items.h"
#include "core/shared_list.h"
#include "core/sketch_entity.h"
#include "core/sketch_point.h"
#include "geometry/selection_handles.h"

namespace ostrelon {

struct SelectMarqueeState {
  SketchPoint startSketchPoint;
  SketchPoint currentSketchPoint;
  double startViewX = 0;    ///< view points
  double currentViewX = 0;  ///< view points; left of the start makes a crossing marquee
  friend bool operator==(const SelectMarqueeState&, const SelectMarqueeState&) = default;
};

struct HandleDrag {
  SelectionHandle handle;
  UUID entityID;
  SketchEntity anchor;  ///< the entity as it was at the start
  friend bool operator==(const HandleDrag&, const HandleDrag&) = default;
};

struct BodyDrag {
  UUID entityID;
  SketchEntity anchor;
  SketchPoint startSketchPoint;
  friend bool operator==(const BodyDrag&, const BodyDrag&) = default;
};

struct MultiBodyDrag {
  EntitySet entityIDs;
  EntityList start;                ///< all entities as they were at the start
  SharedList<std::size_t> places;  ///< those of the members in it, ascending
  SketchEntity lead;               ///< the entity under the press, at the start
  SketchPoint startSketchPoint;
  friend bool operator==(const MultiBodyDrag&, const MultiBodyDrag&) = default;
};

/// The drag of an item of the plan. It is written as it goes, whether it fits or not; the end of the drag
/// puts back what does not.
struct PlanItemDrag {
  PlanItem anchor;  ///< as it was at the start
  SketchPoint startSketchPoint;
  friend bool operator==(const PlanItemDrag&, const PlanItemDrag&) = default;
};

using SelectDragState = std::variant<HandleDrag, BodyDrag, MultiBodyDrag, PlanItemDrag>;

}  // namespace ostrelon
