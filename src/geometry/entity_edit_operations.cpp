// Edits of the document: each checks, takes its undo step, changes, and marks the document dirty.
#include <algorithm>
#include <cmath>
#include <utility>

#include "core/sketch_view_model.h"
#include "geometry/entity_edits.h"
#include "geometry/entity_geometry.h"

namespace ostrelon {
namespace {

// A selection of more than this share of the drawing is looked up by walking through it.
constexpr std::size_t kWalkShare = 16;

}  // namespace

EntityEditResult SketchViewModel::applyToSelectedEntity(
    const std::function<std::optional<SketchEntity>(const SketchEntity&)>& edit) {
  const SketchEntity* selected = selectedEntity();
  if (selected == nullptr) return EntityEditResult::noSelection;
  std::optional<SketchEntity> edited = edit(*selected);
  if (!edited) return EntityEditResult::unsupported;
  if (*edited == *selected) return EntityEditResult::unchanged;
  const ChangeScope scope(tracker_);
  captureUndoCheckpoint();
  replaceEntity(entityID(*edited), *edited);
  return EntityEditResult::applied;
}

EntityEditResult SketchViewModel::setSelectedEntityLength(double value) {
  if (!(value > 0) || !std::isfinite(value)) return EntityEditResult::invalidValue;
  return applyToSelectedEntity([value](const SketchEntity& entity) { return resizedEntity(entity, value); });
}

EntityEditResult SketchViewModel::nudgeSelectedEntity(double dx, double dy) {
  if (!std::isfinite(dx) || !std::isfinite(dy)) return EntityEditResult::invalidValue;
  if (dx == 0 && dy == 0) return EntityEditResult::unchanged;
  const SketchEntity* selected = selectedEntity();
  if (selected == nullptr) return EntityEditResult::noSelection;
  const ChangeScope scope(tracker_);
  captureUndoCheckpoint();
  replaceEntity(entityID(*selected), translatedEntity(*selected, dx, dy));
  return EntityEditResult::applied;
}

EntityEditResult SketchViewModel::convertSelectedEntity(EntityConversionTarget target,
                                                        std::optional<UUID> wallSystemID) {
  const UUID system = wallSystemID.value_or(activeWallSystemSpecID.get());
  if (wallSystemSpec(system) == nullptr) return EntityEditResult::invalidValue;
  return applyToSelectedEntity(
      [&](const SketchEntity& entity) { return convertedEntity(entity, target, system); });
}

bool SketchViewModel::assignWallSystem(const UUID& wallSystemID, const UUID& id) {
  if (wallSystemSpec(wallSystemID) == nullptr) return false;
  const SketchEntity* found = entity(id);
  const auto* wall = found != nullptr ? std::get_if<WallEntity>(found) : nullptr;
  if (wall == nullptr) return false;
  const ChangeScope scope(tracker_);
  WallEntity assigned = *wall;
  assigned.systemSpecID = wallSystemID;
  captureUndoCheckpoint();
  replaceEntity(id, assigned);
  return true;
}

int SketchViewModel::alignSelection(AlignmentAxis axis) {
  const std::vector<std::size_t> positions = selectedPositions();
  if (positions.size() < 2) return 0;
  std::vector<SketchEntity> selected;
  selected.reserve(positions.size());
  for (const std::size_t position : positions) selected.push_back(entities.get()[position]);
  const auto offsets = alignmentOffsets(selected, axis);
  if (!offsets) return 0;
  const auto moves = [&](const SketchEntity& entity) {
    return offsets->at(entityID(entity)) != SketchPoint{};
  };
  if (std::none_of(selected.begin(), selected.end(), moves)) return 0;

  const ChangeScope scope(tracker_);
  captureUndoCheckpoint();
  int count = 0;
  for (std::size_t i = 0; i < selected.size(); ++i) {
    if (!moves(selected[i])) continue;
    const SketchPoint offset = offsets->at(entityID(selected[i]));
    entities.edit().replace(positions[i], translatedEntity(selected[i], offset.x, offset.y));
    ++count;
  }
  isDocumentDirty = true;
  return count;
}

bool SketchViewModel::moveSelectedLine(double dx, double dy) {
  const SketchEntity* selected = selectedEntity();
  if (selected == nullptr || primarySelectedEntityID != std::optional(entityID(*selected)) ||
      !std::holds_alternative<LineEntity>(*selected)) {
    return false;
  }
  if (!std::isfinite(dx) || !std::isfinite(dy)) return false;
  if (dx == 0 && dy == 0) return true;
  const ChangeScope scope(tracker_);
  captureUndoCheckpoint();
  replaceEntity(entityID(*selected), translatedEntity(*selected, dx, dy));
  return true;
}

void SketchViewModel::deleteEntity(const UUID& id) {
  const ChangeScope scope(tracker_);
  const UUID gone = id;
  captureUndoCheckpoint();
  if (index().hasDuplicates()) {
    // An identifier that a file gave twice goes with all its entities.
    entities.edit().removeAll(std::unordered_set<UUID>{gone});
  } else if (const auto position = entityIndex(gone)) {
    entities.edit().remove(*position);
  }
  deselect(gone);
  if (selectedEntityIDs->empty()) isEntityInspectorVisible = false;
  isDocumentDirty = true;
  appendConsoleLine("Entity deleted.", false, true);
}

void SketchViewModel::deleteSelection() {
  if (selectedEntityIDs->empty()) return;
  const ChangeScope scope(tracker_);
  const std::size_t count = selectedEntityIDs->size();
  captureUndoCheckpoint();
  entities.edit().removeAll(selectedPositions());
  clearSelection();
  isDocumentDirty = true;
  appendConsoleLine(count == 1 ? "Entity deleted." : std::to_string(count) + " entities deleted.", false,
                    true);
}

void SketchViewModel::duplicateEntity(const UUID& id, double dx, double dy) {
  const SketchEntity* found = entity(id);
  if (found == nullptr) return;
  const ChangeScope scope(tracker_);
  SketchEntity copy = duplicatedEntity(*found, dx, dy);
  const UUID copyID = entityID(copy);
  const std::string label(entityTypeLabel(copy));
  appendNewEntity(std::move(copy));
  selectOnly(copyID);
  appendConsoleLine(label + " duplicated.", false, true);
}

void SketchViewModel::duplicateSelection(double dx, double dy) {
  const std::vector<std::size_t> positions = selectedPositions();
  if (positions.empty()) return;
  const ChangeScope scope(tracker_);
  std::vector<SketchEntity> copies;
  copies.reserve(positions.size());
  for (const std::size_t position : positions) {
    copies.push_back(duplicatedEntity(entities.get()[position], dx, dy));
  }
  appendCopies(std::move(copies));
  appendConsoleLine(positions.size() == 1 ? "Entity duplicated."
                                          : std::to_string(positions.size()) + " entities duplicated.",
                    false, true);
}

int SketchViewModel::copySelection() {
  const std::vector<std::size_t> positions = selectedPositions();
  if (positions.empty()) return 0;
  std::vector<SketchEntity> copied;
  copied.reserve(positions.size());
  for (const std::size_t position : positions) copied.push_back(entities.get()[position]);
  entityClipboard = std::move(copied);
  return static_cast<int>(positions.size());
}

int SketchViewModel::pasteClipboard(std::optional<SketchPoint> offset) {
  if (entityClipboard->empty()) return 0;
  const ChangeScope scope(tracker_);
  const SketchPoint by = offset.value_or(entityClipboardPasteOffset);
  std::vector<SketchEntity> copies;
  copies.reserve(entityClipboard->size());
  for (const SketchEntity& copied : *entityClipboard) copies.push_back(duplicatedEntity(copied, by.x, by.y));
  const int count = static_cast<int>(copies.size());
  appendCopies(std::move(copies));
  return count;
}

std::vector<std::size_t> SketchViewModel::selectedPositions() const {
  std::vector<std::size_t> positions;
  positions.reserve(selectedEntityIDs->size());
  // One walk finds many faster than the index does, and finds what has its identifier in common.
  if (index().hasDuplicates() || selectedEntityIDs->size() > entities->size() / kWalkShare) {
    std::size_t position = 0;
    for (const SketchEntity& entity : *entities) {
      if (selectedEntityIDs->contains(entityID(entity))) positions.push_back(position);
      ++position;
    }
    return positions;
  }
  for (const UUID& id : *selectedEntityIDs) {
    if (const auto position = entityIndex(id)) positions.push_back(*position);
  }
  std::sort(positions.begin(), positions.end());
  return positions;
}

void SketchViewModel::appendCopies(std::vector<SketchEntity> copies) {
  const ChangeScope scope(tracker_);
  captureUndoCheckpoint();
  std::unordered_set<UUID> selection;
  selection.reserve(copies.size());
  for (const SketchEntity& copy : copies) selection.insert(entityID(copy));
  primarySelectedEntityID = entityID(copies.front());
  selectedEntityIDs = std::move(selection);
  entities.edit().append(std::move(copies));
  isDocumentDirty = true;
}

}  // namespace ostrelon
