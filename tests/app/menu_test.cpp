#include "app/menu.h"

#include <gmock/gmock.h>

#include "support/test_application.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;

struct MenuTest : ::testing::Test, testing::TestApplication {
  std::optional<std::string> menu(std::string_view path) {
    auto refusal = runMenuCommand(application, path);
    settle();
    return refusal;
  }
  std::vector<std::string> choices(std::string_view title) {
    std::vector<std::string> titles;
    for (const MenuCommand& command : menuCommands()) {
      if (command.title != title) continue;
      for (const MenuChoice& choice : command.choices(application)) {
        titles.push_back(choice.title + (choice.isChecked ? " *" : "") +
                         (choice.isEnabled ? "" : " (disabled)"));
      }
    }
    return titles;
  }
  void useProjectsFolder() { application.settings().useDefaultProjectsFolder(); }
};

TEST_F(MenuTest, AtMostTenRecentDocumentsAreOffered) {
  useProjectsFolder();
  for (int i = 0; i < 12; ++i) {
    testing::writeBytes(home / "Documents" / "Ostrelon" / ("Plan " + std::to_string(i) + ".ostrel"), "{}");
  }
  EXPECT_EQ(choices("Open Recent").size(), 10U);
}

TEST_F(MenuTest, SubmenusMarkWhatIsChosen) {
  EXPECT_THAT(choices("Appearance"), ElementsAre("System *", "Light", "Dark", "Tansy"));
  menu("View/Appearance/Tansy");
  EXPECT_THAT(choices("Appearance"), ElementsAre("System", "Light", "Dark", "Tansy *"));
  useProjectsFolder();
  menu("File/Save");
  dialogs.queue("first");
  menu("File/Save Checkpoint…");
  EXPECT_EQ(std::get<TextPrompt>(dialogs.asked().back()).initialText, "Checkpoint 1");
  dialogs.queue("Option A");
  menu("File/Create Branch…");
  EXPECT_THAT(choices("Switch Branch"), ElementsAre("main * (disabled)", "Option A"));
  menu("File/Open…");
  const auto& panel = std::get<OpenPanel>(dialogs.asked().back());
  EXPECT_EQ(panel.startingFolder, home / "Documents" / "Ostrelon") << "the folder used last";
}

TEST_F(MenuTest, RowsReachTheWindow) {
  int shown = 0;
  application.setWindowActions({.showSettings = [&] { ++shown; }, .close = {}});
  EXPECT_EQ(menu("File/Settings…"), std::nullopt);
  EXPECT_EQ(menu("File/Quit"), std::nullopt) << "nothing happens without a window";
  EXPECT_EQ(shown, 1);
}

}  // namespace
}  // namespace ostrelon
