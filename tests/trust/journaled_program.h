// A workspace whose edits are followed by a journal, and random edits for it.
#pragma once

#include <algorithm>
#include <string>

#include "app/edit_journal.h"
#include "documents/sketch_document_io.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/scheduler.h"
#include "support/random_drawing.h"

namespace ostrelon::testing {

struct JournaledProgram {
  /// `changed` is called behind each operation, before the journal hears of it.
  explicit JournaledProgram(
      const FilePath& state, FileSystemCalls calls = FileSystemCalls::ofTheSystem(),
      std::function<void()> changed = [] {})
      : files(std::move(calls)),
        watching(workspace.observe(kAllFields, [changed = std::move(changed)](FieldMask) { changed(); })),
        journal(workspace, state) {
    journal.holdMarker();
  }
  VirtualScheduler scheduler{dateFromSeconds(1'767'225'600)};
  QueuedDialogs dialogs;
  DiskFileSystem files;
  Workspace workspace{Host{scheduler, dialogs, files}};
  Subscription watching;
  EditJournal journal;

  // Everything that a file would hold, undo steps included.
  std::string text() const { return SketchDocumentIO::encodeDocument(workspace.document.makeDocument(true)); }
  bool hears(const std::string& part) {
    scheduler.advance(Seconds(0));
    return std::any_of(workspace.messages.lines->begin(), workspace.messages.lines->end(),
                       [&](const ConsoleLine& line) { return line.text.find(part) != std::string::npos; });
  }
  void draw(double x) { submit("line " + std::to_string(x) + " 0 5 5"); }
  void submit(const std::string& line) {
    workspace.console.setInput(line);
    workspace.console.submit();
  }
};

inline void edit(JournaledProgram& on, RandomDrawing& random) {
  Sketch& sketch = on.workspace.sketch;
  const int count = static_cast<int>(sketch.entities().size());
  const auto someEntity = [&] { return static_cast<std::size_t>(random.below(std::max(count, 1))); };
  switch (random.below(12)) {
    case 10:
      sketch.edit([&](Drawing& drawing) { drawing.plan = random.plan(drawing.entities); },
                  random.chance(4) ? UndoStep::none : UndoStep::own);
      break;
    case 11:
      sketch.edit(
          [&](Drawing& drawing) {
            drawing.wallSystemSpecs.front().thickness = random.below(9);
            if (random.chance(2))
              drawing.wallSystemSpecs.insert(drawing.wallSystemSpecs.begin(), {UUID::random()});
          },
          UndoStep::withWallSystems);
      break;
    case 0:
      sketch.undo();
      break;
    case 1:
      sketch.redo();
      break;
    case 2:
      sketch.edit([](Drawing& drawing) { drawing.showGrid = !drawing.showGrid; }, UndoStep::none);
      break;
    case 3:
      sketch.edit(
          [&](Drawing& drawing) {
            drawing.wallSystemSpecs.push_back({UUID::random(), "W" + std::to_string(count), 5, 96, "“n”"});
          },
          UndoStep::none);
      break;
    case 4:
      if (count == 0) break;
      sketch.edit([&](Drawing& drawing) { drawing.entities.remove(someEntity()); });
      break;
    case 5: {  // a drag, with a step of another in its middle now and then
      if (count == 0) break;
      sketch.beginDragStep();
      for (int move = 0; move < 3; ++move) {
        const auto at = someEntity();
        sketch.edit(
            [&](Drawing& drawing) {
              drawing.entities.replace(
                  at, random.entity(drawing.wallSystemSpecs, entityID(drawing.entities[at])));
            },
            random.chance(8) ? UndoStep::own : UndoStep::none);
      }
      sketch.endDragStep();
      on.workspace.messages.appendSystem("as when the gesture ends");
      break;
    }
    case 6:
      sketch.edit([&](Drawing& drawing) { drawing.entities.append(random.entities(40)); });
      break;
    case 7:
      on.submit("line 0 0 1 1; line 1 1 2 2");
      break;
    default:
      sketch.edit([&](Drawing& drawing) { drawing.entities.append(random.entity(drawing.wallSystemSpecs)); });
  }
}

}  // namespace ostrelon::testing
