#include "automation/mutation_state.h"

#include <utility>

namespace ostrelon {

SketchCommandMutationState captureCommandMutationState(const Sketch& sketch, const Board& board) {
  return {{sketch.entities(), {sketch.drawing->plan, {}}},
          sketch.selection->ids,
          sketch.selection->primary,
          board.tool,
          board.draft() != nullptr ? std::optional(*board.draft()) : std::nullopt,
          board.trimCuttingEdge,
          sketch.drawing->activeWallSystemSpecID,
          sketch.isDirty};
}

void restoreCommandMutationState(Sketch& sketch, Board& board, const SketchCommandMutationState& state) {
  const auto change = sketch.change();
  SketchState restored = sketch.state();
  restored.drawing.entities = state.undoSnapshot.entities;
  restored.drawing.plan = state.undoSnapshot.twin.plan.value_or(Plan());
  restored.drawing.activeWallSystemSpecID = state.activeWallSystemSpecID;
  restored.selection.ids = state.selectedEntityIDs;
  restored.selection.primary = state.primarySelectedEntityID;
  restored.isDirty = state.isDocumentDirty;
  sketch.setState(restored);
  BoardState onBoard = board.state();
  onBoard.tool = state.selectedTool;
  if (state.draft) {
    onBoard.gesture = *state.draft;
  } else if (board.draft() != nullptr) {
    onBoard.gesture = Gesture();
  }
  onBoard.trimCuttingEdge = state.trimCuttingEdgeEntityID;
  board.setState(onBoard);
}

void commitCommandMutationState(Sketch& sketch, const SketchCommandMutationState& state) {
  sketch.recordStep({state.undoSnapshot.entities, {state.undoSnapshot.twin.plan.value_or(Plan()), {}}});
}

void captureUndoCheckpoint(Sketch& sketch) { sketch.takeStep(); }

void clearUndoHistory(Sketch& sketch) { replaceUndoSnapshots(sketch, {}); }

void replaceUndoSnapshots(Sketch& sketch, const std::vector<SketchUndoSnapshot>& snapshots) {
  const auto change = sketch.change();
  SketchUndoStack stack;
  stack.replaceUndoSnapshots(snapshots);
  sketch.setUndoStack(std::move(stack));
  sketch.forgetDragStep();
}

}  // namespace ostrelon
