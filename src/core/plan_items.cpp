#include "core/plan_items.h"

#include <fmt/format.h>

#include <algorithm>

#include "core/sketch.h"
#include "core/typed_length.h"

namespace ostrelon {
namespace {

template <class T>
bool removeFrom(SharedList<T>& items, const UUID& id) {
  std::vector<T> kept = items.list();
  if (std::erase_if(kept, [&](const T& one) { return one.id == id; }) == 0) return false;
  items = std::move(kept);
  return true;
}

template <class T>
void putInto(SharedList<T>& items, const T& item) {
  std::vector<T> all = items.list();
  const auto found = std::find_if(all.begin(), all.end(), [&](const T& one) { return one.id == item.id; });
  if (found == all.end()) {
    all.push_back(item);
  } else {
    *found = item;
  }
  items = std::move(all);
}

}  // namespace

const UUID& planItemID(const PlanItem& item) {
  return std::visit([](const auto& one) -> const UUID& { return one.id; }, item);
}

std::optional<PlanItem> findPlanItem(const Plan& plan, const UUID& id) {
  if (const Opening* opening = plan.opening(id)) return *opening;
  return std::nullopt;
}

void putPlanItem(Plan& plan, const PlanItem& item) {
  std::visit(Overloaded{[&](const Opening& opening) { putInto(plan.openings, opening); }}, item);
}

bool removePlanItem(Plan& plan, const UUID& id) { return removeFrom(plan.openings, id); }

std::string_view planItemTypeLabel(const PlanItem& item) {
  return std::visit(Overloaded{[](const Opening& opening) { return openingTypeLabel(opening.kind); }}, item);
}

std::string planItemTitle(const PlanItem& item) {
  return std::visit(Overloaded{[](const Opening& opening) {
                      return fmt::format("{} {} wide", openingTypeLabel(opening.kind),
                                         formatLength(opening.width));
                    }},
                    item);
}

std::string planItemLabel(const Sketch& sketch, const PlanItem& item) {
  return std::visit(Overloaded{[&](const Opening& opening) {
                      const auto position = sketch.positionOf(opening.wallID);
                      if (!position) return planItemTitle(opening);
                      return fmt::format("{} in {} {}", planItemTitle(opening),
                                         entityTypeLabel(sketch.entities()[*position]), *position + 1);
                    }},
                    item);
}

}  // namespace ostrelon
