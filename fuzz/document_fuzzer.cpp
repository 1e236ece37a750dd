// The reader of document files: what it accepts can be shown, written, and read again as it was.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "app/workspace.h"
#include "documents/sketch_document.h"
#include "documents/sketch_document_io.h"
#include "memory_files.h"
#include "platform/dialogs.h"
#include "platform/scheduler.h"
#include "require.h"

namespace {

using namespace ostrelon;

// A wall of a file without systems gets a fresh identifier with every read.
bool hasKnownSystems(const SketchDocumentV2& document) { return !document.ws.items.empty(); }

// What writing a document makes of its undo snapshots.
void keepStoredSnapshots(SketchDocumentV2& document) {
  if (!document.undo) return;
  auto& undo = *document.undo;
  if (undo.size() > kStoredUndoSnapshots) {
    undo.erase(undo.begin(), undo.end() - static_cast<std::ptrdiff_t>(kStoredUndoSnapshots));
  }
  if (undo.empty()) document.undo.reset();
}

void applyToModel(const LoadedSketchDocument& loaded) {
  MemoryFiles files;
  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  Workspace workspace(Host{scheduler, dialogs, files});
  workspace.document.adopt(loaded);
  for (std::size_t step = 0; step <= kStoredUndoSnapshots; ++step) workspace.board.undo();
  for (std::size_t step = 0; step <= kStoredUndoSnapshots; ++step) workspace.board.redo();
  const EntityList* entities =
      std::visit(Overloaded{[](const SketchDocumentFile& document) { return &document.entities; },
                            [](const SketchDocumentV2& document) { return &document.e; }},
                 loaded.document);
  require(workspace.sketch.entities() == *entities, "undo and redo come back to what was read");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  LoadedSketchDocument loaded;
  try {
    loaded = SketchDocumentIO::decodeDocument(std::string(reinterpret_cast<const char*>(data), size));
  } catch (const DocumentFormatError& error) {
    const std::string_view text = error.what();
    require(!text.empty(), "a refusal has a text");
    return 0;
  }
  applyToModel(loaded);
  if (auto* document = std::get_if<SketchDocumentV2>(&loaded.document)) {
    const std::string written = SketchDocumentIO::encodeDocument(*document);
    const auto again = SketchDocumentIO::decodeDocument(written);
    require(SketchDocumentIO::encodeDocument(std::get<SketchDocumentV2>(again.document)) == written,
            "a written document is written again to the byte");
    keepStoredSnapshots(*document);
    require(!hasKnownSystems(*document) || again == loaded, "writing keeps all");
  }
  return 0;
}
