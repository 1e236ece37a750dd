#include "core/circle.h"

namespace ostrelon {

double normalizedAngle(double angle) {
  const double remainder = std::fmod(angle, kFullTurn);
  if (remainder >= 0) return remainder;
  // A remainder a hair below 0 would round up to the full turn itself.
  const double turned = remainder + kFullTurn;
  return turned < kFullTurn ? turned : 0;
}

double arcSpan(double startAngle, double endAngle) { return normalizedAngle(endAngle - startAngle); }

double directionDegrees(double dx, double dy) {
  const double angle = degreesOf(std::atan2(dy, dx));
  if (angle >= 0) return angle;
  const double turned = angle + 360;
  return turned < 360 ? turned : 0;
}

}  // namespace ostrelon
