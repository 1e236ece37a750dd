// The operations on the selection that need no view.
#include "geometry/edit_operations.h"

namespace ostrelon {

void toggleEntitySelection(Sketch& sketch, const UUID& id) {
  if (sketch.selection->contains(id)) {
    sketch.deselect(id);
  } else {
    sketch.addToSelection(id);
  }
}

void selectSingleEntity(Sketch& sketch, std::optional<UUID> id) {
  if (id) {
    sketch.selectOnly(*id);
  } else {
    sketch.clearSelection();
  }
}

void selectEntities(Sketch& sketch, const std::vector<std::int64_t>& positions) {
  Selection selection{{}, std::nullopt, sketch.selection->isInspected, {}};
  for (const std::int64_t position : positions) {
    if (position < 0 || static_cast<std::uint64_t>(position) >= sketch.entities().size()) continue;
    const UUID& id = entityID(sketch.entities()[static_cast<std::size_t>(position)]);
    selection.ids.insert(id);
    if (!selection.primary) selection.primary = id;
  }
  sketch.select(selection.empty() ? Selection() : std::move(selection));
}

void selectAll(Sketch& sketch) {
  const EntityList& entities = sketch.entities();
  if (entities.empty()) {
    sketch.clearSelection();
    return;
  }
  Selection selection{{}, sketch.selection->primary, sketch.selection->isInspected, {}};
  selection.ids.reserve(entities.size());
  for (const SketchEntity& entity : entities) selection.ids.insert(entityID(entity));
  if (!selection.primary || !selection.contains(*selection.primary)) {
    selection.primary = entityID(entities.front());
  }
  sketch.select(std::move(selection));
}

void printEntityDescription(const Sketch& sketch, Messages& messages, const UUID& id) {
  if (const SketchEntity* found = sketch.entity(id)) {
    messages.appendSystem(entityDescription(*found, sketch.drawing->wallSystemName(*found)));
  }
}

}  // namespace ostrelon
