#include "shell/drawing_picture.h"

#include <algorithm>

#include "interaction/canvas_renderer.h"
#include "interaction/drawing_bounds.h"
#include "shell/pixel_canvas_painter.h"

namespace ostrelon {
namespace {

/// Strokes of a small picture are this much thinner than those of the canvas.
constexpr double kSmallStrokes = 0.5;
constexpr double kSmallMargin = 4;

}  // namespace

std::optional<SketchBox> shownBounds(const Drawing& drawing) {
  const auto bounds = drawingBounds(drawing.entities);
  if (!bounds) return bounds;
  double thickness = 0;
  for (const SketchEntity& entity : drawing.entities) {
    const auto* wall = std::get_if<WallEntity>(&entity);
    if (wall != nullptr) {
      thickness = std::max(thickness, paintedWallThickness(*wall, drawing.wallSystemSpecs));
    }
  }
  return bounds->grown(thickness / 2);
}

SketchViewport wholeDrawingView(const std::optional<SketchBox>& bounds, SketchSize size, double margin) {
  const SketchPoint middle{size.width * 0.5, size.height * 0.5};
  if (!bounds) return {middle, kDefaultViewportScale};
  const double scale = std::min({std::max(1.0, size.width - 2 * margin) / std::max(bounds->width(), 1e-9),
                                 std::max(1.0, size.height - 2 * margin) / std::max(bounds->height(), 1e-9),
                                 2 * kDefaultViewportScale});
  // Halved before they are added, so that the middle of the widest drawing is still a number.
  return viewportWith({bounds->minX * 0.5 + bounds->maxX * 0.5, bounds->minY * 0.5 + bounds->maxY * 0.5},
                      middle, scale);
}

QImage smallPicture(const Drawing& drawing, QSize size, double pixelRatio, const ThemePalette& palette) {
  QImage image((QSizeF(size) * pixelRatio).toSize(), QImage::Format_RGB32);
  if (image.isNull()) return image;
  // A canvas of more points than the picture has, so that each stroke takes fewer pixels.
  const SketchSize canvas{size.width() / kSmallStrokes, size.height() / kSmallStrokes};
  const CanvasFrame frame{
      {wholeDrawingView(shownBounds(drawing), canvas, kSmallMargin / kSmallStrokes), canvas}, palette};
  {
    PixelCanvasPainter painter(image, pixelRatio * kSmallStrokes);
    paintBackground(painter, frame);
    paintEntities(painter, frame, drawing.entities, drawing.wallSystemSpecs);
  }
  image.setDevicePixelRatio(pixelRatio);
  return image;
}

}  // namespace ostrelon
