// The extent of a drawing, as zoom to fit takes it.
#pragma once

#include <optional>

#include "core/entity_list.h"

namespace ostrelon {

/// Sketch units, edges included.
struct DrawingBounds {
  double minX = 0;
  double minY = 0;
  double maxX = 0;
  double maxY = 0;
  friend bool operator==(const DrawingBounds&, const DrawingBounds&) = default;
};

/// The box of one entity: the centre line of a wall, the whole circle of an arc. Absent for a polygon
/// without vertices and for an entity with a coordinate that is not finite.
std::optional<DrawingBounds> fitBounds(const SketchEntity& entity);
/// The box around all entities that have one; absent when none has.
std::optional<DrawingBounds> drawingBounds(const EntityList& entities);

}  // namespace ostrelon
