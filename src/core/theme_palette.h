// The colours of the program by role, in its three palettes, and the rules that keep words readable
// on them. Values only: which palette is in force is a setting, and painting belongs to the window.
#pragma once

#include <utility>

namespace ostrelon {

/// An opaque sRGB colour, each component 0 to 1.
struct Color {
  double red = 0;
  double green = 0;
  double blue = 0;
  friend bool operator==(const Color&, const Color&) = default;
};

struct ThemePalette {
  Color background;
  Color foreground;
  Color card;
  Color muted;
  Color mutedForeground;
  Color border;
  Color accent;
  Color accentForeground;
  Color destructive;
  Color active;
  friend bool operator==(const ThemePalette&, const ThemePalette&) = default;
};

const ThemePalette& lightPalette();
const ThemePalette& darkPalette();
const ThemePalette& tansyPalette();

/// The green of every palette: marker of a grid snap, check of a success.
inline constexpr Color kThemeGreen{0.4, 0.65, 0.25};

// --- Readable words

/// The contrast from which a text of ordinary size is readable (WCAG 2, level AA).
inline constexpr double kReadableContrast = 4.5;

/// Relative luminance of a colour, 0 to 1 (WCAG 2.1, "relative luminance").
double relativeLuminance(Color color);
/// The contrast of two colours, 1 to 21, in either order (WCAG 2.1, "contrast ratio").
double contrastRatio(Color a, Color b);

/// Fill and text of what is filled to stand out, the active tool or a primary button: the accent
/// pair where its text is readable, the plain foreground on a card where it is not.
std::pair<Color, Color> filledPair(const ThemePalette& palette);
/// The colour of secondary words on a surface: muted where that is readable, else the foreground.
Color secondaryText(const ThemePalette& palette, Color surface);

/// `top` at `opacity` (0 to 1) laid over `below`.
Color blended(Color top, double opacity, Color below);

}  // namespace ostrelon
