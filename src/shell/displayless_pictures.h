// Pictures where there is no display: for starts without a window and for automation.
#pragma once

#include "app/difference_export.h"
#include "app/drawing_exchange.h"

namespace ostrelon {

/// Draws pictures in a process that has no Qt application yet. One is made on no display when SVG or
/// PDF is first asked for, and lives as long as the maker and its copies.
PictureMaker picturesWithoutDisplay();
/// The same for pages of anything; Qt's application is made for each kind, since there may be words on them.
PagePictureMaker pagePicturesWithoutDisplay();

}  // namespace ostrelon
