// The window of the history, and the branch in the title that leads to it.

#include "shell/history_window.h"
#include "shell/dialog_sheet.h"
#include "shell/drawing_view.h"
#include "shell/history_list.h"
#include "shell/qt_dialogs.h"
#include "shell/top_bar.h"
#include "window_fixture.h"

namespace ostrelon {
namespace {

struct HistoryWindowTest : testing::WindowFixture {
  QWidget main;
  HistoryWindow window{application, theme, &main};
  HistoryList* list = find<HistoryList>(window, "history.list");

  void SetUp() override {
    std::filesystem::create_directories(home / "Documents");
    run("line 0 0 50 0");
    document.save(home / "Documents" / "House.ostrel");
    document.saveCheckpoint("a line");
    run("wall 0 0 50 50 W2-EXT");
    document.saveCheckpoint("with a wall");
    window.open();
    static_cast<void>(QTest::qWaitForWindowActive(&window, 1000));
    settle();
  }
  QString text(const char* identifier) { return find<QLabel>(window, identifier)->text(); }
  void key(Qt::Key key) {
    QTest::keyClick(list, key);
    settle();
  }
};

TEST_F(HistoryWindowTest, KeysGoThroughTheRowsAndRestore) {
  EXPECT_EQ(text("history.title"), "Last save");
  key(Qt::Key_Down);
  EXPECT_EQ(text("history.title"), "with a wall") << "the heading is passed over";
  EXPECT_TRUE(text("history.facts").contains("1 line, 1 wall"));
  key(Qt::Key_Down);
  EXPECT_TRUE(list->currentIndex().data(Qt::AccessibleTextRole).toString().contains("a line, "));
  EXPECT_FALSE(find(window, "history.switch")->isVisible());
  key(Qt::Key_Return);
  EXPECT_EQ(sketch.entities().size(), 1U);
  EXPECT_EQ(text("history.status"), "Restored “a line”.");
  // A checkpoint that is saved meanwhile comes into the list, and the row stays chosen.
  document.saveCheckpoint("again");
  settle();
  EXPECT_EQ(text("history.title"), "a line");
  key(Qt::Key_Home);
  key(Qt::Key_Down);
  EXPECT_EQ(text("history.title"), "again");
  key(Qt::Key_Escape);
  EXPECT_FALSE(window.isVisible());
}

TEST_F(HistoryWindowTest, PicturesAreDrawnInTheColoursOfTheTheme) {
  const auto colorsOf = [&] {
    settle();
    static_cast<void>(list->grab());
    settle();
    const QImage shown = list->grab().toImage();
    return std::pair(shown.pixelColor(20, 60), shown);
  };
  const auto isBackground = [&] {
    return std::abs(colorsOf().first.blueF() - theme.background().blueF()) < 0.01F;
  };
  EXPECT_TRUE(isBackground());
  theme.setPalette(darkPalette());
  EXPECT_TRUE(isBackground());
  bool hasStroke = false;
  const QImage dark = colorsOf().second;
  for (int x = 20; x < 90; ++x) {
    for (int y = 50; y < 100; ++y) hasStroke |= dark.pixelColor(x, y).lightnessF() > 0.5;
  }
  EXPECT_TRUE(hasStroke);
  theme.setPalette(lightPalette());
}

TEST_F(HistoryWindowTest, TheLargeViewStaysWhereItWasMovedWhenRowsChange) {
  auto* view = find<DrawingView>(window, "history.view");
  const SketchViewport fitted = view->viewport();
  QTest::keyClick(view, Qt::Key_Plus);
  QTest::keyClick(view, Qt::Key_Left);
  const SketchViewport moved = view->viewport();
  EXPECT_GT(moved.scale, fitted.scale);
  key(Qt::Key_Down);
  EXPECT_EQ(view->viewport(), moved);
  QTest::keyClick(view, Qt::Key_0);
  EXPECT_EQ(view->viewport(), fitted);
}

TEST_F(HistoryWindowTest, QuestionsAreAskedOverIt) {
  QtDialogs questions(theme);
  questions.setWindow(&main);
  questions.addWindow(&window);
  questions.ask(Alert{"Really?", "", {"Yes"}}, [](const DialogAnswer&) {});
  EXPECT_NE(DialogSheet::inFrontOf(window), nullptr);
}

struct BranchInTheTitle : testing::WindowFixture {};

TEST_F(BranchInTheTitle, LeadsToTheHistoryByClickAndByKey) {
  TopMenuBarView bar(application, theme);
  bar.resize(980, TopMenuBarView::kHeight);
  present(bar);
  int asked = 0;
  application.setWindowActions({.showHistory = [&] { ++asked; }});
  press(bar, "topMenuBar.branch");
  auto* branch = find(bar, "topMenuBar.branch");
  branch->setFocus(Qt::TabFocusReason);
  QTest::keyClick(branch, Qt::Key_Return);
  EXPECT_EQ(asked, 2);
  EXPECT_EQ(branch->accessibleName(), "Branch main, show the history");
}

}  // namespace
}  // namespace ostrelon
