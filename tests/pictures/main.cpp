// Pictures of the windows in every theme, for the README and for a designer's eye.
//
//   ostrelon_pictures FOLDER
#include <QApplication>
#include <QDir>
#include <cstdio>

#include "app/application.h"
#include "platform/user_defaults.h"
#include "shell/inspector_window.h"
#include "shell/main_window.h"
#include "shell/qt_dialogs.h"
#include "shell/settings_window.h"
#include "shell/sheets.h"
#include "shell/theme.h"
#include "support/test_sketch.h"
#include "updates/served_update_client.h"

namespace ostrelon {
namespace {

void run(SketchViewModel& sketch, const char* line) {
  sketch.setCommandInput(line);
  sketch.submitCommandInput();
}

void drawHouse(SketchViewModel& sketch) {
  for (const char* line : {
           "wall -76 48 76 48 W2-EXT",
           "wall 76 48 76 -44 W2-EXT",
           "wall 76 -44 -20 -44 W2-EXT",
           "wall -20 -44 -76 -44 W2-EXT",
           "wall -76 -44 -76 48 W2-EXT",
           "wall -20 48 -20 16 W2-INT",
           "wall -20 0 -20 -44 W2-INT",
           "wall -76 2 -64 2",
           "wall -40 2 36 2",
           "wall 36 2 36 -44",
           "wall 48 48 48 28",
           "wall 48 20 48 -22",
           "wall 48 8 76 8",
           "rect -52 16 20 8",
           "circle -46 12 2",
           "circle -42 12 2",
           "circle -38 12 2",
           "rect -68 -32 8 22",
           "rect -56 -28 16 10",
           "poly 8 -18 14 -28 8 -38 -4 -38 -10 -28 -4 -18",
           "circle 2 -28 4",
           "circle 28 -38 4",
           "rect 54 -38 16 10",
           "line 10 40 36 40",
           "line 36 40 34 42",
           "line 36 40 34 38",
       }) {
    run(sketch, line);
  }
}

struct ThemeChoice {
  const char* name;
  const ThemePalette& palette;
};

class Studio {
 public:
  Studio(Theme& theme, QString folder) : theme_(theme), folder_(std::move(folder)) {}

  void shoot(QWidget& window, const QString& name) {
    for (int i = 0; i < 4; ++i) {
      QApplication::processEvents();
      QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    const QString path = folder_ + "/" + name + ".png";
    if (!window.grab().save(path)) std::fprintf(stderr, "Cannot write %s.\n", qPrintable(path));
  }
  Theme& theme() { return theme_; }

 private:
  Theme& theme_;
  QString folder_;
};

}  // namespace
}  // namespace ostrelon

int main(int argc, char** argv) {
  using namespace ostrelon;
  QApplication qt(argc, argv);
  if (argc != 2) {
    std::fprintf(stderr, "Usage: ostrelon_pictures FOLDER\n");
    return 2;
  }
  QDir().mkpath(argv[1]);
  Theme theme;
  installBaseStyle(theme);

  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  MemoryUserDefaults defaults;
  ServedUpdateClient client(scheduler, "/tmp");
  testing::NoFileSystem files;
  Application application(
      {{scheduler, dialogs, files}, defaults, client, [](const FilePath&) { return true; }},
      {"/home/studio/Documents", updateConfiguration("1.4.2", "318", "https://example.org/feed", "AA=="),
       true});
  SketchViewModel& sketch = application.sketch();
  Studio studio(theme, argv[1]);

  MainWindow window(application, theme);
  window.resize(1440, 900);
  window.show();
  QApplication::processEvents();
  drawHouse(sketch);
  sketch.zoomToFit(sketch.canvasSize);
  run(sketch, "nudge 4");
  sketch.selectSingleEntity(entityID(sketch.entities.get()[10]));
  sketch.recordPointer(SketchPoint{400, 300});
  InspectorWindow inspector(sketch, theme, &window);
  SettingsWindow settings(application, theme, {}, &window);
  QtDialogs questions(theme);
  questions.setWindow(&window);
  for (const ThemeChoice& choice : {ThemeChoice{"light", lightPalette()}, ThemeChoice{"dark", darkPalette()},
                                    ThemeChoice{"tansy", tansyPalette()}}) {
    theme.setPalette(choice.palette);
    window.resize(1440, 900);
    studio.shoot(window, QString("main-%1").arg(choice.name));
    window.resize(760, 560);
    studio.shoot(window, QString("main-narrow-%1").arg(choice.name));
    window.resize(1200, 800);
    sketch.showEntityInspector();
    studio.shoot(inspector, QString("inspector-%1").arg(choice.name));
    sketch.selectAll();
    studio.shoot(inspector, QString("inspector-many-%1").arg(choice.name));
    studio.shoot(window, QString("main-many-%1").arg(choice.name));
    sketch.setEntityInspectorVisible(false);
    sketch.selectSingleEntity(entityID(sketch.entities.get()[10]));
    questions.ask(Alert{"Do you want to save changes to Untitled Project before closing?",
                        "If you do not save, changes will be lost.",
                        {"Save", "Cancel", "Don't Save"}},
                  [](const DialogAnswer&) {});
    studio.shoot(window, QString("close-question-%1").arg(choice.name));
    window.findChild<QPushButton*>("alert.Cancel")->click();
    questions.ask(
        TextPrompt{"Save Checkpoint", "Name this design milestone.", "Checkpoint 1", "Save Checkpoint"},
        [](const DialogAnswer&) {});
    studio.shoot(window, QString("prompt-%1").arg(choice.name));
    window.findChild<QPushButton*>("prompt.cancel")->click();
    settings.open();
    studio.shoot(settings, QString("settings-%1").arg(choice.name));
    settings.close();
    auto* setup = new ProjectsFolderSetupView(application, theme, window);
    setup->open();
    studio.shoot(window, QString("first-run-%1").arg(choice.name));
    delete setup;
    auto* recovery = new AutoSaveRecoverySheet(application, theme, window);
    recovery->open();
    studio.shoot(window, QString("recovery-%1").arg(choice.name));
    delete recovery;
  }
  return 0;
}
