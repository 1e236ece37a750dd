// A painter in front of another that gathers strokes into few calls, for pictures of very many
// entities. What comes out looks the same: opaque strokes of one colour may be painted in any order,
// and a fill waits for no stroke that it does not touch. Fit for painting to pixels; files want the
// shapes as they are.
#pragma once

#include <cstdint>
#include <vector>

#include "interaction/canvas_painter.h"

namespace ostrelon {

class BatchingPainter final : public CanvasPainter {
 public:
  /// `painter` receives what is gathered; `area` is what it shows, view points.
  BatchingPainter(CanvasPainter& painter, const ViewRect& area);
  /// Flushes.
  ~BatchingPainter() override;

  /// Passes on all that has been gathered.
  void flush();

  void strokePath(const CanvasPath& path, const Stroke& stroke) override;
  void strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) override;
  void strokeEllipse(const CanvasEllipse& ellipse, const Stroke& stroke) override;
  void strokeRoundedRect(const ViewRect& rect, double cornerRadius, const Stroke& stroke) override;
  void fillPath(const CanvasPath& path, const Fill& fill) override;
  void fillEllipse(const CanvasEllipse& ellipse, const Fill& fill) override;
  void fillRoundedRect(const ViewRect& rect, double cornerRadius, const Fill& fill) override;
  void drawText(std::string_view text, SketchPoint center, double height, const Fill& fill) override;

 private:
  // The strokes of one pen that are waiting.
  struct Batch {
    Stroke stroke;
    std::vector<CanvasSegment> segments;
    std::vector<CanvasEllipse> ellipses;
    std::size_t markedSegments = 0;
    std::size_t markedEllipses = 0;
  };

  Batch& batchFor(const Stroke& stroke);
  /// Lets a fill over `bounds` pass the waiting strokes, or flushes them.
  void makeWayFor(const ViewRect& bounds);

  // A coarse map of where waiting strokes lie. A cell is taken while it holds the present round.
  void markWaiting();
  void mark(const ViewRect& bounds);
  bool isMarked(const ViewRect& bounds) const;
  struct CellRange {
    int minX = 0, minY = 0, maxX = -1, maxY = -1;
  };
  CellRange cellsOf(const ViewRect& bounds) const;

  CanvasPainter& painter_;
  ViewRect area_;
  std::vector<Batch> batches_;
  std::size_t usedBatches_ = 0;
  std::size_t waiting_ = 0;

  int columns_ = 0;
  int rows_ = 0;
  std::uint32_t round_ = 1;
  std::vector<std::uint32_t> cells_;
};

}  // namespace ostrelon
