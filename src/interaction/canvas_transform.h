// What of the sketch the canvas shows, the limits of the zoom, and the rule that picks the grid step
// from it. Nothing here allocates but the two labels.
#pragma once

#include <array>
#include <string>

#include "core/sketch_box.h"
#include "core/sketch_point.h"
#include "core/sketch_viewport.h"

namespace ostrelon {

inline constexpr double kMinimumViewportScale = 0.05;
inline constexpr double kMaximumViewportScale = 200.0;
inline constexpr double kZoomInFactor = 1.25;
inline constexpr double kZoomOutFactor = 0.8;
/// The margin of zoom to fit: counted in sketch units around the drawing, and again in view points.
inline constexpr double kFitMargin = 48.0;
/// The wanted distance of minor grid lines, view points.
inline constexpr double kGridTargetSpacing = 56.0;
/// The minor steps to choose from, sketch units.
inline constexpr std::array<double, 9> kGridSteps{1, 2, 5, 10, 20, 50, 100, 200, 500};
/// One major grid line each so many minor steps.
inline constexpr double kGridMajorEvery = 5;

/// The view of one drawing pass, handed to what is painted over it.
struct CanvasTransform {
  SketchViewport viewport;
  SketchSize canvasSize;  ///< view points
  friend bool operator==(const CanvasTransform&, const CanvasTransform&) = default;
};

/// What the canvas shows, sketch units.
SketchBox visibleSketchBox(SketchSize canvasSize, const SketchViewport& viewport);

/// The distance of minor grid lines at this scale, sketch units: the step nearest to 56 view points,
/// the smaller one of two equally near.
double gridStep(double scale);
/// The step as the viewport controls show it: `10'`.
std::string gridScaleLabel(double scale);
/// 100% is the scale of a fresh view.
std::string zoomPercentageLabel(double scale);

/// Holds a scale between the smallest and the largest one.
double clampedViewportScale(double scale);

}  // namespace ostrelon
