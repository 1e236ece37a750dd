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
constexpr std::string_view kKeptPrefix = "kept ";
constexpr std::uint64_t kLargeFile = 2 << 20;  // bytes
constexpr std::uint64_t kManyEntities = 20'000;

bool isLargeFile(FileSystem& files, const FilePath& path) {
  const auto info = files.info(path);
  return info && info->size > kLargeFile;
}

Drawing drawingOf(std::string bytes) {
  return openedDocument(SketchDocumentIO::decodeDocument(std::move(bytes)), Drawing()).drawing;
}

DrawingSource sourceOf(const NamedPlaces& places, std::string name,
                       const DocumentHistoryState::FoundCheckpoint& found) {
  FileSystem& files = *places.files;
  const FilePath url = *places.document;
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

std::optional<DrawingSource> checkpointSource(const NamedPlaces& places, const std::string& name) {
  if (!places.document) return std::nullopt;
  using Error = DocumentHistoryStoreError;
  const DocumentHistoryState state = loadDocumentHistory(*places.files, *places.document);
  if (const DocumentHistoryBranch* branch = state.findBranch(name)) {
    if (!branch->headCheckpointID) {
      throw UserError("Branch " + branch->name + " does not have a checkpoint yet.");
    }
    const auto head = state.findCheckpoint(*branch->headCheckpointID);
    if (!head) throw Error(Error::Case::checkpointNotFound, *branch->headCheckpointID);
    return sourceOf(places, "branch " + branch->name, *head);
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
  DrawingSource source = sourceOf(places, found.front().checkpoint.id, found.front());
  source.title = "“" + found.front().checkpoint.message + "”";
  return source;
}

// "kept 2", by its number among the kept drawings, the newest first, or by its identifier.
std::optional<DrawingSource> keptSource(const NamedPlaces& places, const std::string& name) {
  if (!places.kept || !lowerCased(name).starts_with(kKeptPrefix)) return std::nullopt;
  const std::string wanted(trimmed(name.substr(kKeptPrefix.size())));
  const std::vector<KeptDrawing> all = places.kept->list();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (wanted == std::to_string(i + 1) || wanted == all[i].id) {
      return keptDrawingSource(*places.kept, all[i]);
    }
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

NamedPlaces namedPlaces(const DocumentSession& document) {
  return {&document.host().files, document.fileURL, document.documentsFolder(), document.keptIn()};
}

DrawingSource drawingSource(const NamedPlaces& places, std::string_view name) {
  const std::string wanted(trimmed(name));
  if (auto found = checkpointSource(places, wanted)) return *std::move(found);
  if (auto found = keptSource(places, wanted)) return *std::move(found);
  FilePath path = standardizedPath(places.documentsFolder / wanted);
  if (!hasDocumentExtension(path)) path += kDocumentExtension;
  if (wanted.empty() || !places.files->exists(path)) {
    throw UserError(fmt::format("There is no branch, checkpoint or document named \"{}\".", wanted));
  }
  return fileDrawingSource(*places.files, path);
}

DrawingSource drawingSource(const DocumentSession& document, std::string_view name) {
  return drawingSource(namedPlaces(document), name);
}

NamedDrawing namedDrawing(const DrawingSource& source) {
  return {source.name, source.read(), source.checkpointID, source.title};
}

NamedDrawing namedDrawing(const DocumentSession& document, std::string_view name) {
  return namedDrawing(drawingSource(document, name));
}

std::optional<Drawing> commonAncestor(const NamedPlaces& places, const Drawing& ours,
                                      std::vector<std::string> merged, const NamedDrawing& theirs) {
  if (!theirs.checkpointID || !places.document) return std::nullopt;
  const DocumentHistoryState state = loadDocumentHistory(*places.files, *places.document);
  const DocumentHistoryBranch* current = state.currentBranch();
  if (current != nullptr && current->headCheckpointID) merged.push_back(*current->headCheckpointID);
  const auto ancestor = state.nearestCommonAncestor(merged, *theirs.checkpointID);
  if (!ancestor) return std::nullopt;
  Drawing base = sourceOf(places, *ancestor, *state.findCheckpoint(*ancestor)).read();
  if (!hasComeFrom(ours, base)) return std::nullopt;
  return base;
}

MergeOutcome mergeIntoDocument(DocumentSession& document, const NamedDrawing& theirs,
                               std::optional<MergeChoice> choice) {
  const Drawing ours = document.sketch().drawing;
  const auto base = commonAncestor(namedPlaces(document), ours, document.mergedCheckpoints(), theirs);
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
