// Merging two drawings that have come from one, entity by entity: what one side alone has changed is taken,
// what both have changed alike is taken once, and what they have changed differently is a conflict for
// somebody to settle.
//
//   const Merge merge = mergeDrawings(&ancestor, ours, theirs);
//   const Drawing merged = mergedDrawing(merge, ours, [](const MergeConflict&) { return MergeChoice::ours;
//   });
//
// A wall of which one side has pulled one end and the other side the other is no conflict, as long as what
// comes of it is no shorter than walls are drawn. Wall systems merge by the same rules; two of the same name
// under different identifiers are one conflict where they differ, and one system where they do not.
// The items of the plan merge likewise, its look switch by switch and its sheet text by text.
// Without an ancestor everything that differs is a conflict. The grid, the view and the active wall system
// stay ours.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "core/drawing.h"
#include "documents/compare.h"
#include "documents/plan_merge.h"

namespace ostrelon {

/// The shortest wall that the ends of two sides are joined to, sketch units: as short as walls are drawn.
inline constexpr double kShortestMergedWall = 1.0;

using EntityConflict = Conflict<SketchEntity>;
using WallSystemConflict = Conflict<WallSystemSpec>;
/// An entity, a wall system or an item of the plan.
using MergeConflict = std::variant<WallSystemConflict, EntityConflict, PlanItemConflict>;

/// How a conflict is settled. Both: theirs comes beside ours, under an identifier of its own; of an opening
/// theirs is taken, since two have no room in one place.
enum class MergeChoice { ours, theirs, both };
/// "ours", "theirs" or "both".
std::optional<MergeChoice> mergeChoiceNamed(std::string_view name);

/// What a merge does to our drawing.
struct Merge {
  struct Incoming {
    std::size_t position = 0;  ///< in their drawing, 0-based
    SketchEntity entity;
  };

  std::vector<SketchEntity> replaced;  ///< under our identifiers
  std::vector<UUID> removed;
  std::vector<Incoming> added;
  std::vector<WallSystemSpec> replacedSystems;  ///< under our identifiers
  std::vector<UUID> removedSystems;
  std::vector<WallSystemSpec> addedSystems;
  WallSystemPairs systemPairs;  ///< their wall systems that are ours under another identifier
  std::vector<WallSystemSpec> theirSystems;
  std::unordered_map<UUID, std::size_t> theirPositions;  ///< 0-based, of all entities that may come in
  PlanMerge plan;
  /// Wall systems first, then entities in the order of our drawing, then those that ours has not, then
  /// items of the plan.
  std::vector<MergeConflict> conflicts;

  /// There is nothing to take and nothing to ask.
  bool empty() const;
};

/// `base`: the nearest common ancestor, or null.
Merge mergeDrawings(const Drawing* base, const Drawing& ours, const Drawing& theirs,
                    NumberPrecision precision = NumberPrecision::exact);

/// Our drawing with everything merged; what theirs adds stands behind ours, in their order. `choose` is asked
/// once for each conflict, in their order. Shares its storage with ours.
Drawing mergedDrawing(const Merge& merge, const Drawing& ours,
                      const std::function<MergeChoice(const MergeConflict&)>& choose);

/// What either side has made of it.
struct ConflictWords {
  std::string subject;  ///< "Wall 18"
  std::string here;     ///< "moved 2' right"; empty where, without an ancestor, it is there only
  std::string there;    ///< "removed"; empty where, without an ancestor, it is here only
};
ConflictWords conflictWords(const MergeConflict& conflict, const Drawing& ours, const Drawing& theirs);
/// "Wall 18: here moved 2' right, there removed"
std::string conflictText(const MergeConflict& conflict, const Drawing& ours, const Drawing& theirs);
/// The identifier under which a conflict is known to ours, or to theirs where ours has it not.
const UUID& conflictID(const MergeConflict& conflict);

}  // namespace ostrelon
