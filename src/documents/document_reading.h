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
  /// What was read, called after its file; only after `read`. A copy shares its entities.
  const LoadedSketchDocument& document() const { return *document_; }
  /// Lets go of it. To be called on the main thread, which owns the storage that lists share.
  void release() { document_.reset(); }

 private:
  DocumentOnDisk onDisk_;
  std::optional<LoadedSketchDocument> document_;
};

}  // namespace ostrelon
