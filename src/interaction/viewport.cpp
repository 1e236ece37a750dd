// Moving the view. It is neither undoable nor part of what makes a document dirty.
#include <cmath>

#include "core/sketch_view_model.h"
#include "interaction/canvas_transform.h"
#include "interaction/drawing_bounds.h"

namespace ostrelon {
void SketchViewModel::zoomViewport(double factor, SketchPoint viewAnchor) {
  if (!(factor > 0)) return;
  const SketchViewport& old = viewport;
  const double scale = clampedViewportScale(factor * old.scale);
  const SketchViewport zoomed = viewportWith(viewPointToSketch(viewAnchor, old), viewAnchor, scale);
  if (std::isfinite(scale) && isFinite(zoomed.pan)) viewport = zoomed;
}

void SketchViewModel::zoomToFit(SketchSize canvas) { viewport = fittedViewport(entities, canvas); }

void SketchViewModel::resetViewport(SketchSize canvas) { viewport = centredViewport(canvas); }

void SketchViewModel::panViewport(double dx, double dy) {
  const SketchPoint pan = viewport->pan + SketchPoint{dx, dy};
  if (isFinite(pan)) viewport = SketchViewport{pan, viewport->scale};
}

void SketchViewModel::updateCanvasSize(SketchSize size) {
  if (!(size.width > 0) || !(size.height > 0) || !isFinite(SketchPoint{size.width, size.height})) return;
  const ChangeScope scope(tracker_);
  const bool needsCentring = !hasInitializedViewport || canvasSize->width <= 1 || canvasSize->height <= 1;
  canvasSize = size;
  if (!needsCentring) return;
  viewport = centredViewport(size);
  hasInitializedViewport = true;
}

void SketchViewModel::setViewport(double panX, double panY, double scale) {
  viewport = SketchViewport{{panX, panY}, scale};
}

}  // namespace ostrelon
