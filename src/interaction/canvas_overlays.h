// The layers over and between grid and entities, one function each; `canvas_renderer.h` gives their order.
// Each paints what the board's state asks for, and nothing otherwise.
#pragma once

#include <span>

#include "interaction/canvas_frame.h"

namespace ostrelon {

class Board;

/// Lines through the anchor of the last snap, one for each locked direction.
void paintSnapGuides(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);
/// Under the select tool: the entity under the pointer, unless it is selected.
void paintHover(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);
/// The selected entities, and the handles of a single one.
void paintSelection(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);
void paintMarquee(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);
/// Under the trim tool: the cutting edge, and the entity under the pointer.
void paintTrim(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);
/// What the gesture in progress would add, and the polygon that is growing.
void paintDrafts(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);
/// The length pill of a segment; while its length is edited the editor takes its place.
void paintSegmentLabel(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);
/// The points of the last snap.
void paintMarkers(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);
/// The point that is about to lock. The only thing on the canvas that moves by itself.
void paintDwellPulse(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);
/// The locked point.
void paintLock(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);

// --- Pieces of these layers

/// The highlight of one selected entity, without handles; nothing outside the painted part.
void paintSelectedEntity(CanvasPainter& painter, const CanvasFrame& frame, const SketchEntity& entity,
                         std::span<const WallSystemSpec> systems);

// --- What entities and drafts have in common

/// The stroke of every entity: width 1.5, round caps and joins.
Stroke entityStroke(Color color);
/// The same with the width that the kind of entity has on paper: walls 0.50 mm, circles and arcs 0.18 mm,
/// everything else 0.25 mm.
Stroke weightedStroke(const CanvasFrame& frame, const SketchEntity& entity);
/// A tint; or, where walls are to be told apart from rooms at a glance, a tone.
Fill wallFill(const ThemePalette& palette, bool isFilled = false);
/// The dashed middle of a wall; sketch units.
void strokeWallCenterLine(CanvasPainter& painter, const CanvasFrame& frame, SketchPoint from, SketchPoint to,
                          Color color);

}  // namespace ostrelon
