#include "core/theme_palette.h"

#include <gtest/gtest.h>

namespace ostrelon {
namespace {

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
