// The measures of the drawing tools, shared by the tools, the gestures and the previews of drafts.
#pragma once

#include <cstddef>
#include <optional>

#include "core/sketch_entity.h"
#include "interaction/sketch_draft.h"
#include "interaction/sketch_tool.h"

namespace ostrelon {

class Board;

/// The shortest line, wall or radius, and the smallest side of a rectangle, sketch units. Smaller
/// gestures end without an entity.
inline constexpr double kMinimumDraftSize = 1.0;
/// A polygon closes only with at least this many vertices.
inline constexpr std::size_t kMinimumPolygonVertices = 3;

/// The shape that this tool makes of a draft, whatever its size: with a null identifier, and for a
/// wall with `wallSystemID`. Absent for the tools that draw nothing with two points.
std::optional<SketchEntity> draftedEntity(SketchTool tool, const SketchDraft& draft,
                                          const UUID& wallSystemID);
/// What the draft in progress becomes, with a null identifier: a wall lies beside the drawn line where that
/// is one of its faces, and `changed` are the walls that give way at its corners. Absent without one.
std::optional<SketchEntity> draftedEntity(const Board& board, std::vector<WallEntity>* changed = nullptr);
/// True when a draft is large enough for the tool to make an entity of it.
bool isDraftLargeEnough(SketchTool tool, const SketchDraft& draft);

/// The point beside which the badges of the snap and of the measures are shown: the snapped point, which lies
/// near the pointer; under a lock, which marks a point far away, the pointer itself. Sketch units.
std::optional<SketchPoint> pointerBadgePoint(const Board& board);

}  // namespace ostrelon
