// Gestures of the drawing tools that have not become entities yet. Sketch units.
#pragma once

#include <vector>

#include "core/sketch_point.h"

namespace ostrelon {

/// The gesture of a two-point tool.
struct SketchDraft {
  SketchPoint start;    ///< the snapped first point; never changes
  SketchPoint current;  ///< the snapped second point
  friend bool operator==(const SketchDraft&, const SketchDraft&) = default;
};

/// A polygon that grows click by click.
struct PolygonDraft {
  std::vector<SketchPoint> vertices;  ///< placed so far, one or more
  SketchPoint current;                ///< the rubber end
  friend bool operator==(const PolygonDraft&, const PolygonDraft&) = default;
};

}  // namespace ostrelon
