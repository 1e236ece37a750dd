#include "interaction/wall_layer.h"

#include <algorithm>

#include "interaction/canvas_clipping.h"
#include "interaction/pixel_raster.h"

namespace ostrelon {

namespace {

/// So many walls are filled as one area. Of more, each is a few pixels, and no seam shows between two areas.
constexpr std::size_t kMostFills = 16384;
/// Below this extent, view points, a wall is a dot.
constexpr double kDotExtent = 1.0;

}  // namespace

WallLayerPainter::WallLayerPainter(const CanvasFrame& frame, const Fill& fill, const Stroke& stroke)
    : frame_(frame),
      fill_(fill),
      stroke_(stroke),
      visible_(frame.paintedRect().grown(stroke.width / 2 + 1)),
      clip_(frame.clipBox()) {}

void WallLayerPainter::add(CanvasPainter& painter, const JoinedWall& wall) {
  const SketchBox& box = wall.body.box;
  const SketchBox bounds =
      SketchBox::spanning(frame_.toView({box.minX, box.minY}), frame_.toView({box.maxX, box.maxY}));
  if (!bounds.overlaps(visible_)) return;
  if (bounds.width() < kDotExtent && bounds.height() < kDotExtent) {
    edges_.push_back({bounds.center(), bounds.center()});
    return;
  }
  // Nearly all bodies are convex; painters are fast with these.
  if (isSmallConvex(wall.body.outline)) {
    addFill(wall.body.outline);
  } else {
    addFill(wall.body.leftHalf());
    addFill(wall.body.rightHalf());
  }
  for (const WallEdge& edge : wall.edges) addEdge(edge);
  if (fills_.pieces().size() >= kMostFills) {
    painter.fillPath(fills_, fill_);
    fills_.clear();
  }
}

void WallLayerPainter::addFill(std::span<const SketchPoint> outline) {
  points_.clear();
  for (const SketchPoint point : outline) points_.push_back(frame_.toView(point));
  if (!std::all_of(points_.begin(), points_.end(), [this](SketchPoint p) { return clip_.contains(p); })) {
    points_ = clippedPolygon(points_, clip_);
  }
  if (points_.size() > 2) fills_.addPiece(points_, true);
}

void WallLayerPainter::addEdge(const WallEdge& edge) {
  const CanvasSegment segment{frame_.toView(edge.from), frame_.toView(edge.to)};
  if (clip_.contains(segment.from) && clip_.contains(segment.to)) {
    edges_.push_back(segment);
  } else if (const auto seen = clippedSegment(segment, clip_)) {
    edges_.push_back({seen->from, seen->to});
  }
}

void WallLayerPainter::paint(CanvasPainter& painter) {
  if (!fills_.empty()) painter.fillPath(fills_, fill_);
  if (!edges_.empty()) painter.strokeSegments(edges_, stroke_);
  fills_.clear();
  edges_.clear();
}

}  // namespace ostrelon
