// Pictures where there is no display: for starts without a window and for automation.
#pragma once

#include "app/drawing_exchange.h"

namespace ostrelon {

/// Draws pictures in a process that has no Qt application yet. One is made on no display when SVG or
/// PDF is first asked for, and lives as long as the maker and its copies.
PictureMaker picturesWithoutDisplay();

}  // namespace ostrelon
