// Cutting geometry down to the neighbourhood of the canvas, in doubles, before a painter sees it.
// Painters count in small fixed-point or single-precision numbers and lose their way, or a lot of
// time, beyond some ten thousand view points. What is cut away lies outside the box; lines keep
// their direction and dashes their phase.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "interaction/canvas_painter.h"

namespace ostrelon {

/// The part of the segment within the box; absent when it has none or is not finite (Liang and
/// Barsky 1984).
std::optional<CanvasSegment> clippedSegment(const CanvasSegment& segment, const SketchBox& box);

/// Adds to `path` the pieces of a polyline that lie within the box. A polyline wholly within stays
/// one piece, closed when it was. Points that are not finite break it.
void addClippedPolyline(std::span<const SketchPoint> points, bool closed, const SketchBox& box,
                        CanvasPath& path);

/// The part of a closed polygon within the box, for filling (Sutherland and Hodgman 1974); edges
/// along the box may be added. Empty when a vertex is not finite.
std::vector<SketchPoint> clippedPolygon(std::span<const SketchPoint> vertices, const SketchBox& box);

/// Adds to `path` the pieces of a circle within the box as polylines that stay within 1/20 view
/// point of it. For radii so large that few pieces are seen.
void addClippedCircle(SketchPoint center, double radius, const SketchBox& box, CanvasPath& path);

/// The part of a disc within the box, to the same precision.
std::vector<SketchPoint> clippedDisc(SketchPoint center, double radius, const SketchBox& box);

}  // namespace ostrelon
