// What the canvas paints, in named layers from bottom to top, against a `CanvasPainter`. The window
// paints the lower layers into pictures that it keeps and the upper ones live; the picture files and
// the tests paint the same layers. Nothing here changes the state that it reads.
//
//   CanvasFrame frame{{board.viewport(), board.view->canvasSize}, lightPalette()};
//   paintCanvas(painter, board, frame);
#pragma once

#include <array>

#include "interaction/canvas_frame.h"
#include "interaction/drawing_look.h"
#include "interaction/entity_shape.h"
#include "interaction/wall_layer.h"

namespace ostrelon {

class EntityList;
class Board;

enum class CanvasLayer {
  grid,
  snapGuides,
  entities,
  openings,  ///< doors, windows and openings, over the walls that they are in, and annotations
  hover,
  selection,  ///< the highlights, and the handles of a single selection
  marquee,
  trim,
  drafts,
  segmentLabel,
  markers,
  dwellPulse,
  lock,
};

/// All layers, in the order in which they are painted.
inline constexpr std::array kAllCanvasLayers{
    CanvasLayer::grid,   CanvasLayer::snapGuides,   CanvasLayer::entities, CanvasLayer::openings,
    CanvasLayer::hover,  CanvasLayer::selection,    CanvasLayer::marquee,  CanvasLayer::trim,
    CanvasLayer::drafts, CanvasLayer::segmentLabel, CanvasLayer::markers,  CanvasLayer::dwellPulse,
    CanvasLayer::lock,
};

/// Fills the painted part with the background.
void paintBackground(CanvasPainter& painter, const CanvasFrame& frame);
/// One layer, as the board's state asks for it; nothing where it asks for none.
void paintLayer(CanvasPainter& painter, CanvasLayer layer, const Board& board, const CanvasFrame& frame);
/// The background and all layers.
void paintCanvas(CanvasPainter& painter, const Board& board, const CanvasFrame& frame);

// --- The two layers that a picture of the drawing consists of

/// Minor lines, major lines and axes, whatever the setting that shows them. A view so far out that lines can
/// no longer be distinguished has none.
void paintGrid(CanvasPainter& painter, const CanvasFrame& frame);

/// Paints entities one by one, in the order of the calls, so that a caller can stop in between. Walls that
/// are joined lie beneath all others: where there are any, they are taken in first, painted, and then passed
/// over.
class EntityLayerPainter {
 public:
  /// `systems` and `look` must outlive the painter.
  EntityLayerPainter(const CanvasFrame& frame, std::span<const WallSystemSpec> systems,
                     const DrawingLook& look);
  EntityLayerPainter(const EntityLayerPainter&) = delete;
  EntityLayerPainter& operator=(const EntityLayerPainter&) = delete;

  bool hasJoinedWalls() const { return look_.joined.size() > 0; }
  /// Takes the wall in, if it is a joined one.
  void takeIn(CanvasPainter& painter, const SketchEntity& entity);
  void paintJoinedWalls(CanvasPainter& painter) { walls_.paint(painter); }

  /// Nothing, where the entity is a joined wall or does not touch the painted part. What would be smaller
  /// than a view point is painted as a dot.
  void paint(CanvasPainter& painter, const SketchEntity& entity);

 private:
  Stroke strokeOf(const SketchEntity& entity) const;

  CanvasFrame frame_;
  std::span<const WallSystemSpec> systems_;
  const DrawingLook& look_;
  WallLayerPainter walls_;
  SketchBox visible_;
  EntityShape shape_;
};

/// All entities but those left out.
void paintEntities(CanvasPainter& painter, const CanvasFrame& frame, const EntityList& entities,
                   std::span<const WallSystemSpec> systems, const EntitySet& leftOut = {},
                   const DrawingLook& look = {});

}  // namespace ostrelon
