// The records of undo that scripts may handle: what a group of commands may disturb, captured and put
// back by hand. The program itself folds commands into one step in `Sketch::asOneStep`.
#pragma once

#include <optional>
#include <vector>

#include "core/sketch.h"
#include "interaction/board.h"

namespace ostrelon {

/// All that a chain of commands may disturb, as it was before.
struct SketchCommandMutationState {
  SketchUndoSnapshot undoSnapshot;
  EntitySet selectedEntityIDs;
  std::optional<UUID> primarySelectedEntityID;
  SketchTool selectedTool = SketchTool::select;
  std::optional<SketchDraft> draft;
  std::optional<UUID> trimCuttingEdgeEntityID;
  UUID activeWallSystemSpecID;
  bool isDocumentDirty = false;
};

SketchCommandMutationState captureCommandMutationState(const Sketch& sketch, const Board& board);
void restoreCommandMutationState(Sketch& sketch, Board& board, const SketchCommandMutationState& state);
/// One undo step, unless the entities are what they were.
void commitCommandMutationState(Sketch& sketch, const SketchCommandMutationState& state);

/// An undo step of the entities as they are; a redo history ends.
void captureUndoCheckpoint(Sketch& sketch);
void clearUndoHistory(Sketch& sketch);
/// The last 20 of these, oldest first, with no redo.
void replaceUndoSnapshots(Sketch& sketch, const std::vector<SketchUndoSnapshot>& snapshots);

}  // namespace ostrelon
