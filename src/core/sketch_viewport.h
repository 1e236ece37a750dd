// The view of the sketch on the canvas, and the one mapping between the two: view x = pan.x + x·scale,
// view y = pan.y − y·scale. View points have their origin at the top left of the canvas, y down.
#pragma once

#include "core/sketch_point.h"

namespace ostrelon {

inline constexpr double kDefaultViewportScale = 4.0;

struct SketchViewport {
  SketchPoint pan;                       ///< view position of the sketch origin, view points
  double scale = kDefaultViewportScale;  ///< view points per sketch unit
  friend bool operator==(const SketchViewport&, const SketchViewport&) = default;
};

inline SketchPoint viewPointToSketch(SketchPoint viewPoint, const SketchViewport& viewport) {
  return {(viewPoint.x - viewport.pan.x) / viewport.scale, -(viewPoint.y - viewport.pan.y) / viewport.scale};
}
inline SketchPoint sketchPointToView(SketchPoint point, const SketchViewport& viewport) {
  return {viewport.pan.x + point.x * viewport.scale, viewport.pan.y - point.y * viewport.scale};
}
/// The view of this scale that shows a point of the sketch at a view point.
inline SketchViewport viewportWith(SketchPoint point, SketchPoint atViewPoint, double scale) {
  return {{atViewPoint.x - point.x * scale, atViewPoint.y + point.y * scale}, scale};
}

}  // namespace ostrelon
