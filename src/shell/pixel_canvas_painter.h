// The canvas painter for pictures: thin solid lines, circles and small areas straight into the
// pixels, everything else through Qt.
#pragma once

#include <QImage>
#include <QPainter>
#include <QRect>

#include "interaction/pixel_raster.h"
#include "shell/qt_canvas_painter.h"

namespace ostrelon {

class PixelCanvasPainter final : public CanvasPainter {
 public:
  /// `image` is RGB32 or premultiplied ARGB32 and is not shared; only `part` of it, in pixels, is
  /// painted. One view point is `pixelRatio` pixels.
  PixelCanvasPainter(QImage& image, double pixelRatio, const QRect& part);
  PixelCanvasPainter(QImage& image, double pixelRatio)
      : PixelCanvasPainter(image, pixelRatio, image.rect()) {}

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

  /// Strokes an opaque path piece by piece, with round joins when it is solid.
  void strokePieces(const CanvasPath& path, const Stroke& stroke);

 private:
  SketchPoint toPixels(SketchPoint point) const { return point * ratio_; }
  CanvasSegment toPixels(const CanvasSegment& segment) const {
    return {toPixels(segment.from), toPixels(segment.to)};
  }
  void strokeDashes(std::span<const SketchPoint> points, bool closed, const Stroke& stroke);
  PixelColor opaque(Color color);

  double ratio_;
  PixelBuffer buffer_;
  QPainter painter_;
  QtCanvasPainter canvas_;
  Color lastColor_;
  PixelColor lastPixelColor_ = PixelColor::of(Color());
};

/// Strokes a path of very many points, for which Qt takes up to a thousand times as long: its pieces
/// go into a picture of their own, which is laid over. Solid strokes are taken with round joins.
/// `painter` paints to pixels and is not turned.
void strokeThroughPixels(QPainter& painter, const CanvasPath& path, const Stroke& stroke);

}  // namespace ostrelon
