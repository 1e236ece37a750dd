// A comparison in the main window, driven by keys and clicks.
#include <QAbstractItemView>
#include <QLabel>
#include <QSlider>

#include "app/menu.h"
#include "core/adding.h"
#include "shell/dialog_sheet.h"
#include "shell/qt_dialogs.h"
#include "shell/windowed_program.h"
#include "window_fixture.h"

namespace ostrelon {
namespace {

struct ComparisonWindowTest : testing::WindowFixture {
  QtDialogs questions{theme};
  WindowedProgram program{application, theme, questions};
  MainWindow& window = program.mainWindow();

  void SetUp() override {
    application.settings().useDefaultProjectsFolder();
    addLine(sketch, {0, 0}, {40, 0});
    document.save(home / "Plan.ostrel");
    addLine(sketch, {0, 60}, {40, 60});
    window.resize(1200, 800);
    present(window);
    settle();
  }
  void key(int code, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(code), modifiers);
    settle();
  }
};

TEST_F(ComparisonWindowTest, IsChosenGoneThroughTakenFromAndEnded) {
  EXPECT_EQ(runMenuCommand(application, "File/Compare with…"), std::nullopt);
  ASSERT_NE(DialogSheet::inFrontOf(window), nullptr);
  key(Qt::Key_Return);
  ASSERT_NE(window.reviewPanel(), nullptr);
  EXPECT_FALSE(window.wallSystems().isVisible());
  EXPECT_EQ(find<QLabel>(window, "comparison.title")->text(), "With the last save");
  EXPECT_EQ(find<QLabel>(window, "comparison.counts")->text(), "1 added.");
  ASSERT_TRUE(window.canvas().difference());

  EXPECT_FALSE(find(window, "comparison.takeBack")->isEnabled());
  key(Qt::Key_N);
  EXPECT_EQ(window.canvas().difference()->current, 0u);
  find<QSlider>(window, "comparison.blend")->setValue(0);
  settle();
  EXPECT_EQ(window.canvas().difference()->blend, 0);
  EXPECT_FALSE(find(window, "comparison.takeThis")->isEnabled());
  press(window, "comparison.takeBack");
  EXPECT_EQ(sketch.entities().size(), 1u);
  EXPECT_FALSE(find<QAbstractItemView>(window, "comparison.list")->isVisible()) << "nothing is left";

  window.resize(800, 600);
  settle();
  EXPECT_EQ(window.reviewPanel()->width(), ReviewPanel::kRailWidth);
  press(window, "comparison.unfold");
  EXPECT_EQ(window.reviewPanel()->width(), ReviewPanel::kWidth);
  key(Qt::Key_Escape);
  EXPECT_TRUE(application.comparison().isOn()) << "the panel folds first";
  key(Qt::Key_Escape);
  EXPECT_EQ(window.reviewPanel(), nullptr);
  EXPECT_TRUE(window.wallSystems().isVisible());
  EXPECT_FALSE(window.canvas().difference());
}

}  // namespace
}  // namespace ostrelon
