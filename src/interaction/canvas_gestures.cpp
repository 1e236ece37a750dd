#include "interaction/canvas_gestures.h"

#include <cmath>

#include "core/sketch_view_model.h"
#include "geometry/hit_testing.h"
#include "interaction/canvas_transform.h"

namespace ostrelon {
namespace {

bool isFinite(SketchPoint point) { return std::isfinite(point.x) && std::isfinite(point.y); }

// The answers of the trim tool are marked as failures by their words alone.
bool readsAsTrimFailure(std::string_view text) {
  for (const std::string_view mark : {"must", "not", "Cannot"}) {
    if (text.find(mark) != std::string_view::npos) return true;
  }
  return false;
}

}  // namespace

// --- The end from elsewhere

CanvasGestures::Work::Work(const SketchViewModel& sketch)
    : tool(sketch.selectedTool),
      polygonVertices(*sketch.polygonDraft ? (*sketch.polygonDraft)->vertices.size() : 0),
      isDragging(sketch.selectDrag->has_value()),
      hasMarquee(sketch.selectMarquee->has_value()) {
  if (*sketch.draft) draftStart = (*sketch.draft)->start;
}

bool CanvasGestures::Work::isContinuedBy(const Work& next) const {
  return tool == next.tool && (!draftStart || draftStart == next.draftStart) &&
         polygonVertices <= next.polygonVertices && (!isDragging || next.isDragging) &&
         (!hasMarquee || next.hasMarquee);
}

CanvasGestures::CanvasGestures(SketchViewModel& sketch)
    : sketch_(sketch),
      work_(sketch),
      subscription_(
          sketch.observe(fieldMask(SketchField::selectedTool, SketchField::draft, SketchField::polygonDraft,
                                   SketchField::selectDrag, SketchField::selectMarquee),
                         [this](const SketchChange&) { followWork(); })) {}

void CanvasGestures::followWork() {
  const Work now(sketch_);
  if (!work_.isContinuedBy(now)) press_.reset();
  work_ = now;
}

// --- The primary button

void CanvasGestures::press(SketchPoint viewPoint) {
  if (!isFinite(viewPoint)) return;
  press_ = viewPoint;
  changed(viewPoint);
}

void CanvasGestures::drag(SketchPoint viewPoint) {
  if (press_ && isFinite(viewPoint)) changed(viewPoint);
}

void CanvasGestures::changed(SketchPoint viewPoint) {
  switch (*sketch_.selectedTool) {
    case SketchTool::select:
      selectChanged(viewPoint);
      break;
    case SketchTool::pan:
    case SketchTool::trim:
      break;
    case SketchTool::polygon:
      sketch_.recordPointer(viewPoint);
      sketch_.updatePolygonDraft(toSketch(viewPoint));
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
  switch (*sketch_.selectedTool) {
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
      sketch_.commitDraft();
      break;
  }
}

void CanvasGestures::doubleClick() {
  if (sketch_.selectedTool == SketchTool::polygon) sketch_.closePolygon();
}

// --- The select tool: a click picks, a drag from an entity or handle moves it, any other drag draws
// a marquee

void CanvasGestures::selectChanged(SketchPoint viewPoint) {
  if (*sketch_.selectDrag) {
    sketch_.updateSelectDrag(toSketch(viewPoint));
  } else if (*sketch_.selectMarquee) {
    sketch_.updateMarquee(viewPoint);
  } else if (distanceBetween(*press_, viewPoint) >= kDragStartThreshold) {
    if (sketch_.beginSelectDrag(toSketch(*press_))) {
      sketch_.updateSelectDrag(toSketch(viewPoint));
    } else {
      sketch_.beginMarquee(*press_, viewPoint);
    }
  }
}

void CanvasGestures::selectEnded(SketchPoint press, bool isClick, bool additive) {
  if (*sketch_.selectDrag) {
    sketch_.finishSelectDrag();
  } else if (*sketch_.selectMarquee) {
    sketch_.finishMarquee(additive);
  } else if (isClick) {
    sketch_.selectAtPoint(toSketch(press), additive);
  }
}

// --- The drawing tools

void CanvasGestures::polygonClicked(SketchPoint press, SketchPoint viewPoint) {
  sketch_.recordPointer(viewPoint);
  sketch_.addPolygonVertex(toSketch(press));
}

void CanvasGestures::draftChanged(SketchPoint viewPoint) {
  sketch_.recordPointer(viewPoint);
  if (*sketch_.draft) {
    sketch_.updateDraft(toSketch(viewPoint));
  } else {
    sketch_.beginDraft(toSketch(viewPoint));
  }
}

void CanvasGestures::trimClicked(SketchPoint press) {
  const SketchPoint point = toSketch(press);
  if (!pickEntityAtPoint(sketch_.index(), point, sketch_.viewport->scale)) {
    sketch_.clearTrimCuttingEdge();
    return;
  }
  std::string answer = sketch_.handleTrimClick(point);
  const bool isError = readsAsTrimFailure(answer);
  sketch_.appendConsoleLine(std::move(answer), isError, false);
}

// --- Everything else

void CanvasGestures::hover(SketchPoint viewPoint) {
  if (isFinite(viewPoint)) sketch_.hoverMoved(viewPoint);
}

void CanvasGestures::leave() { sketch_.hoverMoved(std::nullopt); }

void CanvasGestures::scroll(double dx, double dy) {
  if (hasCanvas()) sketch_.panViewport(dx, dy);
}

void CanvasGestures::magnify(SketchPoint viewPoint, double magnification) {
  if (hasCanvas() && isFinite(viewPoint)) sketch_.zoomViewport(1 + magnification, viewPoint);
}

std::optional<ContextMenu> CanvasGestures::contextMenu(SketchPoint viewPoint) {
  if (!hasCanvas() || !isFinite(viewPoint) || *sketch_.selectDrag) return std::nullopt;
  sketch_.selectAtPoint(toSketch(viewPoint), false);
  return entityContextMenu(sketch_);
}

SketchPoint CanvasGestures::toSketch(SketchPoint viewPoint) const {
  return viewPointToSketch(viewPoint, sketch_.viewport);
}

bool CanvasGestures::hasCanvas() const {
  return sketch_.canvasSize->width > 0 && sketch_.canvasSize->height > 0;
}

}  // namespace ostrelon
