// A workspace on a virtual clock with queued dialogs, for tests that need no real files.
#pragma once

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "app/workspace.h"
#include "platform/dialogs.h"
#include "platform/scheduler.h"
#include "support/no_file_system.h"

namespace ostrelon::testing {

struct TestWorkspace {
  VirtualScheduler scheduler{dateFromSeconds(1'767'225'600)};
  QueuedDialogs dialogs;
  NoFileSystem files;
  Workspace workspace{Host{scheduler, dialogs, files}};
  Sketch& sketch = workspace.sketch;
  Board& board = workspace.board;
  DocumentSession& document = workspace.document;
  Messages& messages = workspace.messages;
  Console& console = workspace.console;

  const std::vector<ConsoleLine>& lines() const { return *messages.lines; }
  /// Submits one console line and gives the lines after the echo.
  std::vector<ConsoleLine> submit(std::string line) {
    const std::size_t before = lines().size();
    console.setInput(std::move(line));
    console.submit();
    return {lines().begin() + static_cast<std::ptrdiff_t>(std::min(before + 1, lines().size())),
            lines().end()};
  }
  /// The text of the last line that this console line gave; empty when it gave none.
  std::string reply(std::string line) {
    const auto given = submit(std::move(line));
    return given.empty() ? std::string() : given.back().text;
  }
  std::size_t undoSteps() const { return sketch.undoStack->undoSnapshots().size(); }
};

/// Everything that a refused operation must leave as it was.
struct WorkspaceState {
  Drawing drawing;
  Selection selection;
  std::size_t undoSteps;
  std::size_t redoSteps;
  bool isDirty;
  SketchTool tool;

  explicit WorkspaceState(const TestWorkspace& t)
      : drawing(t.sketch.drawing),
        selection(t.sketch.selection),
        undoSteps(t.undoSteps()),
        redoSteps(t.sketch.undoStack->redoSnapshots().size()),
        isDirty(t.sketch.isDirty),
        tool(t.board.tool) {}
  friend bool operator==(const WorkspaceState&, const WorkspaceState&) = default;
};

}  // namespace ostrelon::testing
