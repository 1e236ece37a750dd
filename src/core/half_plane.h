// Cutting polygons by a line.
#pragma once

#include <span>
#include <vector>

#include "core/sketch_point.h"

namespace ostrelon {

/// The part of a closed polygon on one side of a line (one edge of Sutherland and Hodgman, "Reentrant polygon
/// clipping", 1974). `isInside(point)` is true on the side that stays; `crossing(a, b)` is where the edge
/// from `a` to `b`, whose ends lie on different sides, meets the line.
template <class IsInside, class Crossing>
std::vector<SketchPoint> cutByHalfPlane(std::span<const SketchPoint> polygon, const IsInside& isInside,
                                        const Crossing& crossing) {
  std::vector<SketchPoint> kept;
  if (polygon.empty()) return kept;
  kept.reserve(polygon.size() + 1);
  SketchPoint previous = polygon.back();
  bool wasInside = isInside(previous);
  for (const SketchPoint vertex : polygon) {
    const bool isKept = isInside(vertex);
    if (wasInside != isKept) kept.push_back(crossing(previous, vertex));
    if (isKept) kept.push_back(vertex);
    previous = vertex;
    wasInside = isKept;
  }
  return kept;
}

}  // namespace ostrelon
