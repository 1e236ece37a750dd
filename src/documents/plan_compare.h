// What differs between the plans of two drawings, and in words. Items are told apart by their identifiers, as
// entities are; where the end of a dimension is that holds on to something is no difference of its own.
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
  std::vector<PlanItem> removed;
  std::vector<PlanItem> added;
  std::vector<std::pair<PlanItem, PlanItem>> changed;  ///< before, after
  bool isLookChanged = false;
  bool isSheetChanged = false;

  /// How many lines it is in words.
  std::size_t count() const {
    return removed.size() + added.size() + changed.size() + (isLookChanged ? 1 : 0) +
           (isSheetChanged ? 1 : 0);
  }
  bool empty() const { return count() == 0; }
};

/// `renamed`: walls of the second plan that are walls of the first under another identifier, theirs first.
PlanDifference comparePlans(const Plan& before, const Plan& after,
                            const std::unordered_map<UUID, UUID>& renamed = {});
/// Whether two items say the same, those that they hold on to aside that follow by themselves.
bool saysTheSame(const PlanItem& a, const PlanItem& b);
/// The item with what it holds on to under other identifiers: those here, then the new ones.
PlanItem withHeldRenamed(PlanItem item, const std::unordered_map<UUID, UUID>& renamed);

/// "openings: 1 added, 2 changed; rooms: 1 removed; other plan look"; empty where nothing differs.
std::string planDifferenceCounts(const PlanDifference& difference);

struct PlanDifferenceLine {
  DifferenceKind kind = DifferenceKind::changed;
  UUID wallID;  ///< of an opening, its wall's; null for anything else
  std::string text;
};
/// One for each difference, at most so many.
std::vector<PlanDifferenceLine> planDifferenceLines(const PlanDifference& difference, const Drawing& before,
                                                    const Drawing& after, std::size_t limit);

/// "Door in Wall 3"; of an opening whose wall is not there, "Door". "Room Bath", "Note Verify".
std::string planItemSubject(const PlanItem& item, const Drawing& drawing);
/// "3' wide, 4' from the start of its wall, hinged left, swings in", "at 12', 4' 6\""
std::string planItemDescription(const PlanItem& item);
/// "moved 2' along its wall, 6\" wider"; empty where nothing has changed that can be told.
std::string planItemChange(const PlanItem& before, const PlanItem& after);

}  // namespace ostrelon
