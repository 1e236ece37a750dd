// What differs between two drawings. Entities are told apart by their identifiers, so that one which was
// moved, reshaped or converted is still the same one; their order, the grid and the view do not count.
//
//   const DrawingDifference difference = compareDrawings(before, after);
//   differenceLines(difference, before, after);  // "Wall 18: moved 2' right, 1' longer"
//
// Two drawings of which less than half of the identifiers are common, as of a plan that was imported twice,
// are matched by equal geometry first. Wall systems are paired by identifier, the rest of them by name
// without regard to case.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/drawing.h"
#include "documents/plan_compare.h"

namespace ostrelon {

/// How exactly numbers are compared.
enum class NumberPrecision {
  exact,
  asInFiles,  ///< by the 32-bit values that a file would hold, for a side that comes from one
};

/// The wall systems of a second drawing that stand for one of the first under another identifier:
/// the second's identifier, then the first's.
using WallSystemPairs = std::unordered_map<UUID, UUID>;
WallSystemPairs wallSystemPairs(const std::vector<WallSystemSpec>& first,
                                const std::vector<WallSystemSpec>& second);

/// The same kind, numbers and wall system; identifiers may differ. `pairs` translates those of `b`.
bool isSameShape(const SketchEntity& a, const SketchEntity& b, NumberPrecision precision,
                 const WallSystemPairs& pairs = {});
/// The same in all but the identifier.
bool isSameWallSystem(const WallSystemSpec& a, const WallSystemSpec& b, NumberPrecision precision);

struct DrawingDifference {
  using EntityPair = std::pair<SketchEntity, SketchEntity>;  ///< before, after
  using SystemPair = std::pair<WallSystemSpec, WallSystemSpec>;

  std::vector<SketchEntity> removed;
  std::vector<SketchEntity> added;
  std::vector<EntityPair> changed;
  /// Entities that are the same under two identifiers, the second drawing's first.
  std::unordered_map<UUID, UUID> renamed;
  std::vector<WallSystemSpec> removedSystems;
  std::vector<WallSystemSpec> addedSystems;
  std::vector<SystemPair> changedSystems;
  PlanDifference plan;

  bool empty() const { return count() == 0; }
  /// How many lines it is in words.
  std::size_t count() const {
    return removed.size() + added.size() + changed.size() + removedSystems.size() + addedSystems.size() +
           changedSystems.size() + plan.count();
  }
};

/// Costs what differs where the lists share their storage, else a walk through both. Entities are in no
/// particular order.
DrawingDifference compareDrawings(const Drawing& before, const Drawing& after,
                                  NumberPrecision precision = NumberPrecision::exact);

// --- In words

enum class ChangeKind { moved, resized, reshaped, converted, otherWallSystem };

struct ChangePhrase {
  ChangeKind kind = ChangeKind::moved;
  std::string words;  ///< "moved 2' right and 1' up", "1' longer"
  friend bool operator==(const ChangePhrase&, const ChangePhrase&) = default;
};

/// What has become of one entity. Empty where nothing has that could be told.
std::vector<ChangePhrase> changePhrases(const SketchEntity& before, const SketchEntity& after,
                                        const Drawing& drawingBefore, const Drawing& drawingAfter);

/// How a difference is told: "2' 6\"" where feet and inches say it within a hundredth of an inch, else
/// decimals of a foot. The sign is left out.
std::string differenceLengthText(double value);
/// "2 added, 1 removed, 3 changed"; empty for none of all.
std::string differenceCountText(std::size_t added, std::size_t removed, std::size_t changed);
/// "2 added, 1 removed, 3 changed; wall systems: 1 added; openings: 1 added." or "No differences."
std::string differenceCounts(const DrawingDifference& difference);
/// A line for each difference: wall systems, then what was removed, changed and added, then the plan. A
/// removed entity has its number of the drawing before, the others theirs of the drawing after, and each
/// group is in the order of these. At most `limit` lines.
std::vector<std::string> differenceLines(const DrawingDifference& difference, const Drawing& before,
                                         const Drawing& after, std::size_t limit = SIZE_MAX);

}  // namespace ostrelon
