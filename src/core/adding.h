// Adding entities to a sketch. Each call is one undo step. Sketch units.
#pragma once

#include <optional>
#include <vector>

#include "core/messages.h"
#include "core/sketch.h"

namespace ostrelon {

/// The common end of all that add one entity. Its identifier must be new to the document.
void addEntity(Sketch& sketch, SketchEntity entity);
/// All of them as one undo step; none is nothing. Their identifiers must be new to the document.
void addEntities(Sketch& sketch, std::vector<SketchEntity> added);
void addLine(Sketch& sketch, SketchPoint from, SketchPoint to);
void addRectangle(Sketch& sketch, SketchPoint origin, SketchSize size);
void addCircle(Sketch& sketch, SketchPoint center, double radius);
/// Fewer than 3 vertices add nothing.
void addPolygon(Sketch& sketch, std::vector<SketchPoint> vertices);
/// The wall becomes the selection. Without a system the active one is taken.
void addWall(Sketch& sketch, std::optional<UUID> systemSpecID, SketchPoint from, SketchPoint to);
/// Writes an entity in place, as part of a step that the caller takes; an unknown identifier does nothing.
/// The sketch counts as changed even where the entity was equal.
void replaceEntity(Sketch& sketch, const UUID& id, SketchEntity entity, UndoStep step = UndoStep::none);

// --- Wall systems and the grid: no undo steps

/// Makes the system the active one and reports it in the console; nothing when it is active already.
void setActiveWallSystem(Sketch& sketch, Messages& messages, const WallSystemSpec& spec);
/// Replaces the system of the same identifier; an unknown one does nothing.
void updateWallSystemSpec(Sketch& sketch, const WallSystemSpec& spec);
void setShowGrid(Sketch& sketch, bool value);

}  // namespace ostrelon
