#include "documents/plan_merge.h"

#include <algorithm>
#include <utility>

#include "core/plan_following.h"
#include "core/plan_items.h"
#include "documents/plan_compare.h"

namespace ostrelon {
namespace {

class PlanMerging {
 public:
  PlanMerging(const Plan* base, const Drawing& ours, const Drawing& theirs, const MergeSide& ourSide,
              const MergeSide& theirSide)
      : base_(base), ours_(ours.plan), theirs_(theirs.plan), ourSide_(ourSide), theirSide_(theirSide) {
    std::unordered_map<UUID, UUID> ourIDs;
    for (const auto& [ourID, baseID] : ourSide.renamed) ourIDs.emplace(baseID, ourID);
    PlanMerge& merge = result_.merge;
    merge.theirs = theirs;
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
      for (const PlanItem& item : difference.removed) ask({}, item, {});
      for (const auto& [ours, theirs] : difference.changed) ask({}, ours, theirs);
      for (const PlanItem& item : difference.added) ask({}, {}, item);
    } else {
      mergeItems();
    }
    return std::move(result_);
  }

 private:
  void mergeLook() {
    PlanMerge& merge = result_.merge;
    merge.look = ours_.look;
    merge.further = ours_.further;
    merge.sheet = ours_.sheet;
    if (base_ == nullptr) return;
    for (bool PlanLook::*isOn : {&PlanLook::cleanWalls, &PlanLook::filledWalls, &PlanLook::lineWeights,
                                 &PlanLook::dimensionStrings}) {
      if (theirs_.look.*isOn != base_->look.*isOn) merge.look.*isOn = theirs_.look.*isOn;
    }
    if (ours_.further == base_->further) merge.further = theirs_.further;
    forEachField(
        [](std::string_view, auto& merged, const auto& base, const auto& theirs) {
          if (merged == base) merged = theirs;
        },
        merge.sheet, base_->sheet, theirs_.sheet);
    merge.isOtherLook =
        merge.look != ours_.look || merge.further != ours_.further || merge.sheet != ours_.sheet;
  }

  PlanItem here(const PlanItem& item) const { return withHeldRenamed(item, result_.merge.ourWalls); }

  static bool isWallRemoved(const PlanItem& item, const MergeSide& side) {
    const auto wall = wallOf(item);
    return wall && side.removed.contains(*wall);
  }

  void mergeItems() {
    const PlanDifference ours = comparePlans(*base_, ours_, ourSide_.renamed);
    const PlanDifference theirs = comparePlans(*base_, theirs_, theirSide_.renamed);
    // What has become of an item of the base; null where it was removed.
    std::unordered_map<UUID, const PlanItem*> changes;
    for (const PlanItem& item : ours.removed) changes.emplace(planItemID(item), nullptr);
    for (const auto& [base, changed] : ours.changed) changes.emplace(planItemID(base), &changed);
    std::unordered_map<UUID, const PlanItem*> added;
    for (const PlanItem& item : ours.added) added.emplace(planItemID(item), &item);

    for (const PlanItem& base : theirs.removed) {
      if (isWallRemoved(base, theirSide_)) continue;
      const auto change = changes.find(planItemID(base));
      if (change == changes.end()) {
        result_.merge.removed.push_back(planItemID(base));
      } else if (change->second != nullptr) {
        ask(base, *change->second, {});
      }
    }
    for (const auto& [base, changed] : theirs.changed) {
      const auto change = changes.find(planItemID(base));
      if (change == changes.end()) {
        result_.merge.replaced.push_back(here(changed));
      } else if (change->second == nullptr) {
        if (!isWallRemoved(base, ourSide_)) ask(base, {}, changed);
      } else if (!saysTheSame(*change->second, here(changed))) {
        ask(base, *change->second, changed);
      }
    }
    for (const PlanItem& item : theirs.added) {
      const auto same = added.find(planItemID(item));
      if (same == added.end()) {
        result_.merge.added.push_back(here(item));
      } else if (!saysTheSame(*same->second, here(item))) {
        ask({}, *same->second, item);
      }
    }
  }

  void ask(std::optional<PlanItem> base, std::optional<PlanItem> ours, std::optional<PlanItem> theirs) {
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

// Dimensions that stood in one drawing, as they stand in another.
void followInto(std::vector<PlanItem>& items, const Drawing& before, const Drawing& after) {
  std::vector<Dimension> dimensions;
  for (const PlanItem& item : items) {
    if (const auto* dimension = std::get_if<Dimension>(&item)) dimensions.push_back(*dimension);
  }
  if (dimensions.empty()) return;
  const auto followed =
      followedDimensions(dimensions, before, after, [&](const UUID& id) { return after.entities.find(id); });
  auto next = followed.begin();
  for (PlanItem& item : items) {
    if (std::holds_alternative<Dimension>(item)) item = *next++;
  }
}

// Those openings whose wall is there, and each identifier once.
std::vector<PlanItem> placeable(const std::vector<PlanItem>& items, const EntityList& entities) {
  std::unordered_set<UUID> wanted;
  for (const PlanItem& item : items) {
    if (const auto wall = wallOf(item)) wanted.insert(*wall);
  }
  std::unordered_set<UUID> walls;
  if (!wanted.empty()) {
    for (const SketchEntity& entity : entities) {
      if (wanted.contains(entityID(entity))) walls.insert(entityID(entity));
    }
  }
  std::vector<PlanItem> kept;
  std::unordered_set<UUID> taken;
  for (const PlanItem& item : items) {
    const auto wall = wallOf(item);
    if ((!wall || walls.contains(*wall)) && taken.insert(planItemID(item)).second) kept.push_back(item);
  }
  return kept;
}

}  // namespace

PlanMergeResult mergePlans(const Plan* base, const Drawing& ours, const Drawing& theirs,
                           const MergeSide& ourSide, const MergeSide& theirSide) {
  return PlanMerging(base, ours, theirs, ourSide, theirSide).run();
}

Plan mergedPlan(const PlanMerge& merge, const Drawing& ours, const std::vector<SettledPlanConflict>& settled,
                const std::unordered_map<UUID, UUID>& broughtIn, const Drawing& merged) {
  Plan plan = ours.plan;
  plan.look = merge.look;
  plan.sheet = merge.sheet;
  plan.further = merge.further;

  std::vector<PlanItem> replaced = merge.replaced;
  std::unordered_set<UUID> removed(merge.removed.begin(), merge.removed.end());
  std::vector<PlanItem> added = merge.added;
  for (const auto& [conflict, areBothKept] : settled) {
    if (!conflict.theirs) {
      removed.insert(planItemID(*conflict.ours));
    } else if (!conflict.ours) {
      added.push_back(*conflict.theirs);
    } else if (areBothKept) {
      added.push_back(withPlanItemID(*conflict.theirs, UUID::random()));
    } else {
      replaced.push_back(withPlanItemID(*conflict.theirs, planItemID(*conflict.ours)));
    }
  }
  std::vector<PlanItem> openings(merge.theirs.plan.openings.begin(), merge.theirs.plan.openings.end());
  const std::vector<PlanItem> copied = copiedPlanItems(openings, broughtIn);
  added.insert(added.end(), copied.begin(), copied.end());
  followInto(replaced, merge.theirs, merged);
  followInto(added, merge.theirs, merged);

  std::unordered_map<UUID, const PlanItem*> replacements;
  for (const PlanItem& item : replaced) replacements.insert_or_assign(planItemID(item), &item);
  std::vector<PlanItem> all = planItems(ours.plan);
  std::erase_if(all, [&](const PlanItem& item) { return removed.contains(planItemID(item)); });
  followInto(all, ours, merged);
  for (PlanItem& item : all) {
    if (const auto other = replacements.find(planItemID(item)); other != replacements.end()) {
      item = *other->second;
    }
  }
  all.insert(all.end(), added.begin(), added.end());
  all = placeable(all, merged.entities);
  // What nothing has happened to keeps its storage.
  forEachPlanList([&]<class Item>(SharedList<Item> Plan::*list) {
    std::vector<Item> items;
    for (const PlanItem& item : all) {
      if (const Item* one = std::get_if<Item>(&item)) items.push_back(*one);
    }
    if (items != (plan.*list).list()) plan.*list = std::move(items);
  });
  return plan;
}

}  // namespace ostrelon
