#include "app/menu.h"

#include <gmock/gmock.h>

#include "app/shortcut_text.h"
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
  bool isDisabled(std::string_view path) {
    const auto refusal = menu(path);
    return refusal && refusal->find("disabled") != std::string::npos;
  }
};

TEST_F(MenuTest, theRowsStandInTheirOrderWithTheirKeys) {
  std::string table;
  for (const MenuCommand& command : menuCommands()) {
    if (command.title.empty()) continue;
    table += std::string(command.menu) + "/" + std::string(command.title);
    if (!command.shortcut.empty()) table += "  " + desktopNotation(command.shortcut);
    table += '\n';
  }
  EXPECT_EQ(table,
            "File/New Document  Ctrl+N\nFile/Open…  Ctrl+O\nFile/Open Recent\nFile/Save  Ctrl+S\n"
            "File/Save As…  Ctrl+Shift+S\nFile/Save Checkpoint…\nFile/Create Branch…\nFile/Switch Branch\n"
            "File/Revert to Last Autosave\nFile/Import DXF…\nFile/Export…  Ctrl+E\nFile/Print…  Ctrl+P\n"
            "File/Settings…  Ctrl+,\nFile/Quit  Ctrl+Q\n"
            "Edit/Undo  Ctrl+Z\nEdit/Redo  Ctrl+Shift+Z\n"
            "Edit/Cut  Ctrl+X\nEdit/Copy  Ctrl+C\nEdit/Paste  Ctrl+V\nEdit/Select All  Ctrl+A\n"
            "Sketch/Inspect  Ctrl+I\nSketch/Duplicate  Ctrl+D\nSketch/Clear Sketch  Ctrl+Shift+K\n"
            "Sketch/Toggle Grid  Ctrl+G\nConsole/Show Help\nView/Appearance\nView/Zoom In  Ctrl++\n"
            "View/Zoom Out  Ctrl+-\nView/Zoom to Fit  Ctrl+0\nView/Reset View  Ctrl+Shift+0\n"
            "Help/Manual\nHelp/Keyboard Shortcuts\nHelp/Open Sample Plan\n");
}

TEST_F(MenuTest, rowsWithNothingToDoAreDisabled) {
  for (const char* path :
       {"Edit/Undo", "Edit/Redo", "Edit/Cut", "Edit/Copy", "Edit/Paste", "Edit/Select All", "Sketch/Inspect",
        "Sketch/Duplicate", "File/Switch Branch/main", "File/Open Recent/No Recent Documents"}) {
    EXPECT_TRUE(isDisabled(path)) << path;
  }
  EXPECT_EQ(menu("File/Nothing"), "No menu command is named \"File/Nothing\".");
  EXPECT_NE(menu("View/Appearance"), std::nullopt) << "a submenu is no command";
  EXPECT_NE(menu("View/Appearance/Pink"), std::nullopt);
  submit("wall 0 0 10 0");
  EXPECT_EQ(menu("Sketch/Inspect"), std::nullopt);
  EXPECT_TRUE(*sketch.isEntityInspectorVisible);
  EXPECT_EQ(menu("Sketch/Duplicate"), std::nullopt);
  EXPECT_EQ(std::get<WallEntity>(sketch.entities->back()).from, (SketchPoint{24, 24}));
  EXPECT_EQ(menu("Edit/Undo"), std::nullopt);
  EXPECT_EQ(menu("Edit/Redo"), std::nullopt);
  EXPECT_EQ(sketch.entities->size(), 2U);
}

TEST_F(MenuTest, cutCopyAndPasteSpeakAsTheCommandsDoAndAreAnUndoStepEach) {
  submit("line 0 0 10 0");
  submit("circle 5 5 2");
  EXPECT_EQ(menu("Edit/Select All"), std::nullopt);
  EXPECT_EQ(sketch.selectedEntityIDs->size(), 2U);
  const EntityList before = sketch.entities;
  EXPECT_EQ(menu("Edit/Cut"), std::nullopt);
  EXPECT_EQ(sketch.consoleLines->back().text, "2 entities deleted.");
  EXPECT_TRUE(sketch.entities->empty());
  EXPECT_EQ(menu("Edit/Paste"), std::nullopt);
  EXPECT_EQ(sketch.consoleLines->back().text, "2 entities pasted.");
  EXPECT_EQ(std::get<LineEntity>(sketch.entities->front()).from, (SketchPoint{24, 24}));
  menu("Edit/Undo");
  menu("Edit/Undo");
  EXPECT_EQ(*sketch.entities, before);
}

TEST_F(MenuTest, theViewRowsZoomAboutTheMiddleOfTheCanvas) {
  sketch.updateCanvasSize({800, 600});
  menu("View/Zoom In");
  EXPECT_EQ(sketch.viewport.get(), (SketchViewport{{400, 300}, 5}));
  menu("View/Zoom Out");
  EXPECT_EQ(sketch.viewport->scale, 4);
  sketch.panViewport(50, 50);
  menu("View/Reset View");
  EXPECT_EQ(sketch.viewport.get(), (SketchViewport{{400, 300}, 4}));
  submit("line 0 0 1000 0");
  menu("View/Zoom to Fit");
  EXPECT_LT(sketch.viewport->scale, 1);
}

TEST_F(MenuTest, theOtherRowsDoWhatTheySay) {
  menu("Console/Show Help");
  EXPECT_TRUE(lastLine().text.starts_with("line [<x1>"));
  menu("Sketch/Toggle Grid");
  EXPECT_FALSE(*sketch.showGrid);
  submit("circle 0 0 4");
  menu("Sketch/Clear Sketch");
  EXPECT_TRUE(sketch.entities->empty());
  EXPECT_THAT(choices("Appearance"), ElementsAre("System *", "Light", "Dark", "Tansy"));
  menu("View/Appearance/Tansy");
  EXPECT_THAT(choices("Appearance"), ElementsAre("System", "Light", "Dark", "Tansy *"));
  int shown = 0;
  application.setWindowActions({.showSettings = [&] { ++shown; }, .close = {}});
  EXPECT_EQ(menu("File/Settings…"), std::nullopt);
  EXPECT_EQ(menu("File/Quit"), std::nullopt) << "nothing happens without a window";
  EXPECT_EQ(shown, 1);
}

TEST_F(MenuTest, documentsAreSavedListedAndOpened) {
  useProjectsFolder();
  submit("line 0 0 10 0");
  menu("File/Save");
  EXPECT_EQ(lastLine().text, "Saved Untitled Project.");
  EXPECT_EQ((*sketch.documentToast)->message, "Saved Untitled Project");
  dialogs.queue((home / "Documents" / "Ostrelon" / "House").string());
  scheduler.advance(Seconds(10));
  menu("File/Save As…");
  EXPECT_EQ(*sketch.documentName, "House");
  EXPECT_THAT(choices("Open Recent"), ElementsAre("House", "Untitled Project"));
  EXPECT_EQ(menu("File/Open Recent/Untitled Project"), std::nullopt);
  EXPECT_EQ(lastLine().text, "Opened Untitled Project.");

  dialogs.queue((home / "Documents" / "Ostrelon" / "House.ostrel").string());
  menu("File/Open…");
  EXPECT_EQ(*sketch.documentName, "House");
  dialogs.queue(std::nullopt);
  menu("File/Open…");
  const auto& again = std::get<OpenPanel>(dialogs.asked().back());
  EXPECT_EQ(again.startingFolder, home / "Documents" / "Ostrelon") << "the folder used last";
  EXPECT_EQ(*sketch.documentName, "House");
}

TEST_F(MenuTest, atMostTenRecentDocumentsAreOffered) {
  useProjectsFolder();
  for (int i = 0; i < 12; ++i) {
    testing::writeBytes(home / "Documents" / "Ostrelon" / ("Plan " + std::to_string(i) + ".ostrel"), "{}");
  }
  EXPECT_EQ(choices("Open Recent").size(), 10U);
}

TEST_F(MenuTest, checkpointsAndBranchesAreAskedForAndReported) {
  menu("File/Create Branch…");
  EXPECT_EQ(lastLine().text, "Create a checkpoint before branching.");
  EXPECT_TRUE(lastLine().isError);
  EXPECT_TRUE(dialogs.asked().empty());
  useProjectsFolder();
  menu("File/Save");
  dialogs.queue("  walls up ");
  menu("File/Save Checkpoint…");
  EXPECT_EQ(lastLine().text, "Checkpoint saved on main: walls up");
  const auto& prompt = std::get<TextPrompt>(dialogs.asked().back());
  EXPECT_EQ(prompt.initialText, "Checkpoint 1");

  dialogs.queue("Option A / Rev 2");
  menu("File/Create Branch…");
  EXPECT_EQ(lastLine().text, "Branch created: Option A / Rev 2");
  EXPECT_EQ((*sketch.documentToast)->message, "Branch created: Option A / Rev 2");
  EXPECT_THAT(choices("Switch Branch"), ElementsAre("main * (disabled)", "Option A / Rev 2"));
  EXPECT_EQ(menu("File/Switch Branch/Option A / Rev 2"), std::nullopt);
  EXPECT_EQ(lastLine().text, "Switched to branch Option A / Rev 2.");
  EXPECT_THAT(choices("Switch Branch"), ElementsAre("main", "Option A / Rev 2 * (disabled)"));
}

TEST_F(MenuTest, theLastAutosaveComesBack) {
  menu("File/Revert to Last Autosave");
  EXPECT_EQ(lastLine().text, "No last autosave is available.");
  EXPECT_TRUE(lastLine().isError);
  EXPECT_EQ(*sketch.documentToast,
            (DocumentToastState{"No last autosave is available.", DocumentToastState::Style::error}));
  useProjectsFolder();
  application.mainViewAppeared();
  submit("line 0 0 10 0");
  scheduler.advance(Seconds(301));
  ASSERT_FALSE(*sketch.isDocumentDirty);
  submit("circle 0 0 4");
  menu("File/Revert to Last Autosave");
  EXPECT_EQ(sketch.entities->size(), 1U);
  EXPECT_EQ(lastLine().text, "Reverted to last autosave.");
  EXPECT_EQ(*sketch.documentToast,
            (DocumentToastState{"Reverted to last autosave.", DocumentToastState::Style::success}));
}

}  // namespace
}  // namespace ostrelon
