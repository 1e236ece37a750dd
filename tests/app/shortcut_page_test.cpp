// The page of keys tells every key of the tables.
#include "app/shortcut_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/key_handling.h"
#include "app/menu.h"
#include "interaction/key_routing.h"

namespace ostrelon {
namespace {

using ::testing::HasSubstr;

TEST(ShortcutPage, HasEveryKeyOfTheDrawingBoardAndOfTheMenus) {
  constexpr std::size_t whileMerging = 4;
  std::size_t expected = keyBindings().size() + whileMerging;
  for (const MenuCommand& command : menuCommands()) expected += command.shortcut.empty() ? 0U : 1U;
  std::size_t told = 0;
  for (const ShortcutGroup& group : shortcutGroups()) told += group.rows.size();
  EXPECT_EQ(told, expected + planItemKeys().size() + comparisonKeys().size());
  const std::string page = shortcutPage();
  EXPECT_THAT(page, HasSubstr("## File"));
  EXPECT_THAT(page, HasSubstr("Close the polygon, while a polygon is drawn"));
  EXPECT_THAT(page, HasSubstr("Save As…"));
}

}  // namespace
}  // namespace ostrelon
