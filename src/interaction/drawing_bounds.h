// The extent of a drawing, as zoom to fit takes it.
#pragma once

#include <optional>

#include "core/entity_bounds.h"
#include "core/entity_list.h"

namespace ostrelon {

/// The box around all entities, sketch units: the centre line of a wall, the whole circle of an arc.
/// Polygons without vertices and entities that are not finite are left out; absent when none is left.
std::optional<SketchBox> drawingBounds(const EntityList& entities);

}  // namespace ostrelon
