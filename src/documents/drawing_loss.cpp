#include "documents/drawing_loss.h"

#include <utility>

#include "documents/compare.h"
#include "documents/content_hash.h"
#include "documents/document_history.h"
#include "documents/document_paths.h"
#include "documents/document_session.h"
#include "documents/opened_document.h"
#include "documents/sketch_document_io.h"

namespace ostrelon {

bool isSameDrawing(const Drawing& a, const Drawing& b) {
  return a.entities.size() == b.entities.size() && compareDrawings(a, b, NumberPrecision::asInFiles).empty();
}

namespace {

// Nothing is drawn, and there are no wall systems but those that would be there anyway.
bool isEmpty(const Drawing& drawing, const std::vector<WallSystemSpec>& usualSystems) {
  return drawing.entities.empty() && drawing.plan.empty() &&
         (drawing.wallSystemSpecs.empty() || drawing.wallSystemSpecs == usualSystems);
}

// The drawing in the bytes of a document; absent where they are none.
std::optional<Drawing> drawingOf(std::string bytes) {
  try {
    return openedDocument(SketchDocumentIO::decodeDocument(std::move(bytes)), Drawing()).drawing;
  } catch (const UserError&) {
    return std::nullopt;
  }
}

std::optional<Drawing> drawingAt(FileSystem& files, const FilePath& path) {
  try {
    return drawingOf(files.readFile(path));
  } catch (const FileError&) {
    return std::nullopt;
  }
}

// What the current branch of the folder's history holds last.
std::optional<Drawing> headDrawing(FileSystem& files, const FilePath& url) {
  try {
    const DocumentHistoryState state = loadDocumentHistory(files, url);
    const DocumentHistoryBranch* branch = state.currentBranch();
    if (branch == nullptr || !branch->headCheckpointID) return std::nullopt;
    const auto head = state.findCheckpoint(*branch->headCheckpointID);
    if (!head) return std::nullopt;
    return drawingOf(readCheckpoint(files, url, head->branch.id, head->checkpoint.fileName));
  } catch (const UserError&) {
    return std::nullopt;
  }
}

// Whether the file has the content that the session last read from it or wrote to it.
bool isAsKnown(const DocumentSession& document, const FilePath& url) {
  const auto& known = document.onDisk();
  if (!known || known->path != url) return false;
  FileSystem& files = document.host().files;
  const auto info = files.info(url);
  if (!info || *info == known->info) return info.has_value();
  if (!info->isRegularFile || info->size != known->info.size) return false;
  try {
    return contentHash(files.readFile(url)) == known->contentHash;
  } catch (const FileError&) {
    return false;
  }
}

bool isElsewhere(const DocumentSession& document, const Drawing& drawing, const Replacement& replacement) {
  if (replacement.drawing != nullptr && isSameDrawing(*replacement.drawing, drawing)) return true;
  const std::optional<FilePath>& url = document.fileURL;
  if (!url) return false;
  FileSystem& files = document.host().files;
  if (replacement.writtenFile != url) {
    if (!document.isDirty() && isAsKnown(document, *url)) return true;
    const auto file = drawingAt(files, *url);
    if (file && isSameDrawing(*file, drawing)) return true;
  }
  const auto head = headDrawing(files, *url);
  return head && isSameDrawing(*head, drawing);
}

std::optional<LostDrawing> lostOpenDrawing(const DocumentSession& document, const Replacement& replacement) {
  const bool isUsers = document.isDirty() || document.fileURL->has_value();
  const Drawing& drawing = document.sketch().drawing;
  if (!isUsers || isEmpty(drawing, document.basis().wallSystemSpecs)) return std::nullopt;
  if (isElsewhere(document, drawing, replacement)) return std::nullopt;
  return LostDrawing{document.name, document.fileURL, drawing.entities.size(), document.makeDocument(false)};
}

std::optional<LostDrawing> lostFile(const DocumentSession& document, const Replacement& replacement) {
  const FilePath& url = *replacement.writtenFile;
  FileSystem& files = document.host().files;
  // What its own document held so far is what it has gone on from.
  const bool isOwn = document.fileURL.get() == url;
  if (!files.exists(url) || (isOwn && isAsKnown(document, url))) return std::nullopt;
  std::string bytes = files.readFile(url);
  LostDrawing lost{documentNameFor(url), url, 0, std::move(bytes)};
  const std::string& content = std::get<std::string>(lost.content);
  const auto drawing = drawingOf(content);
  if (!drawing) return content.empty() ? std::nullopt : std::optional(std::move(lost));
  lost.entities = drawing->entities.size();
  if (isEmpty(*drawing, document.sketch().drawing->wallSystemSpecs)) return std::nullopt;
  if (replacement.drawing != nullptr && isSameDrawing(*replacement.drawing, *drawing)) return std::nullopt;
  const auto head = headDrawing(files, url);
  if (head && isSameDrawing(*head, *drawing)) return std::nullopt;
  return lost;
}

}  // namespace

std::vector<LostDrawing> lostBy(const DocumentSession& document, const Replacement& replacement) {
  std::vector<LostDrawing> lost;
  if (replacement.writtenFile) {
    if (auto file = lostFile(document, replacement)) lost.push_back(*std::move(file));
  }
  if (replacement.replacesDrawing) {
    if (auto open = lostOpenDrawing(document, replacement)) lost.push_back(*std::move(open));
  }
  return lost;
}

}  // namespace ostrelon
