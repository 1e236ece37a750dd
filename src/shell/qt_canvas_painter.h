// The canvas painter on a QPainter: the window's pictures, PNG, SVG and PDF.
#pragma once

#include <QLineF>
#include <QPainter>
#include <optional>
#include <vector>

#include "interaction/canvas_painter.h"

namespace ostrelon {

class QtCanvasPainter final : public CanvasPainter {
 public:
  /// `painter` is active as long as this lives, and is set to antialiasing. One unit of it is one
  /// view point.
  explicit QtCanvasPainter(QPainter& painter);

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
  void useStroke(const Stroke& stroke);
  void useFill(const Fill& fill);

  QPainter& painter_;
  bool isRaster_;
  std::optional<Stroke> stroke_;  // what the painter's pen is, to set it only when it changes
  std::optional<Fill> fill_;
  std::vector<QLineF> lines_;
};

}  // namespace ostrelon
