#include "geometry/entity_geometry.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "core/circle.h"
#include "core/sketch_box.h"

namespace ostrelon {

bool angleInArcSpan(double angle, double startAngle, double endAngle) {
  const double a = normalizedAngle(angle);
  const double start = normalizedAngle(startAngle);
  const double end = normalizedAngle(endAngle);
  const bool isBehindStart = start - kGeometryEpsilon <= a;
  const bool isBeforeEnd = a <= end + kGeometryEpsilon;
  return start <= end ? isBehindStart && isBeforeEnd : isBehindStart || isBeforeEnd;
}

std::vector<SketchPoint> arcPoints(const ArcEntity& arc) {
  const double span = arcSpan(arc.startAngle, arc.endAngle);
  std::vector<SketchPoint> points;
  points.reserve(kArcSteps + 1);
  visitArcPoints(arc.center, arc.radius, arc.startAngle, span,
                 [&points](SketchPoint point) { points.push_back(point); });
  return points;
}

std::vector<Segment> polygonEdges(const std::vector<SketchPoint>& vertices) {
  std::vector<Segment> edges;
  if (vertices.size() < 2) return edges;
  edges.reserve(vertices.size());
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    edges.emplace_back(vertices[i], vertices[(i + 1) % vertices.size()]);
  }
  return edges;
}

std::vector<SketchPoint> closedPolygonRing(const std::vector<SketchPoint>& vertices) {
  std::vector<SketchPoint> ring = vertices;
  if (ring.size() >= 2 && distanceBetween(ring.front(), ring.back()) > 0) ring.push_back(ring.front());
  return ring;
}

std::vector<SketchPoint> rectangleCorners(SketchPoint origin, SketchSize size) {
  const double right = origin.x + size.width;
  const double top = origin.y + size.height;
  return {origin, {right, origin.y}, {right, top}, {origin.x, top}};
}

double distanceToSegment(SketchPoint point, SketchPoint start, SketchPoint end) {
  const SketchPoint d = end - start;
  const double lengthSquared = squaredLength(d);
  if (!(lengthSquared > 0)) return distanceBetween(point, start);
  const double t = std::clamp(dot(point - start, d) / lengthSquared, 0.0, 1.0);
  return distanceBetween(point, start + d * t);
}

double distanceToRectangle(SketchPoint point, SketchPoint origin, SketchSize size) {
  const SketchBox box = SketchBox::spanning(origin, size);
  const auto [minX, minY, maxX, maxY] = box;
  if (box.contains(point)) {
    return std::min({maxY - point.y, point.y - minY, maxX - point.x, point.x - minX});
  }
  const SketchPoint nearest{std::min(std::max(point.x, minX), maxX), std::min(std::max(point.y, minY), maxY)};
  return distanceBetween(point, nearest);
}

double distanceToPolygon(const std::vector<SketchPoint>& vertices, SketchPoint point) {
  if (vertices.size() == 1) return distanceBetween(point, vertices.front());
  double nearest = std::numeric_limits<double>::infinity();
  for (std::size_t i = 0; i < vertices.size(); ++i) {
    nearest = std::min(nearest, distanceToSegment(point, vertices[i], vertices[(i + 1) % vertices.size()]));
  }
  return nearest;
}

double distanceToEntity(const SketchEntity& entity, SketchPoint point) {
  const auto toCircle = [&](SketchPoint center, double radius) {
    return std::fabs(distanceBetween(point, center) - radius);
  };
  return std::visit(
      Overloaded{
          [&](const LineEntity& line) { return distanceToSegment(point, line.from, line.to); },
          [&](const WallEntity& wall) { return distanceToSegment(point, wall.from, wall.to); },
          [&](const CircleEntity& circle) { return toCircle(circle.center, circle.radius); },
          [&](const ArcEntity& arc) {
            const double angle = angleFrom(arc.center, point);
            if (angleInArcSpan(angle, arc.startAngle, arc.endAngle)) return toCircle(arc.center, arc.radius);
            return std::min(distanceBetween(point, pointOnCircle(arc.center, arc.radius, arc.startAngle)),
                            distanceBetween(point, pointOnCircle(arc.center, arc.radius, arc.endAngle)));
          },
          [&](const RectangleEntity& rectangle) {
            return distanceToRectangle(point, rectangle.origin, rectangle.size);
          },
          [&](const PolygonEntity& polygon) { return distanceToPolygon(polygon.vertices.list(), point); },
      },
      entity);
}

SketchPoint entityCentroid(const SketchEntity& entity) {
  return std::visit(Overloaded{
                        [](const LineEntity& line) { return middleOf(line.from, line.to); },
                        [](const WallEntity& wall) { return middleOf(wall.from, wall.to); },
                        [](const CircleEntity& circle) { return circle.center; },
                        [](const ArcEntity& arc) { return arc.center; },
                        [](const RectangleEntity& rectangle) {
                          return SketchPoint{rectangle.origin.x + rectangle.size.width / 2,
                                             rectangle.origin.y + rectangle.size.height / 2};
                        },
                        [](const PolygonEntity& polygon) {
                          if (polygon.vertices.empty()) return SketchPoint{};
                          SketchPoint sum;
                          for (const SketchPoint& vertex : polygon.vertices) sum = sum + vertex;
                          const auto count = static_cast<double>(polygon.vertices.size());
                          return SketchPoint{sum.x / count, sum.y / count};
                        },
                    },
                    entity);
}

std::optional<SketchPoint> selectionCentroid(const std::vector<SketchEntity>& entities) {
  if (entities.empty()) return std::nullopt;
  SketchPoint sum;
  for (const SketchEntity& entity : entities) sum = sum + entityCentroid(entity);
  const auto count = static_cast<double>(entities.size());
  return SketchPoint{sum.x / count, sum.y / count};
}

SketchEntity translatedEntity(const SketchEntity& entity, double dx, double dy) {
  const SketchPoint by{dx, dy};
  return std::visit(Overloaded{
                        [&](LineEntity line) -> SketchEntity {
                          line.from = line.from + by;
                          line.to = line.to + by;
                          return line;
                        },
                        [&](WallEntity wall) -> SketchEntity {
                          wall.from = wall.from + by;
                          wall.to = wall.to + by;
                          return wall;
                        },
                        [&](CircleEntity circle) -> SketchEntity {
                          circle.center = circle.center + by;
                          return circle;
                        },
                        [&](ArcEntity arc) -> SketchEntity {
                          arc.center = arc.center + by;
                          return arc;
                        },
                        [&](RectangleEntity rectangle) -> SketchEntity {
                          rectangle.origin = rectangle.origin + by;
                          return rectangle;
                        },
                        [&](PolygonEntity polygon) -> SketchEntity {
                          std::vector<SketchPoint> vertices = polygon.vertices.list();
                          for (SketchPoint& vertex : vertices) vertex = vertex + by;
                          polygon.vertices = PolygonVertices(std::move(vertices));
                          return polygon;
                        },
                    },
                    entity);
}

}  // namespace ostrelon
