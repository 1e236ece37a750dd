// The items that are placed in a plan, whatever their kind: what is selected, dragged, changed and deleted
// alike. A kind is a record with an identifier and its list in `Plan`; as a member of `PlanItem` the compiler
// names every place that must say what it is there.
#pragma once

#include <optional>
#include <string>
#include <variant>

#include "core/plan.h"

namespace ostrelon {

class Sketch;

using PlanItem = std::variant<Opening>;

const UUID& planItemID(const PlanItem& item);
/// The item of this identifier, of whatever kind. Linear.
std::optional<PlanItem> findPlanItem(const Plan& plan, const UUID& id);
/// Puts it in the place of the one of its identifier and kind, or at the end.
void putPlanItem(Plan& plan, const PlanItem& item);
/// False where there is none.
bool removePlanItem(Plan& plan, const UUID& id);

/// "Door", "Window".
std::string_view planItemTypeLabel(const PlanItem& item);
/// As a row beneath its wall names it: `Door 3'-0" wide`.
std::string planItemTitle(const PlanItem& item);
/// As the status badge and screen readers name it: `Door 3'-0" wide in Wall 2`.
std::string planItemLabel(const Sketch& sketch, const PlanItem& item);

}  // namespace ostrelon
