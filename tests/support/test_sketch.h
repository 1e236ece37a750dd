// A view model on a virtual clock with queued dialogs, for tests that need no real files.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "core/sketch_view_model.h"
#include "platform/dialogs.h"
#include "platform/file_system.h"
#include "platform/scheduler.h"

namespace ostrelon::testing {

/// A file system with nothing in it, on which nothing can be written.
class NoFileSystem final : public FileSystem {
 public:
  std::string readFile(const FilePath&) override { throw FileError("There is no file."); }
  std::unique_ptr<PendingFile> prepareFile(const FilePath&, const Producer&) override {
    throw FileError("Nothing can be written.");
  }
  std::optional<FileInfo> info(const FilePath&) override { return std::nullopt; }
  bool isLink(const FilePath&) override { return false; }
  std::vector<std::string> list(const FilePath&) override { return {}; }
  void createFolders(const FilePath&) override { throw FileError("Nothing can be written."); }
  void copyFile(const FilePath&, const FilePath&) override { throw FileError("There is no file."); }
  void removeFile(const FilePath&) override {}
};

struct TestSketch {
  VirtualScheduler scheduler{dateFromSeconds(1'767'225'600)};
  QueuedDialogs dialogs;
  NoFileSystem files;
  SketchViewModel sketch{Host{scheduler, dialogs, files}};

  /// Submits one console line and gives the lines behind the echo.
  std::vector<ConsoleLine> run(std::string line) {
    const std::size_t before = sketch.consoleLines->size();
    sketch.setCommandInput(std::move(line));
    sketch.submitCommandInput();
    const auto& lines = *sketch.consoleLines;
    return {lines.begin() + static_cast<std::ptrdiff_t>(std::min(before + 1, lines.size())), lines.end()};
  }
  /// The text of the last line that this console line gave; empty when it gave none.
  std::string reply(std::string line) {
    const auto lines = run(std::move(line));
    return lines.empty() ? std::string() : lines.back().text;
  }
};

/// Everything that a refused operation must leave as it was.
struct DocumentState {
  EntityList entities;
  std::unordered_set<UUID> selection;
  std::optional<UUID> primary;
  std::size_t undoSteps;
  std::size_t redoSteps;
  bool isDirty;
  UUID activeSystem;
  SketchTool tool;

  explicit DocumentState(const SketchViewModel& sketch)
      : entities(sketch.entities),
        selection(sketch.selectedEntityIDs),
        primary(sketch.primarySelectedEntityID),
        undoSteps(sketch.undoStack().undoSnapshots().size()),
        redoSteps(sketch.undoStack().redoSnapshots().size()),
        isDirty(sketch.isDocumentDirty),
        activeSystem(sketch.activeWallSystemSpecID),
        tool(sketch.selectedTool) {}
  friend bool operator==(const DocumentState&, const DocumentState&) = default;
};

}  // namespace ostrelon::testing
