// Checkpoints and branches of the open document.
#include <algorithm>
#include <utility>

#include "documents/document_history.h"
#include "documents/document_paths.h"
#include "documents/document_save.h"
#include "documents/document_session.h"
#include "documents/drawing_loss.h"
#include "documents/opened_document.h"
#include "documents/sketch_document.h"
#include "documents/sketch_document_io.h"

namespace ostrelon {
namespace {

using Error = DocumentHistoryStoreError;

const DocumentCheckpoint* findCheckpointOf(const DocumentHistoryState& state,
                                           const DocumentHistoryBranch& branch, const std::string& id) {
  const auto checkpoints = state.checkpointsByBranch.find(branch.id);
  if (checkpoints == state.checkpointsByBranch.end()) return nullptr;
  for (const DocumentCheckpoint& checkpoint : checkpoints->second) {
    if (checkpoint.id == id) return &checkpoint;
  }
  return nullptr;
}

}  // namespace

void DocumentSession::refreshHistory() {
  const std::optional<FilePath>& url = fileURL;
  if (!url) {
    history = defaultDocumentHistoryState(std::nullopt);
    return;
  }
  try {
    history = loadDocumentHistory(host_.files, *url);
  } catch (const UserError&) {
    // A store that cannot be read shows as none; the commands that need it say what is wrong.
    history = defaultDocumentHistoryState(url->filename().string());
  }
}

DocumentCheckpoint DocumentSession::saveCheckpoint(const std::optional<std::string>& message) {
  const std::optional<FilePath> url = fileURL;
  if (!url) throw Error(Error::Case::documentMustBeSaved);
  save(*url);
  DocumentCheckpoint checkpoint;
  sketch_.work(sketch_.entities().size(), [&, document = makeDocument(false), merged = mergedCheckpoints(),
                                           now = host_.scheduler.now()] {
    checkpoint = createCheckpoint(host_.files, *url, message.value_or(""), now, document, merged);
  });
  unrecordedMerges_.clear();
  refreshHistory();
  return checkpoint;
}

DocumentHistoryBranch DocumentSession::createBranch(const std::string& branchName,
                                                    std::optional<std::string> sourceCheckpointID) {
  const std::optional<FilePath> url = fileURL;
  if (!url) throw Error(Error::Case::documentMustBeSaved);
  refreshHistory();
  if (!sourceCheckpointID) {
    const DocumentHistoryBranch* current = history->currentBranch();
    if (current != nullptr) sourceCheckpointID = current->headCheckpointID;
    if (!sourceCheckpointID) {
      throw Error(Error::Case::branchHasNoCheckpoint, current == nullptr ? "main" : current->name);
    }
  }
  DocumentHistoryBranch branch =
      ostrelon::createBranch(host_.files, *url, branchName, *sourceCheckpointID, host_.scheduler.now());
  refreshHistory();
  return branch;
}

DocumentHistoryBranch DocumentSession::switchBranch(const std::string& nameOrID) {
  const std::optional<FilePath> url = fileURL;
  if (!url) throw Error(Error::Case::documentMustBeSaved);
  if (isDirty()) throw Error(Error::Case::dirtyDocument);
  checkedDocumentURL(*url);
  const auto lock = lockDocumentHistory(host_.files, *url);
  const DocumentHistoryState state = loadDocumentHistory(host_.files, *url);
  const DocumentHistoryBranch* found = state.findBranch(nameOrID);
  if (found == nullptr) throw Error(Error::Case::branchNotFound, nameOrID);
  DocumentHistoryBranch branch = *found;
  if (branch.id == state.metadata.currentBranchID) return branch;
  if (!branch.headCheckpointID) throw Error(Error::Case::branchHasNoCheckpoint, branch.name);
  const DocumentCheckpoint* head = findCheckpointOf(state, branch, *branch.headCheckpointID);
  if (head == nullptr) throw Error(Error::Case::checkpointNotFound, *branch.headCheckpointID);

  // The new document is a value until both files are in their places; only then is it shown.
  OpenedDocument next;
  sketch_.work(Sketch::kUnknownSize, [&] {
    next = openedDocument(
        SketchDocumentIO::decodeDocument(readCheckpoint(host_.files, *url, branch.id, head->fileName)),
        sketch_.drawing);
  });
  next.name = documentNameFor(*url);
  next.undo.clear();
  keepWhatIsLost(
      {.reason = "Switched to branch " + branch.name, .drawing = &next.drawing, .writtenFile = *url});
  writeSwitched(*url, next, state.metadata, branch.id);
  sketch_.prepareFor(next.drawing.entities);

  const auto scope = change();
  adopt(std::move(next));
  fileURL = *url;
  sketch_.setDirty(false);
  lastSavedAt = host_.scheduler.now();
  refreshHistory();
  return branch;
}

std::optional<std::string> DocumentSession::otherDocumentAtHead(const std::string& nameOrID) const {
  const std::optional<FilePath>& url = fileURL;
  if (!url) return std::nullopt;
  try {
    const DocumentHistoryState state = loadDocumentHistory(host_.files, *url);
    const DocumentHistoryBranch* branch = state.findBranch(nameOrID);
    if (branch == nullptr || !branch->headCheckpointID) return std::nullopt;
    const DocumentCheckpoint* head = findCheckpointOf(state, *branch, *branch->headCheckpointID);
    if (head == nullptr) return std::nullopt;
    auto other = checkpointDocumentName(host_.files, *url, branch->id, head->fileName);
    if (other == *name) return std::nullopt;
    return other;
  } catch (const UserError&) {
    return std::nullopt;  // the switch itself says what is wrong
  }
}

void DocumentSession::writeSwitched(const FilePath& url, const OpenedDocument& next,
                                    const DocumentHistoryMetadata& before, const std::string& branchID) {
  // Both are complete and synchronized by fsync before either takes its place.
  DocumentSave save(url, documentOf(next.name, next.drawing, next.viewport));
  sketch_.work(next.drawing.entities.size(), [&] { save.write(host_.files); });
  DocumentHistoryMetadata after = before;
  after.currentBranchID = branchID;
  const auto metadata = prepareHistoryMetadata(host_.files, url, after);
  const std::optional<DocumentOnDisk> onDisk = onDisk_;
  try {
    metadata->commit();
    putInPlace(save);
  } catch (...) {
    takeBackHistoryMetadata(host_.files, url, *metadata, before);
    // The new content may be in its place though the fsync of its folder failed.
    if (onDisk_ != onDisk) sketch_.setDirty(true);
    throw;
  }
}

void DocumentSession::takeMerged(const Drawing& merged, const std::optional<std::string>& checkpointID) {
  const auto scope = change();
  Drawing taken = merged;
  taken.entities = EntityList::fromChunks(merged.entities.chunks(), merged.entities);
  if (checkpointID) unrecordedMerges_.push_back({*checkpointID, taken.entities});
  sketch_.edit([&](Drawing& drawing) { drawing = std::move(taken); });
  sketch_.keepSelectionOfEntities();
}

std::vector<std::string> DocumentSession::mergedCheckpoints() const {
  std::vector<std::string> ids;
  const auto isIn = [&](const EntityList& merged) {
    if (merged.sharesAllStorage(sketch_.entities())) return true;
    const auto& steps = sketch_.undoStack->undoSnapshots();
    return std::any_of(steps.begin(), steps.end(), [&](const SketchUndoSnapshot& step) {
      return merged.sharesAllStorage(step.entities);
    });
  };
  // A file that was saved before its checkpoint still tells what that has recorded.
  const DocumentHistoryBranch* current = history->currentBranch();
  const auto isRecorded = [&](const std::string& id) {
    return current != nullptr && current->headCheckpointID &&
           history->nearestCommonAncestor({*current->headCheckpointID}, id) == id;
  };
  for (const UnrecordedMerge& merge : unrecordedMerges_) {
    if (!merge.merged.empty() && isIn(merge.merged) && !isRecorded(merge.checkpointID)) {
      ids.push_back(merge.checkpointID);
    }
  }
  return ids;
}

std::string DocumentSession::historyText() const {
  if (!fileURL->has_value()) return Error(Error::Case::documentMustBeSaved).what();
  const DocumentHistoryState& state = history;
  if (state.allCheckpoints().empty()) {
    return "No checkpoints yet. Use checkpoint <message> to save one.";
  }
  const DocumentHistoryBranch* current = state.currentBranch();
  std::string text = "Current branch: " + (current == nullptr ? std::string("main") : current->name);
  for (const DocumentHistoryBranch& branch : state.metadata.branches) {
    text += branch.id == state.metadata.currentBranchID ? "\n* " : "\n  ";
    text += branch.name;
    const auto checkpoints = state.checkpointsByBranch.find(branch.id);
    if (checkpoints == state.checkpointsByBranch.end()) continue;
    for (const DocumentCheckpoint& checkpoint : checkpoints->second) {
      text += "\n    " + checkpoint.id + " — " + checkpoint.message;
    }
  }
  return text;
}

}  // namespace ostrelon
