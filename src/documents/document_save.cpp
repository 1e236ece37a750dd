#include "documents/document_save.h"

#include "documents/content_hash.h"
#include "documents/document_paths.h"
#include "documents/sketch_document_io.h"

namespace ostrelon {

DocumentSave::DocumentSave(const SketchViewModel& sketch, const FilePath& url)
    : url_(checkedDocumentURL(url)), document_(sketch.makeDocumentV2(true)) {}

void DocumentSave::write(FileSystem& files) {
  ContentHash hash;
  pending_ = files.prepareFile(url_, [&](const FileSystem::Writer& writePiece) {
    SketchDocumentIO::encodeDocument(document_, [&](std::string_view piece) {
      hash.add(piece);
      writePiece(piece);
    });
  });
  onDisk_ = {url_, pending_->info(), hash.value()};
}

bool DocumentSave::holdsStateOf(const SketchViewModel& sketch) const {
  return document_.grid == sketch.showGrid && document_.ws.items == *sketch.wallSystemSpecs &&
         document_.e == *sketch.entities;
}

void DocumentSave::release() {
  document_ = {};
  pending_.reset();
}

bool documentChangedOnDisk(const SketchViewModel& sketch) {
  const std::optional<DocumentOnDisk>& known = sketch.documentOnDisk();
  if (!known || known->path != sketch.documentFileURL.get()) return false;
  FileSystem& files = sketch.host().files;
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
