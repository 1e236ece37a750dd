// The selection: clicks, marquees, and what the rest of the program asks of it.
#include <algorithm>

#include "core/sketch_view_model.h"
#include "geometry/hit_testing.h"
#include "geometry/marquee.h"

namespace ostrelon {

const SketchEntity* SketchViewModel::selectedEntity() const {
  return selectedEntityIDs->size() == 1 ? entity(*selectedEntityIDs->begin()) : nullptr;
}

std::string SketchViewModel::selectionSummary() const {
  if (selectedEntityIDs->empty()) return "none";
  if (selectedEntityIDs->size() > 1) return std::to_string(selectedEntityIDs->size()) + " selected";
  const auto& primary = *primarySelectedEntityID;
  return (primary ? entityLabelText(*primary) : std::nullopt).value_or("one");
}

void SketchViewModel::selectAtPoint(SketchPoint point, bool additive) {
  const ChangeScope scope(tracker_);
  closeSegmentLengthEdit();
  const auto pick = pickEntityAtPoint(index(), point, viewport->scale);
  if (!pick) {
    if (!additive) clearSelection();
  } else if (additive) {
    toggleEntitySelection(entityID(pick->entity));
  } else {
    selectOnly(entityID(pick->entity));
  }
  selectDrag = std::nullopt;
  selectMarquee = std::nullopt;
}

void SketchViewModel::toggleEntitySelection(const UUID& id) {
  if (selectedEntityIDs->contains(id)) {
    deselect(id);
    return;
  }
  const ChangeScope scope(tracker_);
  selectedEntityIDs.edit().insert(id);
  primarySelectedEntityID = id;
}

void SketchViewModel::selectSingleEntity(std::optional<UUID> id) {
  if (id) {
    selectOnly(*id);
  } else {
    clearSelection();
  }
}

void SketchViewModel::selectEntities(const std::vector<std::int64_t>& indices) {
  const ChangeScope scope(tracker_);
  std::unordered_set<UUID> selection;
  std::optional<UUID> first;
  for (const std::int64_t position : indices) {
    if (position < 0 || static_cast<std::uint64_t>(position) >= entities->size()) continue;
    const UUID& id = entityID(entities.get()[static_cast<std::size_t>(position)]);
    selection.insert(id);
    if (!first) first = id;
  }
  if (selection.empty()) {
    clearSelection();
    return;
  }
  selectedEntityIDs = std::move(selection);
  primarySelectedEntityID = first;
}

void SketchViewModel::selectAll() {
  const ChangeScope scope(tracker_);
  if (entities->empty()) {
    clearSelection();
    return;
  }
  std::unordered_set<UUID> selection;
  selection.reserve(entities->size());
  for (const SketchEntity& entity : *entities) selection.insert(entityID(entity));
  if (!*primarySelectedEntityID || !selection.contains(**primarySelectedEntityID)) {
    primarySelectedEntityID = entityID(entities->front());
  }
  selectedEntityIDs = std::move(selection);
}

void SketchViewModel::setSelectMarquee(std::optional<SelectMarqueeState> marquee) { selectMarquee = marquee; }

void SketchViewModel::beginMarquee(SketchPoint pressViewPoint, SketchPoint currentViewPoint) {
  selectMarquee =
      SelectMarqueeState{viewPointToSketch(pressViewPoint, viewport),
                         viewPointToSketch(currentViewPoint, viewport), pressViewPoint.x, currentViewPoint.x};
}

void SketchViewModel::updateMarquee(SketchPoint currentViewPoint) {
  if (!*selectMarquee) return;
  SelectMarqueeState marquee = **selectMarquee;
  marquee.currentSketchPoint = viewPointToSketch(currentViewPoint, viewport);
  marquee.currentViewX = currentViewPoint.x;
  selectMarquee = marquee;
}

void SketchViewModel::finishMarquee(bool additive) {
  if (!*selectMarquee) return;
  const ChangeScope scope(tracker_);
  const SelectMarqueeState marquee = **selectMarquee;
  const SketchBox box = SketchBox::spanning(marquee.startSketchPoint, marquee.currentSketchPoint);
  const bool isCrossing = marquee.currentViewX < marquee.startViewX;
  std::unordered_set<UUID> hits = entitiesInMarquee(index(), box, isCrossing);
  if (!hits.empty()) primarySelectedEntityID = *hits.begin();
  if (additive) {
    std::erase_if(hits, [&](const UUID& id) { return selectedEntityIDs->contains(id); });
    if (!hits.empty()) selectedEntityIDs.edit().merge(hits);
  } else {
    selectedEntityIDs = std::move(hits);
  }
  if (selectedEntityIDs->empty()) isEntityInspectorVisible = false;
  selectMarquee = std::nullopt;
}

void SketchViewModel::replaceEntity(const UUID& id, SketchEntity replacement) {
  const auto position = entityIndex(id);
  if (!position) return;
  const ChangeScope scope(tracker_);
  if (!((*entities)[*position] == replacement)) entities.edit().replace(*position, std::move(replacement));
  isDocumentDirty = true;
}

}  // namespace ostrelon
