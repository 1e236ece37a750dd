#include "core/theme_palette.h"

#include <algorithm>
#include <cmath>

namespace ostrelon {

const ThemePalette& lightPalette() {
  static const ThemePalette palette{
      .background = {0.98, 0.98, 0.98},
      .foreground = {0.04, 0.04, 0.05},
      .card = {1.0, 1.0, 1.0},
      .muted = {0.96, 0.96, 0.97},
      .mutedForeground = {0.45, 0.45, 0.5},
      .border = {0.9, 0.9, 0.92},
      .accent = {0.04, 0.04, 0.05},
      .accentForeground = {1.0, 1.0, 1.0},
      .destructive = {0.94, 0.27, 0.27},
      .active = {253.0 / 255.0, 131.0 / 255.0, 44.0 / 255.0},
  };
  return palette;
}

const ThemePalette& darkPalette() {
  static const ThemePalette palette{
      .background = {0.04, 0.04, 0.05},
      .foreground = {0.98, 0.98, 0.98},
      .card = {0.07, 0.07, 0.08},
      .muted = {0.14, 0.14, 0.16},
      .mutedForeground = {0.63, 0.64, 0.67},
      .border = {0.2, 0.2, 0.22},
      .accent = {0.98, 0.98, 0.98},
      .accentForeground = {0.04, 0.04, 0.05},
      .destructive = {0.96, 0.45, 0.45},
      .active = {253.0 / 255.0, 131.0 / 255.0, 44.0 / 255.0},
  };
  return palette;
}

const ThemePalette& tansyPalette() {
  static const ThemePalette palette{
      .background = {1.0, 0.94, 0.96},
      .foreground = {0.55, 0.1, 0.35},
      .card = {1.0, 0.98, 0.99},
      .muted = {1.0, 0.89, 0.94},
      .mutedForeground = {0.78, 0.36, 0.58},
      .border = {1.0, 0.72, 0.84},
      .accent = {1.0, 0.41, 0.71},
      .accentForeground = {1.0, 1.0, 1.0},
      .destructive = {0.93, 0.33, 0.48},
      .active = {1.0, 0.2, 0.58},
  };
  return palette;
}

double relativeLuminance(Color color) {
  const auto linear = [](double component) {
    return component <= 0.03928 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrastRatio(Color a, Color b) {
  const auto [darker, lighter] = std::minmax({relativeLuminance(a), relativeLuminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

std::pair<Color, Color> filledPair(const ThemePalette& palette) {
  if (contrastRatio(palette.accent, palette.accentForeground) >= kReadableContrast) {
    return {palette.accent, palette.accentForeground};
  }
  return {palette.foreground, palette.card};
}

Color secondaryText(const ThemePalette& palette, Color surface) {
  return contrastRatio(palette.mutedForeground, surface) >= kReadableContrast ? palette.mutedForeground
                                                                              : palette.foreground;
}

Color blended(Color top, double opacity, Color below) {
  const auto mix = [opacity](double a, double b) { return a * opacity + b * (1 - opacity); };
  return {mix(top.red, below.red), mix(top.green, below.green), mix(top.blue, below.blue)};
}

}  // namespace ostrelon
