// Painting the walls of a clean plan: all fills as one area, over it all faces, so that nothing shows where
// walls overlap or meet.
#pragma once

#include <vector>

#include "geometry/joined_walls.h"
#include "interaction/canvas_frame.h"

namespace ostrelon {

class WallLayerPainter {
 public:
  /// `frame` must outlive the painter.
  WallLayerPainter(const CanvasFrame& frame, const Fill& fill, const Stroke& stroke);

  /// Takes the wall into what is painted next; nothing, where it does not touch the painted part. Very many
  /// fills are painted on the way.
  void add(CanvasPainter& painter, const JoinedWall& wall);
  /// Paints what has been taken in.
  void paint(CanvasPainter& painter);

 private:
  void addFill(std::span<const SketchPoint> outline);
  void addEdge(const WallEdge& edge);

  const CanvasFrame& frame_;
  Fill fill_;
  Stroke stroke_;
  SketchBox visible_;  // what may leave a stroke in the painted part, view points
  SketchBox clip_;
  std::vector<SketchPoint> points_;  // of one outline on its way; kept for its memory
  CanvasPath fills_;
  std::vector<CanvasSegment> edges_;
};

}  // namespace ostrelon
