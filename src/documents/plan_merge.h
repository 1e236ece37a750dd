// Merging the plans of two drawings: part of merging these, by the same rules. An opening that comes or goes
// with its wall shares the fate of the wall; a switch of the look, or a text of the sheet, is taken from the
// side that has changed it, and stays ours where both have.
#pragma once

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/drawing.h"

namespace ostrelon {

/// A thing on the three sides; absent where it has been removed or was not yet there.
template <class T>
struct Conflict {
  std::optional<T> base;
  std::optional<T> ours;
  std::optional<T> theirs;
  /// Of an entity: 1-based, in our drawing, or in theirs where ours has it not. Of an opening: that of its
  /// wall; 0 for other items of the plan.
  std::size_t number = 0;
  friend bool operator==(const Conflict&, const Conflict&) = default;
};
using PlanItemConflict = Conflict<PlanItem>;

/// What has become of the entities of the base on one side.
struct MergeSide {
  std::unordered_set<UUID> removed;
  std::unordered_map<UUID, UUID> renamed;  ///< the identifier here, then the base's
};

/// What a merge does to our plan.
struct PlanMerge {
  std::vector<PlanItem> replaced;
  std::vector<UUID> removed;
  std::vector<PlanItem> added;
  PlanLook look;  ///< ours, with what theirs has switched
  PlanSheet sheet;
  SharedList<std::string> further;
  bool isOtherLook = false;  ///< than ours, or other members, or another sheet
  /// All of theirs: for the openings of a wall that a conflict brings in, and for dimensions to follow from.
  Drawing theirs;
  std::unordered_map<UUID, UUID> ourWalls;  ///< their identifiers of walls, then ours

  bool empty() const { return replaced.empty() && removed.empty() && added.empty() && !isOtherLook; }
};

struct PlanMergeResult {
  PlanMerge merge;
  std::vector<PlanItemConflict> conflicts;  ///< without their numbers, in the order of our items
};
/// Without a base everything that differs is a conflict, and look and sheet stay ours.
PlanMergeResult mergePlans(const Plan* base, const Drawing& ours, const Drawing& theirs,
                           const MergeSide& ourSide, const MergeSide& theirSide);

/// A conflict of which theirs was chosen, or both.
struct SettledPlanConflict {
  PlanItemConflict conflict;
  bool areBothKept = false;  ///< theirs comes beside ours, under an identifier of its own
};

/// Our plan with everything merged. `broughtIn`: walls of theirs that conflicts have brought in, and what
/// they are called now. `merged`: our drawing with the entities merged already; openings without a wall are
/// left out, and dimensions follow.
Plan mergedPlan(const PlanMerge& merge, const Drawing& ours, const std::vector<SettledPlanConflict>& settled,
                const std::unordered_map<UUID, UUID>& broughtIn, const Drawing& merged);

}  // namespace ostrelon
