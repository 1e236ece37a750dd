#include "documents/document_save.h"

#include <utility>

#include "documents/content_hash.h"
#include "documents/document_paths.h"
#include "documents/sketch_document_io.h"

namespace ostrelon {

DocumentSave::DocumentSave(const FilePath& url, SketchDocumentV2 document)
    : url_(checkedDocumentURL(url)), document_(std::move(document)) {}

void DocumentSave::write(FileSystem& files) {
  ContentHash hash;
  pending_ = files.prepareFile(url_, [&](const FileSystem::Writer& writePiece) {
    SketchDocumentIO::encodeDocument(document_, [&](std::string_view piece) {
      hash.add(piece);
      writePiece(piece);
    });
  });
  onDisk_ = {url_, pending_->info(), hash.value()};
  precision_ = savedPrecision(document_.e);
}

bool DocumentSave::holdsStateOf(const Sketch& sketch) const {
  const Drawing& drawing = sketch.drawing;
  return document_.grid == drawing.showGrid && document_.ws.items == drawing.wallSystemSpecs &&
         document_.e == drawing.entities && document_.plan == drawing.plan;
}

Drawing DocumentSave::drawing(const UUID& activeWallSystemSpecID) const {
  return {document_.e, document_.ws.items, activeWallSystemSpecID, document_.grid, document_.plan};
}

void DocumentSave::release() {
  document_ = {};
  pending_.reset();
}

bool documentChangedOnDisk(const DocumentSession& document) {
  const std::optional<DocumentOnDisk>& known = document.onDisk();
  if (!known || known->path != document.fileURL.get()) return false;
  FileSystem& files = document.host().files;
  const auto info = files.info(known->path);
  if (!info || *info == known->info) return false;
  if (info->size != known->info.size) return true;
  try {
    return contentHash(files.readFile(known->path)) != known->contentHash;
  } catch (const FileError&) {
    return true;  // what cannot be looked at may be anything
  }
}

}  // namespace ostrelon
