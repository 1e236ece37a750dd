// The extent of a drawing, and the view that fits it.
#pragma once

#include <optional>

#include "core/entity_bounds.h"
#include "core/entity_list.h"
#include "core/sketch_viewport.h"

namespace ostrelon {

/// The box around all entities, sketch units: the centre line of a wall, the whole circle of an arc.
/// Polygons without vertices and entities that are not finite are left out; absent when none is left.
std::optional<SketchBox> drawingBounds(const EntityList& entities);

/// A fresh view: the sketch origin in the middle of a canvas of this size, view points.
SketchViewport centredViewport(SketchSize canvas);
/// The view that shows all entities in the middle of the canvas, with a margin around them; a fresh
/// view where there is nothing to show.
SketchViewport fittedViewport(const EntityList& entities, SketchSize canvas);
/// The same for what lies in a box, sketch units.
SketchViewport fittedViewport(const std::optional<SketchBox>& bounds, SketchSize canvas);

}  // namespace ostrelon
