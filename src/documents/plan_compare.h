// What differs between the plans of two drawings, and in words. Openings are told apart by their identifiers,
// as entities are.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/drawing.h"

namespace ostrelon {

enum class DifferenceKind { removed, changed, added };

struct PlanDifference {
  std::vector<Opening> removed;
  std::vector<Opening> added;
  std::vector<std::pair<Opening, Opening>> changed;  ///< before, after
  bool isLookChanged = false;

  /// How many lines it is in words.
  std::size_t count() const {
    return removed.size() + added.size() + changed.size() + (isLookChanged ? 1 : 0);
  }
  bool empty() const { return count() == 0; }
};

/// `renamed`: walls of the second plan that are walls of the first under another identifier, theirs first.
PlanDifference comparePlans(const Plan& before, const Plan& after,
                            const std::unordered_map<UUID, UUID>& renamed = {});

/// "1 opening added, 2 openings changed; other plan look"; empty where nothing differs.
std::string planDifferenceCounts(const PlanDifference& difference);

struct PlanDifferenceLine {
  DifferenceKind kind = DifferenceKind::changed;
  UUID wallID;  ///< of an opening, its wall's; null for the look
  std::string text;
};
/// One for each difference, at most so many.
std::vector<PlanDifferenceLine> planDifferenceLines(const PlanDifference& difference, const Drawing& before,
                                                    const Drawing& after, std::size_t limit);

/// "Door in Wall 3"; of an opening whose wall is not there, "Door".
std::string openingLabel(const Opening& opening, const Drawing& drawing);
/// "3' wide, 4' from the start of its wall, hinged left, swings in".
std::string openingDescription(const Opening& opening);
/// "moved 2' along its wall, 6\" wider"; empty where nothing has changed.
std::string openingChange(const Opening& before, const Opening& after);

}  // namespace ostrelon
