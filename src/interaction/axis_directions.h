// Arithmetic of directions in degrees, and exact steps along multiples of 45 degrees.
#pragma once

#include "core/sketch_point.h"

namespace ostrelon {

/// The smaller of the two turns between two angles in degrees, 0 to 180.
double circularDistance(double a, double b);
/// The unit vector of a direction in degrees; exact for multiples of 90.
SketchPoint unitVector(double degrees);
/// The length of a vector along a direction in degrees; negative when it points away.
double alongDirection(SketchPoint vector, double degrees);
/// The point at `length` from `start` along a multiple of 45 degrees, exactly on the line: both
/// coordinates of a diagonal differ from the start by the same amount.
SketchPoint pointAlongAxis(SketchPoint start, double degrees, double length);

}  // namespace ostrelon
