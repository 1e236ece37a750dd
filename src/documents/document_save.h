// One save of a document, in steps: what is to be saved is held at once and costs nothing that grows
// with the document, the long part (encoding and writing) may run away from the main thread, and the
// end belongs to it again.
//
//   DocumentSave save(url, session.makeDocument(true));  // main thread
//   save.write(files);                                   // any thread: a temporary file beside the target
//   session.finishSave(save);                            // main thread: into its place, and it is clean
#pragma once

#include <memory>

#include "documents/document_on_disk.h"
#include "documents/document_session.h"
#include "documents/saved_precision.h"
#include "documents/sketch_document.h"
#include "platform/file_system.h"

namespace ostrelon {

class DocumentSave {
 public:
  /// Throws `invalidFileExtension`.
  DocumentSave(const FilePath& url, SketchDocumentV2 document);

  const FilePath& url() const { return url_; }
  /// Encodes and writes. Throws the file system's error or the format's.
  void write(FileSystem& files);
  /// How the drawing loses by being written.
  const SavedPrecision& precision() const { return precision_; }
  /// Moves what was written into its place.
  void commit() { pending_->commit(); }
  /// What is on disk after `commit`.
  const DocumentOnDisk& onDisk() const { return onDisk_; }
  /// Whether nothing that a document's file holds of the drawing has changed since the save began.
  bool holdsStateOf(const Sketch& sketch) const;
  /// What is being saved, with this system as the one that new walls take.
  Drawing drawing(const UUID& activeWallSystemSpecID) const;
  /// Releases the entities, and drops what was written but not committed. To be called on the main thread
  /// after a write elsewhere, since the storage that lists share is owned by that thread.
  void release();

 private:
  FilePath url_;
  SketchDocumentV2 document_;
  std::unique_ptr<PendingFile> pending_;
  DocumentOnDisk onDisk_;
  SavedPrecision precision_;
};

/// Whether the file of the document is there and no longer holds what was last read from it or
/// written to it. Looks at its identity, size and time, and only where those differ at its content.
bool documentChangedOnDisk(const DocumentSession& document);

}  // namespace ostrelon
