// Angles and circles. Angles are radians, counter-clockwise from the right, unless a name says degrees.
#pragma once

#include <numbers>

#include "core/sketch_point.h"

namespace ostrelon {

inline constexpr double kFullTurn = 2 * std::numbers::pi;
/// The number of equal steps in which arcs and circles are sampled and painted.
inline constexpr int kArcSteps = 32;

constexpr double degreesOf(double radians) { return radians * 180 / std::numbers::pi; }
constexpr double radiansOf(double degrees) { return degrees * std::numbers::pi / 180; }

/// The floating remainder of an angle by 2π, in 0 up to but not including 2π.
double normalizedAngle(double angle);
/// The counter-clockwise span from the first angle to the second, 0 up to but not including 2π.
double arcSpan(double startAngle, double endAngle);
/// Direction of a vector in degrees, 0 up to but not including 360.
double directionDegrees(double dx, double dy);

/// The direction in which a point is seen from the centre, -π to π.
inline double angleFrom(SketchPoint center, SketchPoint point) {
  return std::atan2(point.y - center.y, point.x - center.x);
}
inline SketchPoint pointOnCircle(SketchPoint center, double radius, double angle) {
  return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
}
/// Visits the `kArcSteps` + 1 points of an arc from its start to the end of its sweep.
template <class Visit>
void visitArcPoints(SketchPoint center, double radius, double startAngle, double sweep, Visit visit) {
  for (int i = 0; i <= kArcSteps; ++i)
    visit(pointOnCircle(center, radius, startAngle + sweep * i / kArcSteps));
}

}  // namespace ostrelon
