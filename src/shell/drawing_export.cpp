#include "shell/drawing_export.h"

#include <QBuffer>
#include <QImage>
#include <QPageSize>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QSvgGenerator>
#include <algorithm>
#include <cmath>

#include "interaction/canvas_renderer.h"
#include "platform/user_error.h"
#include "shell/pixel_canvas_painter.h"

namespace ostrelon {

namespace {

constexpr double kMetersPerInch = 0.0254;

bool hasBackground(const ExportOptions& options) {
  return !options.isOnPaper() || options.theme != ExportTheme::light;
}

QRectF pageRect(const PicturePage& page) { return {0, 0, page.size.width, page.size.height}; }

// Everything but the margins. A sheet among others ends where the next begins; on one alone the width
// of a line at the very edge of the drawing may reach out.
QRectF paintedRect(const PicturePage& page) {
  constexpr double kLineRoom = 2;
  const double margin = page.hasNeighbors ? page.margin : std::max(0.0, page.margin - kLineRoom);
  return pageRect(page).adjusted(margin, margin, -margin, -margin);
}

CanvasFrame frameOf(const PicturePage& page, const ExportOptions& options) {
  return {{page.viewport, page.size}, exportPalette(options.theme)};
}

void paintDrawing(CanvasPainter& canvas, CanvasFrame frame, const PicturePage& page,
                  const EntityList& entities, std::span<const WallSystemSpec> systems,
                  const ExportOptions& options) {
  const QRectF painted = paintedRect(page);
  frame.part = ViewRect{painted.left(), painted.top(), painted.right(), painted.bottom()};
  if (options.showGrid) paintGrid(canvas, frame);
  paintEntities(canvas, frame, entities, systems);
}

QByteArray pngPicture(const PicturePage& page, const EntityList& entities,
                      std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  const double ratio = pixelsPerPoint(options);
  const QSize pixels = (pageRect(page).size() * ratio).toSize().expandedTo({1, 1});
  QImage image(pixels, QImage::Format_RGB32);
  if (image.isNull()) throw UserError("There is not enough memory for a picture of this size.");
  image.fill(Qt::white);
  const CanvasFrame frame = frameOf(page, options);
  if (hasBackground(options)) {
    PixelCanvasPainter canvas(image, ratio);
    paintBackground(canvas, frame);
  }
  {
    const QRectF painted = paintedRect(page);
    const QRect part(QPointF(painted.topLeft() * ratio).toPoint(), (painted.size() * ratio).toSize());
    PixelCanvasPainter canvas(image, ratio, part.intersected(image.rect()));
    paintDrawing(canvas, frame, page, entities, systems, options);
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

/// Qt tells the size of an SVG in millimetres of some resolution; here it is that of the view box, in
/// pixels or, on paper, in points.
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

QByteArray svgPicture(const PicturePage& page, const EntityList& entities,
                      std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  QSvgGenerator generator;
  generator.setOutputDevice(&buffer);
  generator.setSize(pageRect(page).size().toSize().expandedTo({1, 1}));
  generator.setViewBox(pageRect(page));
  generator.setTitle(QStringLiteral("Ostrelon drawing"));
  generator.setDescription(QString());
  QPainter painter(&generator);
  paintPicturePage(painter, page, entities, systems, options);
  painter.end();
  return withOwnSize(std::move(bytes), page, options.isOnPaper());
}

QByteArray pdfPicture(const std::vector<PicturePage>& pages, const EntityList& entities,
                      std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QPdfWriter writer(&buffer);
  writer.setTitle(QStringLiteral("Ostrelon drawing"));
  writer.setCreator(QStringLiteral("Ostrelon"));
  writer.setPageMargins(QMarginsF());
  writer.setPageSize(
      QPageSize(pageRect(pages.front()).size(), QPageSize::Point, QString(), QPageSize::ExactMatch));
  writer.setResolution(static_cast<int>(kPointsPerInch));
  QPainter painter(&writer);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    if (i > 0) writer.newPage();
    paintPicturePage(painter, pages[i], entities, systems, options);
  }
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

void paintPicturePage(QPainter& painter, const PicturePage& page, const EntityList& entities,
                      std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  const CanvasFrame frame = frameOf(page, options);
  painter.save();
  {
    QtCanvasPainter canvas(painter);
    if (hasBackground(options)) paintBackground(canvas, frame);
    if (page.margin > 0) painter.setClipRect(paintedRect(page));
    paintDrawing(canvas, frame, page, entities, systems, options);
  }
  painter.restore();
}

QByteArray drawingPicture(ExportFormat format, const EntityList& entities,
                          std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  const std::vector<PicturePage> pages = picturePages(format, entities, systems, options);
  switch (format) {
    case ExportFormat::png:
      return pngPicture(pages.front(), entities, systems, options);
    case ExportFormat::svg:
      return svgPicture(pages.front(), entities, systems, options);
    case ExportFormat::pdf:
      return pdfPicture(pages, entities, systems, options);
    case ExportFormat::dxf:
      break;  // no picture
  }
  return {};
}

std::string drawingPictureBytes(ExportFormat format, const EntityList& entities,
                                std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  return drawingPicture(format, entities, systems, options).toStdString();
}

}  // namespace ostrelon
