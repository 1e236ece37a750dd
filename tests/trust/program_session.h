// The whole program over a folder and the steps of the system that a test gives it, with its settings in
// their file: what is there after a crash can be opened by another one.
#pragma once

#include <string>
#include <utility>

#include "app/application.h"
#include "core/adding.h"
#include "documents/document_store.h"
#include "geometry/edit_operations.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/json_user_defaults.h"
#include "platform/scheduler.h"
#include "updates/served_update_client.h"

namespace ostrelon::testing {

struct ProgramSession {
  explicit ProgramSession(FilePath folder, FileSystemCalls calls = FileSystemCalls::ofTheSystem())
      : home(std::move(folder)), files(std::move(calls)) {}

  FilePath home;
  DiskFileSystem files;
  VirtualScheduler scheduler{dateFromSeconds(1'767'225'600)};
  QueuedDialogs dialogs;
  JsonUserDefaults defaults{files, home / "settings.json"};
  ServedUpdateClient client{scheduler, home / "tmp"};
  Application application{ApplicationServices{.host = {scheduler, dialogs, files},
                                              .defaults = defaults,
                                              .updateClient = client,
                                              .openInstaller = [](const FilePath&) { return true; }},
                          ApplicationOptions{.documentsFolder = home / "Documents",
                                             .updates = updateConfiguration("1.0", "", "", ""),
                                             .isUITesting = false}};
  Workspace& workspace = application.workspace();
  AppSettings& settings = application.settings();

  /// Where the documents of these tests lie.
  FilePath plan() const { return home / "Documents/Ostrelon/plan.ostrel"; }

  /// Draws state `number` in place of what is there: so many lines, each naming the state.
  void draw(int number) {
    selectAll(workspace.sketch);
    deleteSelection(workspace.sketch, workspace.messages);
    for (int line = 0; line < linesOf(number); ++line) {
      addLine(workspace.sketch, {0, 0}, {static_cast<double>(number), static_cast<double>(line)});
    }
  }

  static int linesOf(int number) { return 1 + number * 37 % 60; }

  /// The state that entities hold; -1 when they are none that `draw` makes.
  static int stateOf(const EntityList& entities) {
    if (entities.empty()) return -1;
    int number = -1;
    int line = 0;
    for (const SketchEntity& entity : entities) {
      const auto* drawn = std::get_if<LineEntity>(&entity);
      if (drawn == nullptr) return -1;
      if (line == 0) number = static_cast<int>(drawn->to.x);
      if (drawn->to != SketchPoint{static_cast<double>(number), static_cast<double>(line)}) return -1;
      ++line;
    }
    return line == linesOf(number) ? number : -1;
  }
};

}  // namespace ostrelon::testing
