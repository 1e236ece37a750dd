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

#include "core/sketch_view_model.h"
#include "memory_files.h"
#include "platform/dialogs.h"
#include "platform/scheduler.h"
#include "platform/unicode.h"
#include "require.h"

namespace {

using namespace ostrelon;

constexpr std::size_t kMostLines = 200;

// What a refused line must leave as it was.
struct Drawing {
  EntityList entities;
  std::unordered_set<UUID> selection;
  std::optional<UUID> primary;
  std::size_t undoSteps = 0;
  std::size_t redoSteps = 0;
  bool isDirty = false;
  UUID activeSystem;
  SketchTool tool = SketchTool::select;
  std::optional<SketchDraft> draft;
  SketchViewport viewport;

  explicit Drawing(const SketchViewModel& sketch)
      : entities(sketch.entities),
        selection(sketch.selectedEntityIDs),
        primary(sketch.primarySelectedEntityID),
        undoSteps(sketch.undoStack().undoSnapshots().size()),
        redoSteps(sketch.undoStack().redoSnapshots().size()),
        isDirty(sketch.isDocumentDirty),
        activeSystem(sketch.activeWallSystemSpecID),
        tool(sketch.selectedTool),
        draft(sketch.draft),
        viewport(sketch.viewport) {}
  friend bool operator==(const Drawing&, const Drawing&) = default;
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

void checkDrawing(const SketchViewModel& sketch) {
  std::unordered_set<UUID> ids;
  for (const SketchEntity& entity : *sketch.entities) {
    require(ids.insert(entityID(entity)).second, "identifiers are unique");
  }
  for (const UUID& id : *sketch.selectedEntityIDs) require(ids.contains(id), "what is selected is there");
  require(!*sketch.primarySelectedEntityID ||
              sketch.selectedEntityIDs->contains(**sketch.primarySelectedEntityID),
          "the primary entity is selected");
  require(sketch.undoCheckpointSuppressionDepth() == 0 && !sketch.isApplyingUndoRedo(),
          "undo steps are taken again");
  require(std::isfinite(sketch.viewport->scale) && sketch.viewport->scale > 0, "the view has a scale");
}

void act(std::string_view action, SketchViewModel& sketch) {
  if (action == "undo") sketch.undo();
  if (action == "redo") sketch.redo();
  if (const auto tool = sketchToolFromRawValue(action)) {
    sketch.activateTool(*tool);
    sketch.beginDraft({0, 0});
    sketch.updateDraft({3, 4});
  }
}

void submit(const std::string& text, SketchViewModel& sketch) {
  const Drawing before(sketch);
  int told = 0;
  const Subscription subscription =
      sketch.observe(fieldMask(SketchField::entities), [&](const SketchChange&) { ++told; });
  const std::size_t linesBefore = sketch.consoleLines->size();
  sketch.setCommandInput(text);
  told = 0;
  sketch.submitCommandInput();
  require(told <= 1, "observers hear of an edit once");
  require(sketch.commandInput->empty(), "the field is empty again");
  const auto& lines = *sketch.consoleLines;
  const Drawing after(sketch);
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
  require(tookStep || isSameList(after.entities, before.entities), "what changes can be undone");
  if (!tookStep) return;
  sketch.undo();
  require(isSameList(sketch.entities, before.entities), "undo gives back the list before the edit");
  sketch.redo();
  require(isSameList(sketch.entities, after.entities), "redo gives back the edit");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  MemoryFiles files;
  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  SketchViewModel sketch(Host{scheduler, dialogs, files});
  sketch.updateCanvasSize({800, 600});
  std::string_view input(reinterpret_cast<const char*>(data), size);
  for (std::size_t count = 0; count < kMostLines && !input.empty(); ++count) {
    const std::string_view line = input.substr(0, input.find('\n'));
    input.remove_prefix(std::min(input.size(), line.size() + 1));
    if (line.starts_with('!')) {
      act(line.substr(1), sketch);
    } else {
      submit(std::string(line), sketch);
    }
    checkDrawing(sketch);
  }
  return 0;
}
