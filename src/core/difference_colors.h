// The colours of the difference of two drawings, over any palette.
#pragma once

#include "core/theme_palette.h"

namespace ostrelon {

/// Lines and words about what differs, by what has become of it. Readable on every surface of the palette,
/// and told apart by those too who do not tell red from green.
struct DifferenceColors {
  Color removed;
  Color changed;
  Color added;
};
DifferenceColors differenceColors(const ThemePalette& palette);

/// The palette with what is drawn in `foreground` and `muted` faded into the background, for entities that do
/// not differ.
ThemePalette fadedPalette(const ThemePalette& palette);

}  // namespace ostrelon
