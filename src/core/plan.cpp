#include "core/plan.h"

#include <algorithm>
#include <utility>

namespace ostrelon {

const Opening* Plan::opening(const UUID& id) const {
  const auto found =
      std::find_if(openings.begin(), openings.end(), [&](const Opening& one) { return one.id == id; });
  return found == openings.end() ? nullptr : &*found;
}

PlanChange planChange(const Plan& before, const Plan& after) {
  PlanChange change;
  change.look = after.look;
  forEachPlanList([&]<class Item>(SharedList<Item> Plan::*list) {
    std::get<ListSplice<Item>>(change.items) = spliceBetween(before.*list, after.*list);
  });
  change.further = spliceBetween(before.further, after.further);
  if (before.sheet != after.sheet) change.sheet = after.sheet;
  return change;
}

bool applyPlanChange(const PlanChange& change, Plan& plan) {
  Plan changed = plan;
  changed.look = change.look;
  bool fits = applySplice(change.further, changed.further);
  forEachPlanList([&]<class Item>(SharedList<Item> Plan::*list) {
    fits = fits && applySplice(std::get<ListSplice<Item>>(change.items), changed.*list);
  });
  if (!fits) return false;
  if (change.sheet) changed.sheet = *change.sheet;
  plan = std::move(changed);
  return true;
}

}  // namespace ostrelon
