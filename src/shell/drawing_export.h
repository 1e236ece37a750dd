// Pictures of the drawing: PNG, SVG and PDF, with the renderer that paints the canvas; and the pages
// of a print.
#pragma once

#include <QByteArray>
#include <QPainter>
#include <span>

#include "core/entity_list.h"
#include "core/theme_palette.h"
#include "core/wall_system.h"
#include "exchange/export_options.h"

namespace ostrelon {

const ThemePalette& exportPalette(ExportTheme theme);

/// Paints one page. A unit of `painter` is a point of the page. Pages of the light theme have no
/// background on paper.
void paintPicturePage(QPainter& painter, const PicturePage& page, const EntityList& entities,
                      std::span<const WallSystemSpec> systems, const ExportOptions& options);

/// The bytes of a picture of all entities, laid out by `picturePages`; not of DXF. Needs a
/// QGuiApplication for SVG and PDF. Throws what `picturePages` throws, and `UserError` when there is
/// not enough memory for the pixels.
QByteArray drawingPicture(ExportFormat format, const EntityList& entities,
                          std::span<const WallSystemSpec> systems, const ExportOptions& options);

/// The same as the logic asks for it.
std::string drawingPictureBytes(ExportFormat format, const EntityList& entities,
                                std::span<const WallSystemSpec> systems, const ExportOptions& options);

}  // namespace ostrelon
