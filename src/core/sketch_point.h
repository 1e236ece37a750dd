// The pair values of the program: positions, sizes and colours. A position is in sketch units (one
// unit is one foot, y pointing up) unless a name or comment says view points (y pointing down).
#pragma once

namespace ostrelon {

struct SketchPoint {
  double x = 0;
  double y = 0;

  friend bool operator==(const SketchPoint&, const SketchPoint&) = default;
  friend constexpr SketchPoint operator+(SketchPoint a, SketchPoint b) { return {a.x + b.x, a.y + b.y}; }
  friend constexpr SketchPoint operator-(SketchPoint a, SketchPoint b) { return {a.x - b.x, a.y - b.y}; }
  friend constexpr SketchPoint operator*(SketchPoint a, double factor) {
    return {a.x * factor, a.y * factor};
  }
};

struct SketchSize {
  double width = 0;
  double height = 0;

  friend bool operator==(const SketchSize&, const SketchSize&) = default;
};

/// Euclidean distance, in the unit of the points.
double distanceBetween(SketchPoint a, SketchPoint b);

}  // namespace ostrelon
