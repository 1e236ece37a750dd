#include "documents/saved_precision.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <optional>

#include "core/entity_bounds.h"

namespace ostrelon {
namespace {

// From here on the numbers of 32 bits are more than a 64th of an inch apart, 1/768 of a foot: below 2^14
// they are 2^(13 - 23) apart, which is 1/1024, and from there on 1/512.
constexpr double kFarFromOrigin = 16384;

double farthestOf(const SketchBox& box) {
  return std::max({std::abs(box.minX), std::abs(box.maxX), std::abs(box.minY), std::abs(box.maxY)});
}

bool isSameInFile(SketchPoint a, SketchPoint b) {
  return static_cast<float>(a.x) == static_cast<float>(b.x) &&
         static_cast<float>(a.y) == static_cast<float>(b.y);
}

bool falls(SketchPoint from, SketchPoint to) { return from != to && isSameInFile(from, to); }

bool fallsTogether(const SketchEntity& entity) {
  const auto vanishes = [](double size) { return size != 0 && static_cast<float>(size) == 0; };
  return std::visit(Overloaded{[](const LineEntity& line) { return falls(line.from, line.to); },
                               [](const WallEntity& wall) { return falls(wall.from, wall.to); },
                               [&](const CircleEntity& circle) { return vanishes(circle.radius); },
                               [&](const ArcEntity& arc) { return vanishes(arc.radius); },
                               [&](const RectangleEntity& rectangle) {
                                 return vanishes(rectangle.size.width) || vanishes(rectangle.size.height);
                               },
                               [](const PolygonEntity& polygon) {
                                 const auto& vertices = polygon.vertices.list();
                                 return std::adjacent_find(vertices.begin(), vertices.end(), falls) !=
                                        vertices.end();
                               }},
                    entity);
}

}  // namespace

bool liesFarFromOrigin(const SketchBox& box) { return farthestOf(box) >= kFarFromOrigin; }

std::string farFromOriginText(const SketchBox& box) {
  const double farthest = farthestOf(box);
  const double spacing = std::exp2(std::floor(std::log2(farthest)) - 23) * 12;
  return fmt::format(
      "The drawing lies up to {:.0f} feet from the origin, where a saved file keeps places {:.2g} inches "
      "apart",
      farthest, spacing);
}

SavedPrecision savedPrecision(const EntityList& entities) {
  SavedPrecision precision;
  std::optional<SketchBox> bounds;
  for (const SketchEntity& entity : entities) {
    const SketchBox box = entityBounds(entity);
    if (!isFinite(box)) continue;
    bounds = bounds ? bounds->united(box) : box;
    if (fallsTogether(entity)) ++precision.merged;
  }
  if (bounds && liesFarFromOrigin(*bounds)) precision.farText = farFromOriginText(*bounds);
  return precision;
}

}  // namespace ostrelon
