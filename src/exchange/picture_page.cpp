#include "exchange/picture_page.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "exchange/pdf_writer.h"
#include "interaction/annotation_painting.h"
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
  if (options.openings != nullptr) {
    if (!hasBackground(options)) frame.palette.background = {1, 1, 1};
    paintOpeningGaps(painter, frame, *options.openings);
    paintOpenings(painter, frame, *options.openings, OpeningMisfits::leftOut);
  }
  if (options.annotations != nullptr) paintAnnotations(painter, frame, *options.annotations);
}

void paintSheetMarks(CanvasPainter& painter, const PicturePage& page, const ThemePalette& palette) {
  if (page.label.empty()) return;
  constexpr double kMark = 10;    // points
  constexpr double kGap = 2;      // between the drawing and a mark
  constexpr double kLetters = 7;  // the height of the label
  const Stroke pen{.color = palette.foreground, .width = 0.5};
  const SketchBox part = paintedPart(page);
  std::vector<CanvasSegment> marks;
  for (const double x : {part.minX, part.maxX}) {
    for (const double y : {part.minY, part.maxY}) {
      const double outX = x == part.minX ? -1 : 1;
      const double outY = y == part.minY ? -1 : 1;
      marks.push_back({{x + outX * kGap, y}, {x + outX * kMark, y}});
      marks.push_back({{x, y + outY * kGap}, {x, y + outY * kMark}});
    }
  }
  painter.strokeSegments(marks, pen);
  painter.drawText(page.label, {(part.minX + part.maxX) / 2, part.maxY + page.margin / 2}, kLetters,
                   {.color = palette.foreground});
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
  PdfInformation information;
  if (!options.documentName.empty()) information.title = options.documentName;
  information.date = options.date;
  PdfWriter pdf(write, std::move(information));
  for (const PicturePage& page : pages) {
    CanvasPainter& painter = pdf.beginPage(page.size);
    if (hasBackground(options)) paintBackground(painter, pictureFrame(page, options));
    paintSheetMarks(painter, page, exportPalette(options.theme));
    pdf.clip(paintedPart(page));
    paint(painter, page);
  }
  pdf.finish();
}

}  // namespace ostrelon
