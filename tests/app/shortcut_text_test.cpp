#include <gtest/gtest.h>

#include "app/shortcut_text.h"

namespace ostrelon {
namespace {

TEST(ShortcutText, KeysAreWrittenInTheDesktopsNotation) {
  EXPECT_EQ(desktopNotation("⌘N"), "Ctrl+N");
  EXPECT_EQ(desktopNotation("⇧⌘S"), "Ctrl+Shift+S");
  EXPECT_EQ(desktopNotation("⌘⇧S"), "Ctrl+Shift+S");
  EXPECT_EQ(desktopNotation("⌘+"), "Ctrl++");
  EXPECT_EQ(desktopNotation("⇧⌥⌘Z"), "Ctrl+Alt+Shift+Z");
}

TEST(ShortcutText, KeysWithinASentenceAreWrittenToo) {
  EXPECT_EQ(desktopNotation("Select an entity on the canvas, then press ⌘I."),
            "Select an entity on the canvas, then press Ctrl+I.");
  EXPECT_EQ(desktopNotation("0,0 at center · Y ↑"), "0,0 at center · Y ↑");
  EXPECT_EQ(desktopNotation(""), "");
}

}  // namespace
}  // namespace ostrelon
