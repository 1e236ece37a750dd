#include "shell/canvas_cursor.h"

#include <QPainter>
#include <QPixmap>
#include <cmath>

namespace ostrelon {

namespace {

// The cross, px at 1x: its size, its open middle, its line and the casing that sets it off.
constexpr int kCrossSize = 23;
constexpr double kOpenMiddle = 7;
constexpr double kCrossWidth = 1.25;
constexpr double kCasingWidth = 3.25;

QColor colorOf(Color color) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue));
}

QCursor crossCursor(const ThemePalette& palette, double pixelRatio) {
  // One more pixel on each side for the casing.
  constexpr int kSide = kCrossSize + 2;
  const int pixels = static_cast<int>(std::ceil(kSide * pixelRatio));
  QPixmap picture(pixels, pixels);
  picture.setDevicePixelRatio(pixelRatio);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.setRenderHint(QPainter::Antialiasing);
  constexpr double kMiddle = kSide / 2.0;
  constexpr double kInner = kOpenMiddle / 2;
  constexpr double kOuter = kCrossSize / 2.0;
  const auto arms = [&painter] {
    for (const QPointF direction : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)}) {
      const QPointF middle(kMiddle, kMiddle);
      painter.drawLine(middle + direction * kInner, middle + direction * kOuter);
    }
  };
  painter.setPen(QPen(colorOf(palette.card), kCasingWidth, Qt::SolidLine, Qt::RoundCap));
  arms();
  painter.setPen(QPen(colorOf(palette.foreground), kCrossWidth, Qt::SolidLine, Qt::FlatCap));
  arms();
  painter.end();
  return QCursor(picture, kSide / 2, kSide / 2);
}

}  // namespace

QCursor canvasCursor(SketchTool tool, const ThemePalette& palette, double pixelRatio) {
  switch (tool) {
    case SketchTool::select:
      return Qt::ArrowCursor;
    case SketchTool::pan:
      return Qt::OpenHandCursor;
    case SketchTool::line:
    case SketchTool::wall:
    case SketchTool::circle:
    case SketchTool::rectangle:
    case SketchTool::polygon:
    case SketchTool::trim:
      return crossCursor(palette, pixelRatio);
  }
  return Qt::ArrowCursor;
}

}  // namespace ostrelon
