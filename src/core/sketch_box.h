// The one axis-aligned box of the program, in the unit of its points: sketch units with y up, or view
// points with y down.
#pragma once

#include <algorithm>
#include <array>

#include "core/sketch_point.h"

namespace ostrelon {

/// `minX` ≤ `maxX` and `minY` ≤ `maxY`, or a coordinate is not a number.
struct SketchBox {
  double minX = 0;
  double minY = 0;
  double maxX = 0;
  double maxY = 0;

  /// The box of two opposite corners, whichever they are.
  static SketchBox spanning(SketchPoint a, SketchPoint b) {
    // One comparison for both ends, so that a coordinate that is not a number stays in the box.
    return {b.x < a.x ? b.x : a.x, b.y < a.y ? b.y : a.y, b.x < a.x ? a.x : b.x, b.y < a.y ? a.y : b.y};
  }
  /// The box of a corner and what extends from it; a size may be negative.
  static SketchBox spanning(SketchPoint origin, SketchSize size) {
    return spanning(origin, origin + SketchPoint{size.width, size.height});
  }
  /// All points that lie within `reach` of a point on both axes.
  static SketchBox centered(SketchPoint center, double reach) {
    return {center.x - reach, center.y - reach, center.x + reach, center.y + reach};
  }

  double width() const { return maxX - minX; }
  double height() const { return maxY - minY; }
  SketchPoint center() const { return {minX + width() / 2, minY + height() / 2}; }
  /// From the least corner, counter-clockwise with y up.
  std::array<SketchPoint, 4> corners() const {
    return {{{minX, minY}, {maxX, minY}, {maxX, maxY}, {minX, maxY}}};
  }

  /// Grown on every side.
  SketchBox grown(double by) const { return {minX - by, minY - by, maxX + by, maxY + by}; }
  /// The smallest box that holds both. Coordinates of the other that are not numbers are passed over.
  SketchBox united(const SketchBox& other) const {
    return {std::min(minX, other.minX), std::min(minY, other.minY), std::max(maxX, other.maxX),
            std::max(maxY, other.maxY)};
  }
  SketchBox united(SketchPoint point) const { return united({point.x, point.y, point.x, point.y}); }
  /// What both hold; only where they overlap.
  SketchBox intersected(const SketchBox& other) const {
    return {std::max(minX, other.minX), std::max(minY, other.minY), std::min(maxX, other.maxX),
            std::min(maxY, other.maxY)};
  }

  /// True where the two share a point, be it of their edges; false when a coordinate is not a number.
  bool overlaps(const SketchBox& other) const {
    return minX <= other.maxX && other.minX <= maxX && minY <= other.maxY && other.minY <= maxY;
  }
  /// The edges count as within.
  bool contains(SketchPoint point) const {
    return minX <= point.x && point.x <= maxX && minY <= point.y && point.y <= maxY;
  }
  bool contains(const SketchBox& other) const {
    return minX <= other.minX && other.maxX <= maxX && minY <= other.minY && other.maxY <= maxY;
  }
  friend bool operator==(const SketchBox&, const SketchBox&) = default;
};

inline bool isFinite(const SketchBox& box) {
  return isFinite(SketchPoint{box.minX, box.minY}) && isFinite(SketchPoint{box.maxX, box.maxY});
}

}  // namespace ostrelon
