#include "interaction/drawing_bounds.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ostrelon {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr DrawingBounds kNothing{kInfinity, kInfinity, -kInfinity, -kInfinity};

void include(DrawingBounds& bounds, SketchPoint point) {
  bounds.minX = std::min(bounds.minX, point.x);
  bounds.minY = std::min(bounds.minY, point.y);
  bounds.maxX = std::max(bounds.maxX, point.x);
  bounds.maxY = std::max(bounds.maxY, point.y);
}

bool isFinite(const DrawingBounds& bounds) {
  return std::isfinite(bounds.minX) && std::isfinite(bounds.minY) && std::isfinite(bounds.maxX) &&
         std::isfinite(bounds.maxY);
}

DrawingBounds boundsOf(std::initializer_list<SketchPoint> points) {
  DrawingBounds bounds = kNothing;
  for (const SketchPoint& point : points) include(bounds, point);
  return bounds;
}

DrawingBounds boundsOfCircle(SketchPoint center, double radius) {
  return boundsOf({center - SketchPoint{radius, radius}, center + SketchPoint{radius, radius}});
}

}  // namespace

std::optional<DrawingBounds> fitBounds(const SketchEntity& entity) {
  const DrawingBounds bounds = std::visit(
      Overloaded{
          [](const LineEntity& line) { return boundsOf({line.from, line.to}); },
          [](const WallEntity& wall) { return boundsOf({wall.from, wall.to}); },
          [](const CircleEntity& circle) { return boundsOfCircle(circle.center, circle.radius); },
          [](const ArcEntity& arc) { return boundsOfCircle(arc.center, arc.radius); },
          [](const RectangleEntity& rectangle) {
            const auto [width, height] = rectangle.size;
            return boundsOf({rectangle.origin, rectangle.origin + SketchPoint{width, height}});
          },
          [](const PolygonEntity& polygon) {
            DrawingBounds around = kNothing;
            for (const SketchPoint& vertex : polygon.vertices) include(around, vertex);
            return around;
          },
      },
      entity);
  if (!isFinite(bounds)) return std::nullopt;
  return bounds;
}

std::optional<DrawingBounds> drawingBounds(const EntityList& entities) {
  DrawingBounds all = kNothing;
  for (const SketchEntity& entity : entities) {
    const auto bounds = fitBounds(entity);
    if (!bounds) continue;
    include(all, {bounds->minX, bounds->minY});
    include(all, {bounds->maxX, bounds->maxY});
  }
  if (!isFinite(all)) return std::nullopt;
  return all;
}

}  // namespace ostrelon
