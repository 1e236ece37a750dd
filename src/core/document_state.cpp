// The document as a whole: a new one, and what it shows.
#include "core/sketch_view_model.h"

namespace ostrelon {

void SketchViewModel::setShowGrid(bool value) {
  if (showGrid == value) return;
  const ChangeScope scope(tracker_);
  showGrid = value;
  isDocumentDirty = true;
}

void SketchViewModel::newDocument() {
  const ChangeScope scope(tracker_);
  entities = EntityList();
  clearSelection();
  draft = std::nullopt;
  documentFileURL = std::nullopt;
  documentName = "Untitled Project";
  isDocumentDirty = false;
  lastSavedAt = std::nullopt;
  documentHistoryState = DocumentHistoryState();
  hasInitializedViewport = false;
  entityClipboard = {};
  clearUndoHistory();
  appendConsoleLine("New document.", false, true);
}

}  // namespace ostrelon
