#include "documents/document_session.h"

#include <fmt/format.h>

#include <utility>

#include "documents/document_paths.h"
#include "documents/document_reading.h"
#include "documents/document_save.h"
#include "documents/drawing_loss.h"
#include "documents/opened_document.h"

namespace ostrelon {

DocumentSession::DocumentSession(ChangeTracker& tracker, Sketch& sketch, Messages& messages,
                                 DocumentStage& stage, Host host)
    : tracker_(tracker), sketch_(sketch), messages_(messages), stage_(stage), host_(host) {}

// --- The document as a whole

void DocumentSession::begin() {
  keepWhatIsLost({.reason = "New document"});
  const auto scope = change();
  unrecordedMerges_.clear();
  hasToldDistance_ = false;
  toldMerged_ = 0;
  Drawing empty = sketch_.drawing;
  empty.entities.clear();
  empty.plan = {};
  sketch_.replace(std::move(empty));
  sketch_.clearSelection();
  sketch_.setDirty(false);
  fileURL = std::nullopt;
  name = kUntitledName;
  lastSavedAt = std::nullopt;
  history = DocumentHistoryState();
  setBasis(sketch_.drawing);
  stage_.documentBegun();
  messages_.appendSystem("New document.");
}

SketchDocumentV2 DocumentSession::makeDocument(bool includeUndo) const {
  const std::vector<SketchUndoSnapshot> none;
  SketchDocumentV2 document = documentOf(name, sketch_.drawing, stage_.viewport(),
                                         includeUndo ? sketch_.undoStack->undoSnapshots() : none);
  // A drawing alone has no past.
  if (includeUndo) document.mergedCheckpointIDs = mergedCheckpoints();
  return document;
}

void DocumentSession::adopt(LoadedSketchDocument document) {
  OpenedDocument opened = openedDocument(std::move(document), sketch_.drawing);
  keepWhatIsLost({.reason = "Opened " + opened.name, .drawing = &opened.drawing});
  sketch_.prepareFor(opened.drawing.entities);
  adopt(std::move(opened));
}

void DocumentSession::adopt(OpenedDocument document) {
  const auto scope = change();
  name = std::move(document.name);
  unrecordedMerges_.clear();
  EntityList& entities = document.drawing.entities;
  if (!document.mergedCheckpointIDs.empty()) entities = EntityList::fromChunks(entities.chunks(), entities);
  for (std::string& id : document.mergedCheckpointIDs) unrecordedMerges_.push_back({std::move(id), entities});
  hasToldDistance_ = false;
  toldMerged_ = 0;
  sketch_.replace(std::move(document.drawing), std::move(document.undo));
  setBasis(sketch_.drawing);
  stage_.documentOpened(document.viewport);
}

void DocumentSession::adoptUnsaved(OpenedDocument document, SketchUndoStack undo,
                                   std::optional<DocumentOnDisk> file, std::optional<Date> savedAt,
                                   const std::string& reason) {
  keepWhatIsLost({.reason = reason, .drawing = &document.drawing});
  sketch_.prepareFor(document.drawing.entities);
  const auto scope = change();
  adopt(std::move(document));
  sketch_.setUndoStack(std::move(undo));
  sketch_.setDirty(true);
  fileURL = file ? std::optional(file->path) : std::nullopt;
  onDisk_ = std::move(file);
  lastSavedAt = savedAt;
  refreshHistory();
}

void DocumentSession::setBasis(Drawing drawing) {
  basis_ = std::move(drawing);
  ++basisNumber_;
}

// --- The file

void DocumentSession::save(const FilePath& url) {
  DocumentSave save(url, makeDocument(true));
  sketch_.work(sketch_.entities().size(), [&] { save.write(host_.files); });
  finishSave(save);
}

void DocumentSession::putInPlace(DocumentSave& save) {
  if (aboutToSave_) aboutToSave_(save);
  try {
    save.commit();
  } catch (...) {
    // The file may be in its place though the fsync of its folder failed; it is then this session's file all
    // the same.
    if (host_.files.info(save.url()) == save.onDisk().info) onDisk_ = save.onDisk();
    throw;
  }
  onDisk_ = save.onDisk();
}

void DocumentSession::finishSave(DocumentSave& save) {
  const Drawing saved = save.drawing(sketch_.drawing->activeWallSystemSpecID);
  keepWhatIsLost({.reason = "Saved over " + documentNameFor(save.url()),
                  .drawing = &saved,
                  .replacesDrawing = false,
                  .writtenFile = save.url()});
  putInPlace(save);
  const auto scope = change();
  fileURL = save.url();
  name = documentNameFor(save.url());
  sketch_.setDirty(!save.holdsStateOf(sketch_));
  setBasis(saved);
  lastSavedAt = host_.scheduler.now();
  tellPrecision(save);
}

void DocumentSession::tellPrecision(const DocumentSave& save) {
  const auto& [farText, merged] = save.precision();
  if (!farText.empty() && !hasToldDistance_) messages_.appendSystem(farText + "; move it nearer.");
  if (merged > toldMerged_) {
    messages_.appendSystem(merged == 1
                               ? std::string("The ends of 1 entity fall together in the file.")
                               : fmt::format("The ends of {} entities fall together in the file.", merged));
  }
  hasToldDistance_ = !farText.empty();
  toldMerged_ = merged;
}

void DocumentSession::open(const FilePath& url, const std::string& reason) {
  DocumentReading reading(url);
  reading.read(host_.files);
  finishOpening(reading, reason);
}

void DocumentSession::finishOpening(DocumentReading& reading, const std::string& reason) {
  OpenedDocument opened = openedDocument(reading.document(), sketch_.drawing);
  keepWhatIsLost({.reason = reason.empty() ? "Opened " + opened.name : reason, .drawing = &opened.drawing});
  sketch_.prepareFor(opened.drawing.entities);
  const auto scope = change();
  reading.release();
  adopt(std::move(opened));
  onDisk_ = reading.onDisk();
  fileURL = reading.onDisk().path;
  sketch_.setDirty(false);
  lastSavedAt = host_.scheduler.now();
}

}  // namespace ostrelon
