#include "documents/plan_merge.h"

#include <algorithm>
#include <utility>

#include "documents/plan_compare.h"

namespace ostrelon {
namespace {

class PlanMerging {
 public:
  PlanMerging(const Plan* base, const Plan& ours, const Plan& theirs, const MergeSide& ourSide,
              const MergeSide& theirSide)
      : base_(base), ours_(ours), theirs_(theirs), ourSide_(ourSide), theirSide_(theirSide) {
    std::unordered_map<UUID, UUID> ourIDs;
    for (const auto& [ourID, baseID] : ourSide.renamed) ourIDs.emplace(baseID, ourID);
    PlanMerge& merge = result_.merge;
    merge.theirs = theirs.openings;
    merge.ourWalls = ourIDs;
    for (const auto& [theirID, baseID] : theirSide.renamed) {
      const auto here = ourIDs.find(baseID);
      merge.ourWalls.insert_or_assign(theirID, here == ourIDs.end() ? baseID : here->second);
    }
  }

  PlanMergeResult run() {
    mergeLook();
    if (base_ == nullptr) {
      const PlanDifference difference = comparePlans(ours_, theirs_);
      for (const Opening& opening : difference.removed) ask({}, opening, {});
      for (const auto& [ours, theirs] : difference.changed) ask({}, ours, theirs);
      for (const Opening& opening : difference.added) ask({}, {}, opening);
    } else {
      mergeOpenings();
    }
    return std::move(result_);
  }

 private:
  void mergeLook() {
    PlanMerge& merge = result_.merge;
    merge.look = ours_.look;
    merge.further = ours_.further;
    if (base_ == nullptr) return;
    for (bool PlanLook::*isOn : {&PlanLook::cleanWalls, &PlanLook::filledWalls, &PlanLook::lineWeights}) {
      if (theirs_.look.*isOn != base_->look.*isOn) merge.look.*isOn = theirs_.look.*isOn;
    }
    if (ours_.further == base_->further) merge.further = theirs_.further;
    merge.isOtherLook = merge.look != ours_.look || merge.further != ours_.further;
  }

  Opening here(Opening opening) const {
    const auto wall = result_.merge.ourWalls.find(opening.wallID);
    if (wall != result_.merge.ourWalls.end()) opening.wallID = wall->second;
    return opening;
  }

  void mergeOpenings() {
    const PlanDifference ours = comparePlans(*base_, ours_, ourSide_.renamed);
    const PlanDifference theirs = comparePlans(*base_, theirs_, theirSide_.renamed);
    // What has become of an opening of the base; null where it was removed.
    std::unordered_map<UUID, const Opening*> changes;
    for (const Opening& opening : ours.removed) changes.emplace(opening.id, nullptr);
    for (const auto& [base, changed] : ours.changed) changes.emplace(base.id, &changed);
    std::unordered_map<UUID, const Opening*> added;
    for (const Opening& opening : ours.added) added.emplace(opening.id, &opening);

    for (const Opening& base : theirs.removed) {
      if (theirSide_.removed.contains(base.wallID)) continue;
      const auto change = changes.find(base.id);
      if (change == changes.end()) {
        result_.merge.removed.push_back(base.id);
      } else if (change->second != nullptr) {
        ask(base, *change->second, {});
      }
    }
    for (const auto& [base, changed] : theirs.changed) {
      const auto change = changes.find(base.id);
      if (change == changes.end()) {
        result_.merge.replaced.push_back(here(changed));
      } else if (change->second == nullptr) {
        if (!ourSide_.removed.contains(base.wallID)) ask(base, {}, changed);
      } else if (!(*change->second == here(changed))) {
        ask(base, *change->second, changed);
      }
    }
    for (const Opening& opening : theirs.added) {
      const auto same = added.find(opening.id);
      if (same == added.end()) {
        result_.merge.added.push_back(here(opening));
      } else if (!(*same->second == here(opening))) {
        ask({}, *same->second, opening);
      }
    }
  }

  void ask(std::optional<Opening> base, std::optional<Opening> ours, std::optional<Opening> theirs) {
    if (theirs) theirs = here(*theirs);
    result_.conflicts.push_back({std::move(base), std::move(ours), std::move(theirs)});
  }

  const Plan* base_;
  const Plan& ours_;
  const Plan& theirs_;
  const MergeSide& ourSide_;
  const MergeSide& theirSide_;
  PlanMergeResult result_;
};

}  // namespace

PlanMergeResult mergePlans(const Plan* base, const Plan& ours, const Plan& theirs, const MergeSide& ourSide,
                           const MergeSide& theirSide) {
  return PlanMerging(base, ours, theirs, ourSide, theirSide).run();
}

Plan mergedPlan(const PlanMerge& merge, const Plan& ours, const std::vector<OpeningConflict>& settled,
                const std::unordered_map<UUID, UUID>& broughtIn, const EntityList& entities) {
  Plan plan = ours;
  plan.look = merge.look;
  plan.further = merge.further;
  if (ours.openings.empty() && merge.theirs.empty()) return plan;

  std::unordered_map<UUID, Opening> replaced;
  for (const Opening& opening : merge.replaced) replaced.emplace(opening.id, opening);
  std::unordered_set<UUID> removed(merge.removed.begin(), merge.removed.end());
  std::vector<Opening> added = merge.added;
  for (const OpeningConflict& conflict : settled) {
    if (!conflict.theirs) {
      removed.insert(conflict.ours->id);
    } else if (conflict.ours) {
      Opening opening = *conflict.theirs;
      opening.id = conflict.ours->id;
      replaced.insert_or_assign(opening.id, opening);
    } else {
      added.push_back(*conflict.theirs);
    }
  }
  const std::vector<Opening> copied = copiedOpenings(merge.theirs.list(), broughtIn);
  added.insert(added.end(), copied.begin(), copied.end());

  std::vector<Opening> all;
  for (const Opening& opening : ours.openings) {
    if (removed.contains(opening.id)) continue;
    const auto other = replaced.find(opening.id);
    all.push_back(other == replaced.end() ? opening : other->second);
  }
  all.insert(all.end(), added.begin(), added.end());
  std::unordered_set<UUID> wanted;
  for (const Opening& opening : all) wanted.insert(opening.wallID);
  std::unordered_set<UUID> walls;
  for (const SketchEntity& entity : entities) {
    if (wanted.contains(entityID(entity))) walls.insert(entityID(entity));
  }
  std::unordered_set<UUID> taken;
  std::erase_if(all, [&](const Opening& opening) {
    return !walls.contains(opening.wallID) || !taken.insert(opening.id).second;
  });
  if (all != ours.openings.list()) plan.openings = std::move(all);
  return plan;
}

}  // namespace ostrelon
