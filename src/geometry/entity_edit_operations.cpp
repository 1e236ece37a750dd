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

// The openings of the walls among these.
std::vector<Opening> openingsOf(const Plan& plan, const std::vector<SketchEntity>& entities) {
  std::vector<Opening> found;
  if (plan.openings.empty()) return found;
  std::unordered_set<UUID> ids;
  for (const SketchEntity& entity : entities) ids.insert(entityID(entity));
  std::copy_if(plan.openings.begin(), plan.openings.end(), std::back_inserter(found),
               [&](const Opening& opening) { return ids.contains(opening.wallID); });
  return found;
}

// Appends moved copies of these, walls with copies of their openings, as one step and makes them the
// selection, the first one primary.
void appendCopies(Sketch& sketch, std::vector<SketchEntity> copies, const std::vector<Opening>& openings,
                  double dx, double dy) {
  Selection selection{{}, std::nullopt, sketch.selection->isInspected, {}};
  selection.ids.reserve(copies.size());
  std::unordered_map<UUID, UUID> copyIDs;
  for (SketchEntity& copy : copies) {
    const UUID original = entityID(copy);
    copy = duplicatedEntity(copy, dx, dy);
    if (!openings.empty()) copyIDs.emplace(original, entityID(copy));
    selection.ids.insert(entityID(copy));
  }
  selection.primary = entityID(copies.front());
  const auto change = sketch.change();
  sketch.select(std::move(selection));
  sketch.edit([&](Drawing& drawing) {
    drawing.entities.append(std::move(copies));
    if (openings.empty()) return;
    std::vector<Opening> all = drawing.plan.openings.list();
    const std::vector<Opening> copied = copiedOpenings(openings, copyIDs);
    all.insert(all.end(), copied.begin(), copied.end());
    drawing.plan.openings = std::move(all);
  });
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
  const std::vector<SketchEntity> selected = entitiesAt(sketch.entities(), positions);
  const auto offsets = alignmentOffsets(selected, axis);
  if (!offsets) return 0;
  const auto moves = [&](const SketchEntity& entity) {
    return offsets->at(entityID(entity)) != SketchPoint{};
  };
  if (std::none_of(selected.begin(), selected.end(), moves)) return 0;

  int count = 0;
  sketch.edit([&](Drawing& drawing) {
    for (std::size_t i = 0; i < selected.size(); ++i) {
      if (!moves(selected[i])) continue;
      const SketchPoint offset = offsets->at(entityID(selected[i]));
      drawing.entities.replace(positions[i], translatedEntity(selected[i], offset.x, offset.y));
      ++count;
    }
  });
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
  const auto change = sketch.change();
  const std::size_t count = sketch.selection->ids.size();
  const std::vector<std::size_t> positions = sketch.selectedPositions();
  sketch.edit([&](Drawing& drawing) { drawing.entities.removeAll(positions); });
  sketch.clearSelection();
  messages.appendSystem(countedReport(count, "deleted"));
}

void duplicateEntity(Sketch& sketch, Messages& messages, const UUID& id, double dx, double dy) {
  const SketchEntity* found = sketch.entity(id);
  if (found == nullptr) return;
  const auto change = sketch.change();
  const std::string label(entityTypeLabel(*found));
  appendCopies(sketch, {*found}, openingsOf(sketch.drawing->plan, {*found}), dx, dy);
  messages.appendSystem(label + " duplicated.");
}

void duplicateSelection(Sketch& sketch, Messages& messages, double dx, double dy) {
  const std::vector<std::size_t> positions = sketch.selectedPositions();
  if (positions.empty()) return;
  const auto change = sketch.change();
  std::vector<SketchEntity> copies = entitiesAt(sketch.entities(), positions);
  const std::vector<Opening> openings = openingsOf(sketch.drawing->plan, copies);
  appendCopies(sketch, std::move(copies), openings, dx, dy);
  messages.appendSystem(countedReport(positions.size(), "duplicated"));
}

int copySelection(Sketch& sketch) {
  const std::vector<std::size_t> positions = sketch.selectedPositions();
  if (positions.empty()) return 0;
  std::vector<SketchEntity> copied = entitiesAt(sketch.entities(), positions);
  std::vector<Opening> openings = openingsOf(sketch.drawing->plan, copied);
  sketch.setClipboard(std::move(copied), std::move(openings));
  return static_cast<int>(positions.size());
}

int pasteClipboard(Sketch& sketch, SketchPoint offset) {
  const std::size_t count = sketch.clipboard->size();
  if (count > 0) appendCopies(sketch, sketch.clipboard, sketch.clipboardOpenings(), offset.x, offset.y);
  return static_cast<int>(count);
}

}  // namespace ostrelon
