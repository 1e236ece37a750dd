#include "core/plan_items.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <unordered_set>
#include <utility>

#include "core/sketch.h"
#include "core/typed_length.h"

namespace ostrelon {
namespace {

template <class T>
bool removeFrom(SharedList<T>& items, const UUID& id) {
  const auto isIt = [&](const T& one) { return one.id == id; };
  if (std::none_of(items.begin(), items.end(), isIt)) return false;
  std::vector<T> kept = items.list();
  std::erase_if(kept, isIt);
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

// The first line, as a row has room for it.
std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

}  // namespace

const UUID& planItemID(const PlanItem& item) {
  return std::visit([](const auto& one) -> const UUID& { return one.id; }, item);
}

PlanItem withPlanItemID(PlanItem item, const UUID& id) {
  std::visit([&](auto& one) { one.id = id; }, item);
  return item;
}

std::optional<PlanItem> findPlanItem(const Plan& plan, const UUID& id) {
  std::optional<PlanItem> found;
  forEachPlanList([&]<class Item>(SharedList<Item> Plan::*list) {
    if (found) return;
    for (const Item& item : plan.*list) {
      if (item.id == id) {
        found = item;
        return;
      }
    }
  });
  return found;
}

std::vector<PlanItem> planItems(const Plan& plan) {
  std::vector<PlanItem> items;
  forEachPlanList([&]<class Item>(SharedList<Item> Plan::*list) {
    items.insert(items.end(), (plan.*list).begin(), (plan.*list).end());
  });
  return items;
}

void putPlanItem(Plan& plan, const PlanItem& item) {
  forEachPlanList([&]<class Item>(SharedList<Item> Plan::*list) {
    if (const Item* one = std::get_if<Item>(&item)) putInto(plan.*list, *one);
  });
}

void addPlanItems(Plan& plan, const std::vector<PlanItem>& items) {
  forEachPlanList([&]<class Item>(SharedList<Item> Plan::*list) {
    std::vector<Item> all = (plan.*list).list();
    for (const PlanItem& item : items) {
      if (const Item* one = std::get_if<Item>(&item)) all.push_back(*one);
    }
    if (all.size() > (plan.*list).size()) plan.*list = std::move(all);
  });
}

bool removePlanItem(Plan& plan, const UUID& id) {
  bool isRemoved = false;
  forEachPlanList([&](auto list) { isRemoved = isRemoved || removeFrom(plan.*list, id); });
  return isRemoved;
}

std::optional<UUID> wallOf(const PlanItem& item) {
  const auto* opening = std::get_if<Opening>(&item);
  return opening == nullptr ? std::nullopt : std::optional(opening->wallID);
}

// --- Copies

PlanItem movedPlanItem(PlanItem item, SketchPoint by) {
  std::visit(Overloaded{[](Opening&) {}, [&](RoomName& room) { room.place = room.place + by; },
                        [&](RoomDivider& divider) {
                          divider.start = divider.start + by;
                          divider.end = divider.end + by;
                        },
                        [&](Dimension& dimension) {
                          dimension.from.point = dimension.from.point + by;
                          dimension.to.point = dimension.to.point + by;
                        },
                        [&](Note& note) {
                          note.place = note.place + by;
                          if (note.target) note.target = *note.target + by;
                        }},
             item);
  return item;
}

std::optional<SketchBox> planItemBounds(const PlanItem& item) {
  using Box = std::optional<SketchBox>;
  return std::visit(Overloaded{[](const Opening&) -> Box { return std::nullopt; },
                               [](const RoomName& room) -> Box { return SketchBox::centered(room.place, 0); },
                               [](const RoomDivider& divider) -> Box {
                                 return SketchBox::spanning(divider.start, divider.end);
                               },
                               [](const Dimension& dimension) -> Box {
                                 return SketchBox::spanning(dimension.from.point, dimension.to.point);
                               },
                               [](const Note& note) -> Box {
                                 return SketchBox::spanning(note.place, note.target.value_or(note.place));
                               }},
                    item);
}

std::vector<PlanItem> itemsOf(const Plan& plan, const std::vector<SketchEntity>& entities) {
  std::vector<PlanItem> found;
  if (plan.openings.empty() && plan.dimensions.empty()) return found;
  std::unordered_set<UUID> ids;
  for (const SketchEntity& entity : entities) ids.insert(entityID(entity));
  for (const Opening& opening : plan.openings) {
    if (!ids.contains(opening.wallID)) continue;
    found.emplace_back(opening);
    ids.insert(opening.id);
  }
  for (const Dimension& dimension : plan.dimensions) {
    int held = 0;
    visitHeld(dimension, [&](const UUID& id) { held += ids.contains(id) ? 1 : 0; });
    if (held == 2) found.emplace_back(dimension);
  }
  return found;
}

std::vector<PlanItem> copiedPlanItems(const std::vector<PlanItem>& items,
                                      std::unordered_map<UUID, UUID> copies, SketchPoint by) {
  std::vector<PlanItem> copied;
  for (const PlanItem& item : items) {
    PlanItem copy = movedPlanItem(withPlanItemID(item, UUID::random()), by);
    bool isWhole = true;
    std::visit(
        [&](auto& one) {
          visitHeld(one, [&](UUID& id) {
            const auto found = copies.find(id);
            isWhole = isWhole && found != copies.end();
            if (found != copies.end()) id = found->second;
          });
        },
        copy);
    if (!isWhole) continue;
    copies.emplace(planItemID(item), planItemID(copy));
    copied.push_back(std::move(copy));
  }
  return copied;
}

// --- Naming

std::string_view planItemTypeLabel(const PlanItem& item) {
  using Label = std::string_view;
  return std::visit(Overloaded{[](const Opening& opening) { return openingTypeLabel(opening.kind); },
                               [](const RoomName&) -> Label { return "Room"; },
                               [](const RoomDivider&) -> Label { return "Room divider"; },
                               [](const Dimension&) -> Label { return "Dimension"; },
                               [](const Note&) -> Label { return "Note"; }},
                    item);
}

std::string planItemTitle(const PlanItem& item) {
  const std::string type(planItemTypeLabel(item));
  return std::visit(
      Overloaded{[&](const Opening& opening) { return type + " " + formatLength(opening.width) + " wide"; },
                 [&](const RoomName& room) { return type + " " + firstLine(room.name); },
                 [&](const RoomDivider& divider) {
                   return type + " " + formatLength(distanceBetween(divider.start, divider.end));
                 },
                 [&](const Dimension& dimension) {
                   const bool isLost = dimension.from.lost || dimension.to.lost;
                   return type + " " + formatLength(measuredLength(dimension)) + (isLost ? "?" : "");
                 },
                 [&](const Note& note) { return type + " " + firstLine(note.text); }},
      item);
}

std::string planItemLabel(const Sketch& sketch, const PlanItem& item) {
  const auto wall = wallOf(item);
  const auto position = wall ? sketch.positionOf(*wall) : std::nullopt;
  if (!position) return planItemTitle(item);
  return fmt::format("{} in {} {}", planItemTitle(item), entityTypeLabel(sketch.entities()[*position]),
                     *position + 1);
}

}  // namespace ostrelon
