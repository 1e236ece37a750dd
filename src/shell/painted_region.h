// Where something would be painted: a painter that paints nothing and remembers the places. The canvas
// asks it what a change of its overlay touches, so that no more is repainted.
#pragma once

#include <QRegion>
#include <vector>

#include "interaction/canvas_painter.h"

namespace ostrelon {

class PaintedRegion final : public CanvasPainter {
 public:
  /// Everything touched so far, in whole view points and a little wider than need be, within these
  /// bounds.
  QRegion within(const QRect& bounds) const;

  void strokePath(const CanvasPath& path, const Stroke& stroke) override;
  void strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) override;
  void strokeEllipse(const CanvasEllipse& ellipse, const Stroke& stroke) override;
  void strokeRoundedRect(const SketchBox& rect, double cornerRadius, const Stroke& stroke) override;
  void fillPath(const CanvasPath& path, const Fill& fill) override;
  void fillEllipse(const CanvasEllipse& ellipse, const Fill& fill) override;
  void fillRoundedRect(const SketchBox& rect, double cornerRadius, const Fill& fill) override;
  using CanvasPainter::drawText;
  void drawText(std::string_view text, SketchPoint center, double height, const Fill& fill,
                double angle) override;

 private:
  void touch(const SketchBox& rect) { touched_.push_back(rect); }
  void touchLine(SketchPoint from, SketchPoint to, double reach);

  std::vector<SketchBox> touched_;
};

}  // namespace ostrelon
