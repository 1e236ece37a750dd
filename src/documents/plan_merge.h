// Merging the plans of two drawings: part of merging these, by the same rules. An opening that comes or goes
// with its wall shares the fate of the wall; a switch of the look is taken from the side that has changed it.
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
  /// wall.
  std::size_t number = 0;
  friend bool operator==(const Conflict&, const Conflict&) = default;
};
using OpeningConflict = Conflict<Opening>;

/// What has become of the entities of the base on one side.
struct MergeSide {
  std::unordered_set<UUID> removed;
  std::unordered_map<UUID, UUID> renamed;  ///< the identifier here, then the base's
};

/// What a merge does to our plan.
struct PlanMerge {
  std::vector<Opening> replaced;
  std::vector<UUID> removed;
  std::vector<Opening> added;
  PlanLook look;  ///< ours, with what theirs has switched
  SharedList<std::string> further;
  bool isOtherLook = false;                 ///< than ours, or other members
  SharedList<Opening> theirs;               ///< all, for a wall of theirs that a conflict brings in
  std::unordered_map<UUID, UUID> ourWalls;  ///< their identifiers of walls, then ours

  bool empty() const { return replaced.empty() && removed.empty() && added.empty() && !isOtherLook; }
};

struct PlanMergeResult {
  PlanMerge merge;
  std::vector<OpeningConflict> conflicts;  ///< without their numbers, in the order of our openings
};
/// Without a base everything that differs is a conflict, and the look stays ours.
PlanMergeResult mergePlans(const Plan* base, const Plan& ours, const Plan& theirs, const MergeSide& ourSide,
                           const MergeSide& theirSide);

/// Our plan with everything merged. `settled`: the conflicts of which theirs was chosen, or both.
/// `broughtIn`: walls of theirs that conflicts have brought in, and what they are called now. `entities`: the
/// merged ones; openings without a wall are left out.
Plan mergedPlan(const PlanMerge& merge, const Plan& ours, const std::vector<OpeningConflict>& settled,
                const std::unordered_map<UUID, UUID>& broughtIn, const EntityList& entities);

}  // namespace ostrelon
