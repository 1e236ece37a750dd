// Pictures of every window in every theme, for the README and for a designer's eye: the program on a
// virtual clock, driven to the moments worth seeing.
//
//   ostrelon_pictures FOLDER CONSOLE-LINES   every window in every theme
//   ostrelon_pictures --manual FOLDER        the pictures of the manual; docs/make-pictures runs this
#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QMenu>
#include <QThread>
#include <cstdio>
#include <fstream>
#include <string_view>

#include "app/menu.h"
#include "geometry/edit_operations.h"
#include "manual_pictures.h"
#include "shell/context_menu_popup.h"
#include "shell/dialog_sheet.h"
#include "shell/qt_dialogs.h"
#include "shell/windowed_program.h"
#include "support/test_application.h"

namespace ostrelon {
namespace {

constexpr const char* kManifest = R"({ "releases": [
  { "version": "1.4.3", "downloadUrl": "https://example.org/a.deb", "sha256": "00", "signature": "AA==",
    "changes": ["Large plans pan without pauses", "Checkpoints show their number", "Faster exports"] },
  { "version": "1.5.0", "downloadUrl": "https://example.org/b.deb", "sha256": "00", "signature": "AA==",
    "releaseNotesUrl": "https://example.org/notes",
    "changes": ["Tangents snap while the end of a line is dragged", "Trimmed walls keep their wall system",
                "Branches can be switched from the File menu"] } ] })";

struct ThemeChoice {
  const char* name;
  AppearanceMode mode;
};
constexpr ThemeChoice kThemes[] = {
    {"light", AppearanceMode::light}, {"dark", AppearanceMode::dark}, {"tansy", AppearanceMode::tansy}};

/// The program and a camera.
class Studio {
 public:
  Studio(QString folder, const char* plan) : folder_(std::move(folder)), dialogs_(theme_) {
    installBaseStyle(theme_);
    test_.application.settings().useDefaultProjectsFolder();
    program_ = std::make_unique<WindowedProgram>(test_.application, theme_, dialogs_);
    window().resize(1440, 900);
    window().show();
    window().activateWindow();
    settle();
    std::ifstream lines(plan);
    for (std::string line; std::getline(lines, line);) {
      if (!line.empty() && line.front() != '#') test_.submit(line);
    }
    const FilePath document = **application().settings().projectsFolderURL / "Courtyard House.ostrel";
    test_.dialogs.queue(document.string());
    application().saveAs();
    settle();
    test_.submit("checkpoint Before the walls move");
    workspace().messages.clearToast();
    for (const char* line : {"spec use w2-int", "spec show w2-int"}) test_.submit(line);
    fillCanvas();
  }

  Workspace& workspace() { return test_.workspace; }
  Application& application() { return test_.application; }
  MainWindow& window() { return program_->mainWindow(); }
  WindowedProgram& program() { return *program_; }
  testing::TestApplication& test() { return test_; }
  QtDialogs& dialogs() { return dialogs_; }
  Theme& theme() { return theme_; }
  template <class Widget = QAbstractButton>
  Widget& control(const char* identifier) {
    return *window().findChild<Widget*>(identifier);
  }

  void settle() {
    for (int i = 0; i < 4; ++i) {
      test_.settle();
      QApplication::processEvents();
      QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    window().canvas().finishPainting();
  }
  void useTheme(const ThemeChoice& theme) {
    themeName_ = theme.name;
    application().settings().setAppearanceMode(theme.mode);
    settle();
  }
  void shoot(QWidget& widget, const char* name) {
    settle();
    const QString path = QStringLiteral("%1/%2-%3.png").arg(folder_, QString(name), themeName_);
    if (!widget.grab().save(path)) std::fprintf(stderr, "Cannot write %s.\n", qPrintable(path));
  }
  void resize(int width, int height) {
    window().resize(width, height);
    settle();
    fillCanvas();
  }
  /// The plan as large as a picture likes it, which is larger than a view to work in.
  void fillCanvas() {
    Board& board = workspace().board;
    const SketchSize canvas = board.view->canvasSize;
    board.zoomToFit(canvas);
    board.zoom(2.6, {canvas.width / 2, canvas.height / 2});
    settle();
  }

 private:
  QString folder_;
  QString themeName_;
  testing::TestApplication test_;
  Theme theme_;
  QtDialogs dialogs_;
  std::unique_ptr<WindowedProgram> program_;
};

/// An inner wall with free space beside it, for scenes that need one.
UUID aWall(Workspace& workspace) {
  constexpr std::size_t number = 6;
  return entityID((workspace.sketch.entities())[number - 1]);
}

SketchPoint inView(Workspace& workspace, SketchPoint point) {
  const SketchViewport& view = workspace.board.viewport();
  return {view.pan.x + point.x * view.scale, view.pan.y - point.y * view.scale};
}

void shootMainWindow(Studio& studio) {
  Workspace& workspace = studio.workspace();
  const UUID wall = aWall(workspace);
  studio.resize(1440, 900);
  selectSingleEntity(workspace.sketch, wall);
  workspace.board.hoverMoved(SketchPoint{520, 360});
  studio.shoot(studio.window(), "main");

  workspace.board.activateTool(SketchTool::wall);
  workspace.sketch.clearSelection();
  workspace.board.beginDraft({-20, -16});
  workspace.board.updateDraft({-10, -16});
  workspace.board.recordPointer(inView(workspace, {-10, -16}));
  studio.shoot(studio.window(), "drawing");
  workspace.board.activateSelectTool();

  studio.resize(1200, 800);
  workspace.board.activateTool(SketchTool::trim);
  workspace.board.hoverMoved(inView(workspace, std::get<WallEntity>(*workspace.sketch.entity(wall)).from));
  studio.shoot(studio.window(), "trim");
  workspace.board.activateSelectTool();

  selectAll(workspace.sketch);
  workspace.messages.showToast("Saved Courtyard House", DocumentToastState::Style::success);
  for (int i = 0; i < 20; ++i) {
    QThread::msleep(10);
    QApplication::processEvents();
  }
  studio.shoot(studio.window(), "many");
  workspace.messages.showToast("Save failed: The disk is full.", DocumentToastState::Style::error);
  studio.resize(760, 560);
  studio.shoot(studio.window(), "narrow");
  workspace.messages.clearToast();
  workspace.sketch.clearSelection();
  workspace.board.hoverMoved(std::nullopt);
  studio.control("wallSystems.unfold").click();
  studio.shoot(studio.window(), "narrow-walls");
  QApplication::processEvents();
  studio.resize(1200, 800);
}

void shootMenus(Studio& studio) {
  Workspace& workspace = studio.workspace();
  for (QAction* action : studio.window().topBar().menuBar().actions()) {
    if (action->text() != "File") continue;
    action->menu()->popup(QPoint(0, 0));
    studio.shoot(*action->menu(), "menu-file");
    action->menu()->close();
  }
  selectSingleEntity(workspace.sketch, aWall(workspace));
  QMenu menu;
  fillContextMenu(menu, *selectionContextMenu(workspace.sketch), workspace.sketch, workspace.messages);
  menu.popup(QPoint(0, 0));
  menu.setActiveAction(menu.actions().back());
  studio.shoot(menu, "menu-context");
  menu.close();
}

void shootInspector(Studio& studio) {
  Workspace& workspace = studio.workspace();
  selectSingleEntity(workspace.sketch, aWall(workspace));
  showEntityInspector(workspace.sketch);
  studio.shoot(studio.program().inspector(), "inspector");
  selectAll(workspace.sketch);
  studio.shoot(studio.program().inspector(), "inspector-many");
  workspace.sketch.setInspected(false);
  workspace.sketch.clearSelection();
}

void shootQuestions(Studio& studio) {
  QtDialogs& dialogs = studio.dialogs();
  dialogs.ask(Alert{"Do you want to save changes to Courtyard House before closing?",
                    "If you do not save, changes will be lost.",
                    {"Save", "Cancel", "Don't Save"}},
              [](const DialogAnswer&) {});
  studio.shoot(studio.window(), "question");
  studio.control("alert.Cancel").click();
  studio.settle();
  dialogs.ask(TextPrompt{"Save Checkpoint", "Name this design milestone.", "Checkpoint 1", "Save Checkpoint"},
              [](const DialogAnswer&) {});
  studio.shoot(studio.window(), "prompt");
  studio.control("prompt.cancel").click();
  studio.settle();
  auto* setup = new ProjectsFolderSetupView(studio.application(), studio.theme(), studio.window());
  setup->open();
  studio.shoot(studio.window(), "first-run");
  delete setup;
  auto* recovery = new AutoSaveRecoverySheet(studio.application(), studio.theme(), studio.window());
  recovery->open();
  studio.shoot(studio.window(), "recovery");
  delete recovery;
}

void shootSettings(Studio& studio) {
  studio.program().settings().open();
  // The whole page, however small the screen is, and without the test's own temporary folder.
  auto* page = studio.program().settings().findChild<AppSettingsView*>("settings");
  page->findChild<QLabel*>("settings.projectsFolderPath")->setText("/home/studio/Documents/Ostrelon");
  studio.shoot(*page, "settings");
  studio.program().settings().close();
}

}  // namespace
}  // namespace ostrelon

int main(int argc, char** argv) {
  using namespace ostrelon;
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication qt(argc, argv);
  if (argc == 3 && std::string_view(argv[1]) == "--manual") {
    QDir().mkpath(argv[2]);
    return makeManualPictures(argv[2]) ? 0 : 1;
  }
  if (argc != 3) {
    std::fprintf(stderr,
                 "Usage: ostrelon_pictures FOLDER CONSOLE-LINES\n       ostrelon_pictures --manual FOLDER\n");
    return 2;
  }
  QDir().mkpath(argv[1]);
  Studio studio(argv[1], argv[2]);
  studio.test().client.serve(kManifest, std::nullopt);
  studio.application().updates().checkForUpdates(true);
  for (const ThemeChoice& theme : kThemes) {
    studio.useTheme(theme);
    shootMainWindow(studio);
    shootMenus(studio);
    shootInspector(studio);
    shootQuestions(studio);
    shootSettings(studio);
  }
  return 0;
}
