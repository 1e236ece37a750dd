#include "documents/plan_compare.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <type_traits>

#include "core/plan_items.h"
#include "documents/compare.h"

namespace ostrelon {
namespace {

constexpr double kUntold = 1e-6;  // sketch units: less is no difference in words

using Renamed = std::unordered_map<UUID, UUID>;

// What is the same wherever the walls have taken it.
PlanItem withoutFollowed(PlanItem item) {
  if (auto* dimension = std::get_if<Dimension>(&item)) {
    for (DimensionEnd* end : {&dimension->from, &dimension->to}) {
      if (end->anchor != AnchorKind::none && !end->lost) end->point = {};
    }
  }
  return item;
}

bool isSameBesideID(const PlanItem& a, const PlanItem& b) {
  return saysTheSame(withPlanItemID(a, planItemID(b)), b);
}

bool holdsOnToRenamed(const PlanItem& item, const Renamed& renamed) {
  bool does = false;
  std::visit(
      [&](const auto& one) { visitHeld(one, [&](const UUID& id) { does = does || renamed.contains(id); }); },
      item);
  return does;
}

template <class Item>
void compareLists(const SharedList<Item>& before, const SharedList<Item>& after, const Renamed& renamed,
                  PlanDifference& difference) {
  if (before == after && renamed.empty()) return;
  std::unordered_map<UUID, const Item*> free;
  std::vector<PlanItem> added;
  for (const Item& item : before) free.emplace(item.id, &item);
  for (const Item& item : after) {
    const auto match = free.find(item.id);
    if (match == free.end()) {
      added.emplace_back(item);
      continue;
    }
    if (!saysTheSame(*match->second, withHeldRenamed(item, renamed))) {
      difference.changed.emplace_back(*match->second, item);
    }
    free.erase(match);
  }
  for (const Item& item : before) {
    if (!free.contains(item.id)) continue;
    // Where walls have other identifiers, their openings have.
    const auto alike = std::find_if(added.begin(), added.end(), [&](const PlanItem& other) {
      return holdsOnToRenamed(other, renamed) && isSameBesideID(item, withHeldRenamed(other, renamed));
    });
    if (alike == added.end()) {
      difference.removed.emplace_back(item);
    } else {
      added.erase(alike);
    }
  }
  difference.added.insert(difference.added.end(), added.begin(), added.end());
}

}  // namespace

bool saysTheSame(const PlanItem& a, const PlanItem& b) { return withoutFollowed(a) == withoutFollowed(b); }

PlanItem withHeldRenamed(PlanItem item, const Renamed& renamed) {
  std::visit(
      [&](auto& one) {
        visitHeld(one, [&](UUID& id) {
          const auto other = renamed.find(id);
          if (other != renamed.end()) id = other->second;
        });
      },
      item);
  return item;
}

PlanDifference comparePlans(const Plan& before, const Plan& after, const Renamed& renamed) {
  PlanDifference difference;
  difference.isLookChanged = before.look != after.look;
  difference.isSheetChanged = before.sheet != after.sheet;
  forEachPlanList([&](auto list) { compareLists(before.*list, after.*list, renamed, difference); });
  return difference;
}

// --- In words

std::string planDifferenceCounts(const PlanDifference& difference) {
  constexpr std::array<std::string_view, std::variant_size_v<PlanItem>> kinds{
      "openings", "rooms", "room dividers", "dimensions", "notes"};
  std::vector<std::string> parts;
  for (std::size_t kind = 0; kind < kinds.size(); ++kind) {
    const auto count = [&](const std::vector<PlanItem>& items) {
      return static_cast<std::size_t>(std::count_if(
          items.begin(), items.end(), [&](const PlanItem& item) { return item.index() == kind; }));
    };
    const auto changed =
        static_cast<std::size_t>(std::count_if(difference.changed.begin(), difference.changed.end(),
                                               [&](const auto& pair) { return pair.first.index() == kind; }));
    const std::string text = differenceCountText(count(difference.added), count(difference.removed), changed);
    if (!text.empty()) parts.push_back(fmt::format("{}: {}", kinds[kind], text));
  }
  if (difference.isLookChanged) parts.emplace_back("other plan look");
  if (difference.isSheetChanged) parts.emplace_back("other sheet");
  return fmt::format("{}", fmt::join(parts, "; "));
}

std::string planItemSubject(const PlanItem& item, const Drawing& drawing) {
  const auto id = wallOf(item);
  if (!id) return planItemTitle(item);
  const std::string kind(planItemTypeLabel(item));
  const auto wall = drawing.entities.indexOf(*id);
  if (!wall) return kind;
  return fmt::format("{} in {} {}", kind, entityTypeLabel(drawing.entities[*wall]), *wall + 1);
}

namespace {

std::string openingDescription(const Opening& opening) {
  std::string text =
      fmt::format("{} wide, {}{} from the start of its wall", differenceLengthText(opening.width),
                  opening.distance < 0 ? "-" : "", differenceLengthText(opening.distance));
  if (opening.kind == OpeningKind::door) {
    text += fmt::format(", hinged {}, swings {}", hingeName(opening.hinge), swingName(opening.swing));
  }
  return text;
}

std::string openingChange(const Opening& before, const Opening& after) {
  std::vector<std::string> words;
  if (before.kind != after.kind) words.push_back(fmt::format("now a {}", openingKindName(after.kind)));
  if (before.wallID != after.wallID) words.emplace_back("in another wall");
  const auto number = [&](double by, std::string_view more, std::string_view less) {
    if (std::abs(by) <= kUntold) return;
    words.push_back(fmt::format("{} {}", differenceLengthText(by), by > 0 ? more : less));
  };
  number(after.distance - before.distance, "farther from the start of its wall",
         "nearer to the start of its wall");
  number(after.width - before.width, "wider", "narrower");
  if (before.hinge != after.hinge) words.push_back(fmt::format("hinged {}", hingeName(after.hinge)));
  if (before.swing != after.swing) words.push_back(fmt::format("swings {}", swingName(after.swing)));
  return fmt::format("{}", fmt::join(words, ", "));
}

std::string placeText(SketchPoint point) {
  return fmt::format("({:.1f}, {:.1f})", point.x + 0.0, point.y + 0.0);
}

// "moved 2' right and 1' up"; empty for less than can be told.
std::string moveText(SketchPoint by, std::string_view what = "moved") {
  std::vector<std::string> ways;
  if (std::abs(by.x) > kUntold) ways.push_back(differenceLengthText(by.x) + (by.x > 0 ? " right" : " left"));
  if (std::abs(by.y) > kUntold) ways.push_back(differenceLengthText(by.y) + (by.y > 0 ? " up" : " down"));
  return ways.empty() ? std::string() : fmt::format("{} {}", what, fmt::join(ways, " and "));
}

// What has changed of one kind of item, part by part.
class Changes {
 public:
  void add(std::string words) {
    if (!words.empty()) words_.push_back(std::move(words));
  }
  void add(bool hasChanged, std::string words) {
    if (hasChanged) words_.push_back(std::move(words));
  }
  std::string text() const { return fmt::format("{}", fmt::join(words_, ", ")); }

 private:
  std::vector<std::string> words_;
};

std::string changeOf(const RoomName& before, const RoomName& after) {
  Changes changes;
  changes.add(before.name != after.name, "renamed to " + after.name);
  changes.add(moveText(after.place - before.place));
  changes.add(moveText(after.labelOffset - before.labelOffset, "its label moved"));
  return changes.text();
}

std::string changeOf(const RoomDivider& before, const RoomDivider& after) {
  Changes changes;
  changes.add(moveText(after.start - before.start, "its start moved"));
  changes.add(moveText(after.end - before.end, "its end moved"));
  return changes.text();
}

std::string changeOf(const Dimension& before, const Dimension& after) {
  Changes changes;
  const auto isHeldBy = [](const DimensionEnd& a, const DimensionEnd& b) {
    return a.anchor == b.anchor && a.entityID == b.entityID && a.corner == b.corner && a.lost == b.lost;
  };
  changes.add(!isHeldBy(before.from, after.from) || !isHeldBy(before.to, after.to),
              "holds on to something else");
  changes.add(moveText(after.from.point - before.from.point, "its start moved"));
  changes.add(moveText(after.to.point - before.to.point, "its end moved"));
  changes.add(before.direction != after.direction,
              "now " + std::string(caseNamesOf(after.direction)[static_cast<std::size_t>(after.direction)]));
  const double by = after.offset - before.offset;
  changes.add(std::abs(by) > kUntold, "its line moved by " + differenceLengthText(by));
  return changes.text();
}

std::string changeOf(const Note& before, const Note& after) {
  Changes changes;
  changes.add(before.text != after.text, "other words");
  changes.add(moveText(after.place - before.place));
  changes.add(before.target != after.target, "its leader changed");
  return changes.text();
}

std::string sheetChangeText(const PlanSheet& before, const PlanSheet& after) {
  Changes changes;
  const auto say = [](const auto& value) {
    using Value = std::remove_cvref_t<decltype(value)>;
    if constexpr (std::is_same_v<Value, std::string>) {
      return value.empty() ? std::string("nothing") : value;
    } else if constexpr (std::is_same_v<Value, std::optional<double>>) {
      return value ? fmt::format("{:g}°", *value) : std::string("nothing");
    } else {
      return fmt::format("{:g}", value);
    }
  };
  forEachField(
      [&](std::string_view name, const auto& old, const auto& now) {
        const std::string what(name == "unitsPerInch" ? "feet to an inch of paper" : name);
        changes.add(!(old == now), what + " now " + say(now));
      },
      before, after);
  return changes.text();
}

}  // namespace

std::string planItemDescription(const PlanItem& item) {
  return std::visit(Overloaded{[](const Opening& opening) { return openingDescription(opening); },
                               [](const RoomName& room) { return "at " + placeText(room.place); },
                               [](const RoomDivider& divider) {
                                 return "from " + placeText(divider.start) + " to " + placeText(divider.end);
                               },
                               [](const Dimension& dimension) {
                                 return "from " + placeText(dimension.from.point) + " to " +
                                        placeText(dimension.to.point);
                               },
                               [](const Note& note) { return "at " + placeText(note.place); }},
                    item);
}

std::string planItemChange(const PlanItem& before, const PlanItem& after) {
  if (before.index() != after.index()) return {};
  return std::visit(
      Overloaded{[&](const Opening& now) { return openingChange(std::get<Opening>(before), now); },
                 [&]<class Item>(const Item& now) { return changeOf(std::get<Item>(before), now); }},
      after);
}

std::vector<PlanDifferenceLine> planDifferenceLines(const PlanDifference& difference, const Drawing& before,
                                                    const Drawing& after, std::size_t limit) {
  using Kind = DifferenceKind;
  std::vector<PlanDifferenceLine> lines;
  const auto add = [&](Kind kind, const UUID& wall, const auto& text) {
    if (lines.size() < limit) lines.push_back({kind, wall, text()});
  };
  const auto idOfWall = [](const PlanItem& item) { return wallOf(item).value_or(UUID()); };
  for (const PlanItem& item : difference.removed) {
    add(Kind::removed, idOfWall(item),
        [&] { return planItemSubject(item, before) + ": removed, " + planItemDescription(item); });
  }
  for (const auto& pair : difference.changed) {
    add(Kind::changed, idOfWall(pair.second), [&] {
      const std::string words = planItemChange(pair.first, pair.second);
      return planItemSubject(pair.second, after) + ": " +
             (words.empty() ? "changed by less than can be told" : words);
    });
  }
  for (const PlanItem& item : difference.added) {
    add(Kind::added, idOfWall(item),
        [&] { return planItemSubject(item, after) + ": added, " + planItemDescription(item); });
  }
  if (difference.isSheetChanged) {
    add(Kind::changed, UUID(),
        [&] { return "Sheet: " + sheetChangeText(before.plan.sheet, after.plan.sheet); });
  }
  if (!difference.isLookChanged) return lines;
  add(Kind::changed, UUID(), [&] {
    std::vector<std::string> words;
    const auto part = [&](std::string_view name, bool PlanLook::*isOn) {
      if (before.plan.look.*isOn == after.plan.look.*isOn) return;
      words.push_back(fmt::format("{} {}", name, after.plan.look.*isOn ? "on" : "off"));
    };
    part("clean walls", &PlanLook::cleanWalls);
    part("filled walls", &PlanLook::filledWalls);
    part("line weights", &PlanLook::lineWeights);
    part("dimension strings", &PlanLook::dimensionStrings);
    return fmt::format("Plan look: {}", fmt::join(words, ", "));
  });
  return lines;
}

}  // namespace ostrelon
