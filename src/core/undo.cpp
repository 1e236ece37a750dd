// Undo, redo, and the folding of many changes into one step.
#include "core/sketch_view_model.h"

namespace ostrelon {
void SketchViewModel::captureUndoCheckpoint() {
  if (isApplyingUndoRedo_ || undoCheckpointSuppressionDepth_ != 0) return;
  pushUndoStep({entities.get()});
}

void SketchViewModel::pushUndoStep(const SketchUndoSnapshot& before) {
  const ChangeScope scope(tracker_);
  if (*selectDragUndoBaseline && !hasUndoStepOfDrag_) {
    hasUndoStepOfDrag_ = true;
    const SketchUndoSnapshot& baseline = **selectDragUndoBaseline;
    if (!(baseline.entities == before.entities)) undoStack_.pushUndoSnapshot(baseline);
  }
  undoStack_.pushUndoSnapshot(before);
  tracker_.mark(n(SketchField::undoStack));
}

void SketchViewModel::undo() {
  auto snapshot = undoStack_.popUndoSnapshot();
  if (!snapshot) return;
  const ChangeScope scope(tracker_);
  undoStack_.pushRedoSnapshot({entities.get()});
  tracker_.mark(n(SketchField::undoStack));
  restoreSnapshot(snapshot->entities);
  appendConsoleLine("Undo.", false, true);
}

void SketchViewModel::redo() {
  auto snapshot = undoStack_.popRedoSnapshot();
  if (!snapshot) return;
  const ChangeScope scope(tracker_);
  undoStack_.appendUndoSnapshot({entities.get()});
  tracker_.mark(n(SketchField::undoStack));
  restoreSnapshot(snapshot->entities);
  appendConsoleLine("Redo.", false, true);
}

void SketchViewModel::restoreSnapshot(const EntityList& restored) {
  const ChangeScope scope(tracker_);
  isApplyingUndoRedo_ = true;
  entities = restored;
  settleSelection();
  draft = std::nullopt;
  selectDrag = std::nullopt;
  selectMarquee = std::nullopt;
  selectDragUndoBaseline = std::nullopt;
  hoveredEntityID = std::nullopt;
  hoverViewPoint = std::nullopt;
  clearSnapState();
  isDocumentDirty = true;
  isApplyingUndoRedo_ = false;
}

void SketchViewModel::clearUndoHistory() {
  const ChangeScope scope(tracker_);
  undoStack_.clear();
  tracker_.mark(n(SketchField::undoStack));
  selectDragUndoBaseline = std::nullopt;
}

void SketchViewModel::replaceUndoSnapshots(std::vector<SketchUndoSnapshot> snapshots) {
  const ChangeScope scope(tracker_);
  undoStack_.replaceUndoSnapshots(std::move(snapshots));
  tracker_.mark(n(SketchField::undoStack));
  selectDragUndoBaseline = std::nullopt;
}

SketchCommandMutationState SketchViewModel::captureCommandMutationState() const {
  return {{entities.get()},        selectedEntityIDs,      primarySelectedEntityID, selectedTool, draft,
          trimCuttingEdgeEntityID, activeWallSystemSpecID, isDocumentDirty};
}

void SketchViewModel::restoreCommandMutationState(const SketchCommandMutationState& state) {
  const ChangeScope scope(tracker_);
  isApplyingUndoRedo_ = true;
  entities = state.undoSnapshot.entities;
  selectedEntityIDs = state.selectedEntityIDs;
  primarySelectedEntityID = state.primarySelectedEntityID;
  selectedTool = state.selectedTool;
  draft = state.draft;
  trimCuttingEdgeEntityID = state.trimCuttingEdgeEntityID;
  activeWallSystemSpecID = state.activeWallSystemSpecID;
  selectDrag = std::nullopt;
  selectMarquee = std::nullopt;
  selectDragUndoBaseline = std::nullopt;
  hoveredEntityID = std::nullopt;
  hoverViewPoint = std::nullopt;
  clearSnapState();
  isDocumentDirty = state.isDocumentDirty;
  isApplyingUndoRedo_ = false;
}

void SketchViewModel::commitCommandMutationState(const SketchCommandMutationState& state) {
  if (state.undoSnapshot.entities == entities.get()) return;
  pushUndoStep(state.undoSnapshot);
}

void SketchViewModel::changeUndoCheckpointSuppressionDepth(int by) { undoCheckpointSuppressionDepth_ += by; }

}  // namespace ostrelon
