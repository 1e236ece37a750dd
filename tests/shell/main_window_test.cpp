#include "shell/main_window.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QClipboard>
#include <QDragEnterEvent>
#include <QFocusFrame>
#include <QHelpEvent>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QMimeData>
#include <QToolTip>
#include <QUrl>

#include "app/menu.h"
#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "interaction/canvas_transform.h"
#include "shell/canvas_overlay.h"
#include "shell/context_menu_popup.h"
#include "shell/dialog_sheet.h"
#include "shell/inspector_window.h"
#include "shell/qt_dialogs.h"
#include "shell/qt_text.h"
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
  /// A click as the desktop gives it, to the window.
  void click(QPoint at) {
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {}, at);
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
  questions.ask(Alert{"Sure?", "Really.", {"Save", "Cancel", "Don't Save"}, 1, 2},
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

TEST_F(MainWindowTest, ANameIsNeverTakenForMarkup) {
  const QString name = "<b>House</b>";
  messages.showToast(plainText(name), DocumentToastState::Style::success);
  QMessageBox box(QMessageBox::Warning, name, name, {}, &window);
  box.show();
  settle();
  QToolTip::showText(window.mapToGlobal(QPoint(50, 50)), name, &window);
  int labels = 0;
  for (const QWidget* widget : QApplication::allWidgets()) {
    const auto* label = qobject_cast<const QLabel*>(widget);
    if (label == nullptr || label->text() != name) continue;
    EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->metaObject()->className();
    ++labels;
  }
  EXPECT_EQ(labels, 3) << "toast, message box, tooltip";
  QToolTip::hideText();

  QMenu menu;
  fillContextMenu(menu, {{.title = "R&D\tCtrl+Q", .shortcut = {}, .content = ContextMenuCommand::inspect}},
                  sketch, messages);
  EXPECT_EQ(menu.actions().front()->text(), "R&&D Ctrl+Q") << "no key of its own";
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
  board.activateTool(SketchTool::polygon);
  click(window.canvas().geometry().topLeft() + QPoint(100, 100));
  EXPECT_TRUE(window.wallSystems().isRail()) << "a click outside folds it";
  EXPECT_FALSE(board.polygonDraft() != nullptr) << "and does nothing else";
  click(window.canvas().geometry().topLeft() + QPoint(100, 100));
  EXPECT_TRUE(board.polygonDraft() != nullptr);
  press(window, "leftNav.unfold");
  EXPECT_EQ(window.navigation().width(), LeftNavView::kWidth);
  key(Qt::Key_Escape);
  EXPECT_TRUE(window.navigation().isRail()) << "as Escape does";
  EXPECT_TRUE(board.polygonDraft() != nullptr);
  press(window, "leftNav.unfold");
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

TEST_F(MainWindowTest, ALetterThatBeginsACommandLeavesNoTrace) {
  board.activateTool(SketchTool::wall);
  const SketchViewport view = board.viewport();
  window.console().input()->setFocus();
  type(*window.console().input(), "zoom");
  EXPECT_EQ(window.console().input()->text(), "zoom");
  EXPECT_EQ(board.viewport(), view);
  window.console().input()->clear();
  window.canvas().setFocus();
  for (const char letter : std::string_view("spec use")) {
    QTest::keyClick(QApplication::focusWidget(), letter);
  }
  EXPECT_EQ(*console.input, "spec use");
  EXPECT_EQ(board.tool.get(), SketchTool::wall);
  window.console().input()->clear();
  key(Qt::Key_L);
  QTest::mouseClick(&window.canvas(), Qt::LeftButton, {}, QPoint(300, 300));
  key(Qt::Key_I);
  EXPECT_EQ(board.tool.get(), SketchTool::line) << "it was used before the next letter came";
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

TEST_F(MainWindowTest, AClickOnTheCanvasLeavesTheFocusWithTheConsole) {
  run("circle 0 0 4");
  window.console().input()->setFocus();
  type(*window.console().input(), "help");
  key(Qt::Key_Return);
  click(window.canvas().geometry().center());
  EXPECT_TRUE(window.console().input()->hasFocus());
  key(Qt::Key_Up);
  EXPECT_EQ(window.console().input()->text(), "help");
  find<QLineEdit>(window, "wallSystems.assembly")->setFocus();
  click(window.canvas().geometry().center());
  EXPECT_TRUE(window.canvas().hasFocus()) << "other fields give it up";
}

TEST_F(MainWindowTest, KeysThatAFieldHasNoUseForReachTheMenu) {
  int exports = 0;
  application.setWindowActions({.showExport = [&] { ++exports; }});
  QLineEdit* input = window.console().input();
  input->setFocus();
  key(Qt::Key_E, Qt::ControlModifier);
  EXPECT_EQ(exports, 1);
  type(*input, "hallo");
  key(Qt::Key_E, Qt::ControlModifier);
  EXPECT_EQ(exports, 2) << "the cursor is at the end";

  run("circle 0 0 4");
  selectAll(sketch);
  settle();
  type(*input, "move");
  key(Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(sketch.clipboard->size(), 1U) << "no text is selected";
  QGuiApplication::clipboard()->clear();
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(sketch.entities().size(), 2U) << "there is no text to paste";
  QGuiApplication::clipboard()->setText(" 1");
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(input->text(), "move 1");
  EXPECT_EQ(sketch.entities().size(), 2U);
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

TEST_F(MainWindowTest, TheToastNeverCoversTheViewportControls) {
  auto* toast = find<ToastView>(window, "canvas.toast");
  const auto* controls = find<QWidget>(window, "viewport");
  const auto* coordinates = find<QWidget>(window, "canvas.cursorCoordinates");
  QApplication::setEffectEnabled(Qt::UI_General, false);
  for (const std::string& words : {std::string("Saved."), std::string(30, 'm'), std::string(90, 'm')}) {
    messages.showToast(words, DocumentToastState::Style::saving);
    for (int width = 760; width <= 1800; width += 40) {
      resizeTo(width, 700);
      EXPECT_FALSE(toast->card().intersects(controls->geometry())) << words << " at " << width;
      EXPECT_FALSE(toast->card().intersects(coordinates->geometry())) << words << " at " << width;
    }
  }
  QApplication::setEffectEnabled(Qt::UI_General, true);
}

TEST_F(MainWindowTest, TheTooltipHoldsTheWholeOfACutName) {
  const auto toolTipOver = [](QWidget* widget, QPoint at) {
    QToolTip::hideText();
    QHelpEvent asked(QEvent::ToolTip, at, widget->mapToGlobal(at));
    QApplication::sendEvent(widget, &asked);
    return QToolTip::text();
  };
  const auto rows = [&](const char* identifier) {
    return find<QAbstractItemView>(window, identifier)->viewport();
  };
  auto* notes = find<QLineEdit>(window, "wallSystems.assembly");
  run("wall 0 0 20 0");
  EXPECT_EQ(toolTipOver(rows("leftNav.entities"), {20, 10}), "") << "nothing is cut";
  EXPECT_EQ(toolTipOver(&window.canvas(), {24, 24}), "");

  application.save();
  settle();
  const std::string name = "Inner wall" + std::string(80, 'm');
  std::string bytes = files.readFile(**document.fileURL);
  for (std::size_t at = bytes.find("W2-INT"); at != std::string::npos; at = bytes.find("W2-INT", at + 90)) {
    bytes.replace(at, 6, name);
  }
  files.writeFile(home / "long.ostrel", bytes);
  application.openDocumentAt(home / "long.ostrel");
  settle();
  WallSystemSpec spec = sketch.drawing->wallSystemSpecs.front();
  spec.assemblyNotes = "Begins " + name;
  updateWallSystemSpec(sketch, spec);
  settle();
  EXPECT_EQ(toolTipOver(rows("leftNav.entities"), {20, 10}), "Wall 1 (" + qtText(name) + ")");
  EXPECT_EQ(toolTipOver(rows("wallSystems.list"), {20, 10}).split('\n').front(), qtText(name));
  EXPECT_TRUE(toolTipOver(&window.canvas(), {24, 24}).contains(qtText(name))) << "the status badge";
  EXPECT_EQ(toolTipOver(find<QWidget>(window, "wallSystems.contextTitle"), {5, 5}),
            "ACTIVE SYSTEM · " + qtText(name));
  EXPECT_EQ(toolTipOver(notes, {5, 5}), notes->text());
  EXPECT_EQ(notes->cursorPosition(), 0) << "the field shows the beginning of its text";
  QToolTip::hideText();
}

TEST_F(MainWindowTest, TheInspectorHidesNeitherTheEntityNorThePointer) {
  InspectorWindow inspector(workspace, theme, &window);
  window.move(0, 0);
  resizeTo(800, 800);
  const int width = window.canvas().width();
  for (const auto& [entityX, pointerX] : {std::pair(width - 150, width - 100), std::pair(150, 100)}) {
    board.clearSketch();
    const auto inSketch = [&](int x, int y) {
      return viewPointToSketch({static_cast<double>(x), static_cast<double>(y)}, board.viewport());
    };
    addLine(sketch, inSketch(entityX, 100), inSketch(entityX, 400));
    selectAll(sketch);
    QCursor::setPos(window.canvas().mapToGlobal(QPoint(pointerX, 150)));
    showEntityInspector(sketch);
    settle();
    ASSERT_TRUE(inspector.isVisible());
    const QRect hidden(window.canvas().mapFromGlobal(inspector.geometry().topLeft()), inspector.size());
    EXPECT_FALSE(hidden.contains(entityX, 200)) << entityX;
    EXPECT_FALSE(hidden.contains(pointerX, 150)) << pointerX;
    inspector.close();
  }
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
  run("wall 0 0 20 0");
  window.canvas().setFocus();
  for (int i = 0; i < 60; ++i) {
    QWidget* focus = QApplication::focusWidget();
    if (seen.contains(focus->objectName()) && i > 1) break;
    seen.append(focus->objectName());
    // An empty console line passes Tab on.
    QTest::keyClick(focus, Qt::Key_Tab);
  }
  const QStringList inOrder{"leftNav.tool.select",
                            "leftNav.tool.trim",
                            "leftNav.entities",
                            "topMenuBar.new",
                            "topMenuBar.clear",
                            "topMenuBar.grid",
                            "canvas.segmentLengthLabel",
                            "viewport.zoomIn",
                            "viewport.reset",
                            "console.resizeHandle",
                            "console.focus",
                            "console.transcript",
                            "console.commandInput",
                            "console.run",
                            "wallSystems.list",
                            "wallSystems.thickness",
                            "wallSystems.assembly"};
  // The round may begin anywhere.
  const qsizetype start = seen.indexOf(inOrder.front());
  std::rotate(seen.begin(), seen.begin() + std::max<qsizetype>(0, start), seen.end());
  QStringList reached = seen;
  reached.removeIf([&](const QString& name) { return !inOrder.contains(name); });
  EXPECT_EQ(reached, inOrder) << seen.join(' ').toStdString();
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
  auto* dark = settings.findChild<QAbstractButton*>("settings.theme.dark");
  static_cast<void>(QTest::qWaitForWindowActive(&settings, 1000));
  dark->setFocus(Qt::TabFocusReason);
  dark->click();
  settle();
  auto* halo = settings.findChild<QFocusFrame*>();
  ASSERT_NE(halo, nullptr);
  EXPECT_EQ(halo->widget(), dark);
  EXPECT_TRUE(halo->isVisible()) << "another theme leaves the focus where it is seen";
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
  // A key in the spin box is the box's.
  runMenuCommand(test.application, "Help/Open Sample Plan");
  test.board.activateTool(SketchTool::wall);
  settings.findChild<QAbstractButton*>("settings.autoSaveEnabled")->click();
  settle();
  minutes->setFocus();
  ASSERT_TRUE(minutes->hasFocus());
  QTest::keyClick(minutes, Qt::Key_Space);
  EXPECT_EQ(test.board.tool.get(), SketchTool::wall);
  theme.setPalette(lightPalette());
}

TEST(WindowedProgramTest, aBuildWithoutAFeedHasFailedAtNothing) {
  testing::TestApplication test;
  Application application(test.services(), {.documentsFolder = test.home / "Documents",
                                            .updates = updateConfiguration("1.4.2", "318", "", "")});
  application.updates().checkForUpdates(true);
  test.settle();
  ASSERT_EQ(application.updates().status->value, AppUpdateStatus::Case::failed);
  Theme& theme = testing::sharedTheme();
  const AppSettingsView view(application, theme, {});
  const auto* status = view.findChild<QLabel*>("settings.status");
  EXPECT_TRUE(status->text().startsWith("Update feed is not configured."));
  EXPECT_EQ(status->palette().color(QPalette::WindowText), theme.secondaryOnCard());
  EXPECT_TRUE(view.findChild<QWidget*>("settings.statusMark")->isHidden());
}

}  // namespace
}  // namespace ostrelon
