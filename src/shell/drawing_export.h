// Pictures of the drawing that Qt makes: PNG and SVG, with the renderer that paints the canvas; and the
// pages of a print.
#pragma once

#include <QByteArray>
#include <QPainter>
#include <span>

#include "core/entity_list.h"
#include "core/wall_system.h"
#include "exchange/export_options.h"
#include "exchange/picture_page.h"

namespace ostrelon {

/// Paints one page. A unit of `painter` is a point of the page. Pages of the light theme have no
/// background on paper.
void paintPicturePage(QPainter& painter, const PicturePage& page, const EntityList& entities,
                      std::span<const WallSystemSpec> systems, const ExportOptions& options);

/// The bytes of a picture of all entities, laid out by `picturePages`: of PNG and SVG. Needs a
/// QGuiApplication for SVG. Throws what `picturePages` throws, and `UserError` when there is
/// not enough memory for the pixels.
QByteArray drawingPicture(ExportFormat format, const EntityList& entities,
                          std::span<const WallSystemSpec> systems, const ExportOptions& options);

/// The bytes of a PNG or SVG of one page. Throws as above.
QByteArray pagePicture(ExportFormat format, const PicturePage& page, const ExportOptions& options,
                       const PagePaint& paint);

/// The same in the form in which the logic takes it.
std::string drawingPictureBytes(ExportFormat format, const EntityList& entities,
                                std::span<const WallSystemSpec> systems, const ExportOptions& options);

}  // namespace ostrelon
