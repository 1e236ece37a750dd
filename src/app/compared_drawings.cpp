#include "app/compared_drawings.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace ostrelon {
namespace {

// Smaller drawings are compared quickly whether they share their storage or not.
constexpr std::size_t kWorthRebasing = 20'000;

Drawing rebasedDrawing(const DrawingDifference& difference, const Drawing& before, const Drawing& after) {
  Drawing rebased = before;
  // What is the same under two identifiers must keep its own in the words.
  if (after.entities.size() < kWorthRebasing || !difference.renamed.empty()) return rebased;
  std::unordered_map<UUID, const SketchEntity*> old;
  for (const auto& [was, is] : difference.changed) old.emplace(entityID(is), &was);
  std::unordered_set<UUID> added;
  for (const SketchEntity& entity : difference.added) added.insert(entityID(entity));

  std::vector<std::size_t> changedAt;
  std::vector<SketchEntity> changed;
  std::vector<std::size_t> addedAt;
  std::size_t position = 0;
  for (const SketchEntity& entity : after.entities) {
    const UUID& id = entityID(entity);
    if (const auto found = old.find(id); found != old.end()) {
      changedAt.push_back(position);
      changed.push_back(*found->second);
    } else if (added.contains(id)) {
      addedAt.push_back(position);
    }
    ++position;
  }
  EntityList entities = after.entities;
  // Identifiers that are there twice do not fit; the plain list is right in any case.
  if (changedAt.size() != difference.changed.size() || addedAt.size() != difference.added.size())
    return rebased;
  if (!entities.replaceAll(changedAt, changed)) return rebased;
  entities.removeAll(addedAt);
  entities.append(difference.removed);
  rebased.entities = std::move(entities);
  return rebased;
}

bool isOfKind(const SketchEntity& entity, const ComparisonFilter& filter) {
  return !filter.entityKind || entity.index() == *filter.entityKind;
}

DrawingDifference filtered(const DrawingDifference& all, const ComparisonFilter& filter) {
  if (filter.isWhole()) return all;
  DrawingDifference shown;
  const auto isShown = [&](const SketchEntity& entity) { return isOfKind(entity, filter); };
  const auto take = [&](const std::vector<SketchEntity>& from, std::vector<SketchEntity>& to) {
    std::copy_if(from.begin(), from.end(), std::back_inserter(to), isShown);
  };
  if (filter.removed) take(all.removed, shown.removed);
  if (filter.added) take(all.added, shown.added);
  if (filter.changed) {
    std::copy_if(all.changed.begin(), all.changed.end(), std::back_inserter(shown.changed),
                 [&](const auto& pair) { return isShown(pair.first) || isShown(pair.second); });
  }
  if (filter.entityKind) return shown;
  if (filter.removed) shown.removedSystems = all.removedSystems;
  if (filter.changed) shown.changedSystems = all.changedSystems;
  if (filter.added) shown.addedSystems = all.addedSystems;
  return shown;
}

std::size_t countOf(const DrawingDifference& difference) {
  return difference.removed.size() + difference.changed.size() + difference.added.size() +
         difference.removedSystems.size() + difference.changedSystems.size() + difference.addedSystems.size();
}

std::vector<ComparisonRow> rowsOf(std::vector<ToldDifference> told, const DifferenceLayers& layers) {
  // An identifier may have been removed here and be of something else there.
  std::unordered_map<UUID, std::size_t> removed;
  std::unordered_map<UUID, std::size_t> others;
  for (std::size_t i = 0; i < layers.items.size(); ++i) {
    const DifferenceItem& item = layers.items[i];
    const bool isRemoved = item.kind == DifferenceKind::removed;
    const SketchEntity* entity = isRemoved ? layers.before(item) : layers.after(item);
    (isRemoved ? removed : others).emplace(entityID(*entity), i);
  }
  std::vector<ComparisonRow> rows;
  rows.reserve(told.size());
  for (ToldDifference& difference : told) {
    std::optional<std::size_t> item;
    if (!difference.isWallSystem) {
      item = (difference.kind == DifferenceKind::removed ? removed : others).at(difference.id);
    }
    rows.push_back({std::move(difference), item});
  }
  std::stable_sort(rows.begin(), rows.end(), [&](const ComparisonRow& a, const ComparisonRow& b) {
    if (!a.item || !b.item) return !a.item && b.item;
    return layers.items[*a.item].group < layers.items[*b.item].group;
  });
  return rows;
}

}  // namespace

std::optional<std::size_t> ComparedDrawings::groupOf(const ComparisonRow& row) const {
  if (!row.item) return std::nullopt;
  return layers->items[*row.item].group;
}

ComparedDrawings comparedDrawings(const Drawing& before, const Drawing* rebased, const Drawing& after,
                                  const ComparisonFilter& filter) {
  ComparedDrawings compared;
  compared.before = before;
  compared.after = after;
  compared.filter = filter;
  compared.difference =
      compareDrawings(rebased != nullptr ? *rebased : before, after, NumberPrecision::asInFiles);
  compared.rebased = rebased != nullptr ? *rebased : rebasedDrawing(compared.difference, before, after);
  const DrawingDifference shown = filtered(compared.difference, filter);
  auto layers = std::make_shared<DifferenceLayers>(
      differenceLayers(shown, before.wallSystemSpecs, after.wallSystemSpecs));
  compared.rows = rowsOf(toldDifferences(shown, before, after, kMostComparisonRows), *layers);
  compared.untold = countOf(shown) - compared.rows.size();
  compared.layers = std::move(layers);
  return compared;
}

}  // namespace ostrelon
