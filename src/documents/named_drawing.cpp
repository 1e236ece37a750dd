#include "documents/named_drawing.h"

#include <fmt/format.h>

#include <utility>

#include "documents/document_history.h"
#include "documents/document_paths.h"
#include "documents/opened_document.h"
#include "documents/sketch_document_io.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr std::string_view kCheckpointPrefix = "cp-";
constexpr std::uint64_t kLargeFile = 2 << 20;  // bytes
constexpr std::uint64_t kManyEntities = 20'000;

bool isLargeFile(FileSystem& files, const FilePath& path) {
  const auto info = files.info(path);
  return info && info->size > kLargeFile;
}

Drawing drawingOf(std::string bytes) {
  return openedDocument(SketchDocumentIO::decodeDocument(std::move(bytes)), Drawing()).drawing;
}

DrawingSource sourceOf(const DocumentSession& document, std::string name,
                       const DocumentHistoryState::FoundCheckpoint& found) {
  FileSystem& files = document.host().files;
  const FilePath url = **document.fileURL;
  const std::string branch = found.branch.id;
  const std::string file = found.checkpoint.fileName;
  return {std::move(name), found.checkpoint.id, isLargeFile(files, checkpointURL(url, branch, file)),
          [&files, url, branch, file] { return drawingOf(readCheckpoint(files, url, branch, file)); }};
}

// All documents of a folder share one history, so a checkpoint may be of another drawing altogether: nothing
// of it is left in ours then.
bool hasComeFrom(const Drawing& drawing, const Drawing& ancestor) {
  if (drawing.entities.empty() || ancestor.entities.empty()) return true;
  const DrawingDifference difference = compareDrawings(ancestor, drawing, NumberPrecision::asInFiles);
  return difference.removed.size() < ancestor.entities.size();
}

std::optional<DrawingSource> checkpointSource(const DocumentSession& document, const std::string& name) {
  if (!document.fileURL->has_value()) return std::nullopt;
  using Error = DocumentHistoryStoreError;
  const DocumentHistoryState state = loadDocumentHistory(document.host().files, **document.fileURL);
  if (const DocumentHistoryBranch* branch = state.findBranch(name)) {
    if (!branch->headCheckpointID) {
      throw UserError("Branch " + branch->name + " does not have a checkpoint yet.");
    }
    const auto head = state.findCheckpoint(*branch->headCheckpointID);
    if (!head) throw Error(Error::Case::checkpointNotFound, *branch->headCheckpointID);
    return sourceOf(document, "branch " + branch->name, *head);
  }
  const std::string beginning = lowerCased(name);
  if (!beginning.starts_with(kCheckpointPrefix) || beginning.size() == kCheckpointPrefix.size()) {
    return std::nullopt;
  }
  const auto found = state.findCheckpoints(beginning);
  if (found.size() > 1) {
    throw UserError(fmt::format("{} checkpoints begin with {}; give more of it.", found.size(), name));
  }
  if (found.empty()) return std::nullopt;
  return sourceOf(document, found.front().checkpoint.id, found.front());
}

// "kept 2", by its number among the kept drawings, the newest first, or by its identifier.
std::optional<DrawingSource> keptSource(const DocumentSession& document, const std::string& name) {
  constexpr std::string_view kPrefix = "kept ";
  const std::optional<KeptDrawings>& store = document.keptIn();
  if (!store || !lowerCased(name).starts_with(kPrefix)) return std::nullopt;
  const std::string wanted(trimmed(name.substr(kPrefix.size())));
  const std::vector<KeptDrawing> all = store->list();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (wanted != std::to_string(i + 1) && wanted != all[i].id) continue;
    return keptDrawingSource(*store, all[i]);
  }
  return std::nullopt;
}

}  // namespace

Drawing drawingOfFile(FileSystem& files, const FilePath& path) { return drawingOf(files.readFile(path)); }

DrawingSource fileDrawingSource(FileSystem& files, const FilePath& path) {
  return {path.filename().string(), std::nullopt, isLargeFile(files, path),
          [&files, path] { return drawingOfFile(files, path); }};
}

DrawingSource keptDrawingSource(const KeptDrawings& store, const KeptDrawing& kept) {
  return {"kept drawing " + kept.name, std::nullopt, kept.entities > kManyEntities,
          [store, id = kept.id] { return drawingOf(store.read(id)); }};
}

DrawingSource drawingSource(const DocumentSession& document, std::string_view name) {
  const std::string wanted(trimmed(name));
  if (auto found = checkpointSource(document, wanted)) return *std::move(found);
  if (auto found = keptSource(document, wanted)) return *std::move(found);
  FileSystem& files = document.host().files;
  FilePath path = standardizedPath(document.documentsFolder() / wanted);
  if (!hasDocumentExtension(path)) path += kDocumentExtension;
  if (wanted.empty() || !files.exists(path)) {
    throw UserError(fmt::format("There is no branch, checkpoint or document named \"{}\".", wanted));
  }
  return fileDrawingSource(files, path);
}

NamedDrawing namedDrawing(const DocumentSession& document, std::string_view name) {
  const DrawingSource source = drawingSource(document, name);
  return {source.name, source.read(), source.checkpointID};
}

MergeOutcome mergeIntoDocument(DocumentSession& document, const NamedDrawing& theirs,
                               std::optional<MergeChoice> choice) {
  std::optional<Drawing> base;
  if (theirs.checkpointID) {
    const DocumentHistoryState state = loadDocumentHistory(document.host().files, **document.fileURL);
    std::vector<std::string> ours = document.mergedCheckpoints();
    const DocumentHistoryBranch* current = state.currentBranch();
    if (current != nullptr && current->headCheckpointID) ours.push_back(*current->headCheckpointID);
    const auto ancestor = state.nearestCommonAncestor(ours, *theirs.checkpointID);
    if (ancestor) base = sourceOf(document, *ancestor, *state.findCheckpoint(*ancestor)).read();
    if (base && !hasComeFrom(document.sketch().drawing, *base)) base.reset();
  }
  const Drawing ours = document.sketch().drawing;
  const Merge merge =
      mergeDrawings(base ? &*base : nullptr, ours, theirs.drawing, NumberPrecision::asInFiles);
  const Drawing merged =
      mergedDrawing(merge, ours, [&](const MergeConflict&) { return choice.value_or(MergeChoice::ours); });
  MergeOutcome outcome{compareDrawings(ours, merged), merge.conflicts, false};
  if (merge.empty() || (!merge.conflicts.empty() && !choice)) return outcome;
  document.takeMerged(merged, theirs.checkpointID);
  outcome.isDone = true;
  return outcome;
}

}  // namespace ostrelon
