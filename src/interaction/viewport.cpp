// Moving the view. It is neither undoable nor part of what makes a document dirty.
#include <cmath>

#include "interaction/board.h"
#include "interaction/canvas_transform.h"
#include "interaction/drawing_bounds.h"

namespace ostrelon {
void Board::zoom(double factor, SketchPoint viewAnchor) {
  if (!(factor > 0)) return;
  const SketchViewport& old = viewport();
  const double scale = clampedViewportScale(factor * old.scale);
  const SketchViewport zoomed = viewportWith(viewPointToSketch(viewAnchor, old), viewAnchor, scale);
  if (std::isfinite(scale) && isFinite(zoomed.pan)) setViewport(zoomed);
}

void Board::zoomToFit(SketchSize canvas) { setViewport(fittedViewport(sketch_.entities(), canvas)); }

void Board::resetViewport(SketchSize canvas) { setViewport(centredViewport(canvas)); }

void Board::pan(double dx, double dy) {
  const SketchPoint pan = viewport().pan + SketchPoint{dx, dy};
  if (isFinite(pan)) setViewport({pan, scale()});
}

void Board::resizeCanvas(SketchSize size) {
  if (!(size.width > 0) || !(size.height > 0) || !isFinite(SketchPoint{size.width, size.height})) return;
  changeView([&](BoardView& changed) {
    const bool needsCentring =
        !changed.isInitialized || changed.canvasSize.width <= 1 || changed.canvasSize.height <= 1;
    changed.canvasSize = size;
    if (!needsCentring) return;
    changed.viewport = centredViewport(size);
    changed.isInitialized = true;
  });
}

void Board::setViewport(const SketchViewport& viewport) {
  changeView([&](BoardView& changed) { changed.viewport = viewport; });
}

}  // namespace ostrelon
