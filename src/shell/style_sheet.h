// The style sheet of the windows, made from a palette: the parts of Qt's own controls that the program does
// not paint itself. Plain text, without Qt.
#pragma once

#include <string>

#include "core/theme_palette.h"

namespace ostrelon {

/// "#fd832c".
std::string hexText(Color color);
std::string styleSheetText(const ThemePalette& palette);

}  // namespace ostrelon
