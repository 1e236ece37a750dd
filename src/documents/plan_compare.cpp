#include "documents/plan_compare.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "documents/compare.h"

namespace ostrelon {
namespace {

constexpr double kUntold = 1e-6;  // sketch units: less is no difference in words

using Renamed = std::unordered_map<UUID, UUID>;

// An opening of the second plan as the first would have it.
Opening inFirst(Opening opening, const Renamed& renamed) {
  const auto wall = renamed.find(opening.wallID);
  if (wall != renamed.end()) opening.wallID = wall->second;
  return opening;
}

bool isSameBesideID(Opening a, const Opening& b) {
  a.id = b.id;
  return a == b;
}

}  // namespace

PlanDifference comparePlans(const Plan& before, const Plan& after, const Renamed& renamed) {
  PlanDifference difference;
  difference.isLookChanged = before.look != after.look;
  if (before.openings == after.openings && renamed.empty()) return difference;
  std::unordered_map<UUID, const Opening*> free;
  for (const Opening& opening : before.openings) free.emplace(opening.id, &opening);
  for (const Opening& opening : after.openings) {
    const auto match = free.find(opening.id);
    if (match == free.end()) {
      difference.added.push_back(opening);
      continue;
    }
    if (!(*match->second == inFirst(opening, renamed)))
      difference.changed.emplace_back(*match->second, opening);
    free.erase(match);
  }
  for (const Opening& opening : before.openings) {
    if (!free.contains(opening.id)) continue;
    // Where walls have other identifiers, their openings have.
    const auto alike =
        std::find_if(difference.added.begin(), difference.added.end(), [&](const Opening& other) {
          return renamed.contains(other.wallID) && isSameBesideID(opening, inFirst(other, renamed));
        });
    if (alike == difference.added.end()) {
      difference.removed.push_back(opening);
    } else {
      difference.added.erase(alike);
    }
  }
  return difference;
}

// --- In words

std::string planDifferenceCounts(const PlanDifference& difference) {
  std::string text =
      differenceCountText(difference.added.size(), difference.removed.size(), difference.changed.size());
  if (!text.empty()) text = "openings: " + text;
  if (difference.isLookChanged) text += text.empty() ? "other plan look" : "; other plan look";
  return text;
}

std::string openingLabel(const Opening& opening, const Drawing& drawing) {
  const std::string kind(openingTypeLabel(opening.kind));
  const auto wall = drawing.entities.indexOf(opening.wallID);
  if (!wall) return kind;
  return fmt::format("{} in {} {}", kind, entityTypeLabel(drawing.entities[*wall]), *wall + 1);
}

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

std::vector<PlanDifferenceLine> planDifferenceLines(const PlanDifference& difference, const Drawing& before,
                                                    const Drawing& after, std::size_t limit) {
  using Kind = DifferenceKind;
  std::vector<PlanDifferenceLine> lines;
  const auto add = [&](Kind kind, const UUID& wall, const auto& text) {
    if (lines.size() < limit) lines.push_back({kind, wall, text()});
  };
  for (const Opening& opening : difference.removed) {
    add(Kind::removed, opening.wallID,
        [&] { return openingLabel(opening, before) + ": removed, " + openingDescription(opening); });
  }
  for (const auto& pair : difference.changed) {
    add(Kind::changed, pair.second.wallID, [&] {
      const std::string words = openingChange(pair.first, pair.second);
      return openingLabel(pair.second, after) + ": " +
             (words.empty() ? "changed by less than can be told" : words);
    });
  }
  for (const Opening& opening : difference.added) {
    add(Kind::added, opening.wallID,
        [&] { return openingLabel(opening, after) + ": added, " + openingDescription(opening); });
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
    return fmt::format("Plan look: {}", fmt::join(words, ", "));
  });
  return lines;
}

}  // namespace ostrelon
