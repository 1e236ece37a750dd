// Building the board, undo and clearing, and the resets of its values.
#include "interaction/board.h"

#include <utility>

namespace ostrelon {

Board::Board(ChangeTracker& tracker, Sketch& sketch, Messages& messages, Scheduler& scheduler)
    : tracker_(tracker), sketch_(sketch), messages_(messages), scheduler_(scheduler) {}

// --- Undo, and what takes the place of the drawing

void Board::undo() {
  sketch_.prepareUndo();
  const auto scope = change();
  if (!sketch_.undo()) return;
  endAllButPolygon();
  messages_.appendSystem("Undo.");
}

void Board::redo() {
  sketch_.prepareRedo();
  const auto scope = change();
  if (!sketch_.redo()) return;
  endAllButPolygon();
  messages_.appendSystem("Redo.");
}

void Board::restoreSnapshot(const EntityList& entities) {
  const auto scope = change();
  sketch_.restore({entities});
  endAllButPolygon();
}

void Board::endAllButPolygon() {
  const auto scope = change();
  if (polygonDraft() == nullptr) gesture = Gesture();
  groupMove_.reset();
  hover = Hover();
  clearSnap();
}

void Board::clearSketch() {
  const auto scope = change();
  if (sketch_.entities().empty()) {
    sketch_.countAsEdit(UndoStep::own);
  } else {
    sketch_.edit([](Drawing& drawing) { drawing.entities.clear(); });
  }
  sketch_.clearSelection();
  gesture = Gesture();
  groupMove_.reset();
  hover = Hover();
  clearSnap();
}

void Board::setState(const BoardState& state) {
  const auto scope = change();
  tool = state.tool;
  const bool isDrawn = std::holds_alternative<SketchDraft>(state.gesture) ||
                       std::holds_alternative<PolygonDraft>(state.gesture);
  gesture = isDrawn ? state.gesture : Gesture();
  groupMove_.reset();
  trimCuttingEdge = state.trimCuttingEdge;
  draftAxes = state.draftAxes;
  lengthEditor = state.lengthEditor;
  tracking = state.tracking;
  scheduleTrackingDwell();
  hover = Hover();
  clearSnap();
}

void Board::documentOpened(const SketchViewport& viewport) {
  const auto scope = change();
  gesture = Gesture();
  groupMove_.reset();
  changeView([&](BoardView& changed) {
    changed.viewport = viewport;
    changed.isInitialized = false;
  });
}

void Board::documentBegun() {
  const auto scope = change();
  if (draft() != nullptr || dimensionPlacing() != nullptr) gesture = Gesture();
  changeView([](BoardView& changed) { changed.isInitialized = false; });
}

// --- Resets

void Board::cancelTrackingDwell() {
  const auto scope = change();
  tracking = Tracking{tracking->locked, std::nullopt, 0, std::nullopt};
  dwellTask_.reset();
}

void Board::releaseTracking() {
  const auto scope = change();
  tracking = Tracking();
  dwellTask_.reset();
}

void Board::clearDraft() {
  const auto scope = change();
  if (draft() != nullptr) gesture = Gesture();
  closeLengthEditor();
  draftAxes = {};
  releaseTracking();
  clearSnap();
}

void Board::cancelDraft() {
  const auto scope = change();
  clearDraft();
  if (polygonDraft() != nullptr) gesture = Gesture();
}

}  // namespace ostrelon
