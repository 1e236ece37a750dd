#include "interaction/axis_directions.h"

#include <cmath>

#include "core/circle.h"

namespace ostrelon {

double circularDistance(double a, double b) {
  const double distance = std::fmod(std::abs(a - b), 360);
  return distance > 180 ? 360 - distance : distance;
}

SketchPoint unitVector(double degrees) {
  double within = std::fmod(degrees, 360);
  if (within < 0) within += 360;
  if (within == 0 || within == 360) return {1, 0};
  if (within == 90) return {0, 1};
  if (within == 180) return {-1, 0};
  if (within == 270) return {0, -1};
  const double radians = radiansOf(within);
  return {std::cos(radians), std::sin(radians)};
}

double alongDirection(SketchPoint vector, double degrees) { return dot(vector, unitVector(degrees)); }

SketchPoint pointAlongAxis(SketchPoint start, double degrees, double length) {
  const SketchPoint end = start + unitVector(degrees) * length;
  if (degrees == 0 || degrees == 180) return {end.x, start.y};
  if (degrees == 90 || degrees == 270) return {start.x, end.y};
  if (degrees == 45 || degrees == 225) {
    const double half = ((end.x - start.x) + (end.y - start.y)) / 2;
    return {start.x + half, start.y + half};
  }
  const double half = ((end.x - start.x) - (end.y - start.y)) / 2;
  return {start.x + half, start.y - half};
}

}  // namespace ostrelon
