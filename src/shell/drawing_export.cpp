#include "shell/drawing_export.h"

#include <QBuffer>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QSvgGenerator>

#include "interaction/canvas_renderer.h"
#include "interaction/drawing_bounds.h"
#include "platform/user_error.h"
#include "shell/pixel_canvas_painter.h"

namespace ostrelon {

namespace {

constexpr int kPointsPerInch = 72;

QSize pixelSize(const PictureOptions& options) {
  return {static_cast<int>(options.size.width), static_cast<int>(options.size.height)};
}

void paintPicture(CanvasPainter& canvas, const EntityList& entities, std::span<const WallSystemSpec> systems,
                  const PictureOptions& options) {
  const CanvasFrame frame{{fittedViewport(entities, options.size), options.size}, options.palette};
  paintBackground(canvas, frame);
  if (options.showGrid) paintGrid(canvas, frame);
  paintEntities(canvas, frame, entities, systems);
}

QByteArray pngPicture(const EntityList& entities, std::span<const WallSystemSpec> systems,
                      const PictureOptions& options) {
  QImage image(pixelSize(options), QImage::Format_RGB32);
  if (image.isNull()) throw UserError("There is not enough memory for a picture of this size.");
  {
    PixelCanvasPainter canvas(image, 1);
    paintPicture(canvas, entities, systems, options);
  }
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return bytes;
}

/// Qt tells the size of an SVG in millimetres of some resolution; here it is that of the view box.
QByteArray withSizeInPixels(QByteArray svg, QSize size) {
  static const QRegularExpression millimetres(
      QStringLiteral("<svg width=\"[0-9.e+]+mm\" height=\"[0-9.e+]+mm\""));
  constexpr qsizetype kHead = 1000;
  QString head = QString::fromUtf8(svg.left(kHead));
  head.replace(millimetres,
               QStringLiteral("<svg width=\"%1\" height=\"%2\"").arg(size.width()).arg(size.height()));
  return svg.replace(0, kHead, head.toUtf8());
}

QByteArray svgPicture(const EntityList& entities, std::span<const WallSystemSpec> systems,
                      const PictureOptions& options) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setSize(pixelSize(options));
  generator.setViewBox(QRect(QPoint(0, 0), pixelSize(options)));
  generator.setTitle(QStringLiteral("Ostrelon drawing"));
  generator.setDescription(QString());
  QPainter painter(&generator);
  QtCanvasPainter canvas(painter);
  paintPicture(canvas, entities, systems, options);
  painter.end();
  return withSizeInPixels(std::move(bytes), pixelSize(options));
}

QByteArray pdfPicture(const EntityList& entities, std::span<const WallSystemSpec> systems,
                      const PictureOptions& options) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  writer.setTitle(QStringLiteral("Ostrelon drawing"));
  writer.setCreator(QStringLiteral("Ostrelon"));
  writer.setPageMargins(QMarginsF());
  writer.setPageSize(
      QPageSize(QSizeF(pixelSize(options)), QPageSize::Point, QString(), QPageSize::ExactMatch));
  writer.setResolution(kPointsPerInch);
  QPainter painter(&writer);
  QtCanvasPainter canvas(painter);
  paintPicture(canvas, entities, systems, options);
  painter.end();
  return bytes;
}

}  // namespace

const ThemePalette& exportPalette(ExportTheme theme) {
  switch (theme) {
    case ExportTheme::light:
      return lightPalette();
    case ExportTheme::dark:
      return darkPalette();
    case ExportTheme::tansy:
      return tansyPalette();
  }
  return lightPalette();
}

QByteArray drawingPicture(ExportFormat format, const EntityList& entities,
                          std::span<const WallSystemSpec> systems, const PictureOptions& options) {
  switch (format) {
    case ExportFormat::png:
      return pngPicture(entities, systems, options);
    case ExportFormat::svg:
      return svgPicture(entities, systems, options);
    case ExportFormat::pdf:
      return pdfPicture(entities, systems, options);
  }
  return {};
}

}  // namespace ostrelon
