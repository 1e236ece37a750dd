#include "core/sketch_point.h"

#include <cmath>

namespace ostrelon {

double distanceBetween(SketchPoint a, SketchPoint b) { return std::hypot(b.x - a.x, b.y - a.y); }

}  // namespace ostrelon
