// Adding entities, and clearing the sketch.
#include "core/sketch_view_model.h"

namespace ostrelon {

void SketchViewModel::appendNewEntity(SketchEntity entity) {
  const ChangeScope scope(tracker_);
  captureUndoCheckpoint();
  entities.edit().append(std::move(entity));
  isDocumentDirty = true;
}

void SketchViewModel::addLine(SketchPoint from, SketchPoint to) {
  appendNewEntity(LineEntity{UUID::random(), from, to});
}

void SketchViewModel::addRectangle(SketchPoint origin, SketchSize size) {
  appendNewEntity(RectangleEntity{UUID::random(), origin, size});
}

void SketchViewModel::addCircle(SketchPoint center, double radius) {
  appendNewEntity(CircleEntity{UUID::random(), center, radius});
}

void SketchViewModel::addPolygon(std::vector<SketchPoint> vertices) {
  if (vertices.size() < 3) return;
  appendNewEntity(PolygonEntity{UUID::random(), PolygonVertices(std::move(vertices))});
}

void SketchViewModel::addWall(std::optional<UUID> systemSpecID, SketchPoint from, SketchPoint to) {
  const ChangeScope scope(tracker_);
  const UUID id = UUID::random();
  appendNewEntity(WallEntity{id, from, to, systemSpecID.value_or(activeWallSystemSpecID.get())});
  selectOnly(id);
}

void SketchViewModel::addEntities(std::vector<SketchEntity> added) {
  if (added.empty()) return;
  const ChangeScope scope(tracker_);
  captureUndoCheckpoint();
  entities.edit().append(std::move(added));
  isDocumentDirty = true;
}

void SketchViewModel::clearSketch() {
  const ChangeScope scope(tracker_);
  captureUndoCheckpoint();
  entities = EntityList();
  clearSelection();
  draft = std::nullopt;
  polygonDraft = std::nullopt;
  hoveredEntityID = std::nullopt;
  hoverViewPoint = std::nullopt;
  selectDrag = std::nullopt;
  selectMarquee = std::nullopt;
  clearSnapState();
  isDocumentDirty = true;
}

}  // namespace ostrelon
