#include "core/observable.h"

#include <algorithm>

namespace ostrelon {

Subscription ChangeTracker::observe(FieldMask fields, Callback callback) {
  auto active = std::make_shared<bool>(true);
  observers_.push_back(std::make_shared<Observer>(Observer{fields, std::move(callback), active}));
  return Subscription(std::move(active));
}

void ChangeTracker::close() {
  if (--depth_ > 0) return;
  if (changed_ == 0) return;
  const FieldMask changed = std::exchange(changed_, FieldMask{0});
  ++revision_;
  std::erase_if(observers_, [](const auto& observer) { return !*observer->active; });
  // A copy of the list: an observer may begin or end observations, its own included.
  const auto observers = observers_;
  for (const auto& observer : observers) {
    if (*observer->active && (observer->fields & changed) != 0) observer->callback(changed);
  }
}

}  // namespace ostrelon
