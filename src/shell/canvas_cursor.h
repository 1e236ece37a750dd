// The pointer over the canvas: an arrow to select, an open hand to pan, a cross with an open middle
// to draw and trim.
#pragma once

#include <QCursor>

#include "core/theme_palette.h"
#include "interaction/sketch_tool.h"

namespace ostrelon {

QCursor canvasCursor(SketchTool tool, const ThemePalette& palette, double pixelRatio);

}  // namespace ostrelon
