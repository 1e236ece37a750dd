#include "shell/drawing_export.h"

#include <QBuffer>
#include <QImage>
#include <QRegularExpression>
#include <QSvgGenerator>
#include <cmath>

#include "exchange/picture_page.h"
#include "interaction/canvas_renderer.h"
#include "platform/user_error.h"
#include "shell/pixel_canvas_painter.h"

namespace ostrelon {

namespace {

constexpr double kMetersPerInch = 0.0254;

QRectF pageRect(const PicturePage& page) { return {0, 0, page.size.width, page.size.height}; }

QRectF paintedRect(const PicturePage& page) {
  const SketchBox part = paintedPart(page);
  return {part.minX, part.minY, part.width(), part.height()};
}

QByteArray pngPicture(const PicturePage& page, const ExportOptions& options, const PagePaint& paint) {
  const double ratio = pixelsPerPoint(options);
  const QSize pixels = (pageRect(page).size() * ratio).toSize().expandedTo({1, 1});
  QImage image(pixels, QImage::Format_RGB32);
  if (image.isNull()) throw UserError("There is not enough memory for a picture of this size.");
  image.fill(Qt::white);
  const CanvasFrame frame = pictureFrame(page, options);
  if (hasBackground(options)) {
    PixelCanvasPainter canvas(image, ratio);
    paintBackground(canvas, frame);
  }
  {
    const QRectF painted = paintedRect(page);
    const QRect part(QPointF(painted.topLeft() * ratio).toPoint(), (painted.size() * ratio).toSize());
    PixelCanvasPainter canvas(image, ratio, part.intersected(image.rect()));
    paint(canvas, page);
  }
  if (options.isOnPaper()) {
    // Programs that print it then know how large it is meant.
    const double pixelsPerMeter = ratio * kPointsPerInch / kMetersPerInch;
    image.setDotsPerMeterX(static_cast<int>(std::lround(pixelsPerMeter)));
    image.setDotsPerMeterY(static_cast<int>(std::lround(pixelsPerMeter)));
  }
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return bytes;
}

/// Qt states the size of an SVG in millimetres of some resolution; here it is that of the view box, in pixels
/// or, on paper, in points.
QByteArray withOwnSize(QByteArray svg, const PicturePage& page, bool isOnPaper) {
  static const QRegularExpression millimetres(
      QStringLiteral("<svg width=\"[0-9.e+]+mm\" height=\"[0-9.e+]+mm\""));
  constexpr qsizetype kHead = 1000;
  const auto length = [isOnPaper](double points) {
    return QString::number(points, 'g', 10) + (isOnPaper ? QStringLiteral("pt") : QString());
  };
  QString head = QString::fromUtf8(svg.left(kHead));
  head.replace(millimetres, QStringLiteral("<svg width=\"%1\" height=\"%2\"")
                                .arg(length(page.size.width), length(page.size.height)));
  return svg.replace(0, kHead, head.toUtf8());
}

void paintPage(QPainter& painter, const PicturePage& page, const ExportOptions& options,
               const PagePaint& paint) {
  painter.save();
  {
    QtCanvasPainter canvas(painter);
    if (hasBackground(options)) paintBackground(canvas, pictureFrame(page, options));
    if (page.margin > 0) painter.setClipRect(paintedRect(page));
    paint(canvas, page);
  }
  painter.restore();
}

QByteArray svgPicture(const PicturePage& page, const ExportOptions& options, const PagePaint& paint) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setSize(pageRect(page).size().toSize().expandedTo({1, 1}));
  generator.setViewBox(pageRect(page));
  generator.setTitle(QStringLiteral("Ostrelon drawing"));
  generator.setDescription(QString());
  QPainter painter(&generator);
  paintPage(painter, page, options, paint);
  painter.end();
  return withOwnSize(std::move(bytes), page, options.isOnPaper());
}

}  // namespace

void paintPicturePage(QPainter& painter, const PicturePage& page, const EntityList& entities,
                      std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  paintPage(painter, page, options, [&](CanvasPainter& canvas, const PicturePage& shown) {
    paintDrawing(canvas, shown, entities, systems, options);
  });
}

QByteArray pagePicture(ExportFormat format, const PicturePage& page, const ExportOptions& options,
                       const PagePaint& paint) {
  switch (format) {
    case ExportFormat::png:
      return pngPicture(page, options, paint);
    case ExportFormat::svg:
      return svgPicture(page, options, paint);
    case ExportFormat::pdf:
    case ExportFormat::dxf:
      break;  // written without Qt
  }
  return {};
}

QByteArray drawingPicture(ExportFormat format, const EntityList& entities,
                          std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  const std::vector<PicturePage> pages = picturePages(format, entities, systems, options);
  return pagePicture(format, pages.front(), options, [&](CanvasPainter& canvas, const PicturePage& page) {
    paintDrawing(canvas, page, entities, systems, options);
  });
}

std::string drawingPictureBytes(ExportFormat format, const EntityList& entities,
                                std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  return drawingPicture(format, entities, systems, options).toStdString();
}

}  // namespace ostrelon
