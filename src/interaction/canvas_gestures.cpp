#include "interaction/canvas_gestures.h"

#include <cmath>

#include "geometry/hit_testing.h"
#include "geometry/plan_item_operations.h"
#include "interaction/board.h"
#include "interaction/canvas_transform.h"
#include "interaction/opening_painting.h"

namespace ostrelon {
// --- The end from elsewhere

CanvasGestures::Work::Work(const Board& board)
    : tool(board.tool),
      kind(board.gesture->index()),
      polygonVertices(board.polygonDraft() != nullptr ? board.polygonDraft()->vertices.size() : 0) {
  if (board.draft() != nullptr) draftStart = board.draft()->start;
}

bool CanvasGestures::Work::isContinuedBy(const Work& next) const {
  if (tool != next.tool) return false;
  if (kind == 0) return true;
  return kind == next.kind && draftStart == next.draftStart && polygonVertices <= next.polygonVertices;
}

CanvasGestures::CanvasGestures(Board& board)
    : board_(board),
      work_(board),
      subscription_(board.observe(fieldsOf(board.tool, board.gesture), [this](FieldMask) { followWork(); })) {
}

void CanvasGestures::followWork() {
  const Work now(board_);
  if (!work_.isContinuedBy(now)) press_.reset();
  work_ = now;
}

// --- The primary button

void CanvasGestures::press(SketchPoint viewPoint) {
  if (!isFinite(viewPoint)) return;
  hasPickedItem_ = false;
  press_ = viewPoint;
  changed(viewPoint);
}

void CanvasGestures::drag(SketchPoint viewPoint) {
  if (press_ && isFinite(viewPoint)) changed(viewPoint);
}

void CanvasGestures::changed(SketchPoint viewPoint) {
  if (board_.isPlacing()) {
    hover(viewPoint);
    return;
  }
  switch (*board_.tool) {
    case SketchTool::select:
      selectChanged(viewPoint);
      break;
    case SketchTool::pan:
    case SketchTool::trim:
      break;
    case SketchTool::polygon:
      board_.recordPointer(viewPoint);
      board_.updatePolygonDraft(toSketch(viewPoint));
      break;
    case SketchTool::line:
    case SketchTool::wall:
    case SketchTool::circle:
    case SketchTool::rectangle:
      draftChanged(viewPoint);
      break;
  }
}

void CanvasGestures::release(SketchPoint viewPoint, bool shift) {
  if (!press_ || !isFinite(viewPoint)) return;
  const SketchPoint press = *press_;
  press_.reset();
  const bool isClick = distanceBetween(press, viewPoint) < kDragStartThreshold;
  if (board_.openingPlacing() != nullptr) {
    board_.placeOpening();
    return;
  }
  if (board_.dimensionPlacing() != nullptr) {
    board_.placeDimensionPoint();
    return;
  }
  switch (*board_.tool) {
    case SketchTool::select:
      selectEnded(press, isClick, shift);
      break;
    case SketchTool::pan:
      break;
    case SketchTool::trim:
      if (isClick) trimClicked(press);
      break;
    case SketchTool::polygon:
      if (distanceBetween(press, viewPoint) < kPolygonTapSlop) polygonClicked(press, viewPoint);
      break;
    case SketchTool::line:
    case SketchTool::wall:
    case SketchTool::circle:
    case SketchTool::rectangle:
      board_.commitDraft();
      break;
  }
}

void CanvasGestures::doubleClick() {
  if (board_.tool == SketchTool::polygon) board_.closePolygon();
  if (hasPickedItem_ && board_.sketch().selection->planItem) board_.sketch().setInspected(true);
}

// --- The select tool: a click picks, a drag from an entity or handle moves it, any other drag draws
// a marquee

void CanvasGestures::selectChanged(SketchPoint viewPoint) {
  const bool hasBegun = board_.selectDrag() != nullptr || board_.marquee() != nullptr;
  if (!hasBegun && distanceBetween(*press_, viewPoint) < kDragStartThreshold) return;
  board_.recordPointer(viewPoint);
  if (!hasBegun && !board_.beginSelectDrag(toSketch(*press_))) board_.beginMarquee(*press_, viewPoint);
  if (board_.selectDrag() != nullptr) {
    board_.updateSelectDrag(toSketch(viewPoint));
  } else {
    board_.updateMarquee(viewPoint);
  }
}

void CanvasGestures::selectEnded(SketchPoint press, bool isClick, bool additive) {
  if (board_.selectDrag() != nullptr) {
    board_.finishSelectDrag();
  } else if (board_.marquee() != nullptr) {
    board_.finishMarquee(additive);
  } else if (isClick && isOnFlipArrow(press)) {
    board_.flipSelectedItem();
  } else if (isClick) {
    board_.selectAtPoint(toSketch(press), additive);
    hasPickedItem_ = !additive && board_.sketch().selection->planItem.has_value();
  }
}

bool CanvasGestures::isOnFlipArrow(SketchPoint viewPoint) const {
  const auto opening = selectedPlanItem<Opening>(board_.sketch());
  const auto arrow =
      opening ? flipArrowPoint(board_.sketch(), *opening, board_.scale()) : std::optional<SketchPoint>();
  return arrow &&
         distanceBetween(sketchPointToView(*arrow, board_.viewport()), viewPoint) <= kFlipArrowRadius;
}

// --- The drawing tools

void CanvasGestures::polygonClicked(SketchPoint press, SketchPoint viewPoint) {
  board_.recordPointer(viewPoint);
  board_.addPolygonVertex(toSketch(press));
}

void CanvasGestures::draftChanged(SketchPoint viewPoint) {
  board_.recordPointer(viewPoint);
  if (board_.draft() != nullptr) {
    board_.updateDraft(toSketch(viewPoint));
  } else {
    board_.beginDraft(toSketch(viewPoint));
  }
}

void CanvasGestures::trimClicked(SketchPoint press) {
  const SketchPoint point = toSketch(press);
  if (!pickEntityAtPoint(board_.sketch().index(), point, board_.scale())) {
    board_.clearTrimCuttingEdge();
    return;
  }
  TrimClick click = board_.trimAt(point);
  board_.messages().append(std::move(click.message), click.isError, false);
}

// --- Everything else

void CanvasGestures::hover(SketchPoint viewPoint) {
  if (isFinite(viewPoint)) board_.hoverMoved(viewPoint);
}

void CanvasGestures::leave() { board_.hoverMoved(std::nullopt); }

void CanvasGestures::scroll(double dx, double dy) {
  if (hasCanvas()) board_.pan(dx, dy);
}

void CanvasGestures::magnify(SketchPoint viewPoint, double magnification) {
  if (hasCanvas() && isFinite(viewPoint)) board_.zoom(1 + magnification, viewPoint);
}

std::optional<ContextMenu> CanvasGestures::contextMenu(SketchPoint viewPoint) {
  if (!hasCanvas() || !isFinite(viewPoint) || board_.selectDrag() != nullptr) return std::nullopt;
  board_.selectAtPoint(toSketch(viewPoint), false);
  return selectionContextMenu(board_.sketch());
}

SketchPoint CanvasGestures::toSketch(SketchPoint viewPoint) const {
  return viewPointToSketch(viewPoint, board_.viewport());
}

bool CanvasGestures::hasCanvas() const {
  return board_.view->canvasSize.width > 0 && board_.view->canvasSize.height > 0;
}

}  // namespace ostrelon
