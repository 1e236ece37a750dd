// The axis-aligned boxes of entities, in sketch units.
#pragma once

#include "core/sketch_box.h"
#include "core/sketch_entity.h"

namespace ostrelon {

/// The box that holds every point of the entity's outline, and every point to which it can be
/// snapped. A wall is its centre line and an arc the box of its whole circle. Not finite where the
/// entity is not; a polygon of no vertices is the point (0, 0).
SketchBox entityBounds(const SketchEntity& entity);

}  // namespace ostrelon
