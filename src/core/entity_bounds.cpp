#include "core/entity_bounds.h"

#include <cmath>

namespace ostrelon {

SketchBox entityBounds(const SketchEntity& entity) {
  return std::visit(
      Overloaded{
          [](const LineEntity& line) { return SketchBox::spanning(line.from, line.to); },
          [](const WallEntity& wall) { return SketchBox::spanning(wall.from, wall.to); },
          [](const CircleEntity& circle) {
            return SketchBox::centered(circle.center, std::fabs(circle.radius));
          },
          [](const ArcEntity& arc) { return SketchBox::centered(arc.center, std::fabs(arc.radius)); },
          [](const RectangleEntity& rectangle) {
            return SketchBox::spanning(rectangle.origin, rectangle.size);
          },
          [](const PolygonEntity& polygon) {
            if (polygon.vertices.empty()) return SketchBox{};
            SketchBox box = SketchBox::spanning(polygon.vertices[0], polygon.vertices[0]);
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
