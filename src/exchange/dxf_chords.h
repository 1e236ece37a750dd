// Ellipses and splines as chords.
#pragma once

#include <cstddef>
#include <vector>

#include "exchange/dxf_shapes.h"

namespace ostrelon {

/// Points along the curve from its start to its end, the chords between them within `tolerance` of it, in
/// its own unit. A whole ellipse ends where it began. One that is seen from its edge is the line between its
/// farthest points. No more than `most` points, and no more than a limit of their own.
std::vector<SketchPoint> curveChords(const DxfCurve& curve, double tolerance, std::size_t most);
std::vector<SketchPoint> splineChords(const DxfSpline& spline, double tolerance, std::size_t most);

}  // namespace ostrelon
