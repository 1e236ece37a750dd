// The drawing of the benchmarks: a plan on a square lattice of ten units, so that a larger drawing covers
// more ground at the same density.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/entity_list.h"
#include "core/wall_system.h"

namespace ostrelon {

inline constexpr double kPlanPitch = 10;  // sketch units from one entity to the next

inline std::size_t planColumns(std::size_t count) {
  return std::max<std::size_t>(1, static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count)))));
}

/// Where the entity at this position of a plan stands. The middle of the plan is the origin.
inline SketchPoint planPlace(std::size_t position, std::size_t count) {
  const std::size_t columns = planColumns(count);
  const double half = static_cast<double>(columns / 2);
  return {kPlanPitch * (static_cast<double>(position % columns) - half),
          kPlanPitch * (static_cast<double>(position / columns) - half)};
}

/// Half lines, a fifth walls, the rest rectangles, circles and polygons, each about 8 units wide.
inline EntityList plan(std::size_t count) {
  const UUID system = defaultWallSystems().front().id;
  std::vector<SketchEntity> entities;
  entities.reserve(count);
  for (std::size_t i = 0; i < count; ++i) {
    const SketchPoint at = planPlace(i, count);
    const UUID id = UUID::random();
    const std::size_t kind = i % 10;
    if (kind == 1 || kind == 6) {
      entities.emplace_back(WallEntity{id, at, at + SketchPoint{8, 0}, system});
    } else if (kind == 3) {
      entities.emplace_back(CircleEntity{id, at, 4});
    } else if (kind == 5) {
      entities.emplace_back(RectangleEntity{id, at, {8, 6}});
    } else if (kind == 8) {
      entities.emplace_back(
          PolygonEntity{id, PolygonVertices({at, at + SketchPoint{8, 1}, at + SketchPoint{4, 7}})});
    } else {
      entities.emplace_back(LineEntity{id, at, at + SketchPoint{7, kind % 2 == 0 ? 4.0 : -4.0}});
    }
  }
  return EntityList(std::move(entities));
}

}  // namespace ostrelon
