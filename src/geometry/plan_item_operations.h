// Finding, moving, changing and deleting the items of a plan, whatever their kind. What does not fit is
// refused in words and changes nothing. Each edit is one undo step unless it is part of another. Sketch
// units.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/messages.h"
#include "core/plan_items.h"
#include "core/sketch.h"

namespace ostrelon {

/// What of an item is clicked on, as straight strokes. An opening is found by its own shape.
struct PlanItemShape {
  UUID id;
  std::vector<std::pair<SketchPoint, SketchPoint>> strokes;
};
/// The shapes of all items but openings, from their places alone: a label is the point at its middle.
std::vector<PlanItemShape> planItemShapes(const Plan& plan);
/// The nearest within the tolerance, the last of equal ones.
std::optional<UUID> pickShape(const std::vector<PlanItemShape>& shapes, SketchPoint point, double tolerance);

/// The item nearest to the point within the tolerance of a click. `scale` is view points per sketch unit.
std::optional<UUID> pickPlanItem(const Sketch& sketch, SketchPoint point, double scale);

/// Why it cannot stand where it is, as a sentence; empty where it can.
std::string planItemMisfit(const Sketch& sketch, const PlanItem& item);

/// The item after a drag that took it from `from` to `to`: an opening goes along its wall, to the inch, and
/// keeps out of its neighbours; of a room, its label moves; of a dimension, its line; other items go along.
PlanItem draggedPlanItem(const Sketch& sketch, const PlanItem& item, SketchPoint from, SketchPoint to);

/// The next way in which it stands: of a door how it hangs and swings. Absent for what has one way alone.
std::optional<PlanItem> flippedPlanItem(const PlanItem& item);

/// Puts another in the place of the one of its identifier. The answer says why not, and is empty where it
/// was done or stood so already. Unknown ones are refused.
std::string changePlanItem(Sketch& sketch, const PlanItem& item, UndoStep step = UndoStep::own);
/// Moves one that stands by itself; nothing for an opening or an unknown one.
void movePlanItem(Sketch& sketch, const UUID& id, double dx, double dy);
/// Removes it and reports that in the console; an unknown one does nothing.
void deletePlanItem(Sketch& sketch, Messages& messages, const UUID& id);

// --- The selected one; nothing without one

/// Null where the selected item is none of this kind.
template <class Item>
std::optional<Item> selectedPlanItem(const Sketch& sketch) {
  const auto& id = sketch.selection->planItem;
  const auto item = id ? findPlanItem(sketch.drawing->plan, *id) : std::nullopt;
  const Item* found = item ? std::get_if<Item>(&*item) : nullptr;
  return found != nullptr ? std::optional(*found) : std::nullopt;
}
std::optional<PlanItem> selectedPlanItem(const Sketch& sketch);
/// The box around all that is drawn of it; absent too for what is not drawn.
std::optional<SketchBox> selectedPlanItemBounds(const Sketch& sketch);
/// Says in the console why not, where it does not fit.
void flipSelectedPlanItem(Sketch& sketch, Messages& messages);
/// Puts a copy beside it and selects that; says in the console what was done, or why not.
void duplicateSelectedPlanItem(Sketch& sketch, Messages& messages);
void deleteSelectedPlanItem(Sketch& sketch, Messages& messages);

}  // namespace ostrelon
