#include "documents/document_reading.h"

#include "documents/content_hash.h"
#include "documents/document_paths.h"
#include "documents/sketch_document_io.h"

namespace ostrelon {

DocumentReading::DocumentReading(const FilePath& url) { onDisk_.path = checkedDocumentURL(url); }

void DocumentReading::read(FileSystem& files) {
  onDisk_.info = files.info(onDisk_.path).value_or(FileInfo{});
  std::string bytes = files.readFile(onDisk_.path);
  onDisk_.contentHash = contentHash(bytes);
  document_ = SketchDocumentIO::decodeDocument(std::move(bytes));
  document_->setName(documentNameFor(onDisk_.path));
}

}  // namespace ostrelon
