// A whole program without windows, over a folder of its own and a virtual clock.
#pragma once

#include <string>
#include <vector>

#include "app/application.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/user_defaults.h"
#include "support/temporary_folder.h"
#include "updates/served_update_client.h"

namespace ostrelon::testing {

struct TestApplication {
  TemporaryFolder home;
  VirtualScheduler scheduler{dateFromSeconds(1'767'225'600)};
  QueuedDialogs dialogs;
  DiskFileSystem files;
  MemoryUserDefaults defaults;
  ServedUpdateClient client{scheduler, home / "tmp"};
  std::vector<FilePath> openedInstallers;
  Application application{services(), options()};
  Workspace& workspace = application.workspace();
  Sketch& sketch = workspace.sketch;
  Board& board = workspace.board;
  DocumentSession& document = workspace.document;
  Messages& messages = workspace.messages;
  Console& console = workspace.console;

  ApplicationServices services() {
    return {.host = {scheduler, dialogs, files},
            .defaults = defaults,
            .updateClient = client,
            .openInstaller = [this](const FilePath& path) {
              openedInstallers.push_back(path);
              return true;
            }};
  }
  ApplicationOptions options(bool isUITesting = false) const {
    return {.documentsFolder = home / "Documents",
            .updates = updateConfiguration("1.4.2", "318", "https://example.org/feed.json", ""),
            .isUITesting = isUITesting};
  }

  void submit(std::string line) {
    console.setInput(std::move(line));
    console.submit();
  }
  const ConsoleLine& lastLine() const { return messages.lines->back(); }
  /// Runs everything that is due now.
  void settle() { scheduler.advance(Seconds(0)); }
};

}  // namespace ostrelon::testing
