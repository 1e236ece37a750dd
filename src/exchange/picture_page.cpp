#include "exchange/picture_page.h"

#include <algorithm>

#include "exchange/pdf_writer.h"
#include "interaction/canvas_renderer.h"
#include "interaction/opening_painting.h"

namespace ostrelon {

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

bool hasBackground(const ExportOptions& options) {
  return !options.isOnPaper() || options.theme != ExportTheme::light;
}

CanvasFrame pictureFrame(const PicturePage& page, const ExportOptions& options) {
  CanvasFrame frame{{page.viewport, page.size}, exportPalette(options.theme)};
  if (options.isOnPaper()) frame.pointsPerMillimetre = kPointsPerInch / 25.4;
  return frame;
}

SketchBox paintedPart(const PicturePage& page) {
  constexpr double kLineRoom = 2;
  const double margin = page.hasNeighbors ? page.margin : std::max(0.0, page.margin - kLineRoom);
  return SketchBox{0, 0, page.size.width, page.size.height}.grown(-margin);
}

void paintDrawing(CanvasPainter& painter, const PicturePage& page, const EntityList& entities,
                  std::span<const WallSystemSpec> systems, const ExportOptions& options) {
  CanvasFrame frame = pictureFrame(page, options);
  frame.part = paintedPart(page);
  if (options.showGrid) paintGrid(painter, frame);
  paintEntities(painter, frame, entities, systems, {},
                drawingLook(options.look.value_or(PlanLook()), entities, systems));
  if (options.openings == nullptr) return;
  if (!hasBackground(options)) frame.palette.background = {1, 1, 1};
  paintOpeningGaps(painter, frame, *options.openings);
  paintOpenings(painter, frame, *options.openings, OpeningMisfits::leftOut);
}

void writePdf(std::span<const PicturePage> pages, const EntityList& entities,
              std::span<const WallSystemSpec> systems, const ExportOptions& options,
              const std::function<void(std::string_view bytes)>& write) {
  const auto paint = [&](CanvasPainter& painter, const PicturePage& page) {
    paintDrawing(painter, page, entities, systems, options);
  };
  writePdf(pages, options, paint, write);
}

void writePdf(std::span<const PicturePage> pages, const ExportOptions& options, const PagePaint& paint,
              const std::function<void(std::string_view bytes)>& write) {
  PdfWriter pdf(write);
  for (const PicturePage& page : pages) {
    CanvasPainter& painter = pdf.beginPage(page.size);
    if (hasBackground(options)) paintBackground(painter, pictureFrame(page, options));
    pdf.clip(paintedPart(page));
    paint(painter, page);
  }
  pdf.finish();
}

}  // namespace ostrelon
