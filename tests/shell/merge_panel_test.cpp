// A merge under review in the main window.
#include "shell/merge_panel.h"

#include <gmock/gmock.h>

#include <QRadioButton>

#include "shell/main_window.h"
#include "window_fixture.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;

struct MergePanelTest : testing::WindowFixture {
  MainWindow window{application, theme};
  MergePresenter presenter{application, theme, window};
  MergeReview& review = application.mergeReview();

  // Two walls and a circle were changed on the branch and here, and a line was drawn there.
  void SetUp() override {
    application.settings().useDefaultProjectsFolder();
    std::filesystem::create_directories(home / "Documents");
    for (const char* line : {"wall 0 0 40 0", "wall 0 20 40 20", "circle 10 10 3"}) run(line);
    document.save(home / "Documents" / "plan.ostrel");
    const auto work = [this](const char* branch, const char* nudge, const char* message) {
      if (branch != nullptr) run(branch);
      for (const char* entity : {"select 1", "select 2", "select 3"}) {
        run(entity);
        run(nudge);
      }
      run("line 0 -20 40 -20");
      run(message);
    };
    run("checkpoint start");
    run("branch create option");
    work("branch switch option", "nudge 0 3", "checkpoint theirs");
    work("branch switch main", "nudge 0 -3", "checkpoint ours");
    window.resize(1200, 800);
    present(window);
    settle();
    review.begin("option");
    settle();
  }
  MergePanel& panel() { return *find<MergePanel>(window, "merge"); }
  void key(Qt::Key code) {
    QTest::keyClick(QApplication::focusWidget(), code);
    settle();
  }
  QString rowText(int row) {
    return panel().list().model()->index(row, 0).data(Qt::AccessibleTextRole).toString();
  }
};

TEST_F(MergePanelTest, ConflictsAreSettledByKeysAndByThePointer) {
  EXPECT_FALSE(window.wallSystems().isVisible());
  EXPECT_EQ(rowText(1), "Conflict 1 of 3, Wall 1, Here: moved 3' down, There: moved 3' up, undecided");
  auto* merge = find(window, "merge.take");
  EXPECT_FALSE(merge->isEnabled());
  EXPECT_EQ(merge->toolTip(), "3 conflicts are undecided");

  // By keys: the list has the focus, Down goes to the first conflict and on, Left and Right choose, and so
  // does the group.
  key(Qt::Key_Down);
  EXPECT_EQ(window.canvas().difference()->current, 0U);
  key(Qt::Key_Right);
  key(Qt::Key_Right);
  EXPECT_THAT(*review.choices, ElementsAre(MergeChoice::theirs, std::nullopt, std::nullopt));
  EXPECT_TRUE(find<QRadioButton>(window, "merge.choice.theirs")->isChecked());
  key(Qt::Key_Down);
  key(Qt::Key_Tab);  // to the group, where arrows and Return choose and Space belongs to the tools
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "merge.choice.ours");
  key(Qt::Key_Left);
  EXPECT_THAT(*review.choices, ElementsAre(MergeChoice::theirs, MergeChoice::both, std::nullopt));
  key(Qt::Key_Up);
  EXPECT_THAT(*review.choices, ElementsAre(MergeChoice::theirs, MergeChoice::theirs, std::nullopt));
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "merge.choice.theirs");

  // By the pointer: the last third of the segments.
  const QRect row = panel().list().visualRect(panel().list().model()->index(3, 0));
  QTest::mouseClick(panel().list().viewport(), Qt::LeftButton, {},
                    QPoint(row.right() - 30, row.bottom() - 18));
  settle();
  EXPECT_THAT(*review.choices, ElementsAre(MergeChoice::theirs, MergeChoice::theirs, MergeChoice::both));
  ASSERT_TRUE(merge->isEnabled());
  const double zoom = board.scale();
  QTest::mouseClick(panel().list().viewport(), Qt::LeftButton, {}, row.center() - QPoint(0, 30));
  settle();
  EXPECT_NE(board.scale(), zoom) << "a click on a row goes there";
  press(window, "merge.take");
  EXPECT_EQ(window.reviewPanel(), nullptr);
  EXPECT_TRUE(window.wallSystems().isVisible());
  EXPECT_EQ(window.canvas().difference(), std::nullopt);
  EXPECT_EQ(sketch.entities().size(), 6U);
}

TEST_F(MergePanelTest, CancelLeavesTheDrawingAndManyConflictsKeepTheirPlace) {
  const Drawing before = sketch.drawing;
  press(window, "merge.allBoth");
  EXPECT_EQ(review.undecided(), 0U);
  panel().list().setCurrentIndex(panel().list().model()->index(2, 0));
  run("circle 90 90 2");
  EXPECT_EQ(panel().list().currentIndex().row(), 2) << "an edit leaves the list where it was";
  board.undo();
  window.resize(760, 560);
  settle();
  EXPECT_TRUE(panel().isRail());
  press(window, "merge.unfold");
  EXPECT_FALSE(panel().isRail());
  EXPECT_TRUE(panel().list().hasFocus());
  press(window, "merge.cancel");
  EXPECT_EQ(window.reviewPanel(), nullptr);
  EXPECT_EQ(sketch.drawing.get(), before);
  review.begin("option");
  settle();
  EXPECT_FALSE(panel().isRail()) << "there is something to decide";
}

}  // namespace
}  // namespace ostrelon
