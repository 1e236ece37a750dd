#include "shell/main_window.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QFocusFrame>
#include <QLabel>
#include <QMimeData>
#include <QUrl>

#include "app/menu.h"
#include "geometry/edit_operations.h"
#include "shell/dialog_sheet.h"
#include "shell/inspector_window.h"
#include "shell/qt_dialogs.h"
#include "shell/windowed_program.h"
#include "window_fixture.h"

namespace ostrelon {
namespace {

struct MainWindowTest : testing::WindowFixture {
  MainWindow window{application, theme};

  void SetUp() override {
    application.settings().useDefaultProjectsFolder();
    window.resize(1200, 800);
    present(window);
    settle();
  }
  void key(int code, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(code), modifiers);
    settle();
  }
  void resizeTo(int width, int height) {
    window.resize(width, height);
    settle();
  }
};

TEST_F(MainWindowTest, AFocusedFieldHasTheHalo) {
  window.console().input()->setFocus();
  settle();
  auto* halo = window.findChild<QFocusFrame*>();
  ASSERT_NE(halo, nullptr);
  EXPECT_TRUE(halo->isVisible());
  EXPECT_EQ(halo->widget(), window.console().input());
}

TEST_F(MainWindowTest, ASheetGivesTheFocusBack) {
  QtDialogs questions(theme);
  questions.setWindow(&window);
  DialogAnswer answer = "unanswered";
  questions.ask(Alert{"Sure?", "Really.", {"Save", "Cancel", "Don't Save"}},
                [&](DialogAnswer given) { answer = given; });
  settle();
  EXPECT_EQ(QApplication::focusWidget()->objectName(), "alert.Save");
  EXPECT_FALSE(window.topBar().menuBar().isEnabled());
  key(Qt::Key_Return);
  EXPECT_EQ(answer, "Save");
  EXPECT_TRUE(window.topBar().menuBar().isEnabled());
  EXPECT_EQ(QApplication::focusWidget(), window.console().input());
  auto* halo = window.findChild<QFocusFrame*>();
  EXPECT_TRUE(halo->isVisible());
  EXPECT_EQ(halo->widget(), window.console().input());
  EXPECT_EQ(window.findChildren<DialogSheet*>().size(), 0);
}

TEST_F(MainWindowTest, TellsItsDocumentInTheTitle) {
  EXPECT_EQ(window.objectName(), "main");
  EXPECT_EQ(window.windowTitle(), "Untitled Project[*]");
  EXPECT_FALSE(window.isWindowModified());
  run("line 0 0 10 0");
  EXPECT_TRUE(window.isWindowModified());
  application.save();
  settle();
  EXPECT_FALSE(window.isWindowModified());
  EXPECT_TRUE(window.windowFilePath().endsWith("Untitled Project.ostrel"));
}

TEST_F(MainWindowTest, PanelsFoldByTheWindowsWidth) {
  EXPECT_FALSE(window.wallSystems().isRail());
  EXPECT_EQ(window.canvas().size(), QSize(716, 576));
  resizeTo(1079, 800);
  EXPECT_TRUE(window.wallSystems().isRail());
  EXPECT_FALSE(window.navigation().isRail());
  resizeTo(919, 800);
  EXPECT_TRUE(window.navigation().isRail());
  EXPECT_EQ(window.canvas().width(), 919 - LeftNavView::kRailWidth - WallSystemPanelView::kRailWidth);

  press(window, "wallSystems.unfold");
  EXPECT_FALSE(window.wallSystems().isRail());
  EXPECT_EQ(window.wallSystems().width(), WallSystemPanelView::kWidth);
  EXPECT_EQ(window.canvas().width(), 919 - LeftNavView::kRailWidth - WallSystemPanelView::kRailWidth)
      << "it lies over the canvas";
  QTest::mouseClick(&window.canvas(), Qt::LeftButton, {}, QPoint(100, 100));
  settle();
  EXPECT_TRUE(window.wallSystems().isRail()) << "a click outside folds it";
  press(window, "leftNav.unfold");
  EXPECT_EQ(window.navigation().width(), LeftNavView::kWidth);
  resizeTo(1200, 800);
  EXPECT_FALSE(window.navigation().isRail());
  EXPECT_EQ(window.canvas().size(), QSize(716, 576));
}

TEST_F(MainWindowTest, AShortWindowShowsTheConsoleAtItsLeastHeight) {
  window.console().setPanelHeight(300);
  EXPECT_EQ(window.console().height(), 300);
  resizeTo(1200, 600);
  EXPECT_EQ(window.console().height(), 120);
  resizeTo(1200, 800);
  EXPECT_EQ(window.console().height(), 300);
}

TEST_F(MainWindowTest, LettersChooseToolsUntilSomethingIsTyped) {
  window.console().input()->setFocus();
  key(Qt::Key_L);
  EXPECT_EQ(board.tool.get(), SketchTool::line);
  EXPECT_EQ(window.console().input()->text(), "");
  key(Qt::Key_Escape);
  EXPECT_EQ(board.tool.get(), SketchTool::select);
  type(*window.console().input(), "0 l");
  EXPECT_EQ(window.console().input()->text(), "0 l") << "into a filled line letters are typed";
  EXPECT_EQ(board.tool.get(), SketchTool::select);
  key(Qt::Key_Escape);
  settle();
  EXPECT_EQ(window.console().input()->text(), "");

  auto* thickness = find<QLineEdit>(window, "wallSystems.assembly");
  thickness->setFocus();
  thickness->selectAll();
  type(*thickness, "lz");
  EXPECT_EQ(thickness->text(), "lz");
  EXPECT_EQ(board.tool.get(), SketchTool::select);
}

TEST_F(MainWindowTest, DigitsTypedOverTheCanvasGoToTheConsole) {
  window.canvas().setFocus();
  QTest::keyClick(&window.canvas(), Qt::Key_4);
  EXPECT_TRUE(window.console().input()->hasFocus());
  type(*window.console().input(), "0");
  EXPECT_EQ(*console.input, "40");
}

TEST_F(MainWindowTest, UndoOfAnEmptyLineIsTheDrawings) {
  run("line 0 0 10 0");
  window.console().input()->setFocus();
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(sketch.entities().empty());
  key(Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(sketch.entities().size(), 1U);
  type(*window.console().input(), "hallo");
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(sketch.entities().size(), 1U) << "a filled line undoes its own typing";
}

TEST_F(MainWindowTest, TheEditingKeysAreTheDrawingsUntilALineIsTyped) {
  run("line 0 0 10 0");
  window.console().input()->setFocus();
  key(Qt::Key_A, Qt::ControlModifier);
  EXPECT_EQ(sketch.selection->ids.size(), 1U);
  key(Qt::Key_C, Qt::ControlModifier);
  window.canvas().setFocus();
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(sketch.entities().size(), 2U);
  window.console().input()->setFocus();
  type(*window.console().input(), "hallo");
  key(Qt::Key_A, Qt::ControlModifier);
  key(Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(window.console().input()->text(), "");
  EXPECT_EQ(sketch.entities().size(), 2U);

  auto* transcript = find<QAbstractItemView>(window, "console.transcript");
  transcript->setFocus();
  QGuiApplication::clipboard()->clear();
  key(Qt::Key_A, Qt::ControlModifier);
  key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_TRUE(QGuiApplication::clipboard()->text().contains("line 0 0 10 0"));
  EXPECT_EQ(sketch.selection->ids.size(), 1U) << "the lines were copied, not the drawing";
}

TEST_F(MainWindowTest, TheSamplePlanIsShownWhole) {
  runMenuCommand(application, "Help/Open Sample Plan");
  settle();
  const SketchViewport shown = board.viewport();
  board.zoomToFit(board.view->canvasSize);
  EXPECT_EQ(shown, board.viewport());
  EXPECT_FALSE(document.isDirty());
}

TEST_F(MainWindowTest, ClosingWithChangesAsks) {
  run("line 0 0 10 0");
  dialogs.queue("Cancel");
  EXPECT_FALSE(window.close());
  dialogs.queue("Save");
  EXPECT_FALSE(window.close());
  EXPECT_TRUE(window.isVisible());
  settle();
  EXPECT_FALSE(window.isVisible()) << "saved, it closes by itself";
  EXPECT_FALSE(document.isDirty());
  EXPECT_EQ(*document.name, "Untitled Project");
}

TEST_F(MainWindowTest, ADocumentDroppedOnTheWindowIsOpened) {
  run("circle 0 0 4");
  application.save();
  settle();
  document.begin();
  settle();
  QMimeData data;
  const std::string path = (home / "Documents" / "Ostrelon" / "Untitled Project.ostrel").string();
  data.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
  QDragEnterEvent enter({300, 300}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop({300, 300}, Qt::CopyAction, &data, Qt::LeftButton, {});
  QApplication::sendEvent(&window, &drop);
  settle();
  EXPECT_EQ(sketch.entities().size(), 1U);
  data.setUrls({QUrl("https://example.org/x.ostrel")});
  QDragEnterEvent foreign({300, 300}, Qt::CopyAction, &data, Qt::LeftButton, {});
  foreign.ignore();
  QApplication::sendEvent(&window, &foreign);
  EXPECT_FALSE(foreign.isAccepted());
}

TEST_F(MainWindowTest, TheLayoutOfTheLastRunComesBack) {
  window.console().setPanelHeight(240);
  resizeTo(1100, 700);
  window.saveLayout();
  MainWindow next(application, theme);
  next.restoreLayout();
  EXPECT_EQ(next.size(), QSize(1100, 700));
  EXPECT_EQ(next.console().panelHeight(), 240);
}

TEST_F(MainWindowTest, ADocumentIsShownInTheViewThatItWasSavedWith) {
  run("line 0 0 10 0");
  board.setViewport({{123, 45}, 8});
  application.save();
  settle();
  document.begin();
  settle();
  EXPECT_EQ(board.viewport(), (SketchViewport{{358, 288}, 4})) << "a new one is centred at once";
  application.openDocumentAt(home / "Documents" / "Ostrelon" / "Untitled Project.ostrel");
  settle();
  EXPECT_EQ(board.viewport(), (SketchViewport{{123, 45}, 8}));
  EXPECT_TRUE(board.view->isInitialized);
}

// --- What lies over the canvas

TEST_F(MainWindowTest, TheBadgesTellTheState) {
  const auto text = [&](const char* identifier) {
    return find<QWidget>(window, identifier)->accessibleName().toStdString();
  };
  const auto isShown = [&](const char* identifier) { return !find<QWidget>(window, identifier)->isHidden(); };
  EXPECT_EQ(text("canvas.statusBadge"), "0 entities Select none W2-INT");
  run("wall 0 0 20 0");
  EXPECT_EQ(text("canvas.statusBadge"), "1 entity Select Wall 1 (W2-INT) W2-INT");
  EXPECT_FALSE(isShown("canvas.alignHorizontal") && isShown("canvas.alignBar"));
  run("circle 40 10 4");
  selectAll(sketch);
  settle();
  EXPECT_TRUE(isShown("canvas.alignBar"));
  press(window, "canvas.alignHorizontal");
  EXPECT_EQ(lastLine(), "Aligned 2 entities horizontally.");
  press(window, "canvas.alignHorizontal");
  EXPECT_EQ(lastLine(), "Selection already aligned horizontally.");

  EXPECT_FALSE(isShown("canvas.trimInstruction"));
  board.activateTool(SketchTool::trim);
  settle();
  EXPECT_TRUE(isShown("canvas.trimInstruction"));
  EXPECT_EQ(text("canvas.trimInstruction"), *board.trimInstruction());

  board.activateTool(SketchTool::line);
  board.hoverMoved(SketchPoint{358, 268});
  settle();
  EXPECT_EQ(text("canvas.cursorCoordinates"), "Cursor coordinates X 0.0 Y 5.0");
  EXPECT_TRUE(isShown("canvas.snapFeedback"));
  board.beginDraft({0, 30});
  board.updateDraft({25, 30});
  settle();
  EXPECT_EQ(text("canvas.draftMeasurement"), *board.draftMeasurementText());
  board.hoverMoved(std::nullopt);
  settle();
  EXPECT_FALSE(isShown("canvas.cursorCoordinates"));
}

TEST_F(MainWindowTest, TheViewportClusterMovesTheView) {
  EXPECT_EQ(find<QLabel>(window, "viewport.gridScale")->text(), "10'");
  EXPECT_EQ(find<QLabel>(window, "viewport.zoomPercentage")->text(), "100%");
  press(window, "viewport.zoomIn");
  EXPECT_EQ(find<QLabel>(window, "viewport.zoomPercentage")->text(), "125%");
  press(window, "viewport.zoomOut");
  press(window, "viewport.zoomOut");
  EXPECT_EQ(find<QLabel>(window, "viewport.zoomPercentage")->text(), "80%");
  press(window, "viewport.reset");
  EXPECT_EQ(board.viewport(), (SketchViewport{{358, 288}, 4}));
  run("line 0 0 1000 0");
  press(window, "viewport.fit");
  EXPECT_LT(board.viewport().scale, 1);
}

TEST_F(MainWindowTest, TheLengthOfASegmentIsEditedInPlace) {
  run("wall 0 0 20 0");
  auto* editor = find<QLineEdit>(window, "canvas.segmentLengthEditor");
  EXPECT_TRUE(editor->isHidden());
  press(window, "canvas.segmentLengthLabel");
  EXPECT_FALSE(editor->isHidden());
  EXPECT_TRUE(editor->hasFocus());
  EXPECT_EQ(editor->text(), "20'");
  type(*editor, "0");
  key(Qt::Key_Return);
  auto* error = find<QWidget>(window, "canvas.segmentLengthError");
  EXPECT_FALSE(error->isHidden());
  EXPECT_EQ(error->accessibleName(), "Enter a valid feet/inches length.");
  editor->selectAll();
  type(*editor, "30'6");
  key(Qt::Key_Return);
  EXPECT_TRUE(editor->isHidden());
  EXPECT_EQ(std::get<WallEntity>(sketch.entities().front()).to, (SketchPoint{30.5, 0}));
  press(window, "canvas.segmentLengthLabel");
  key(Qt::Key_Escape);
  EXPECT_TRUE(editor->isHidden());
  EXPECT_EQ(sketch.entities().size(), 1U);
}

TEST_F(MainWindowTest, AToastComesAndGoes) {
  auto* toast = find<QWidget>(window, "canvas.toast");
  messages.showToast("Saved House", DocumentToastState::Style::success);
  settle();
  EXPECT_TRUE(toast->isVisible());
  EXPECT_EQ(toast->accessibleName(), "Saved House");
  scheduler.advance(Seconds(2.6));
  settle();
  EXPECT_FALSE(toast->isVisible());
}

// --- For those who hear the window

TEST_F(MainWindowTest, EveryControlHasARoleAndAName) {
  run("wall 0 0 20 0");
  run("nonsense");
  int controls = 0;
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    const bool isControl = qobject_cast<QAbstractButton*>(widget) != nullptr ||
                           qobject_cast<QLineEdit*>(widget) != nullptr ||
                           qobject_cast<QAbstractItemView*>(widget) != nullptr;
    if (!isControl || !widget->isVisible()) continue;
    ++controls;
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
    ASSERT_NE(face, nullptr);
    EXPECT_FALSE(face->text(QAccessible::Name).isEmpty()) << widget->objectName().toStdString();
    EXPECT_NE(face->role(), QAccessible::Client) << widget->objectName().toStdString();
    EXPECT_NE(widget->focusPolicy(), Qt::NoFocus) << widget->objectName().toStdString();
  }
  EXPECT_GT(controls, 25);

  auto* list = QAccessible::queryAccessibleInterface(find<QAbstractItemView>(window, "leftNav.entities"));
  ASSERT_EQ(list->childCount(), 1);
  EXPECT_EQ(list->child(0)->text(QAccessible::Name), "Wall 1 (W2-INT)");
  EXPECT_EQ(list->child(0)->role(), QAccessible::ListItem);
  EXPECT_TRUE(list->child(0)->state().selected) << "a wall that was drawn is selected";
  sketch.clearSelection();
  EXPECT_FALSE(list->child(0)->state().selected);
  list->child(0)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(sketch.selection->ids.size(), 1U);
  EXPECT_EQ(list->indexOfChild(list->child(0)), 0);
  EXPECT_EQ(list->childAt(list->child(0)->rect().center().x(), list->child(0)->rect().center().y()),
            list->child(0));
  auto* lines = QAccessible::queryAccessibleInterface(find<QAbstractItemView>(window, "console.transcript"));
  EXPECT_TRUE(
      lines->child(lines->childCount() - 1)->text(QAccessible::Name).startsWith("Error: Unknown command"));
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&window)->role(), QAccessible::Window);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&window.canvas())->role(), QAccessible::Canvas);
  EXPECT_EQ(QAccessible::queryAccessibleInterface(&window.navigation())->role(), QAccessible::Grouping);
  auto* status = QAccessible::queryAccessibleInterface(find<QWidget>(window, "canvas.statusBadge"));
  EXPECT_EQ(status->role(), QAccessible::StaticText);
}

TEST_F(MainWindowTest, TabReachesTheControlsInTheOrderInWhichTheyStand) {
  QStringList seen;
  window.canvas().setFocus();
  for (int i = 0; i < 60; ++i) {
    QWidget* focus = QApplication::focusWidget();
    if (seen.contains(focus->objectName()) && i > 1) break;
    seen.append(focus->objectName());
    // An empty console line passes Tab on.
    QTest::keyClick(focus, Qt::Key_Tab);
  }
  for (const char* reached : {"leftNav.tool.select", "leftNav.tool.trim", "topMenuBar.new", "topMenuBar.grid",
                              "viewport.zoomIn", "console.focus", "console.commandInput", "console.run",
                              "wallSystems.list", "wallSystems.thickness"}) {
    EXPECT_TRUE(seen.contains(reached)) << reached;
  }
  EXPECT_LT(seen.indexOf("leftNav.tool.select"), seen.indexOf("leftNav.tool.trim"));
  EXPECT_LT(seen.indexOf("console.commandInput"), seen.indexOf("console.run"));
  EXPECT_LT(seen.indexOf("wallSystems.thickness"), seen.indexOf("wallSystems.assembly"));
}

// --- The program's windows together

TEST(WindowedProgramTest, SheetsSettingsAndThemesWorkTogether) {
  testing::TestApplication test;
  Theme& theme = testing::sharedTheme();
  QtDialogs dialogs(theme);
  WindowedProgram program(test.application, theme, dialogs);
  const auto settle = [&] {
    for (int i = 0; i < 4; ++i) {
      test.settle();
      QApplication::processEvents();
      QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
  };
  program.show();
  settle();
  DialogSheet* sheet = DialogSheet::inFrontOf(program.mainWindow());
  ASSERT_NE(sheet, nullptr) << "the first run asks for a folder";
  EXPECT_EQ(sheet->objectName(), "projectsFolderSetup");
  QTest::keyClick(sheet, Qt::Key_Escape);
  settle();
  EXPECT_NE(DialogSheet::inFrontOf(program.mainWindow()), nullptr) << "Escape leaves it up";
  program.mainWindow().findChild<QPushButton*>("projectsFolderSetup.useDefault")->click();
  settle();
  EXPECT_EQ(DialogSheet::inFrontOf(program.mainWindow()), nullptr);
  EXPECT_TRUE(test.application.settings().isProjectsFolderConfigured());

  runMenuCommand(test.application, "File/Settings…");
  settle();
  SettingsWindow& settings = program.settings();
  EXPECT_TRUE(settings.isVisible());
  settings.findChild<QAbstractButton*>("settings.theme.dark")->click();
  settle();
  EXPECT_EQ(theme.palette(), darkPalette());
  EXPECT_EQ(program.mainWindow().canvas().themePalette(), darkPalette());
  settings.findChild<QAbstractButton*>("settings.autoSaveEnabled")->click();
  EXPECT_FALSE(*test.application.settings().autoSaveEnabled);
  auto* minutes = settings.findChild<QWidget*>("settings.autoSaveInterval")->findChild<QSpinBox*>();
  EXPECT_EQ(minutes->text(), "5 min");
  minutes->stepUp();
  EXPECT_EQ(*test.application.settings().autoSaveIntervalMinutes, 6);
  settings.findChild<QAbstractButton*>("settings.checkForUpdates")->click();
  settle();
  EXPECT_FALSE(settings.findChild<QLabel*>("settings.lastChecked")->text().isEmpty());
  EXPECT_EQ(test.application.updates().status->value, AppUpdateStatus::Case::failed) << "nothing was served";
  EXPECT_EQ(settings.findChild<QLabel*>("settings.status")->text().toStdString(),
            test.application.updates().statusText());
  EXPECT_EQ(settings.findChild<QLabel*>("settings.currentVersion")->text(), "1.4.2 (318)");
  theme.setPalette(lightPalette());
}

}  // namespace
}  // namespace ostrelon
