// The program with its windows.
#pragma once

#include <memory>
#include <optional>

#include "app/application.h"
#include "shell/color_scheme_watcher.h"
#include "shell/help_window.h"
#include "shell/history_window.h"
#include "shell/inspector_window.h"
#include "shell/main_window.h"
#include "shell/qt_dialogs.h"
#include "shell/settings_window.h"
#include "shell/sheets.h"
#include "shell/theme.h"

namespace ostrelon {

/// All windows over one application. `dialogs` are those that the application asks.
class WindowedProgram {
 public:
  WindowedProgram(Application& application, Theme& theme, QtDialogs& dialogs);

  MainWindow& mainWindow() { return *mainWindow_; }
  InspectorWindow& inspector() { return *inspector_; }
  /// Made when it is first asked for.
  SettingsWindow& settings();
  /// The windows of help, made when they are first asked for.
  HelpWindow& manual();
  HelpWindow& shortcuts();
  /// Made when it is first asked for.
  HistoryWindow& history();
  /// Shows the main window as the last run left it.
  void show();

 private:
  Application& application_;
  Theme& theme_;
  QtDialogs& dialogs_;
  std::unique_ptr<MainWindow> mainWindow_;
  InspectorWindow* inspector_;          // owned by the main window
  SettingsWindow* settings_ = nullptr;  // owned by the main window
  HelpWindow* manual_ = nullptr;        // owned by the main window
  HelpWindow* shortcuts_ = nullptr;     // owned by the main window
  HistoryWindow* history_ = nullptr;    // owned by the main window
  Subscription paletteSubscription_;
};

/// How a start with windows was asked for.
struct WindowStart {
  std::optional<FilePath> home;      ///< a private home
  std::optional<FilePath> document;  ///< to be opened once the window is there
  std::optional<FilePath> drawing;   ///< of another program, to be imported then
  bool isUITesting = false;
};

/// Runs the program with its windows until the user quits. Gives the exit status.
int runWithWindows(int& argc, char** argv, const WindowStart& start);

}  // namespace ostrelon
