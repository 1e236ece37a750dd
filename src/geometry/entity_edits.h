// Edits of single entities as pure functions, and the copies and labels that go with them.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/entity_edits.h"
#include "core/sketch_entity.h"
#include "geometry/selection_handles.h"

namespace ostrelon {

/// The entity with its length (line, wall, along its direction from `from`), diameter (circle, arc) or
/// height (rectangle) set to `value`, sketch units. Absent for a value not above 0, a segment of no
/// length, and a polygon.
std::optional<SketchEntity> resizedEntity(const SketchEntity& entity, double value);

/// A line as a wall of this system, or a wall as a line; an entity that is one already stays as it is. Absent
/// for other kinds.
std::optional<SketchEntity> convertedEntity(const SketchEntity& entity, EntityConversionTarget target,
                                            const UUID& wallSystemID);

/// A copy under a fresh identifier, moved by (dx, dy).
SketchEntity duplicatedEntity(const SketchEntity& entity, double dx, double dy);

/// By how much each entity must move so that all centroids come to lie on one horizontal or vertical
/// line, through their mean. Absent for fewer than 2 entities.
std::optional<std::unordered_map<UUID, SketchPoint>> alignmentOffsets(
    const std::vector<SketchEntity>& entities, AlignmentAxis axis);
/// The same in the order of the entities, of which there must be one.
std::vector<SketchPoint> alignmentMoves(const std::vector<SketchEntity>& entities, AlignmentAxis axis);

/// The segment of a line or wall of some length; absent for all else.
std::optional<SegmentLengthIndicator> segmentLengthIndicator(const SketchEntity& entity);

/// A line or wall with the end of this handle moved along the segment to distance `value` (sketch
/// units) from the other end. Absent for other handles and kinds, a value not above 0, or no length.
std::optional<SketchEntity> dragSegmentLength(const SelectionHandle& handle, const SketchEntity& entity,
                                              double value);

}  // namespace ostrelon
