// Measures of closed outlines, sketch units. The last point is followed by the first; it does not repeat it.
#pragma once

#include <span>

#include "core/sketch_box.h"
#include "core/sketch_point.h"

namespace ostrelon {

/// The enclosed area, above 0 for an outline that runs counter-clockwise.
double signedArea(std::span<const SketchPoint> outline);
/// The box around the points, of which there must be one.
SketchBox outlineBox(std::span<const SketchPoint> outline);
/// Whether the outline goes around the point, by the crossings of a ray to the right.
bool isWithinOutline(std::span<const SketchPoint> outline, SketchPoint point);

}  // namespace ostrelon
