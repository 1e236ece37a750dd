#include "core/difference_colors.h"

namespace ostrelon {

DifferenceColors differenceColors(const ThemePalette& palette) {
  constexpr double kMiddle = 0.18;  // of dark and light surfaces, by luminance
  if (relativeLuminance(palette.background) < kMiddle) {
    return {.removed = {1.0, 0.58, 0.3}, .changed = {0.8, 0.62, 0.98}, .added = {0.45, 0.75, 1.0}};
  }
  return {.removed = {0.7, 0.22, 0.0}, .changed = {0.45, 0.2, 0.62}, .added = {0.0, 0.36, 0.72}};
}

ThemePalette fadedPalette(const ThemePalette& palette) {
  constexpr double kFaded = 0.4;
  ThemePalette faded = palette;
  faded.foreground = blended(palette.foreground, kFaded, palette.background);
  faded.muted = blended(palette.muted, kFaded, palette.background);
  return faded;
}

}  // namespace ostrelon
