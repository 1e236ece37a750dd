#include "core/theme_palette.h"

#include <gtest/gtest.h>

namespace ostrelon {
namespace {

// The ratios are those that the three palettes were designed to; a colour typed wrongly moves them.
TEST(ThemePalette, HasTheContrastsItWasDesignedTo) {
  const auto expect = [](const ThemePalette& palette, double text, double secondary, double accent,
                         double destructive, double active) {
    EXPECT_NEAR(contrastRatio(palette.foreground, palette.background), text, 0.01);
    EXPECT_NEAR(contrastRatio(palette.mutedForeground, palette.card), secondary, 0.01);
    EXPECT_NEAR(contrastRatio(palette.accentForeground, palette.accent), accent, 0.01);
    EXPECT_NEAR(contrastRatio(palette.destructive, palette.muted), destructive, 0.01);
    EXPECT_NEAR(contrastRatio(palette.active, palette.card), active, 0.01);
  };
  expect(lightPalette(), 18.91, 4.69, 19.75, 3.42, 2.48);
  expect(darkPalette(), 18.91, 7.45, 18.91, 5.58, 7.54);
  expect(tansyPalette(), 7.89, 3.78, 2.65, 2.84, 3.30);
  EXPECT_NEAR(contrastRatio(lightPalette().border, lightPalette().card), 1.25, 0.01);
  EXPECT_NEAR(contrastRatio(darkPalette().border, darkPalette().card), 1.49, 0.01);
  EXPECT_NEAR(contrastRatio(tansyPalette().border, tansyPalette().card), 1.56, 0.01);
}

TEST(ThemePalette, FilledSurfacesAlwaysCarryReadableWords) {
  for (const ThemePalette* palette : {&lightPalette(), &darkPalette(), &tansyPalette()}) {
    const auto [fill, text] = filledPair(*palette);
    EXPECT_GE(contrastRatio(fill, text), kReadableContrast);
    for (const Color surface : {palette->background, palette->card, palette->muted}) {
      EXPECT_GE(contrastRatio(secondaryText(*palette, surface), surface), kReadableContrast);
    }
  }
  EXPECT_EQ(filledPair(lightPalette()).first, lightPalette().accent);
  EXPECT_EQ(filledPair(tansyPalette()).first, tansyPalette().foreground);
  EXPECT_EQ(secondaryText(lightPalette(), lightPalette().card), lightPalette().mutedForeground);
  EXPECT_EQ(secondaryText(lightPalette(), lightPalette().muted), lightPalette().foreground);
}

}  // namespace
}  // namespace ostrelon
