// The top bar, the wall systems and the inspector.
#include <QComboBox>
#include <QLabel>
#include <QSignalSpy>

#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "shell/inspector_window.h"
#include "shell/rows_view.h"
#include "shell/top_bar.h"
#include "shell/wall_system_panel.h"
#include "window_fixture.h"

namespace ostrelon {
namespace {

// --- The top bar

struct TopBarTest : testing::WindowFixture {
  TopMenuBarView bar{application, theme};
  void SetUp() override {
    bar.resize(980, TopMenuBarView::kHeight);
    present(bar);
  }
};

TEST_F(TopBarTest, TellsTheDocumentItsMarkAndItsBranch) {
  auto* title = find<DocumentTitle>(bar, "topMenuBar.document");
  EXPECT_EQ(title->accessibleName(), "Untitled Project, branch main");
  run("line 0 0 1 1");
  EXPECT_EQ(title->accessibleName(), "Untitled Project, edited, branch main");
}

TEST_F(TopBarTest, ALongBranchLeavesTheNameVisible) {
  DocumentTitle title(theme);
  const auto shownBeginning = [&](const QString& branch) {
    title.setDocument("House", false, branch);
    title.resize(std::min(140, title.sizeHint().width()), 28);
    return title.grab(QRect(0, 0, 60, 28)).toImage();
  };
  const QImage whole = shownBeginning("a");
  EXPECT_EQ(shownBeginning(QString(200, 'm')), whole);
  EXPECT_TRUE(title.toolTip().contains(QString(200, 'm')));
}

TEST_F(TopBarTest, TheGridsWordGoesByTheRoomThatThereIs) {
  auto* grid = find(bar, "topMenuBar.grid");
  const auto wordAt = [&](int width) {
    bar.resize(width, TopMenuBarView::kHeight);
    settle();
    return grid->text();
  };
  const auto narrowest = [&] {
    int width = 1400;
    while (wordAt(width) == "Grid" && width > 0) width -= 10;
    return width;
  };
  bar.setKeyHintsVisible(false);
  const int withShortName = narrowest();
  EXPECT_EQ(wordAt(640), "");
  dialogs.queue((home / "A house with a longer name.ostrel").string());
  application.saveAs();
  EXPECT_GT(narrowest(), withShortName);
}

TEST_F(TopBarTest, AnOffSwitchIsVisibleInEveryTheme) {
  Switch toggle(theme, {});
  toggle.resize(toggle.sizeHint());
  for (const ThemePalette& palette : {lightPalette(), darkPalette(), tansyPalette()}) {
    theme.setPalette(palette);
    const QColor edge = toggle.grab().toImage().pixelColor(15, 1);
    EXPECT_GE(contrastRatio({edge.redF(), edge.greenF(), edge.blueF()}, palette.card), 2.9)
        << "the outline is smoothed by a little";
  }
  theme.setPalette(lightPalette());
}

TEST_F(TopBarTest, EveryComboBoxHasItsArrow) {
  QComboBox plain;
  plain.resize(120, 28);
  plain.addItem({});
  const QImage shown = plain.grab(QRect(94, 4, 22, 20)).toImage();
  bool hasArrow = false;
  for (int x = 0; x < shown.width(); ++x) hasArrow |= shown.pixelColor(x, 10) != theme.card();
  EXPECT_TRUE(hasArrow);
}

TEST_F(TopBarTest, TheButtonsAndTheSwitchRunTheirCommands) {
  run("line 0 0 1 1");
  press(bar, "topMenuBar.clear");
  EXPECT_TRUE(sketch.entities().empty());
  board.undo();
  EXPECT_EQ(sketch.entities().size(), 1U) << "one undo step";
  press(bar, "topMenuBar.grid");
  EXPECT_FALSE(sketch.drawing->showGrid);
  setShowGrid(sketch, true);
  settle();
  EXPECT_TRUE(find(bar, "topMenuBar.grid")->isChecked());
}

// --- The wall systems

struct WallSystemPanelTest : testing::WindowFixture {
  WallSystemPanelView panel{workspace, theme};
  void SetUp() override {
    panel.resize(WallSystemPanelView::kWidth, 700);
    present(panel);
  }
  void enter(const char* identifier, const char* text) {
    auto* field = find<QLineEdit>(panel, identifier);
    field->setFocus();
    field->selectAll();
    type(*field, text);
    QTest::keyClick(field, Qt::Key_Return);
    settle();
  }
  QString text(const char* identifier) { return find<QLineEdit>(panel, identifier)->text(); }
};

TEST_F(WallSystemPanelTest, AFieldCommitsWithReturnAndSaysWhyItRefuses) {
  EXPECT_EQ(text("wallSystems.thickness"), "4.5");
  enter("wallSystems.thickness", "5.25");
  EXPECT_EQ(sketch.drawing->wallSystemSpecs[0].thickness, 5.25);
  EXPECT_TRUE(document.isDirty());
  const std::size_t lines = messages.lines->size();
  for (const char* bad : {"-1", "abc", "0"}) {
    enter("wallSystems.thickness", bad);
    EXPECT_EQ(text("wallSystems.thickness"), bad);
    EXPECT_FALSE(find<QLabel>(panel, "wallSystems.thickness.note")->text().startsWith('=')) << bad;
  }
  EXPECT_EQ(sketch.drawing->wallSystemSpecs[0].thickness, 5.25);
  enter("wallSystems.thickness", "5-1/4\"");
  EXPECT_EQ(text("wallSystems.thickness"), "5 1/4\"");
  EXPECT_EQ(find<QLabel>(panel, "wallSystems.thickness.note")->text(), "= 5 1/4\"");
  EXPECT_EQ(messages.lines->size(), lines);
  enter("wallSystems.assembly", "straw");
  EXPECT_EQ(sketch.drawing->wallSystemSpecs[0].assemblyNotes, "straw");
}

TEST_F(WallSystemPanelTest, AddGoesOnWithTheNameAndDeleteTakesItAway) {
  press(panel, "wallSystems.add");
  auto* name = find<QLineEdit>(panel, "wallSystems.name");
  EXPECT_EQ(name->selectedText(), "WALL");
  enter("wallSystems.name", "cmu-8");
  EXPECT_EQ(find<QLabel>(panel, "wallSystems.name.note")->text(), "This name is taken.");
  enter("wallSystems.name", "BATH");
  EXPECT_EQ(find<QLabel>(panel, "wallSystems.contextTitle")->text(), "ACTIVE SYSTEM · BATH");
  press(panel, "wallSystems.delete");
  EXPECT_EQ(sketch.drawing->wallSystemSpecs.size(), 3u);
}

TEST_F(WallSystemPanelTest, AFieldLeftWithoutReturnShowsAgainWhatHolds) {
  auto* field = find<QLineEdit>(panel, "wallSystems.height");
  field->setFocus();
  field->selectAll();
  type(*field, "120");
  find<QLineEdit>(panel, "wallSystems.assembly")->setFocus();
  EXPECT_EQ(field->text(), "96");
  EXPECT_EQ(sketch.drawing->wallSystemSpecs[0].height, 96);
}

TEST_F(WallSystemPanelTest, TheFieldsShowTheSelectedWallsSystem) {
  auto* title = find<QLabel>(panel, "wallSystems.contextTitle");
  EXPECT_EQ(title->text(), "ACTIVE SYSTEM · W2-INT");
  EXPECT_FALSE(find(panel, "wallSystems.assign")->isEnabled());
  run("wall 0 0 10 0 CMU-8");
  EXPECT_EQ(title->text(), "SELECTED WALL · CMU-8");
  EXPECT_EQ(text("wallSystems.thickness"), "8");
  press(panel, "wallSystems.assign");
  EXPECT_EQ(lastLine(), "Wall assigned to CMU-8.");

  auto* list = find<QAbstractItemView>(panel, "wallSystems.list");
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {},
                    list->visualRect(list->model()->index(1, 0)).center());
  settle();
  EXPECT_EQ(std::get<WallEntity>(sketch.entities().back()).systemSpecID,
            sketch.drawing->wallSystemSpecs[1].id);
  EXPECT_EQ(title->text(), "SELECTED WALL · W2-EXT");
  EXPECT_EQ(list->model()->index(1, 0).data(Qt::AccessibleTextRole).toString(),
            "W2-EXT, 6.5 thick · 96 high, used by the selected wall");
}

// --- The inspector

struct InspectorWindowTest : testing::WindowFixture {
  QWidget main;
  InspectorWindow window{workspace, theme, &main};
  void SetUp() override { present(main); }
};

TEST_F(InspectorWindowTest, ComesAndGoesWithItsFlag) {
  EXPECT_EQ(window.windowTitle(), "Entity Inspector");
  EXPECT_EQ(window.objectName(), "entity-inspector");
  run("wall 0 0 10 0");
  showEntityInspector(sketch);
  settle();
  EXPECT_TRUE(window.isVisible());
  window.close();
  EXPECT_FALSE(sketch.selection->isInspected) << "closed by the user";
  showEntityInspector(sketch);
  settle();
  sketch.clearSelection();
  settle();
  EXPECT_FALSE(window.isVisible());
}

TEST_F(InspectorWindowTest, ShowsOneEntityAndEditsIt) {
  run("wall 0 0 10 0");
  showEntityInspector(sketch);
  settle();
  EXPECT_EQ(find<QLabel>(window, "inspector.metric.Length")->text(), "10'");
  auto* length = find<QLineEdit>(window, "inspector.length");
  EXPECT_EQ(length->text(), "10'");
  length->setText("12'6");
  press(window, "inspector.applyLength");
  EXPECT_EQ(lastLine(), "Length set to 12.5.");
  EXPECT_EQ(length->text(), "12'6\"");
  EXPECT_EQ(find<QLabel>(window, "inspector.metric.Length")->text(), "12'6\"");

  press(window, "inspector.nudge");
  EXPECT_EQ(lastLine(), "Enter numeric nudge values.");
  find<QLineEdit>(window, "inspector.nudgeX")->setText("2");
  find<QLineEdit>(window, "inspector.nudgeY")->setText("-1");
  press(window, "inspector.nudge");
  EXPECT_EQ(lastLine(), "Selection nudged by (2, -1).");

  auto* picker = find<QComboBox>(window, "inspector.wallSystem");
  ASSERT_EQ(picker->count(), 3);
  Q_EMIT picker->activated(2);
  settle();
  EXPECT_EQ(lastLine(), "Wall system set to CMU-8.");
  EXPECT_EQ(picker->currentText(), "CMU-8");

  auto* convert = find<QPushButton>(window, "inspector.convert");
  EXPECT_EQ(convert->text(), "Convert to Line");
  press(window, "inspector.convert");
  EXPECT_EQ(convert->text(), "Convert to Wall (W2-INT)");
  press(window, "inspector.logDetails");
  EXPECT_TRUE(lastLine().starts_with("line from (2.0, -1.0)")) << lastLine();
  press(window, "inspector.duplicate");
  EXPECT_EQ(sketch.entities().size(), 2U);
  EXPECT_EQ(sketch.selection->primary, entityID(sketch.entities().back()));
  press(window, "inspector.delete");
  EXPECT_EQ(sketch.entities().size(), 1U);
  EXPECT_FALSE(window.isVisible());
}

TEST_F(InspectorWindowTest, SeveralSelectedAreEditedTogether) {
  run("wall 0 0 10 0");
  run("circle 0 0 4");
  selectAll(sketch);
  showEntityInspector(sketch);
  settle();
  EXPECT_EQ(find<QLabel>(window, "inspector.selectionHeading")->text(), "2 selected · 1 wall, 1 circle");
  press(window, "inspector.duplicateAll");
  EXPECT_EQ(sketch.entities().size(), 4U);
  press(window, "inspector.deleteAll");
  EXPECT_EQ(sketch.entities().size(), 2U);
  EXPECT_FALSE(window.isVisible());
}

}  // namespace
}  // namespace ostrelon
