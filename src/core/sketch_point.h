// The pair values of the program, and the arithmetic of points. A position is in sketch units (one
// unit is one foot, y pointing up) unless a name or comment says view points (y pointing down). A
// point stands for a vector as well.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>

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

constexpr double dot(SketchPoint a, SketchPoint b) { return a.x * b.x + a.y * b.y; }
/// Positive where `b` points to the left of `a` (with y up).
constexpr double cross(SketchPoint a, SketchPoint b) { return a.x * b.y - a.y * b.x; }
constexpr double squaredLength(SketchPoint vector) { return dot(vector, vector); }
inline double lengthOf(SketchPoint vector) { return std::hypot(vector.x, vector.y); }
/// The vector turned by a right angle to its left (with y up), as long as before.
constexpr SketchPoint perpendicular(SketchPoint vector) { return {-vector.y, vector.x}; }
constexpr SketchPoint middleOf(SketchPoint a, SketchPoint b) { return {(a.x + b.x) / 2, (a.y + b.y) / 2}; }
inline bool isFinite(SketchPoint point) { return std::isfinite(point.x) && std::isfinite(point.y); }

inline bool areFinite(std::span<const SketchPoint> points) {
  return std::all_of(points.begin(), points.end(), [](SketchPoint point) { return isFinite(point); });
}

/// Euclidean distance, in the unit of the points.
inline double distanceBetween(SketchPoint a, SketchPoint b) { return lengthOf(b - a); }

}  // namespace ostrelon
