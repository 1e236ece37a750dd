#include "interaction/entity_shape.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/circle.h"
#include "interaction/canvas_clipping.h"

namespace ostrelon {

namespace {

/// Dashes far outside would only be counted, so dashed lines are cut closer.
constexpr double kDashClipMargin = 1024;
/// Circles of a larger radius, view points, are painted by what is seen of them.
constexpr double kLargestPlainRadius = 8192;

bool isPlainEllipse(const CanvasEllipse& ellipse, const SketchBox& box) {
  return ellipse.radius <= kLargestPlainRadius && box.contains(ellipse.center);
}

SketchBox boundsOf(std::span<const SketchPoint> points) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  SketchBox bounds{inf, inf, -inf, -inf};
  for (const SketchPoint p : points) bounds = bounds.united(p);
  return bounds;
}

bool isWithin(std::span<const SketchPoint> points, const SketchBox& box) {
  return std::all_of(points.begin(), points.end(), [&box](SketchPoint p) { return box.contains(p); });
}

/// Dashed lines are cut one segment at a time, each with the phase that it has on the whole line.
void strokeCutDashes(CanvasPainter& painter, std::span<const SketchPoint> points, bool closed,
                     const SketchBox& box, Stroke stroke) {
  const double period = stroke.dash.on + stroke.dash.off;
  double along = stroke.dashOffset;
  const std::size_t count = closed ? points.size() : points.size() - 1;
  for (std::size_t i = 0; i < count; ++i) {
    const SketchPoint from = points[i];
    const SketchPoint to = points[(i + 1) % points.size()];
    if (const auto piece = clippedSegment({from, to}, box)) {
      const double phase = std::fmod(along + distanceBetween(from, piece->from), period);
      if (!std::isfinite(phase)) continue;
      stroke.dashOffset = phase;
      CanvasPath path;
      path.addSegment(piece->from, piece->to);
      painter.strokePath(path, stroke);
    }
    along = std::fmod(along + distanceBetween(from, to), period);
  }
}

}  // namespace

double penMillimetres(const SketchEntity& entity) {
  constexpr double kWall = 0.5;
  constexpr double kLine = 0.25;
  constexpr double kCurve = 0.18;
  return std::visit(Overloaded{
                        [](const LineEntity&) { return kLine; },
                        [](const WallEntity&) { return kWall; },
                        [](const CircleEntity&) { return kCurve; },
                        [](const ArcEntity&) { return kCurve; },
                        [](const RectangleEntity&) { return kLine; },
                        [](const PolygonEntity&) { return kLine; },
                    },
                    entity);
}

void outlineEntity(const SketchEntity& entity, double wallThickness, const CanvasFrame& frame,
                   EntityShape& shape) {
  using Kind = EntityShape::Kind;
  shape.path.clear();
  shape.path.begin();
  shape.arc.reset();
  const auto add = [&](SketchPoint point) { shape.path.add(frame.toView(point)); };
  const auto closedPath = [&shape] {
    shape.path.close();
    return shape.points().empty() ? Kind::nothing : Kind::closedPath;
  };
  shape.kind = std::visit(
      Overloaded{
          [&](const LineEntity& line) {
            add(line.from);
            add(line.to);
            return Kind::polyline;
          },
          [&](const WallEntity& wall) {
            for (const SketchPoint corner : wallCorners(wall.from, wall.to, wallThickness)) add(corner);
            return closedPath();
          },
          [&](const CircleEntity& circle) {
            shape.ellipse = {frame.toView(circle.center), std::abs(circle.radius) * frame.scale()};
            return isFinite(shape.ellipse.center) && std::isfinite(shape.ellipse.radius) ? Kind::ellipse
                                                                                         : Kind::nothing;
          },
          [&](const ArcEntity& arc) {
            const double sweep = arcSpan(arc.startAngle, arc.endAngle);
            // Written so that a sweep that is not a number paints nothing either.
            if (!(sweep > kSmallestArcSweep)) return Kind::nothing;
            visitArcPoints(arc.center, arc.radius, arc.startAngle, sweep, add);
            shape.arc = {frame.toView(arc.center), arc.radius * frame.scale(), arc.startAngle, sweep};
            return Kind::polyline;
          },
          [&](const RectangleEntity& rectangle) {
            const SketchBox box = SketchBox::spanning(rectangle.origin, rectangle.size);
            for (const SketchPoint corner : box.corners()) add(corner);
            return closedPath();
          },
          [&](const PolygonEntity& polygon) {
            for (const SketchPoint vertex : polygon.vertices) add(vertex);
            return closedPath();
          },
      },
      entity);
}

SketchBox entityViewBounds(const SketchEntity& entity, double wallThickness, const SketchViewport& viewport) {
  const auto box = [&viewport](SketchPoint a, SketchPoint b, double margin) {
    const SketchPoint corners[] = {sketchPointToView(a, viewport), sketchPointToView(b, viewport)};
    return boundsOf(corners).grown(std::abs(margin) * viewport.scale);
  };
  return std::visit(
      Overloaded{
          [&](const LineEntity& line) { return box(line.from, line.to, 0); },
          [&](const WallEntity& wall) { return box(wall.from, wall.to, wallThickness / 2); },
          [&](const CircleEntity& circle) { return box(circle.center, circle.center, circle.radius); },
          [&](const ArcEntity& arc) { return box(arc.center, arc.center, arc.radius); },
          [&](const RectangleEntity& rectangle) {
            return box(rectangle.origin,
                       rectangle.origin + SketchPoint{rectangle.size.width, rectangle.size.height}, 0);
          },
          [&](const PolygonEntity& polygon) {
            const SketchBox bounds = boundsOf(polygon.vertices.list());
            if (!(bounds.minX <= bounds.maxX)) return bounds;
            return box({bounds.minX, bounds.minY}, {bounds.maxX, bounds.maxY}, 0);
          },
      },
      entity);
}

void strokeShape(CanvasPainter& painter, const CanvasFrame& frame, const EntityShape& shape,
                 const Stroke& stroke) {
  const SketchBox box = frame.clipBox();
  const bool closed = shape.kind == EntityShape::Kind::closedPath;
  CanvasPath cut;
  switch (shape.kind) {
    case EntityShape::Kind::nothing:
      return;
    case EntityShape::Kind::ellipse:
      if (isPlainEllipse(shape.ellipse, box)) {
        painter.strokeEllipse(shape.ellipse, stroke);
        return;
      }
      addClippedCircle(shape.ellipse.center, shape.ellipse.radius, box, cut);
      break;
    case EntityShape::Kind::polyline:
    case EntityShape::Kind::closedPath:
      if (isWithin(shape.points(), stroke.isDashed() ? frame.paintedRect().grown(kDashClipMargin) : box)) {
        if (shape.arc) {
          painter.strokeArc(*shape.arc, shape.path, stroke);
        } else {
          painter.strokePath(shape.path, stroke);
        }
        return;
      }
      if (stroke.isDashed()) {
        strokeCutDashes(painter, shape.points(), closed, frame.paintedRect().grown(kDashClipMargin), stroke);
        return;
      }
      addClippedPolyline(shape.points(), closed, box, cut);
      break;
  }
  if (!cut.empty()) painter.strokePath(cut, stroke);
}

void fillShape(CanvasPainter& painter, const CanvasFrame& frame, const EntityShape& shape, const Fill& fill) {
  if (!shape.hasArea()) return;
  const SketchBox box = frame.clipBox();
  std::vector<SketchPoint> polygon;
  if (shape.kind == EntityShape::Kind::ellipse) {
    if (isPlainEllipse(shape.ellipse, box)) {
      painter.fillEllipse(shape.ellipse, fill);
      return;
    }
    polygon = clippedDisc(shape.ellipse.center, shape.ellipse.radius, box);
  } else {
    if (isWithin(shape.points(), box)) {
      painter.fillPath(shape.path, fill);
      return;
    }
    polygon = clippedPolygon(shape.points(), box);
  }
  if (polygon.size() < 3) return;
  CanvasPath path;
  path.addPiece(polygon, true);
  painter.fillPath(path, fill);
}

void strokeSegment(CanvasPainter& painter, const CanvasFrame& frame, const CanvasSegment& segment,
                   const Stroke& stroke) {
  EntityShape shape;
  shape.kind = EntityShape::Kind::polyline;
  shape.path.addSegment(segment.from, segment.to);
  strokeShape(painter, frame, shape, stroke);
}

}  // namespace ostrelon
