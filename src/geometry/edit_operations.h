// The operations that select, edit, trim and copy entities of a sketch. Each checks first: a refused one
// changes nothing. Each edit is one undo step. Sketch units; whether entity numbers count from 0 or 1 is
// stated at each.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "core/entity_edits.h"
#include "core/messages.h"
#include "core/sketch.h"
#include "geometry/trim.h"

namespace ostrelon {

// --- Selecting (selection.cpp)

/// Adds the entity to the selection, or takes it out.
void toggleEntitySelection(Sketch& sketch, const UUID& id);
/// This entity alone, or nothing.
void selectSingleEntity(Sketch& sketch, std::optional<UUID> id);
/// 0-based positions; those beyond the list are left out. Nothing left clears the selection.
void selectEntities(Sketch& sketch, const std::vector<std::int64_t>& positions);
void selectAll(Sketch& sketch);

/// The description of this entity as a line of the console; nothing for an unknown identifier.
void printEntityDescription(const Sketch& sketch, Messages& messages, const UUID& id);

// --- Edits of the one selected entity (entity_edit_operations.cpp)

EntityEditResult setSelectedEntityLength(Sketch& sketch, double value);
EntityEditResult nudgeSelectedEntity(Sketch& sketch, double dx, double dy);
/// Without a wall system the active one is taken.
EntityEditResult convertSelectedEntity(Sketch& sketch, EntityConversionTarget target,
                                       std::optional<UUID> wallSystemID = std::nullopt);
/// False unless the selection is one line, and for movements that are not finite.
bool moveSelectedLine(Sketch& sketch, double dx, double dy);
/// False for an unknown system and for what is no wall.
bool assignWallSystem(Sketch& sketch, const UUID& wallSystemID, const UUID& entityID);

// --- Edits of many (entity_edit_operations.cpp)

/// The number of entities moved.
int alignSelection(Sketch& sketch, AlignmentAxis axis);
/// These report in the console what they have done.
void deleteEntity(Sketch& sketch, Messages& messages, const UUID& id);
void deleteSelection(Sketch& sketch, Messages& messages);
void duplicateEntity(Sketch& sketch, Messages& messages, const UUID& id, double dx, double dy);
void duplicateSelection(Sketch& sketch, Messages& messages, double dx, double dy);
/// The number of entities copied, and pasted.
int copySelection(Sketch& sketch);
int pasteClipboard(Sketch& sketch, SketchPoint offset = kDuplicateOffset);

// --- Trim and extend (trim_operations.cpp)

/// 0-based positions of the entity to trim and of the cutting edge.
TrimResult applyTrim(Sketch& sketch, std::int64_t targetIndex, std::int64_t edgeIndex, SketchPoint point);
/// Lengthens a line to a line or wall. False where the two do not meet so.
bool extendLine(Sketch& sketch, const UUID& lineID, const UUID& boundaryID);

}  // namespace ostrelon
