#include "interaction/drawing_bounds.h"

#include <algorithm>

#include "interaction/canvas_transform.h"

namespace ostrelon {
namespace {

bool hasExtent(const SketchEntity& entity) {
  const auto* polygon = std::get_if<PolygonEntity>(&entity);
  return polygon == nullptr || !polygon->vertices.empty();
}

}  // namespace

std::optional<SketchBox> drawingBounds(const EntityList& entities) {
  std::optional<SketchBox> all;
  for (const SketchEntity& entity : entities) {
    if (!hasExtent(entity)) continue;
    const SketchBox box = entityBounds(entity);
    if (!isFinite(box)) continue;
    all = all ? all->united(box) : box;
  }
  return all;
}

SketchViewport centredViewport(SketchSize canvas) {
  return {{canvas.width * 0.5, canvas.height * 0.5}, kDefaultViewportScale};
}

SketchViewport fittedViewport(const EntityList& entities, SketchSize canvas) {
  return fittedViewport(drawingBounds(entities), canvas);
}

SketchViewport fittedViewport(const std::optional<SketchBox>& bounds, SketchSize canvas) {
  if (!bounds) return centredViewport(canvas);
  const double width = bounds->width() + 2 * kFitMargin;
  const double height = bounds->height() + 2 * kFitMargin;
  const double scale = clampedViewportScale(
      std::min((canvas.width - 2 * kFitMargin) / width, (canvas.height - 2 * kFitMargin) / height));
  // Halved before they are added, so that the middle of the widest drawing is still a number.
  const SketchPoint middle{bounds->minX * 0.5 + bounds->maxX * 0.5, bounds->minY * 0.5 + bounds->maxY * 0.5};
  return viewportWith(middle, {canvas.width * 0.5, canvas.height * 0.5}, scale);
}

}  // namespace ostrelon
