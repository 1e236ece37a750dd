// The operations on the selection that need no view.
#include <unordered_set>
#include <utility>

#include "geometry/edit_operations.h"

namespace ostrelon {

void toggleEntitySelection(Sketch& sketch, const UUID& id) {
  if (sketch.isSelected(id)) {
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
  const EntityList& entities = sketch.entities();
  std::unordered_set<UUID> ids;
  std::optional<UUID> primary;
  for (const std::int64_t position : positions) {
    if (position < 0 || static_cast<std::uint64_t>(position) >= entities.size()) continue;
    const UUID& id = entityID(entities[static_cast<std::size_t>(position)]);
    ids.insert(id);
    if (!primary) primary = id;
  }
  sketch.select(ids.empty() ? Selection()
                            : Selection{std::move(ids), primary, sketch.selection->isInspected, {}});
}

void selectAll(Sketch& sketch) {
  const EntityList& entities = sketch.entities();
  if (entities.empty()) {
    sketch.clearSelection();
    return;
  }
  Selection selected{sketch.setOfAll(), sketch.selection->primary, sketch.selection->isInspected, {}};
  if (!selected.primary || sketch.entity(*selected.primary) == nullptr) {
    selected.primary = entityID(entities.front());
  }
  sketch.select(std::move(selected));
}

void printEntityDescription(const Sketch& sketch, Messages& messages, const UUID& id) {
  if (const SketchEntity* found = sketch.entity(id)) {
    messages.appendSystem(entityDescription(*found, sketch.drawing->wallSystemName(*found)));
  }
}

}  // namespace ostrelon
