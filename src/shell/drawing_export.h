// Pictures of the drawing: PNG, SVG and PDF, with the renderer that paints the canvas.
#pragma once

#include <QByteArray>
#include <span>

#include "app/command_line.h"
#include "core/entity_list.h"
#include "core/theme_palette.h"
#include "core/wall_system.h"

namespace ostrelon {

struct PictureOptions {
  SketchSize size =
      kDefaultExportSize;  ///< view points: pixels of a PNG, user units of an SVG, points of a PDF
  ThemePalette palette = lightPalette();
  bool showGrid = false;
};

const ThemePalette& exportPalette(ExportTheme theme);

/// The bytes of a picture of all entities, laid out as zoom to fit shows them on a canvas of this
/// size. Needs a QGuiApplication for SVG and PDF. Throws `UserError` when there is not enough memory
/// for the pixels.
QByteArray drawingPicture(ExportFormat format, const EntityList& entities,
                          std::span<const WallSystemSpec> systems, const PictureOptions& options);

}  // namespace ostrelon
