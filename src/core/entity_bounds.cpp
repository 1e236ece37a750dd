#include "core/entity_bounds.h"

#include <algorithm>
#include <cmath>

namespace ostrelon {
namespace {

SketchBox boxOf(SketchPoint a, SketchPoint b) {
  return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}

SketchBox boxOfCircle(SketchPoint center, double radius) {
  const double reach = std::fabs(radius);
  return {center.x - reach, center.y - reach, center.x + reach, center.y + reach};
}

}  // namespace

SketchBox entityBounds(const SketchEntity& entity) {
  return std::visit(Overloaded{
                        [](const LineEntity& line) { return boxOf(line.from, line.to); },
                        [](const WallEntity& wall) { return boxOf(wall.from, wall.to); },
                        [](const CircleEntity& circle) { return boxOfCircle(circle.center, circle.radius); },
                        [](const ArcEntity& arc) { return boxOfCircle(arc.center, arc.radius); },
                        [](const RectangleEntity& rectangle) {
                          return boxOf(rectangle.origin, {rectangle.origin.x + rectangle.size.width,
                                                          rectangle.origin.y + rectangle.size.height});
                        },
                        [](const PolygonEntity& polygon) {
                          if (polygon.vertices.empty()) return SketchBox{};
                          SketchBox box = boxOf(polygon.vertices[0], polygon.vertices[0]);
                          for (const SketchPoint& vertex : polygon.vertices) {
                            // Written so that a coordinate that is not a number makes the box not a number.
                            box.minX = vertex.x >= box.minX ? box.minX : vertex.x;
                            box.minY = vertex.y >= box.minY ? box.minY : vertex.y;
                            box.maxX = vertex.x <= box.maxX ? box.maxX : vertex.x;
                            box.maxY = vertex.y <= box.maxY ? box.maxY : vertex.y;
                            if (std::isnan(vertex.x) || std::isnan(vertex.y))
                              return SketchBox{vertex.x, vertex.y, vertex.x, vertex.y};
                          }
                          return box;
                        },
                    },
                    entity);
}

}  // namespace ostrelon
