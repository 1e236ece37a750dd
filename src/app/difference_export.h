// The difference of two drawings as a file: a picture or page as the window shows it, or a DXF file with a
// layer for each part.
//
// | layer            | holds                                               |
// |------------------|-----------------------------------------------------|
// | UNCHANGED        | what both drawings have                             |
// | CHANGED-BEFORE   | what has changed, as it was                         |
// | REMOVED          | what the first drawing alone has                    |
// | CHANGED-AFTER    | what has changed, as it is                          |
// | ADDED            | what the second drawing alone has                   |
// | CLOUDS           | a revision cloud around each group of differences   |
#pragma once

#include <functional>
#include <string>

#include "core/drawing.h"
#include "documents/compare.h"
#include "exchange/picture_page.h"
#include "platform/file_system.h"

namespace ostrelon {

/// Gives the bytes of a PNG or SVG of one page. Throws `UserError`.
using PagePictureMaker = std::function<std::string(ExportFormat format, const PicturePage& page,
                                                   const ExportOptions& options, const PagePaint& paint)>;

/// Writes it in the format that the path ends in. Throws `UserError`, and has written nothing then.
/// `makePicture` may be empty, and PNG and SVG are then refused.
void exportDifference(const DrawingDifference& difference, const Drawing& before, const Drawing& after,
                      FileSystem& files, const FilePath& path, const ExportOptions& options,
                      const PagePictureMaker& makePicture);

}  // namespace ostrelon
