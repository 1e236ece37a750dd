// Edits of a sketch: each checks, computes what the entities become, and edits once.
#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "core/adding.h"
#include "core/plan_items.h"
#include "geometry/edit_operations.h"
#include "geometry/entity_edits.h"
#include "geometry/entity_geometry.h"

namespace ostrelon {
namespace {

// Writes what `edit` makes of the one selected entity.
EntityEditResult applyToSelectedEntity(
    Sketch& sketch, const std::function<std::optional<SketchEntity>(const SketchEntity&)>& edit) {
  const SketchEntity* selected = sketch.selectedEntity();
  if (selected == nullptr) return EntityEditResult::noSelection;
  std::optional<SketchEntity> edited = edit(*selected);
  if (!edited) return EntityEditResult::unsupported;
  if (*edited == *selected) return EntityEditResult::unchanged;
  const UUID id = entityID(*edited);
  replaceEntity(sketch, id, std::move(*edited), UndoStep::own);
  return EntityEditResult::applied;
}

void moveEntity(Sketch& sketch, const SketchEntity& entity, double dx, double dy) {
  const UUID id = entityID(entity);
  replaceEntity(sketch, id, translatedEntity(entity, dx, dy), UndoStep::own);
}

// The entities at these positions.
std::vector<SketchEntity> entitiesAt(const EntityList& entities, const std::vector<std::size_t>& positions) {
  std::vector<SketchEntity> found;
  found.reserve(positions.size());
  for (const std::size_t position : positions) found.push_back(entities[position]);
  return found;
}

// "Entity deleted." or "3 entities deleted.".
std::string countedReport(std::size_t count, const std::string& verb) {
  return count == 1 ? "Entity " + verb + "." : std::to_string(count) + " entities " + verb + ".";
}

// What is copied: entities, and the items of the plan that come with them.
struct Copied {
  std::vector<SketchEntity> entities;
  std::vector<PlanItem> items;
};

Copied copiedAt(const EntityList& entities, const Plan& plan, const std::vector<std::size_t>& positions) {
  Copied copied{entitiesAt(entities, positions), {}};
  copied.items = itemsOf(plan, copied.entities);
  return copied;
}

// Appends moved copies of `count` entities, with copies of what they take along of the plan, as one step and
// makes them the selection, the first one primary. `originals` may be called away from the main thread.
void appendCopies(Sketch& sketch, std::size_t count, const std::function<Copied()>& originals, double dx,
                  double dy) {
  std::vector<PlanItem> items;
  const std::size_t place = sketch.entities().size();
  const EntityList next = sketch.prepared(count, [&, list = sketch.entities()]() mutable {
    Copied copies = originals();
    std::unordered_map<UUID, UUID> copyIDs;
    for (SketchEntity& copy : copies.entities) {
      const UUID original = entityID(copy);
      copy = duplicatedEntity(copy, dx, dy);
      if (!copies.items.empty()) copyIDs.emplace(original, entityID(copy));
    }
    items = copiedPlanItems(copies.items, std::move(copyIDs), {dx, dy});
    list.append(std::move(copies.entities));
    return list;
  });
  const bool isInspected = sketch.selection->isInspected;
  const auto change = sketch.change();
  sketch.clearSelection();
  sketch.edit([&](Drawing& drawing) {
    drawing.entities = next;
    addPlanItems(drawing.plan, items);
  });
  sketch.select({EntitySet::from(sketch.entities(), place), entityID(next[place]), isInspected, {}});
}

// The item of the plan that is selected, and can stand by itself; or nothing.
std::vector<PlanItem> selectedFreeItem(const Sketch& sketch) {
  const auto& id = sketch.selection->planItem;
  const auto item = id ? findPlanItem(sketch.drawing->plan, *id) : std::nullopt;
  return item && !wallOf(*item) ? std::vector{*item} : std::vector<PlanItem>();
}

// Copies of items that stand by themselves, as one step; the last one is selected.
int appendItems(Sketch& sketch, const std::vector<PlanItem>& items, SketchPoint by) {
  std::vector<PlanItem> copies;
  for (const PlanItem& item : items) {
    PlanItem copy = movedPlanItem(withPlanItemID(item, UUID::random()), by);
    // A copy that stands elsewhere holds on to nothing.
    if (auto* dimension = std::get_if<Dimension>(&copy)) {
      dimension->from.anchor = AnchorKind::none;
      dimension->to.anchor = AnchorKind::none;
    }
    copies.push_back(std::move(copy));
  }
  if (copies.empty()) return 0;
  const auto change = sketch.change();
  sketch.edit([&](Drawing& drawing) { addPlanItems(drawing.plan, copies); });
  sketch.selectPlanItem(planItemID(copies.back()));
  return static_cast<int>(copies.size());
}

}  // namespace

// --- The one selected entity

EntityEditResult setSelectedEntityLength(Sketch& sketch, double value) {
  if (!(value > 0) || !std::isfinite(value)) return EntityEditResult::invalidValue;
  return applyToSelectedEntity(sketch,
                               [value](const SketchEntity& entity) { return resizedEntity(entity, value); });
}

EntityEditResult nudgeSelectedEntity(Sketch& sketch, double dx, double dy) {
  if (!std::isfinite(dx) || !std::isfinite(dy)) return EntityEditResult::invalidValue;
  if (dx == 0 && dy == 0) return EntityEditResult::unchanged;
  const SketchEntity* selected = sketch.selectedEntity();
  if (selected == nullptr) return EntityEditResult::noSelection;
  moveEntity(sketch, *selected, dx, dy);
  return EntityEditResult::applied;
}

EntityEditResult convertSelectedEntity(Sketch& sketch, EntityConversionTarget target,
                                       std::optional<UUID> wallSystemID) {
  const UUID system = wallSystemID.value_or(sketch.drawing->activeWallSystemSpecID);
  if (sketch.drawing->wallSystem(system) == nullptr) return EntityEditResult::invalidValue;
  return applyToSelectedEntity(
      sketch, [&](const SketchEntity& entity) { return convertedEntity(entity, target, system); });
}

bool moveSelectedLine(Sketch& sketch, double dx, double dy) {
  const SketchEntity* selected = sketch.selectedEntity();
  if (selected == nullptr || sketch.selection->primary != std::optional(entityID(*selected)) ||
      !std::holds_alternative<LineEntity>(*selected)) {
    return false;
  }
  if (!std::isfinite(dx) || !std::isfinite(dy)) return false;
  if (dx != 0 || dy != 0) moveEntity(sketch, *selected, dx, dy);
  return true;
}

bool assignWallSystem(Sketch& sketch, const UUID& wallSystemID, const UUID& id) {
  if (sketch.drawing->wallSystem(wallSystemID) == nullptr) return false;
  const SketchEntity* found = sketch.entity(id);
  const auto* wall = found != nullptr ? std::get_if<WallEntity>(found) : nullptr;
  if (wall == nullptr) return false;
  WallEntity assigned = *wall;
  assigned.systemSpecID = wallSystemID;
  replaceEntity(sketch, assigned.id, assigned, UndoStep::own);
  return true;
}

// --- Many

int alignSelection(Sketch& sketch, AlignmentAxis axis) {
  const std::vector<std::size_t> positions = sketch.selectedPositions();
  if (positions.size() < 2) return 0;
  int count = 0;
  const EntityList next = sketch.prepared(positions.size(), [&, list = sketch.entities()]() mutable {
    const std::vector<SketchEntity> selected = entitiesAt(list, positions);
    const std::vector<SketchPoint> offsets = alignmentMoves(selected, axis);
    std::vector<std::size_t> movedPositions;
    std::vector<SketchEntity> moved;
    for (std::size_t i = 0; i < selected.size(); ++i) {
      if (offsets[i] == SketchPoint{}) continue;
      movedPositions.push_back(positions[i]);
      moved.push_back(translatedEntity(selected[i], offsets[i].x, offsets[i].y));
    }
    count = static_cast<int>(moved.size());
    list.replaceAll(movedPositions, moved);
    return list;
  });
  if (count > 0) sketch.edit([&](Drawing& drawing) { drawing.entities = next; });
  return count;
}

void deleteEntity(Sketch& sketch, Messages& messages, const UUID& id) {
  const auto change = sketch.change();
  const UUID gone = id;
  const bool isDouble = sketch.index().hasDuplicates();
  const auto position = sketch.positionOf(gone);
  sketch.edit([&](Drawing& drawing) {
    if (isDouble) {
      // An identifier that a file gave twice goes with all its entities.
      drawing.entities.removeAll(std::unordered_set<UUID>{gone});
    } else if (position) {
      drawing.entities.remove(*position);
    }
  });
  sketch.deselect(gone);
  if (sketch.selection->isNothing()) sketch.setInspected(false);
  messages.appendSystem(countedReport(1, "deleted"));
}

void deleteSelection(Sketch& sketch, Messages& messages) {
  if (sketch.selection->empty()) return;
  const std::size_t count = sketch.selection->ids.size();
  const std::vector<std::size_t> positions = sketch.selectedPositions();
  const EntityList next = sketch.prepared(count, [&, list = sketch.entities()]() mutable {
    if (positions.size() == list.size()) return EntityList();
    list.removeAll(positions);
    return list;
  });
  const auto change = sketch.change();
  sketch.clearSelection();
  sketch.edit([&](Drawing& drawing) { drawing.entities = next; });
  messages.appendSystem(countedReport(count, "deleted"));
}

void duplicateEntity(Sketch& sketch, Messages& messages, const UUID& id, double dx, double dy) {
  const auto position = sketch.positionOf(id);
  if (!position) return;
  const auto change = sketch.change();
  Copied original = copiedAt(sketch.entities(), sketch.drawing->plan, {*position});
  const std::string label(entityTypeLabel(original.entities.front()));
  appendCopies(
      sketch, 1, [&] { return original; }, dx, dy);
  messages.appendSystem(label + " duplicated.");
}

void duplicateSelection(Sketch& sketch, Messages& messages, double dx, double dy) {
  const std::vector<PlanItem> item = selectedFreeItem(sketch);
  if (!item.empty()) {
    const auto change = sketch.change();
    appendItems(sketch, item, {dx, dy});
    messages.appendSystem(std::string(planItemTypeLabel(item.front())) + " duplicated.");
    return;
  }
  const std::vector<std::size_t> positions = sketch.selectedPositions();
  if (positions.empty()) return;
  const auto originals = [&positions, list = sketch.entities(), plan = sketch.drawing->plan] {
    return copiedAt(list, plan, positions);
  };
  appendCopies(sketch, positions.size(), originals, dx, dy);
  messages.appendSystem(countedReport(positions.size(), "duplicated"));
}

int copySelection(Sketch& sketch) {
  if (std::vector<PlanItem> item = selectedFreeItem(sketch); !item.empty()) {
    sketch.setClipboard({}, std::move(item));
    return 1;
  }
  const std::vector<std::size_t> positions = sketch.selectedPositions();
  if (positions.empty()) return 0;
  Copied copied;
  sketch.work(positions.size(),
              [&] { copied = copiedAt(sketch.entities(), sketch.drawing->plan, positions); });
  if (*sketch.clipboard != copied.entities || sketch.clipboardItems() != copied.items) {
    sketch.setClipboard(std::move(copied.entities), std::move(copied.items));
  }
  return static_cast<int>(positions.size());
}

int pasteClipboard(Sketch& sketch, SketchPoint offset) {
  const std::size_t count = sketch.clipboard->size();
  if (count == 0) return appendItems(sketch, sketch.clipboardItems(), offset);
  appendCopies(
      sketch, count,
      [&] {
        return Copied{sketch.clipboard, sketch.clipboardItems()};
      },
      offset.x, offset.y);
  return static_cast<int>(count);
}

}  // namespace ostrelon
