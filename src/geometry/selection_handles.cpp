#include "geometry/selection_handles.h"

#include <algorithm>

#include "core/circle.h"
#include "geometry/entity_geometry.h"

namespace ostrelon {
namespace {

using Kind = SelectionHandle::Kind;
using Moved = std::optional<SketchEntity>;

template <class Straight>
Moved draggedSegment(Kind handle, Straight segment, SketchPoint point) {
  if (handle == Kind::lineStart) {
    segment.from = point;
  } else if (handle == Kind::lineEnd) {
    segment.to = point;
  } else {
    return std::nullopt;
  }
  return segment;
}

Moved draggedCircle(Kind handle, CircleEntity circle, SketchPoint point) {
  if (handle == Kind::circleCenter) {
    circle.center = point;
  } else if (handle == Kind::circleRadius) {
    circle.radius = std::max(kMinimumCircleRadius, distanceBetween(circle.center, point));
  } else {
    return std::nullopt;
  }
  return circle;
}

Moved draggedRectangle(Kind handle, RectangleEntity rectangle, SketchPoint point) {
  const auto [x, y] = rectangle.origin;
  const double maxX = x + rectangle.size.width;
  const double maxY = y + rectangle.size.height;
  SketchPoint low = rectangle.origin;
  SketchPoint high{maxX, maxY};
  switch (handle) {
    case Kind::rectMinXMinY:
      low = {std::min(point.x, maxX - kMinimumRectangleSide),
             std::min(point.y, maxY - kMinimumRectangleSide)};
      break;
    case Kind::rectMaxXMaxY:
      // The pointer takes the opposite corner along when it crosses over.
      low = {std::min(x, point.x - kMinimumRectangleSide), std::min(y, point.y - kMinimumRectangleSide)};
      high = point;
      break;
    case Kind::rectMinXMaxY:
      low.x = std::min(point.x, maxX - kMinimumRectangleSide);
      high.y = std::max(point.y, y + kMinimumRectangleSide);
      break;
    case Kind::rectMaxXMinY:
      high.x = std::max(point.x, x + kMinimumRectangleSide);
      low.y = std::min(point.y, maxY - kMinimumRectangleSide);
      break;
    case Kind::polygonVertex:
    case Kind::lineStart:
    case Kind::lineEnd:
    case Kind::circleCenter:
    case Kind::circleRadius:
      return std::nullopt;
  }
  rectangle.origin = low;
  rectangle.size = {high.x - low.x, high.y - low.y};
  return rectangle;
}

Moved draggedPolygon(const SelectionHandle& handle, PolygonEntity polygon, std::size_t currentCount,
                     SketchPoint point) {
  if (handle.kind != Kind::polygonVertex || handle.index < 0) return std::nullopt;
  const auto index = static_cast<std::size_t>(handle.index);
  if (index >= currentCount || index >= polygon.vertices.size()) return std::nullopt;
  std::vector<SketchPoint> vertices = polygon.vertices.list();
  vertices[index] = point;
  polygon.vertices = PolygonVertices(std::move(vertices));
  return polygon;
}

}  // namespace

std::map<SelectionHandle, SketchPoint> selectionHandles(const SketchEntity& entity) {
  using Handles = std::map<SelectionHandle, SketchPoint>;
  const auto segment = [](SketchPoint from, SketchPoint to) {
    return Handles{{{Kind::lineStart}, from}, {{Kind::lineEnd}, to}};
  };
  return std::visit(Overloaded{
                        [&](const LineEntity& line) { return segment(line.from, line.to); },
                        [&](const WallEntity& wall) { return segment(wall.from, wall.to); },
                        [](const CircleEntity& circle) {
                          return Handles{
                              {{Kind::circleCenter}, circle.center},
                              {{Kind::circleRadius}, {circle.center.x + circle.radius, circle.center.y}}};
                        },
                        [&](const ArcEntity& arc) {
                          return segment(pointOnCircle(arc.center, arc.radius, arc.startAngle),
                                         pointOnCircle(arc.center, arc.radius, arc.endAngle));
                        },
                        [](const RectangleEntity& rectangle) {
                          const auto corners = rectangleCorners(rectangle.origin, rectangle.size);
                          return Handles{{{Kind::rectMinXMinY}, corners[0]},
                                         {{Kind::rectMaxXMinY}, corners[1]},
                                         {{Kind::rectMaxXMaxY}, corners[2]},
                                         {{Kind::rectMinXMaxY}, corners[3]}};
                        },
                        [](const PolygonEntity& polygon) {
                          Handles handles;
                          int index = 0;
                          for (const SketchPoint& vertex : polygon.vertices) {
                            handles.emplace(SelectionHandle::polygonVertex(index++), vertex);
                          }
                          return handles;
                        },
                    },
                    entity);
}

std::optional<SelectionHandle> hitSelectionHandle(const SketchEntity& entity, SketchPoint point,
                                                  double scale) {
  std::optional<SelectionHandle> nearest;
  double nearestDistance = kHandleHitRadius / scale;
  for (const auto& [handle, position] : selectionHandles(entity)) {
    const double distance = distanceBetween(position, point);
    if (nearest ? distance < nearestDistance : distance <= nearestDistance) {
      nearest = handle;
      nearestDistance = distance;
    }
  }
  return nearest;
}

std::optional<SketchPoint> handleFixedPoint(const SelectionHandle& handle, const SketchEntity& entity) {
  using Point = std::optional<SketchPoint>;
  const auto segmentEnd = [&](SketchPoint from, SketchPoint to) -> Point {
    if (handle.kind == Kind::lineStart) return to;
    if (handle.kind == Kind::lineEnd) return from;
    return std::nullopt;
  };
  return std::visit(Overloaded{
                        [&](const LineEntity& line) { return segmentEnd(line.from, line.to); },
                        [&](const WallEntity& wall) { return segmentEnd(wall.from, wall.to); },
                        [&](const CircleEntity& circle) {
                          return handle.kind == Kind::circleRadius ? Point(circle.center) : std::nullopt;
                        },
                        [](const ArcEntity&) { return Point(); },
                        [&](const RectangleEntity& rectangle) {
                          const auto corners = rectangleCorners(rectangle.origin, rectangle.size);
                          if (handle.kind == Kind::rectMinXMinY) return Point(corners[2]);
                          if (handle.kind == Kind::rectMaxXMinY) return Point(corners[3]);
                          if (handle.kind == Kind::rectMaxXMaxY) return Point(corners[0]);
                          if (handle.kind == Kind::rectMinXMaxY) return Point(corners[1]);
                          return Point();
                        },
                        [](const PolygonEntity&) { return Point(); },
                    },
                    entity);
}

std::optional<SketchEntity> applyHandleDrag(const SelectionHandle& handle, const SketchEntity& current,
                                            const SketchEntity& anchor, SketchPoint point) {
  if (current.index() != anchor.index()) return std::nullopt;
  Moved moved = std::visit(
      Overloaded{
          [&](const LineEntity& line) { return draggedSegment(handle.kind, line, point); },
          [&](const WallEntity& wall) { return draggedSegment(handle.kind, wall, point); },
          [&](const CircleEntity& circle) { return draggedCircle(handle.kind, circle, point); },
          [](const ArcEntity&) { return Moved(); },
          [&](const RectangleEntity& rectangle) { return draggedRectangle(handle.kind, rectangle, point); },
          [&](const PolygonEntity& polygon) {
            return draggedPolygon(handle, polygon, std::get<PolygonEntity>(current).vertices.size(), point);
          },
      },
      anchor);
  if (moved) *moved = withEntityID(std::move(*moved), entityID(current));
  return moved;
}

}  // namespace ostrelon
