#include "documents/merge.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "core/plan_items.h"

namespace ostrelon {
namespace {

const WallSystemSpec* findSystem(const std::vector<WallSystemSpec>& systems, const UUID& id) {
  const auto found = std::find_if(systems.begin(), systems.end(),
                                  [&](const WallSystemSpec& system) { return system.id == id; });
  return found == systems.end() ? nullptr : &*found;
}

template <class T>
std::optional<T> optionalOf(const T* value) {
  return value == nullptr ? std::nullopt : std::optional<T>(*value);
}

WallSystemSpec withSystemID(WallSystemSpec system, const UUID& id) {
  system.id = id;
  return system;
}

// The first positions of these entities.
std::unordered_map<UUID, std::size_t> positionsOf(const std::unordered_set<UUID>& ids,
                                                  const EntityList& list) {
  std::unordered_map<UUID, std::size_t> positions;
  if (ids.empty()) return positions;
  std::size_t position = 0;
  for (const SketchEntity& entity : list) {
    if (ids.contains(entityID(entity))) positions.emplace(entityID(entity), position);
    ++position;
  }
  return positions;
}

class Merging {
 public:
  Merging(const Drawing* base, const Drawing& ours, const Drawing& theirs, NumberPrecision precision)
      : base_(base), ours_(ours), theirs_(theirs), precision_(precision) {
    merge_.systemPairs = wallSystemPairs(ours.wallSystemSpecs, theirs.wallSystemSpecs);
    merge_.theirSystems = theirs.wallSystemSpecs;
  }

  Merge run() {
    mergeSystems();
    if (base_ == nullptr) {
      askForAllThatDiffers();
    } else {
      mergeEntities();
    }
    PlanMergeResult plan =
        mergePlans(base_ == nullptr ? nullptr : &base_->plan, ours_, theirs_, ourSide_, theirSide_);
    merge_.plan = std::move(plan.merge);
    order(std::move(plan.conflicts));
    return std::move(merge_);
  }

 private:
  // --- Wall systems

  bool isSame(const WallSystemSpec& a, const WallSystemSpec& b) const {
    return isSameWallSystem(a, b, precision_);
  }

  void mergeSystems() {
    std::unordered_set<UUID> met;
    for (const WallSystemSpec& theirs : theirs_.wallSystemSpecs) {
      const auto pair = merge_.systemPairs.find(theirs.id);
      const UUID id = pair == merge_.systemPairs.end() ? theirs.id : pair->second;
      if (!met.insert(id).second) continue;
      const WallSystemSpec* ours = findSystem(ours_.wallSystemSpecs, id);
      const WallSystemSpec* base = baseSystem(id);
      if (base == nullptr) base = baseSystem(theirs.id);
      mergeSystem(base, ours, &theirs);
    }
    for (const WallSystemSpec& ours : ours_.wallSystemSpecs) {
      if (met.insert(ours.id).second) mergeSystem(baseSystem(ours.id), &ours, nullptr);
    }
  }

  const WallSystemSpec* baseSystem(const UUID& id) const {
    return base_ == nullptr ? nullptr : findSystem(base_->wallSystemSpecs, id);
  }

  // At least one of ours and theirs is there.
  void mergeSystem(const WallSystemSpec* base, const WallSystemSpec* ours, const WallSystemSpec* theirs) {
    const auto equal = [&](const WallSystemSpec* a, const WallSystemSpec* b) {
      return a == nullptr || b == nullptr ? a == b : isSame(*a, *b);
    };
    if (equal(ours, theirs)) return;
    const bool hasAncestor = base_ != nullptr;
    if (hasAncestor && equal(base, theirs)) return;
    if (!hasAncestor || !equal(base, ours)) {
      merge_.conflicts.emplace_back(
          WallSystemConflict{optionalOf(base), optionalOf(ours), optionalOf(theirs)});
    } else if (theirs == nullptr) {
      merge_.removedSystems.push_back(ours->id);
    } else if (ours == nullptr) {
      merge_.addedSystems.push_back(*theirs);
    } else {
      merge_.replacedSystems.push_back(withSystemID(*theirs, ours->id));
    }
  }

  // --- Entities

  bool isSameForUs(const SketchEntity& ours, const SketchEntity& theirs) const {
    return isSameShape(ours, theirs, precision_, merge_.systemPairs);
  }

  void askForAllThatDiffers() {
    const DrawingDifference difference = compareDrawings(ours_, theirs_, precision_);
    for (const SketchEntity& entity : difference.removed) ask({}, entity, {});
    for (const SketchEntity& entity : difference.added) ask({}, {}, entity);
    for (const auto& [ours, theirs] : difference.changed) ask({}, ours, theirs);
  }

  void mergeEntities() {
    const DrawingDifference ours = compareDrawings(*base_, ours_, precision_);
    const DrawingDifference theirs = compareDrawings(*base_, theirs_, precision_);
    for (const SketchEntity& entity : ours.removed) ourSide_.removed.insert(entityID(entity));
    for (const SketchEntity& entity : theirs.removed) theirSide_.removed.insert(entityID(entity));
    ourSide_.renamed = ours.renamed;
    theirSide_.renamed = theirs.renamed;
    // What became of an entity of the base, by its identifier there; null where it was removed.
    std::unordered_map<UUID, const SketchEntity*> here;
    for (const SketchEntity& entity : ours.removed) here.emplace(entityID(entity), nullptr);
    for (const auto& [base, changed] : ours.changed) here.emplace(entityID(base), &changed);
    std::unordered_map<UUID, const SketchEntity*> addedHere;
    for (const SketchEntity& entity : ours.added) addedHere.emplace(entityID(entity), &entity);
    std::unordered_map<UUID, UUID> ourIDs;  // of entities that are the base's under another identifier
    for (const auto& [ourID, baseID] : ours.renamed) ourIDs.emplace(baseID, ourID);
    const auto ourID = [&](const UUID& baseID) {
      const auto found = ourIDs.find(baseID);
      return found == ourIDs.end() ? baseID : found->second;
    };

    for (const SketchEntity& base : theirs.removed) {
      const auto change = here.find(entityID(base));
      if (change == here.end()) {
        merge_.removed.push_back(ourID(entityID(base)));
      } else if (change->second != nullptr) {
        ask(base, *change->second, {});
      }
    }
    for (const auto& [base, changed] : theirs.changed) {
      const auto change = here.find(entityID(base));
      if (change == here.end()) {
        merge_.replaced.push_back(withEntityID(changed, ourID(entityID(base))));
      } else if (change->second == nullptr) {
        ask(base, {}, changed);
      } else {
        mergeChanges(base, *change->second, changed);
      }
    }
    for (const SketchEntity& entity : theirs.added) {
      const auto same = addedHere.find(entityID(entity));
      if (same == addedHere.end()) {
        merge_.added.push_back({0, entity});
      } else if (!isSameForUs(*same->second, entity)) {
        ask({}, *same->second, entity);
      }
    }
  }

  void mergeChanges(const SketchEntity& base, const SketchEntity& ours, const SketchEntity& theirs) {
    if (isSameForUs(ours, theirs)) return;
    if (const auto joined = joinedEnds(base, ours, theirs)) {
      merge_.replaced.emplace_back(*joined);
    } else {
      ask(base, ours, theirs);
    }
  }

  // The wall of which either side has moved another end.
  std::optional<WallEntity> joinedEnds(const SketchEntity& baseEntity, const SketchEntity& oursEntity,
                                       const SketchEntity& theirsEntity) const {
    const auto* base = std::get_if<WallEntity>(&baseEntity);
    const auto* ours = std::get_if<WallEntity>(&oursEntity);
    const auto* theirs = std::get_if<WallEntity>(&theirsEntity);
    if (base == nullptr || ours == nullptr || theirs == nullptr) return std::nullopt;
    const auto end = [&](SketchPoint from, SketchPoint here,
                         SketchPoint there) -> std::optional<SketchPoint> {
      if (isSamePlace(from, there) || isSamePlace(here, there)) return here;
      if (isSamePlace(from, here)) return there;
      return std::nullopt;
    };
    const auto from = end(base->from, ours->from, theirs->from);
    const auto to = end(base->to, ours->to, theirs->to);
    if (!from || !to || !(distanceBetween(*from, *to) >= kShortestMergedWall)) return std::nullopt;
    WallEntity joined = *ours;
    joined.from = *from;
    joined.to = *to;
    // Nothing but the ends may differ.
    WallEntity theirWall = *theirs;
    theirWall.from = *from;
    theirWall.to = *to;
    if (!isSameForUs(joined, theirWall)) return std::nullopt;
    return joined;
  }

  bool isSamePlace(SketchPoint a, SketchPoint b) const {
    return isSameShape(LineEntity{{}, a, a}, LineEntity{{}, b, b}, precision_);
  }

  void ask(std::optional<SketchEntity> base, std::optional<SketchEntity> ours,
           std::optional<SketchEntity> theirs) {
    entityConflicts_.push_back({std::move(base), std::move(ours), std::move(theirs)});
  }

  // --- Order

  void order(std::vector<PlanItemConflict> items) {
    std::unordered_set<UUID> inOurs;
    std::unordered_set<UUID> inTheirs;
    for (const EntityConflict& conflict : entityConflicts_) {
      (conflict.ours ? inOurs : inTheirs).insert(entityID(conflict.ours ? *conflict.ours : *conflict.theirs));
      if (conflict.theirs) inTheirs.insert(entityID(*conflict.theirs));
    }
    for (const Merge::Incoming& incoming : merge_.added) inTheirs.insert(entityID(incoming.entity));
    for (const PlanItemConflict& conflict : items) {
      const auto wall = wallOf(conflict.ours ? *conflict.ours : *conflict.theirs);
      if (!wall) continue;
      inOurs.insert(*wall);
      inTheirs.insert(*wall);
    }
    const auto ours = positionsOf(inOurs, ours_.entities);
    merge_.theirPositions = positionsOf(inTheirs, theirs_.entities);
    for (Merge::Incoming& incoming : merge_.added) {
      incoming.position = merge_.theirPositions.at(entityID(incoming.entity));
    }
    for (EntityConflict& conflict : entityConflicts_) {
      conflict.number = 1 + (conflict.ours ? ours.at(entityID(*conflict.ours))
                                           : merge_.theirPositions.at(entityID(*conflict.theirs)));
    }
    std::sort(entityConflicts_.begin(), entityConflicts_.end(),
              [](const EntityConflict& a, const EntityConflict& b) {
                return std::pair(!a.ours, a.number) < std::pair(!b.ours, b.number);
              });
    for (EntityConflict& conflict : entityConflicts_) merge_.conflicts.emplace_back(std::move(conflict));
    for (PlanItemConflict& conflict : items) {
      const UUID wall = wallOf(conflict.ours ? *conflict.ours : *conflict.theirs).value_or(UUID());
      const auto here = ours.find(wall);
      const auto there = merge_.theirPositions.find(wall);
      if (here != ours.end()) conflict.number = here->second + 1;
      if (here == ours.end() && there != merge_.theirPositions.end()) conflict.number = there->second + 1;
      merge_.conflicts.emplace_back(std::move(conflict));
    }
  }

  const Drawing* base_;
  const Drawing& ours_;
  const Drawing& theirs_;
  const NumberPrecision precision_;
  Merge merge_;
  std::vector<EntityConflict> entityConflicts_;
  MergeSide ourSide_;
  MergeSide theirSide_;
};

// Puts a merge with its conflicts settled into our drawing.
class Settlement {
 public:
  Settlement(const Merge& merge, const Drawing& ours)
      : merge_(merge), ours_(ours), drawing_(ours), pairs_(merge.systemPairs) {
    for (const SketchEntity& entity : merge.replaced) replaced_.emplace(entityID(entity), entity);
    removed_.insert(merge.removed.begin(), merge.removed.end());
    added_ = merge.added;
    systemsGone_.insert(merge.removedSystems.begin(), merge.removedSystems.end());
    for (const WallSystemSpec& system : merge.replacedSystems) replaceSystem(system);
    addedSystems_ = merge.addedSystems;
  }

  void settle(const WallSystemConflict& conflict, MergeChoice choice) {
    const bool isPair = conflict.ours && conflict.theirs;
    if (choice == MergeChoice::ours) return;
    if (choice == MergeChoice::both) {
      if (!conflict.theirs) return;
      WallSystemSpec own = *conflict.theirs;
      pairs_.erase(own.id);
      // Under one identifier on both sides, theirs needs another one, which their walls then take.
      if (isPair && own.id == conflict.ours->id) {
        own.id = UUID::random();
        pairs_.insert_or_assign(conflict.theirs->id, own.id);
      }
      addedSystems_.push_back(own);
    } else if (isPair) {
      replaceSystem(withSystemID(*conflict.theirs, conflict.ours->id));
    } else if (conflict.theirs) {
      addedSystems_.push_back(*conflict.theirs);
    } else {
      systemsGone_.insert(conflict.ours->id);
    }
  }

  void settle(const EntityConflict& conflict, MergeChoice choice) {
    if (choice == MergeChoice::ours) return;
    if (conflict.ours && conflict.theirs) {
      if (choice == MergeChoice::theirs) {
        const UUID& id = entityID(*conflict.ours);
        replaced_.insert_or_assign(id, withEntityID(*conflict.theirs, id));
      } else {
        addIncoming(*conflict.theirs);
      }
    } else if (conflict.theirs) {
      addIncoming(*conflict.theirs);
    } else if (choice == MergeChoice::theirs) {
      removed_.insert(entityID(*conflict.ours));
    }
  }

  void settle(const PlanItemConflict& conflict, MergeChoice choice) {
    const bool isRemoval = !conflict.theirs;
    if (choice == MergeChoice::ours || (choice == MergeChoice::both && isRemoval)) return;
    const bool isOpening = !isRemoval && std::holds_alternative<Opening>(*conflict.theirs);
    planItems_.push_back({conflict, choice == MergeChoice::both && !isOpening});
  }

  Drawing result() {
    drawing_.wallSystemSpecs.insert(drawing_.wallSystemSpecs.end(), addedSystems_.begin(),
                                    addedSystems_.end());
    editEntities();
    append();
    std::erase_if(drawing_.wallSystemSpecs, [&](const WallSystemSpec& system) {
      return systemsGone_.contains(system.id) && !isUsed(system.id);
    });
    if (!(drawing_.plan.empty() && merge_.plan.empty() && merge_.plan.theirs.plan.empty())) {
      drawing_.plan = mergedPlan(merge_.plan, ours_, planItems_, broughtIn_, drawing_);
    }
    return std::move(drawing_);
  }

 private:
  void replaceSystem(const WallSystemSpec& system) {
    for (WallSystemSpec& ours : drawing_.wallSystemSpecs) {
      if (ours.id == system.id) ours = system;
    }
  }

  void addIncoming(const SketchEntity& entity) {
    broughtIn_.emplace(entityID(entity), entityID(entity));
    added_.push_back({merge_.theirPositions.at(entityID(entity)), entity});
  }

  // An entity of theirs with the wall system that it has here. A system that our side gave up comes back
  // with the first wall of it.
  SketchEntity here(SketchEntity entity) {
    auto* wall = std::get_if<WallEntity>(&entity);
    if (wall == nullptr) return entity;
    const auto pair = pairs_.find(wall->systemSpecID);
    if (pair != pairs_.end()) wall->systemSpecID = pair->second;
    if (drawing_.wallSystem(wall->systemSpecID) == nullptr) {
      const WallSystemSpec* theirs = findSystem(merge_.theirSystems, wall->systemSpecID);
      if (theirs != nullptr) drawing_.wallSystemSpecs.push_back(*theirs);
    }
    return entity;
  }

  void editEntities() {
    std::unordered_set<UUID> touched = removed_;
    for (const auto& [id, entity] : replaced_) touched.insert(id);
    for (const Merge::Incoming& incoming : added_) touched.insert(entityID(incoming.entity));
    if (touched.empty()) return;
    EntityList& list = drawing_.entities;
    std::vector<std::pair<std::size_t, SketchEntity>> replacements;
    std::vector<std::size_t> removals;
    std::size_t position = 0;
    for (const SketchEntity& entity : list) {
      const UUID& id = entityID(entity);
      if (touched.contains(id)) {
        taken_.insert(id);
        if (removed_.contains(id)) {
          removals.push_back(position);
        } else if (const auto found = replaced_.find(id); found != replaced_.end()) {
          replacements.emplace_back(position, found->second);
        }
      }
      ++position;
    }
    for (auto& [at, entity] : replacements) list.replace(at, here(std::move(entity)));
    list.removeAll(removals);
    for (const UUID& id : removed_) taken_.erase(id);
  }

  void append() {
    std::stable_sort(added_.begin(), added_.end(),
                     [](const auto& a, const auto& b) { return a.position < b.position; });
    std::vector<SketchEntity> entities;
    for (const Merge::Incoming& incoming : added_) {
      SketchEntity entity = here(incoming.entity);
      if (!taken_.insert(entityID(entity)).second) entity = withEntityID(entity, UUID::random());
      const auto brought = broughtIn_.find(entityID(incoming.entity));
      if (brought != broughtIn_.end()) brought->second = entityID(entity);
      entities.push_back(std::move(entity));
    }
    if (!entities.empty()) drawing_.entities.append(std::move(entities));
  }

  bool isUsed(const UUID& system) const {
    return std::any_of(drawing_.entities.begin(), drawing_.entities.end(), [&](const SketchEntity& entity) {
      const auto* wall = std::get_if<WallEntity>(&entity);
      return wall != nullptr && wall->systemSpecID == system;
    });
  }

  const Merge& merge_;
  const Drawing& ours_;
  Drawing drawing_;
  WallSystemPairs pairs_;
  std::unordered_map<UUID, SketchEntity> replaced_;
  std::unordered_set<UUID> removed_;
  std::vector<Merge::Incoming> added_;
  std::unordered_set<UUID> systemsGone_;
  std::vector<WallSystemSpec> addedSystems_;
  std::vector<SettledPlanConflict> planItems_;
  std::unordered_map<UUID, UUID> broughtIn_;  // entities of theirs by conflicts, and what they are called now
  std::unordered_set<UUID> taken_;            // identifiers of the result that something of theirs has too
};

std::string sideWords(const std::optional<SketchEntity>& base, const std::optional<SketchEntity>& side,
                      const Drawing& baseDrawing, const Drawing& drawing) {
  if (!side) return "removed";
  if (!base) return entityDescription(*side, drawing.wallSystemName(*side));
  std::string words;
  for (const ChangePhrase& phrase : changePhrases(*base, *side, baseDrawing, drawing)) {
    words += (words.empty() ? "" : ", ") + phrase.words;
  }
  return words.empty() ? "changed" : words;
}

std::string sideWords(const std::optional<WallSystemSpec>& base, const std::optional<WallSystemSpec>& side) {
  if (!side) return "removed";
  if (base && base->name != side->name) return "renamed to " + side->name;
  return fmt::format("thickness {}, height {}{}", side->thickness, side->height,
                     base && base->assemblyNotes == side->assemblyNotes ? "" : ", with its notes");
}

std::string sideWords(const std::optional<PlanItem>& base, const std::optional<PlanItem>& side) {
  if (!side) return "removed";
  if (!base) return planItemDescription(*side);
  const std::string words = planItemChange(*base, *side);
  return words.empty() ? "changed" : words;
}

// Without an ancestor there are no words for a side that has it not.
template <class T>
ConflictWords wordsOf(std::string subject, const Conflict<T>& conflict, std::string here, std::string there) {
  if (!conflict.base && !conflict.theirs) there.clear();
  if (!conflict.base && !conflict.ours) here.clear();
  return {std::move(subject), std::move(here), std::move(there)};
}

}  // namespace

std::optional<MergeChoice> mergeChoiceNamed(std::string_view name) {
  if (name == "ours") return MergeChoice::ours;
  if (name == "theirs") return MergeChoice::theirs;
  if (name == "both") return MergeChoice::both;
  return std::nullopt;
}

bool Merge::empty() const {
  return replaced.empty() && removed.empty() && added.empty() && replacedSystems.empty() &&
         removedSystems.empty() && addedSystems.empty() && plan.empty() && conflicts.empty();
}

Merge mergeDrawings(const Drawing* base, const Drawing& ours, const Drawing& theirs,
                    NumberPrecision precision) {
  return Merging(base, ours, theirs, precision).run();
}

Drawing mergedDrawing(const Merge& merge, const Drawing& ours,
                      const std::function<MergeChoice(const MergeConflict&)>& choose) {
  Settlement settlement(merge, ours);
  for (const MergeConflict& conflict : merge.conflicts) {
    const MergeChoice choice = choose(conflict);
    std::visit([&](const auto& one) { settlement.settle(one, choice); }, conflict);
  }
  return settlement.result();
}

ConflictWords conflictWords(const MergeConflict& conflict, const Drawing& ours, const Drawing& theirs) {
  return std::visit(
      Overloaded{[&](const WallSystemConflict& systems) {
                   const WallSystemSpec& named = systems.ours ? *systems.ours : *systems.theirs;
                   return wordsOf("Wall system " + named.name, systems, sideWords(systems.base, systems.ours),
                                  sideWords(systems.base, systems.theirs));
                 },
                 [&](const EntityConflict& entities) {
                   const SketchEntity& named = entities.ours ? *entities.ours : *entities.theirs;
                   return wordsOf(fmt::format("{} {}", entityTypeLabel(named), entities.number), entities,
                                  sideWords(entities.base, entities.ours, ours, ours),
                                  sideWords(entities.base, entities.theirs, ours, theirs));
                 },
                 [](const PlanItemConflict& items) {
                   const PlanItem& named = items.ours ? *items.ours : *items.theirs;
                   return wordsOf(
                       wallOf(named) ? fmt::format("{} in Wall {}", planItemTypeLabel(named), items.number)
                                     : planItemTitle(named),
                       items, sideWords(items.base, items.ours), sideWords(items.base, items.theirs));
                 }},
      conflict);
}

std::string conflictText(const MergeConflict& conflict, const Drawing& ours, const Drawing& theirs) {
  const ConflictWords words = conflictWords(conflict, ours, theirs);
  if (words.there.empty()) return words.subject + ": here only, " + words.here;
  if (words.here.empty()) return words.subject + ": there only, " + words.there;
  return words.subject + ": here " + words.here + ", there " + words.there;
}

const UUID& conflictID(const MergeConflict& conflict) {
  return std::visit(Overloaded{[](const WallSystemConflict& system) -> const UUID& {
                                 return (system.ours ? *system.ours : *system.theirs).id;
                               },
                               [](const EntityConflict& entity) -> const UUID& {
                                 return entityID(entity.ours ? *entity.ours : *entity.theirs);
                               },
                               [](const PlanItemConflict& item) -> const UUID& {
                                 return planItemID(item.ours ? *item.ours : *item.theirs);
                               }},
                    conflict);
}

}  // namespace ostrelon
