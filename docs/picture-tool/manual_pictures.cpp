#include "manual_pictures.h"

#include <QApplication>
#include <QWidget>
#include <cstdio>

#include "app/application.h"
#include "geometry/edit_operations.h"
#include "geometry/entity_geometry.h"
#include "interaction/canvas_transform.h"
#include "platform/dialogs.h"
#include "platform/user_defaults.h"
#include "shell/export_sheet.h"
#include "shell/inspector_window.h"
#include "shell/main_window.h"
#include "shell/print_window.h"
#include "support/test_workspace.h"
#include "updates/served_update_client.h"

namespace ostrelon {
namespace {

class Photographer {
 public:
  explicit Photographer(QString folder) : folder_(std::move(folder)) {}

  /// Until every widget has its size and has told it.
  static void settle() {
    for (int i = 0; i < 6; ++i) {
      QApplication::processEvents();
      QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
  }

  void shoot(QWidget& widget, const char* name, const QRect& part = {}) {
    settle();
    const QPixmap picture = part.isEmpty() ? widget.grab() : widget.grab(part);
    const QString path = folder_ + "/" + name + ".png";
    if (picture.save(path)) return;
    std::fprintf(stderr, "Cannot write %s.\n", qPrintable(path));
    hasFailed_ = true;
  }
  bool hasFailed() const { return hasFailed_; }

 private:
  QString folder_;
  bool hasFailed_ = false;
};

std::optional<UUID> longestWall(const Workspace& workspace) {
  std::optional<UUID> longest;
  double length = 0;
  for (const SketchEntity& entity : workspace.sketch.entities()) {
    const auto* wall = std::get_if<WallEntity>(&entity);
    if (wall == nullptr || distanceBetween(wall->from, wall->to) <= length) continue;
    length = distanceBetween(wall->from, wall->to);
    longest = wall->id;
  }
  return longest;
}

void drawWallFromLockedPoint(Workspace& workspace, VirtualScheduler& scheduler, SketchPoint locked,
                             SketchPoint from, SketchPoint to) {
  const auto view = [&](SketchPoint point) { return sketchPointToView(point, workspace.board.viewport()); };
  workspace.board.activateTool(SketchTool::wall);
  workspace.board.hoverMoved(view(locked));
  scheduler.advance(Seconds(1.2));
  workspace.board.beginDraft(from);
  for (double part = 0.2; part <= 1; part += 0.2) {
    workspace.board.recordPointer(view(from + (to - from) * part));
    workspace.board.updateDraft(from + (to - from) * part);
  }
}

}  // namespace

bool makeManualPictures(const QString& folder) {
  Photographer photographer(folder);
  Theme theme;
  installBaseStyle(theme);
  theme.setPalette(lightPalette());
  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  MemoryUserDefaults defaults;
  ServedUpdateClient client(scheduler, "/tmp");
  testing::NoFileSystem files;
  Application application({.host = {scheduler, dialogs, files},
                           .defaults = defaults,
                           .updateClient = client,
                           .openInstaller = [](const FilePath&) { return true; },
                           .makePicture = {}},
                          {.documentsFolder = "/home/user/Documents", .updates = {}, .isUITesting = true});
  Workspace& workspace = application.workspace();

  MainWindow window(application, theme);
  window.resize(1200, 800);
  window.show();
  QApplication::processEvents();
  application.openSamplePlan();
  for (const char* line : {"spec use W2-EXT", "select 1"}) {
    workspace.console.setInput(line);
    workspace.console.submit();
  }
  selectSingleEntity(workspace.sketch, longestWall(workspace));
  Photographer::settle();
  const SketchSize size = workspace.board.view->canvasSize;
  workspace.board.zoomToFit(size);
  workspace.board.zoom(2.6, {size.width / 2, size.height / 2});
  workspace.board.recordPointer(SketchPoint{420, 300});
  photographer.shoot(window, "main");

  showEntityInspector(workspace.sketch);
  {
    InspectorWindow inspector(workspace, theme, &window);
    photographer.shoot(inspector, "inspector");
  }
  workspace.sketch.clearSelection();

  auto* sheet = new ExportSheet(application, theme, window);
  auto* paper = sheet->findChild<QComboBox*>("export.paper");
  paper->setCurrentIndex(paper->findData("ARCH D"));
  auto* scale = sheet->findChild<QComboBox*>("export.scale");
  scale->setCurrentIndex(scale->findData("1/8\" = 1'-0\""));
  sheet->open();
  photographer.shoot(window, "export");
  delete sheet;

  PrintWindow print(application, theme, &window);
  print.setAttribute(Qt::WA_DeleteOnClose, false);
  auto* printPaper = print.findChild<QComboBox*>("print.paper");
  printPaper->setCurrentIndex(printPaper->findData("ARCH D"));
  auto* printScale = print.findChild<QComboBox*>("print.scale");
  printScale->setCurrentIndex(printScale->findData("1/8\" = 1'-0\""));
  print.show();
  photographer.shoot(print, "print");
  print.hide();

  workspace.document.begin();
  for (const char* line : {"system inches yes", "wall -40 20 40 20 W2-EXT", "wall -40 20 -40 -30 W2-EXT",
                           "wall -40 -30 0 -30 W2-EXT", "select"}) {
    workspace.console.setInput(line);
    workspace.console.submit();
  }
  workspace.sketch.clearSelection();
  workspace.board.zoomToFit(workspace.board.view->canvasSize);
  drawWallFromLockedPoint(workspace, scheduler, {40, 20}, {0, -30}, {40.4, -29.6});
  QApplication::processEvents();
  CanvasWidget& canvas = window.canvas();
  photographer.shoot(window, "tracking",
                     QRect(canvas.mapTo(&window, QPoint(0, 0)), QSize(canvas.width(), canvas.height())));
  return !photographer.hasFailed();
}

}  // namespace ostrelon
