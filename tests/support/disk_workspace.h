// A workspace and settings over real files in a folder of their own, on a virtual clock.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "app/workspace.h"
#include "documents/app_settings.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/scheduler.h"
#include "support/temporary_folder.h"

namespace ostrelon::testing {

struct DiskWorkspace {
  explicit DiskWorkspace(FileSystemCalls calls = FileSystemCalls::ofTheSystem()) : files(std::move(calls)) {}

  TemporaryFolder home;
  DiskFileSystem files;
  VirtualScheduler scheduler{dateFromSeconds(1'767'225'600)};
  QueuedDialogs dialogs;
  MemoryUserDefaults defaults;
  AppSettings settings{defaults, files, home / "Documents"};
  Workspace workspace{Host{scheduler, dialogs, files}};
  Sketch& sketch = workspace.sketch;
  Board& board = workspace.board;
  DocumentSession& document = workspace.document;
  Messages& messages = workspace.messages;
  Console& console = workspace.console;

  /// The last console line, marked "E " when it is an error and "S " when the system wrote it.
  std::string lastLine() const {
    const ConsoleLine& line = messages.lines->back();
    return (line.isError ? "E " : line.isSystem ? "S " : "") + line.text;
  }
  /// The reply to a console line.
  std::string reply(std::string text) {
    console.setInput(std::move(text));
    console.submit();
    return messages.lines->back().text;
  }
  std::string toast() const {
    return messages.toast->has_value() ? (*messages.toast)->message : std::string();
  }
};

/// Steps of the system that fail with `error` while the switch is on.
struct FailingCalls {
  std::shared_ptr<int> error = std::make_shared<int>(0);  ///< an `errno`; 0: nothing fails
  FileSystemCalls calls = FileSystemCalls::ofTheSystem();

  /// Lets one of the steps fail from now on, by its member of `FileSystemCalls`.
  template <class... Arguments, class Result>
  FailingCalls& fail(std::function<Result(Arguments...)> FileSystemCalls::*step) {
    auto real = calls.*step;
    calls.*step = [real, switched = error](Arguments... arguments) -> Result {
      if (*switched == 0) return real(arguments...);
      errno = *switched;
      return -1;
    };
    return *this;
  }
};

/// The system's calls, with work that another program does once, right before something takes its place.
struct InterruptedCalls {
  std::shared_ptr<std::function<void()>> work = std::make_shared<std::function<void()>>();
  FileSystemCalls calls = FileSystemCalls::ofTheSystem();

  InterruptedCalls() {
    calls.close = [work = work, real = calls.close](int file) {
      if (const auto now = std::exchange(*work, nullptr)) now();
      return real(file);
    };
  }
};

}  // namespace ostrelon::testing
