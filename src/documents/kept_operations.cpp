// Keeping what the open document's operations replace, and bringing it back.
#include <algorithm>
#include <utility>

#include "documents/document_session.h"
#include "documents/drawing_loss.h"
#include "documents/opened_document.h"
#include "documents/restore_drawing.h"
#include "documents/sketch_document_io.h"

namespace ostrelon {
namespace {

OpenedDocument readKept(const KeptDrawings& store, const std::string& id, const Drawing& before) {
  return openedDocument(SketchDocumentIO::decodeDocument(store.read(id)), before);
}

// The same drawing, kept before; it need not be there twice. Of several that look the same the newest is
// looked at.
std::optional<std::string> earlierCopy(const KeptDrawings& store, const LostDrawing& lost) {
  for (const KeptDrawing& kept : store.list()) {
    if (kept.name != lost.name || kept.path != lost.path || kept.entities != lost.entities) continue;
    try {
      if (const auto* bytes = std::get_if<std::string>(&lost.content)) {
        return store.read(kept.id) == *bytes ? std::optional(kept.id) : std::nullopt;
      }
      const auto& document = std::get<SketchDocumentV2>(lost.content);
      const Drawing drawing = readKept(store, kept.id, Drawing()).drawing;
      const Drawing ours{document.e, document.ws.items, UUID(), document.grid, document.plan};
      return isSameDrawing(drawing, ours) ? std::optional(kept.id) : std::nullopt;
    } catch (const UserError&) {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

void keep(const KeptDrawings& store, const LostDrawing& lost, const std::string& reason, Date now) {
  const auto earlier = earlierCopy(store, lost);
  store.keep({{}, lost.name, lost.path, now, reason, lost.entities}, [&](const FileSystem::Writer& write) {
    if (const auto* bytes = std::get_if<std::string>(&lost.content)) {
      write(*bytes);
    } else {
      SketchDocumentIO::encodeDocument(std::get<SketchDocumentV2>(lost.content), write);
    }
  });
  if (!earlier) return;
  try {
    store.remove(*earlier);
  } catch (const UserError&) {
    // It is there twice then.
  }
}

}  // namespace

void DocumentSession::keepDrawingsIn(KeptDrawings store, std::function<void()> kept) {
  kept_.emplace(std::move(store));
  hasKept_ = std::move(kept);
}

void DocumentSession::keepWhatIsLost(const Replacement& replacement) {
  if (!kept_ || mayLose_) return;
  bool hasKept = false;
  const Date now = host_.scheduler.now();
  const std::size_t next = replacement.drawing != nullptr ? replacement.drawing->entities.size() : 0;
  try {
    sketch_.work(std::max(sketch_.entities().size(), next), [&] {
      for (const LostDrawing& lost : lostBy(*this, replacement)) {
        keep(*kept_, lost, replacement.reason, now);
        hasKept = true;
      }
    });
  } catch (const UserError& error) {
    throw DrawingNotKeptError(std::string("What would be replaced could not be kept. ") + error.what());
  }
  if (hasKept && hasKept_) hasKept_();
}

void DocumentSession::withoutKeeping(const std::function<void()>& work) {
  mayLose_ = true;
  try {
    work();
  } catch (...) {
    mayLose_ = false;
    throw;
  }
  mayLose_ = false;
}

const KeptDrawings& DocumentSession::keptStore() const {
  if (!kept_) throw UserError("Drawings are not kept here.");
  return *kept_;
}

std::vector<KeptDrawing> DocumentSession::keptDrawings() const {
  return kept_ ? kept_->list() : std::vector<KeptDrawing>();
}

Drawing DocumentSession::keptDrawing(const std::string& id) const {
  return readKept(keptStore(), id, sketch_.drawing).drawing;
}

void DocumentSession::restoreKeptDrawing(const std::string& id) {
  const Drawing kept = keptDrawing(id);
  if (!isSameDrawing(kept, sketch_.drawing)) restoreDrawing(sketch_, kept);
}

void DocumentSession::openKeptDrawing(const std::string& id) {
  OpenedDocument kept = readKept(keptStore(), id, sketch_.drawing);
  kept.name = keptStore().find(id).name;
  kept.undo.clear();
  const std::string reason = "Opened " + kept.name;
  adoptUnsaved(std::move(kept), SketchUndoStack(), std::nullopt, std::nullopt, reason);
}

void DocumentSession::deleteKeptDrawing(const std::string& id) { keptStore().remove(id); }

}  // namespace ostrelon
