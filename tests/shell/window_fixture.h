// A program on a virtual clock with windows that are never shown to anyone, for tests of the windows.
#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QTest>

#include "app/application.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/user_defaults.h"
#include "shell/theme.h"
#include "support/temporary_folder.h"
#include "updates/served_update_client.h"

namespace ostrelon::testing {

/// The theme of the whole test program: the base style keeps to it as long as the application lives.
inline Theme& sharedTheme() {
  static Theme* theme = [] {
    auto* made = new Theme(QCoreApplication::instance());
    installBaseStyle(*made);
    made->setPalette(lightPalette());
    return made;
  }();
  return *theme;
}

struct WindowFixture : ::testing::Test {
  TemporaryFolder home;
  VirtualScheduler scheduler{dateFromSeconds(1'767'225'600)};
  QueuedDialogs dialogs;
  DiskFileSystem files;
  MemoryUserDefaults defaults;
  ServedUpdateClient client{scheduler, home / "tmp"};
  std::vector<FilePath> openedInstallers;
  Application application{
      {.host = {scheduler, dialogs, files},
       .defaults = defaults,
       .updateClient = client,
       .openInstaller =
           [this](const FilePath& path) {
             openedInstallers.push_back(path);
             return true;
           }},
      {.documentsFolder = home / "Documents",
       .updates = updateConfiguration("1.4.2", "318", "https://example.org/feed.json", "")}};
  SketchViewModel& sketch = application.sketch();
  Theme& theme = sharedTheme();

  /// Lets everything run that is due on Qt's loop and, at the present moment, on the clock.
  void settle() {
    for (int i = 0; i < 3; ++i) {
      scheduler.advance(Seconds(0));
      QApplication::processEvents();
      QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
  }
  void run(const char* line) {
    sketch.setCommandInput(line);
    sketch.submitCommandInput();
    settle();
  }
  std::string lastLine() const { return sketch.consoleLines->back().text; }

  /// Shows a window and gives it the focus.
  static void present(QWidget& window) {
    window.show();
    window.activateWindow();
    static_cast<void>(QTest::qWaitForWindowActive(&window, 1000));
  }
  template <class Widget = QAbstractButton>
  static Widget* find(const QWidget& window, const char* identifier) {
    auto* found = window.findChild<Widget*>(identifier);
    EXPECT_NE(found, nullptr) << identifier;
    return found;
  }
  void press(const QWidget& window, const char* identifier) {
    if (auto* button = find(window, identifier)) QTest::mouseClick(button, Qt::LeftButton);
    settle();
  }
  static void type(QWidget& field, const char* text) { QTest::keyClicks(&field, text); }
};

}  // namespace ostrelon::testing
