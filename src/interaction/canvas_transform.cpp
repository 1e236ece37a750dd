#include "interaction/canvas_transform.h"

#include <fmt/format.h>

#include <cmath>

namespace ostrelon {

SketchBox visibleSketchBox(SketchSize canvasSize, const SketchViewport& viewport) {
  return SketchBox::spanning(viewPointToSketch({0, 0}, viewport),
                             viewPointToSketch({canvasSize.width, canvasSize.height}, viewport));
}

double gridStep(double scale) {
  const double wanted = kGridTargetSpacing / scale;
  double best = kGridSteps.front();
  for (const double step : kGridSteps) {
    if (std::abs(step - wanted) < std::abs(best - wanted)) best = step;
  }
  return best;
}

std::string gridScaleLabel(double scale) { return std::to_string(std::lround(gridStep(scale))) + "'"; }

std::string zoomPercentageLabel(double scale) {
  return fmt::format("{:.0f}%", std::round(scale / kDefaultViewportScale * 100));
}

double clampedViewportScale(double scale) {
  if (scale <= kMinimumViewportScale) return kMinimumViewportScale;
  if (scale > kMaximumViewportScale) return kMaximumViewportScale;
  return scale;
}

}  // namespace ostrelon
