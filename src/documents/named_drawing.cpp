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

Drawing drawingOf(std::string bytes) {
  return openedDocument(SketchDocumentIO::decodeDocument(std::move(bytes)), Drawing()).drawing;
}

NamedDrawing drawingOf(const DocumentSession& document, std::string name,
                       const DocumentHistoryState::FoundCheckpoint& found) {
  std::string bytes =
      readCheckpoint(document.host().files, **document.fileURL, found.branch.id, found.checkpoint.fileName);
  return {std::move(name), drawingOf(std::move(bytes)), found.checkpoint.id};
}

// All documents of a folder share one history, so a checkpoint may be of another drawing altogether: nothing
// of it is left in ours then.
bool hasComeFrom(const Drawing& drawing, const Drawing& ancestor) {
  if (drawing.entities.empty() || ancestor.entities.empty()) return true;
  const DrawingDifference difference = compareDrawings(ancestor, drawing, NumberPrecision::asInFiles);
  return difference.removed.size() < ancestor.entities.size();
}

std::optional<NamedDrawing> checkpointDrawing(const DocumentSession& document, const std::string& name) {
  if (!document.fileURL->has_value()) return std::nullopt;
  using Error = DocumentHistoryStoreError;
  const DocumentHistoryState state = loadDocumentHistory(document.host().files, **document.fileURL);
  if (const DocumentHistoryBranch* branch = state.findBranch(name)) {
    if (!branch->headCheckpointID) {
      throw UserError("Branch " + branch->name + " does not have a checkpoint yet.");
    }
    const auto head = state.findCheckpoint(*branch->headCheckpointID);
    if (!head) throw Error(Error::Case::checkpointNotFound, *branch->headCheckpointID);
    return drawingOf(document, "branch " + branch->name, *head);
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
  return drawingOf(document, found.front().checkpoint.id, found.front());
}

// "kept 2", by its number among the kept drawings, the newest first, or by its identifier.
std::optional<NamedDrawing> keptDrawing(const DocumentSession& document, const std::string& name) {
  constexpr std::string_view kPrefix = "kept ";
  if (!lowerCased(name).starts_with(kPrefix)) return std::nullopt;
  const std::string wanted(trimmed(name.substr(kPrefix.size())));
  const std::vector<KeptDrawing> all = document.keptDrawings();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (wanted != std::to_string(i + 1) && wanted != all[i].id) continue;
    return NamedDrawing{"kept drawing " + all[i].name, document.keptDrawing(all[i].id), std::nullopt};
  }
  return std::nullopt;
}

}  // namespace

Drawing drawingOfFile(FileSystem& files, const FilePath& path) { return drawingOf(files.readFile(path)); }

NamedDrawing namedDrawing(const DocumentSession& document, std::string_view name) {
  const std::string wanted(trimmed(name));
  if (auto found = checkpointDrawing(document, wanted)) return *std::move(found);
  if (auto found = keptDrawing(document, wanted)) return *std::move(found);
  FileSystem& files = document.host().files;
  FilePath path = standardizedPath(document.documentsFolder() / wanted);
  if (!hasDocumentExtension(path)) path += kDocumentExtension;
  if (wanted.empty() || !files.exists(path)) {
    throw UserError(fmt::format("There is no branch, checkpoint or document named \"{}\".", wanted));
  }
  return {path.filename().string(), drawingOfFile(files, path), std::nullopt};
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
    if (ancestor) base = drawingOf(document, *ancestor, *state.findCheckpoint(*ancestor)).drawing;
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
