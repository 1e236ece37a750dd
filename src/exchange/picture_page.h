// What a page of an exported or printed drawing shows, painted with any painter: the same pages make PNG,
// SVG, PDF and prints.
#pragma once

#include <functional>
#include <span>
#include <string_view>

#include "core/entity_list.h"
#include "core/theme_palette.h"
#include "core/wall_system.h"
#include "exchange/export_options.h"
#include "interaction/canvas_frame.h"
#include "interaction/canvas_painter.h"

namespace ostrelon {

const ThemePalette& exportPalette(ExportTheme theme);

/// False for the light theme on paper, whose background is the paper's.
bool hasBackground(const ExportOptions& options);

/// The view of the whole page, in its points.
CanvasFrame pictureFrame(const PicturePage& page, const ExportOptions& options);

/// The part of the page within its margins. A sheet among others ends where the next begins; on one alone
/// the width of a line at the very edge of the drawing may reach out.
SketchBox paintedPart(const PicturePage& page);

/// The grid, where it is asked for, and the entities that show within the painted part, in the look that the
/// options name, or as they are drawn where they name none. What reaches
/// beyond it is left to the painter's clip.
void paintDrawing(CanvasPainter& painter, const PicturePage& page, const EntityList& entities,
                  std::span<const WallSystemSpec> systems, const ExportOptions& options);

/// What stands outside of the painted part of one of several sheets: its label below, and marks at the
/// corners along which the sheets are cut and put together. Nothing on a sheet alone.
void paintSheetMarks(CanvasPainter& painter, const PicturePage& page, const ThemePalette& palette);

/// Paints what a page shows within its painted part.
using PagePaint = std::function<void(CanvasPainter& painter, const PicturePage& page)>;
void writePdf(std::span<const PicturePage> pages, const ExportOptions& options, const PagePaint& paint,
              const std::function<void(std::string_view bytes)>& write);

/// Writes a PDF of the pages, at most a piece of it in memory at a time.
void writePdf(std::span<const PicturePage> pages, const EntityList& entities,
              std::span<const WallSystemSpec> systems, const ExportOptions& options,
              const std::function<void(std::string_view bytes)>& write);

}  // namespace ostrelon
