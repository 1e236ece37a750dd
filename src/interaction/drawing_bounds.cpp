#include "interaction/drawing_bounds.h"

#include <algorithm>
#include <cmath>

namespace ostrelon {
namespace {

bool hasExtent(const SketchEntity& entity) {
  const auto* polygon = std::get_if<PolygonEntity>(&entity);
  return polygon == nullptr || !polygon->vertices.empty();
}

bool isFinite(const SketchBox& box) {
  return std::isfinite(box.minX) && std::isfinite(box.minY) && std::isfinite(box.maxX) &&
         std::isfinite(box.maxY);
}

}  // namespace

std::optional<SketchBox> drawingBounds(const EntityList& entities) {
  std::optional<SketchBox> all;
  for (const SketchEntity& entity : entities) {
    if (!hasExtent(entity)) continue;
    const SketchBox box = entityBounds(entity);
    if (!isFinite(box)) continue;
    if (!all) all = box;
    all = SketchBox{std::min(all->minX, box.minX), std::min(all->minY, box.minY),
                    std::max(all->maxX, box.maxX), std::max(all->maxY, box.maxY)};
  }
  return all;
}

}  // namespace ostrelon
