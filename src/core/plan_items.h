// The items that are placed in a plan, whatever their kind: what is selected, dragged, changed, copied and
// deleted alike. `PlanItem` is in core/plan.h; the compiler names every place that must say what a kind is
// there.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/plan.h"
#include "core/sketch_box.h"
#include "core/sketch_entity.h"

namespace ostrelon {

class Sketch;

const UUID& planItemID(const PlanItem& item);
PlanItem withPlanItemID(PlanItem item, const UUID& id);
/// The item of this identifier, of whatever kind. Linear.
std::optional<PlanItem> findPlanItem(const Plan& plan, const UUID& id);
/// All of them, kind by kind, each in the order of its list.
std::vector<PlanItem> planItems(const Plan& plan);
/// Puts it in the place of the one of its identifier and kind, or at the end.
void putPlanItem(Plan& plan, const PlanItem& item);
/// Appends them all, each to the list of its kind.
void addPlanItems(Plan& plan, const std::vector<PlanItem>& items);
/// False where there is none.
bool removePlanItem(Plan& plan, const UUID& id);

/// Calls `visit(UUID&)` for each entity or other item that it lives in or holds on to.
template <class Item, class Visit>
void visitHeld(Item& item, Visit visit) {
  using Kind = std::remove_const_t<Item>;
  if constexpr (std::is_same_v<Kind, Opening>) {
    visit(item.wallID);
  } else if constexpr (std::is_same_v<Kind, Dimension>) {
    for (auto* end : {&item.from, &item.to}) {
      if (end->anchor != AnchorKind::none && !end->lost) visit(end->entityID);
    }
  }
}

/// The wall that an opening lives in and shares its fate with; absent for what stands by itself.
std::optional<UUID> wallOf(const PlanItem& item);
/// The item as it stands somewhere else. An opening stays: it goes with its wall.
PlanItem movedPlanItem(PlanItem item, SketchPoint by);
/// Around its places; absent for an opening, which is where its wall is.
std::optional<SketchBox> planItemBounds(const PlanItem& item);
/// What a copy of these entities takes along: the openings of the walls among them, and the dimensions whose
/// two ends hold on to them.
std::vector<PlanItem> itemsOf(const Plan& plan, const std::vector<SketchEntity>& entities);
/// Copies under identifiers of their own, moved; those that live in or hold on to something hold on to its
/// copy, and are left out where there is none. `copies`: the identifier of a thing, then its copy's.
std::vector<PlanItem> copiedPlanItems(const std::vector<PlanItem>& items,
                                      std::unordered_map<UUID, UUID> copies, SketchPoint by = {});

/// "Door", "Room", "Dimension".
std::string_view planItemTypeLabel(const PlanItem& item);
/// As a row names it: `Door 3'-0" wide`, `Room Bath`, `Dimension 12'-6 1/2"`.
std::string planItemTitle(const PlanItem& item);
/// As the status badge and screen readers name it: `Door 3'-0" wide in Wall 2`.
std::string planItemLabel(const Sketch& sketch, const PlanItem& item);

}  // namespace ostrelon
