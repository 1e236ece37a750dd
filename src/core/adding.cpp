#include "core/adding.h"

#include <utility>

namespace ostrelon {

void addEntity(Sketch& sketch, SketchEntity entity) {
  sketch.edit([&](Drawing& drawing) { drawing.entities.append(std::move(entity)); });
}

void addEntities(Sketch& sketch, std::vector<SketchEntity> added) {
  if (added.empty()) return;
  const EntityList next = sketch.prepared(added.size(), [&, list = sketch.entities()]() mutable {
    list.append(std::move(added));
    return list;
  });
  sketch.edit([&](Drawing& drawing) { drawing.entities = next; });
}

void addLine(Sketch& sketch, SketchPoint from, SketchPoint to) {
  addEntity(sketch, LineEntity{UUID::random(), from, to});
}

void addRectangle(Sketch& sketch, SketchPoint origin, SketchSize size) {
  addEntity(sketch, RectangleEntity{UUID::random(), origin, size});
}

void addCircle(Sketch& sketch, SketchPoint center, double radius) {
  addEntity(sketch, CircleEntity{UUID::random(), center, radius});
}

void addPolygon(Sketch& sketch, std::vector<SketchPoint> vertices) {
  if (vertices.size() < 3) return;
  addEntity(sketch, PolygonEntity{UUID::random(), PolygonVertices(std::move(vertices))});
}

void addWall(Sketch& sketch, std::optional<UUID> systemSpecID, SketchPoint from, SketchPoint to) {
  const auto change = sketch.change();
  const UUID id = UUID::random();
  const UUID system = systemSpecID.value_or(sketch.drawing->activeWallSystemSpecID);
  addEntity(sketch, WallEntity{id, from, to, system});
  sketch.selectOnly(id);
}

void replaceEntity(Sketch& sketch, const UUID& id, SketchEntity entity, UndoStep step) {
  const auto position = sketch.positionOf(id);
  if (!position) return;
  if (sketch.entities()[*position] == entity) {
    sketch.countAsEdit(step);
  } else {
    sketch.edit([&](Drawing& drawing) { drawing.entities.replace(*position, std::move(entity)); }, step);
  }
}

void setActiveWallSystem(Sketch& sketch, Messages& messages, const WallSystemSpec& spec) {
  const WallSystemSpec* active = sketch.drawing->activeWallSystem();
  if (active != nullptr && *active == spec) return;
  const auto change = sketch.change();
  const std::string name = spec.name;
  sketch.setActiveWallSystem(spec.id);
  messages.appendSystem("Active wall system: " + name);
}

void updateWallSystemSpec(Sketch& sketch, const WallSystemSpec& spec) {
  const std::vector<WallSystemSpec>& specs = sketch.drawing->wallSystemSpecs;
  for (std::size_t row = 0; row < specs.size(); ++row) {
    if (specs[row].id != spec.id) continue;
    if (specs[row] == spec) {
      sketch.countAsEdit(UndoStep::none);
    } else {
      sketch.edit([&](Drawing& drawing) { drawing.wallSystemSpecs[row] = spec; }, UndoStep::none);
    }
    return;
  }
}

void setShowGrid(Sketch& sketch, bool value) {
  if (sketch.drawing->showGrid == value) return;
  sketch.edit([&](Drawing& drawing) { drawing.showGrid = value; }, UndoStep::none);
}

}  // namespace ostrelon
