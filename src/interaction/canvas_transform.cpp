#include "interaction/canvas_transform.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace ostrelon {

VisibleSketchRect visibleSketchRect(SketchSize canvasSize, const SketchViewport& viewport) {
  const SketchPoint a = viewPointToSketch({0, 0}, viewport);
  const SketchPoint b = viewPointToSketch({canvasSize.width, canvasSize.height}, viewport);
  const double minX = std::min(a.x, b.x);
  const double minY = std::min(a.y, b.y);
  return {minX, minY, std::max(a.x, b.x) - minX, std::max(a.y, b.y) - minY};
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
