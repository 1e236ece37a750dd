// The outline of an entity on the canvas, and the ways to paint it. Entities, highlights, selections
// and drafts all paint the same shapes.
#pragma once

#include <optional>

#include "interaction/canvas_frame.h"

namespace ostrelon {

/// An outline in view points. Reused from entity to entity, so that painting many allocates nothing.
struct EntityShape {
  enum class Kind { nothing, polyline, closedPath, ellipse };

  Kind kind = Kind::nothing;
  CanvasPath path;  ///< of a polyline or closed path: one piece
  CanvasEllipse ellipse;
  std::optional<CanvasArc> arc;  ///< that the polyline is the chords of

  bool hasArea() const { return kind == Kind::closedPath || kind == Kind::ellipse; }
  std::span<const SketchPoint> points() const { return path.points(path.pieces().front()); }
};

/// A sweep of at most this, radians, paints nothing.
inline constexpr double kSmallestArcSweep = 1e-6;

/// The width of the entity's pen on paper, where each kind has its own: 0.50, 0.25 or 0.18 mm.
double penMillimetres(const SketchEntity& entity);

/// The outline of the entity; a wall's with this thickness, sketch units. A wall of no length has no
/// outline, nor has a polygon without vertices or anything that is not finite.
void outlineEntity(const SketchEntity& entity, double wallThickness, const CanvasFrame& frame,
                   EntityShape& shape);

/// What the entity covers, view points, strokes not counted. May be wider than need be; not finite
/// where the entity is not.
SketchBox entityViewBounds(const SketchEntity& entity, double wallThickness, const SketchViewport& viewport);

/// Strokes and fills a shape, cut to the frame's clip box.
void strokeShape(CanvasPainter& painter, const CanvasFrame& frame, const EntityShape& shape,
                 const Stroke& stroke);
void fillShape(CanvasPainter& painter, const CanvasFrame& frame, const EntityShape& shape, const Fill& fill);
void strokeSegment(CanvasPainter& painter, const CanvasFrame& frame, const CanvasSegment& segment,
                   const Stroke& stroke);

}  // namespace ostrelon
