// One opening of a document, in steps: the long part (reading and decoding) may run away from the main
// thread, taking the document over belongs to it.
//
//   DocumentReading reading(url);
//   reading.read(files);             // any thread
//   session.finishOpening(reading);  // main thread: the document takes the place of the old one
#pragma once

#include <optional>

#include "documents/document_on_disk.h"
#include "documents/sketch_document.h"
#include "platform/file_system.h"

namespace ostrelon {

class DocumentReading {
 public:
  /// Throws `invalidFileExtension`.
  explicit DocumentReading(const FilePath& url);

  /// Reads and decodes. Throws the file system's error or the format's.
  void read(FileSystem& files);
  const DocumentOnDisk& onDisk() const { return onDisk_; }
  /// What was read, called after its file, once; only after `read`.
  LoadedSketchDocument take() { return std::move(*document_); }

 private:
  DocumentOnDisk onDisk_;
  std::optional<LoadedSketchDocument> document_;
};

}  // namespace ostrelon
