#include "app/merge_layers.h"

#include <cmath>
#include <limits>
#include <utility>

#include "core/plan_items.h"
#include "interaction/drawing_bounds.h"

namespace ostrelon {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr SketchBox kNoPlace{kNone, kNone, kNone, kNone};

std::optional<SketchBox> united(const std::optional<SketchBox>& a, const std::optional<SketchBox>& b) {
  if (!a || !b) return a ? a : b;
  return a->united(*b);
}

std::optional<SketchBox> coveredBounds(const std::optional<SketchEntity>& entity, const Drawing& drawing) {
  if (!entity) return std::nullopt;
  const auto box = drawingBounds({*entity});
  const auto* wall = std::get_if<WallEntity>(&*entity);
  if (!box || wall == nullptr) return box;
  return box->grown(std::abs(paintedWallThickness(*wall, drawing.wallSystemSpecs)) / 2);
}

// Of an opening, its wall's.
std::optional<SketchBox> coveredBounds(const std::optional<PlanItem>& item, const Drawing& drawing) {
  if (!item) return std::nullopt;
  const auto wall = wallOf(*item);
  if (!wall) return planItemBounds(*item);
  const SketchEntity* entity = drawing.entities.find(*wall);
  return entity == nullptr ? std::nullopt : coveredBounds(std::optional(*entity), drawing);
}

void addBothSides(const EntityConflict& conflict, DrawingDifference& difference) {
  if (conflict.ours && conflict.theirs) {
    difference.changed.emplace_back(*conflict.ours, *conflict.theirs);
  } else if (conflict.ours) {
    difference.removed.push_back(*conflict.ours);
  } else {
    difference.added.push_back(*conflict.theirs);
  }
}

}  // namespace

std::optional<SketchBox> conflictBounds(const MergeConflict& conflict, const Drawing& ours,
                                        const Drawing& theirs) {
  return std::visit(
      Overloaded{[&](const WallSystemConflict& systems) {
                   std::optional<SketchBox> box;
                   for (const SketchEntity& entity : ours.entities) {
                     const auto* wall = std::get_if<WallEntity>(&entity);
                     if (wall == nullptr || !systems.ours || wall->systemSpecID != systems.ours->id) {
                       continue;
                     }
                     box = united(box, coveredBounds(entity, ours));
                   }
                   return box;
                 },
                 [&](const PlanItemConflict& items) {
                   return united(coveredBounds(items.ours, ours), coveredBounds(items.theirs, theirs));
                 },
                 [&](const EntityConflict& entities) {
                   return united(coveredBounds(entities.ours, ours), coveredBounds(entities.theirs, theirs));
                 }},
      conflict);
}

DifferenceLayers mergeLayers(const Merge& merge, const Drawing& ours, const Drawing& theirs,
                             const Drawing& merged, const std::vector<std::optional<MergeChoice>>& choices) {
  DrawingDifference difference = compareDrawings(ours, merged);
  std::vector<WallSystemSpec> systems = merged.wallSystemSpecs;
  for (const WallSystemSpec& system : theirs.wallSystemSpecs) {
    if (merged.wallSystem(system.id) == nullptr) systems.push_back(system);
  }
  for (std::size_t i = 0; i < merge.conflicts.size(); ++i) {
    const auto* entities = std::get_if<EntityConflict>(&merge.conflicts[i]);
    if (entities != nullptr && !choices[i]) addBothSides(*entities, difference);
  }
  DifferenceLayers layers = differenceLayers(difference, ours.wallSystemSpecs, std::move(systems));
  layers.items.clear();
  layers.groups.clear();
  for (std::size_t i = 0; i < merge.conflicts.size(); ++i) {
    const bool isSystem = std::holds_alternative<WallSystemConflict>(merge.conflicts[i]);
    const SketchBox box =
        !isSystem ? conflictBounds(merge.conflicts[i], ours, theirs).value_or(kNoPlace) : kNoPlace;
    layers.items.push_back({DifferenceKind::changed, 0, i, box});
    layers.groups.push_back({choices[i] ? kNoPlace : box, {i}});
  }
  return layers;
}

}  // namespace ostrelon
