// Console lines, one after the other on one drawing: what fails changes nothing, what edits is one undo
// step, and no line, whatever it holds, breaks the drawing.
//
// A line that begins with '!' stands for what a hand does between two lines: !undo, !redo, a draft begun
// with the tool of this name, as !line.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_set>

#include "app/workspace.h"
#include "memory_files.h"
#include "platform/dialogs.h"
#include "platform/scheduler.h"
#include "platform/unicode.h"
#include "require.h"

namespace {

using namespace ostrelon;

constexpr std::size_t kMostLines = 200;

// What a refused line must leave as it was.
struct State {
  Drawing drawing;
  Selection selection;
  bool isDirty;
  std::size_t undoSteps;
  std::size_t redoSteps;
  SketchTool tool;
  Gesture gesture;
  SketchViewport viewport;

  explicit State(const Workspace& workspace)
      : drawing(workspace.sketch.drawing),
        selection(workspace.sketch.selection),
        isDirty(workspace.sketch.isDirty),
        undoSteps(workspace.sketch.undoStack->undoSnapshots().size()),
        redoSteps(workspace.sketch.undoStack->redoSnapshots().size()),
        tool(workspace.board.tool),
        gesture(workspace.board.gesture),
        viewport(workspace.board.viewport()) {}
  friend bool operator==(const State&, const State&) = default;
};

bool readsAsError(std::string_view reply) {
  return reply.starts_with("Unknown") || reply.starts_with("Usage:") || reply.starts_with("Chain error");
}

// The same entities; where coordinates are no numbers, which equal nothing, those that read the same.
bool isSameList(const EntityList& a, const EntityList& b) {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (entityID(a[i]) != entityID(b[i])) return false;
    if (!(a[i] == b[i]) && entityDescription(a[i], {}) != entityDescription(b[i], {})) return false;
  }
  return true;
}

void checkDrawing(const Workspace& workspace) {
  std::unordered_set<UUID> ids;
  for (const SketchEntity& entity : workspace.sketch.entities()) {
    require(ids.insert(entityID(entity)).second, "identifiers are unique");
  }
  for (const UUID& id : workspace.sketch.selection->ids)
    require(ids.contains(id), "what is selected is there");
  require(!workspace.sketch.selection->primary ||
              workspace.sketch.selection->ids.contains(*workspace.sketch.selection->primary),
          "the primary entity is selected");
  require(std::isfinite(workspace.board.viewport().scale) && workspace.board.viewport().scale > 0,
          "the view has a scale");
}

void act(std::string_view action, Workspace& workspace) {
  if (action == "undo") workspace.board.undo();
  if (action == "redo") workspace.board.redo();
  if (const auto tool = sketchToolFromRawValue(action)) {
    workspace.board.activateTool(*tool);
    workspace.board.beginDraft({0, 0});
    workspace.board.updateDraft({3, 4});
  }
}

void submit(const std::string& text, Workspace& workspace) {
  const State before(workspace);
  int told = 0;
  const Subscription subscription =
      workspace.observe(fieldsOf(workspace.sketch.drawing), [&](FieldMask) { ++told; });
  const std::size_t linesBefore = workspace.messages.lines->size();
  workspace.console.setInput(text);
  told = 0;
  workspace.console.submit();
  require(told <= 1, "observers hear of an edit once");
  require(workspace.console.input->empty(), "the field is empty again");
  const auto& lines = *workspace.messages.lines;
  const State after(workspace);
  if (trimmed(text).empty()) {
    require(lines.size() == linesBefore && after == before, "a blank line is nothing");
    return;
  }
  require(lines.size() > linesBefore && lines[linesBefore].text == "> " + text &&
              !lines[linesBefore].isError && !lines[linesBefore].isSystem,
          "a line is echoed as it was typed");
  for (std::size_t i = linesBefore + 1; i < lines.size(); ++i) {
    if (lines[i].isSystem) continue;
    require(lines[i].isError == readsAsError(lines[i].text), "an error is told by its first word");
    require(i + 1 == lines.size(), "the reply is the last line");
  }
  const bool isRefused = lines.back().isError;
  require(!isRefused || after == before, "what is refused changes nothing");

  const bool tookStep = after.undoSteps != before.undoSteps;
  require(!tookStep || after.undoSteps == before.undoSteps + 1, "a line is one undo step");
  require(!tookStep || (after.isDirty && after.redoSteps == 0), "an edit makes the document dirty");
  require(tookStep || isSameList(after.drawing.entities, before.drawing.entities),
          "what changes can be undone");
  if (!tookStep) return;
  workspace.board.undo();
  require(isSameList(workspace.sketch.entities(), before.drawing.entities),
          "undo gives back the list before the edit");
  workspace.board.redo();
  require(isSameList(workspace.sketch.entities(), after.drawing.entities), "redo gives back the edit");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  MemoryFiles files;
  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  Workspace workspace(Host{scheduler, dialogs, files});
  workspace.board.resizeCanvas({800, 600});
  std::string_view input(reinterpret_cast<const char*>(data), size);
  for (std::size_t count = 0; count < kMostLines && !input.empty(); ++count) {
    const std::string_view line = input.substr(0, input.find('\n'));
    input.remove_prefix(std::min(input.size(), line.size() + 1));
    if (line.starts_with('!')) {
      act(line.substr(1), workspace);
    } else {
      submit(std::string(line), workspace);
    }
    checkDrawing(workspace);
  }
  return 0;
}
