// Which entity lies under the pointer: the one pick of the program.
#pragma once

#include <optional>

#include "core/entity_source.h"
#include "core/sketch_entity.h"

namespace ostrelon {

/// How far from an outline a click still hits it, view points.
inline constexpr double kEntityPickTolerance = 8.0;

struct EntityPick {
  SketchEntity entity;
  double distance = 0;  ///< sketch units
  friend bool operator==(const EntityPick&, const EntityPick&) = default;
};

/// The entity nearest to the point (sketch units) within the tolerance; of equally near ones the later in the
/// list, which is drawn last. `scale` is view points per sketch unit.
std::optional<EntityPick> pickEntityAtPoint(const EntitySource& entities, SketchPoint point, double scale);

}  // namespace ostrelon
