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
  switch (*sketch_.selectedTool) {
    case SketchTool::select:
      selectEnded(viewPoint, shift);
      break;
    case SketchTool::pan:
      break;
    case SketchTool::trim:
      if (travelTo(viewPoint) < kDragStartThreshold) trimClicked();
      break;
    case SketchTool::polygon:
      polygonEnded(viewPoint);
      break;
    case SketchTool::line:
    case SketchTool::wall:
    case SketchTool::circle:
    case SketchTool::rectangle:
      draftEnded(viewPoint);
      break;
  }
  press_.reset();
}

void CanvasGestures::doubleClick() {
  if (sketch_.selectedTool == SketchTool::polygon) sketch_.closePolygon();
}

// --- The select tool: a click picks, a drag from an entity or handle moves it, any other drag draws
// a marquee

void CanvasGestures::selectChanged(SketchPoint viewPoint) {
  sketch_.recordPointer(viewPoint);
  if (*sketch_.selectDrag) {
    sketch_.updateSelectDrag(toSketch(viewPoint));
  } else if (*sketch_.selectMarquee) {
    sketch_.updateMarquee(viewPoint);
  } else if (travelTo(viewPoint) >= kDragStartThreshold) {
    if (sketch_.beginSelectDrag(toSketch(*press_))) {
      sketch_.updateSelectDrag(toSketch(viewPoint));
    } else {
      sketch_.beginMarquee(*press_, viewPoint);
    }
  }
}

void CanvasGestures::selectEnded(SketchPoint viewPoint, bool additive) {
  if (*sketch_.selectDrag) {
    sketch_.finishSelectDrag();
  } else if (*sketch_.selectMarquee) {
    sketch_.finishMarquee(additive);
  } else if (travelTo(viewPoint) < kDragStartThreshold) {
    sketch_.selectAtPoint(toSketch(*press_), additive);
  }
}

// --- The drawing tools

void CanvasGestures::polygonEnded(SketchPoint viewPoint) {
  if (travelTo(viewPoint) >= kPolygonTapSlop) return;
  sketch_.recordPointer(viewPoint);
  sketch_.addPolygonVertex(toSketch(*press_));
}

void CanvasGestures::draftChanged(SketchPoint viewPoint) {
  sketch_.recordPointer(viewPoint);
  if (*sketch_.draft) {
    sketch_.updateDraft(toSketch(viewPoint));
  } else {
    sketch_.beginDraft(toSketch(viewPoint));
  }
}

void CanvasGestures::draftEnded(SketchPoint viewPoint) {
  if (!*sketch_.draft) {
    sketch_.beginDraft(toSketch(*press_));
    sketch_.updateDraft(toSketch(viewPoint));
  }
  sketch_.commitDraft();
}

void CanvasGestures::trimClicked() {
  const SketchPoint point = toSketch(*press_);
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

double CanvasGestures::travelTo(SketchPoint viewPoint) const { return distanceBetween(*press_, viewPoint); }

bool CanvasGestures::hasCanvas() const {
  return sketch_.canvasSize->width > 0 && sketch_.canvasSize->height > 0;
}

}  // namespace ostrelon
