#include "geometry/outline.h"

#include <algorithm>

namespace ostrelon {

double signedArea(std::span<const SketchPoint> outline) {
  double twice = 0;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    // From the first point, so that a small outline far from the origin keeps its digits.
    twice += cross(outline[i] - outline[0], outline[(i + 1) % outline.size()] - outline[0]);
  }
  return twice / 2;
}

SketchBox outlineBox(std::span<const SketchPoint> outline) {
  SketchBox box{outline[0].x, outline[0].y, outline[0].x, outline[0].y};
  for (const SketchPoint point : outline) {
    box.minX = std::min(box.minX, point.x);
    box.minY = std::min(box.minY, point.y);
    box.maxX = std::max(box.maxX, point.x);
    box.maxY = std::max(box.maxY, point.y);
  }
  return box;
}

bool isWithinOutline(std::span<const SketchPoint> outline, SketchPoint point) {
  bool isInside = false;
  for (std::size_t i = 0; i < outline.size(); ++i) {
    const SketchPoint a = outline[i];
    const SketchPoint b = outline[(i + 1) % outline.size()];
    if ((a.y > point.y) == (b.y > point.y)) continue;
    if (point.x < a.x + (b.x - a.x) * ((point.y - a.y) / (b.y - a.y))) isInside = !isInside;
  }
  return isInside;
}

}  // namespace ostrelon
