// The view of the sketch on the canvas: view x = pan.x + x·scale, view y = pan.y − y·scale.
#pragma once

#include "core/sketch_point.h"

namespace ostrelon {

inline constexpr double kDefaultViewportScale = 4.0;

struct SketchViewport {
  SketchPoint pan;                       ///< view position of the sketch origin, view points
  double scale = kDefaultViewportScale;  ///< view points per sketch unit
  friend bool operator==(const SketchViewport&, const SketchViewport&) = default;
};

}  // namespace ostrelon
