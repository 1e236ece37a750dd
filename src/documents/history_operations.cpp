// Checkpoints and branches of the open document.
#include <utility>

#include "core/sketch_view_model.h"
#include "documents/document_history.h"
#include "documents/document_paths.h"
#include "documents/document_save.h"
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

void SketchViewModel::refreshDocumentHistory() {
  const std::optional<FilePath>& url = documentFileURL;
  if (!url) {
    documentHistoryState = defaultDocumentHistoryState(std::nullopt);
    return;
  }
  try {
    documentHistoryState = loadDocumentHistory(host_.files, *url);
  } catch (const UserError&) {
    // A store that cannot be read shows as none; the commands that need it say what is wrong.
    documentHistoryState = defaultDocumentHistoryState(url->filename().string());
  }
}

DocumentCheckpoint SketchViewModel::saveCheckpoint(std::optional<std::string> message) {
  const std::optional<FilePath> url = documentFileURL;
  if (!url) throw Error(Error::Case::documentMustBeSaved);
  saveDocumentFile(*url);
  DocumentCheckpoint checkpoint =
      createCheckpoint(host_.files, *url, message.value_or(""), host_.scheduler.now(), makeDocumentV2(false));
  refreshDocumentHistory();
  return checkpoint;
}

DocumentHistoryBranch SketchViewModel::createHistoryBranch(const std::string& name,
                                                           std::optional<std::string> sourceCheckpointID) {
  const std::optional<FilePath> url = documentFileURL;
  if (!url) throw Error(Error::Case::documentMustBeSaved);
  refreshDocumentHistory();
  if (!sourceCheckpointID) {
    const DocumentHistoryBranch* current = documentHistoryState->currentBranch();
    if (current != nullptr) sourceCheckpointID = current->headCheckpointID;
    if (!sourceCheckpointID) {
      throw Error(Error::Case::branchHasNoCheckpoint, current == nullptr ? "main" : current->name);
    }
  }
  DocumentHistoryBranch branch =
      createBranch(host_.files, *url, name, *sourceCheckpointID, host_.scheduler.now());
  refreshDocumentHistory();
  return branch;
}

DocumentHistoryBranch SketchViewModel::switchBranch(const std::string& nameOrID) {
  const std::optional<FilePath> url = documentFileURL;
  if (!url) throw Error(Error::Case::documentMustBeSaved);
  if (isDocumentDirty) throw Error(Error::Case::dirtyDocument);
  checkedDocumentURL(*url);
  const auto lock = lockDocumentHistory(host_.files, *url);
  DocumentHistoryState state = loadDocumentHistory(host_.files, *url);
  const DocumentHistoryBranch* found = state.findBranch(nameOrID);
  if (found == nullptr) throw Error(Error::Case::branchNotFound, nameOrID);
  const DocumentHistoryBranch branch = *found;
  if (branch.id == state.metadata.currentBranchID) return branch;
  if (!branch.headCheckpointID) throw Error(Error::Case::branchHasNoCheckpoint, branch.name);
  const DocumentCheckpoint* head = findCheckpointOf(state, branch, *branch.headCheckpointID);
  if (head == nullptr) throw Error(Error::Case::checkpointNotFound, *branch.headCheckpointID);
  LoadedSketchDocument document =
      SketchDocumentIO::decodeDocument(readCheckpoint(host_.files, *url, branch.id, head->fileName));

  const ChangeScope scope(tracker_);
  const std::optional<DocumentOnDisk> onDisk = documentOnDisk_;
  // All that loading replaces, should the new content not reach the document's file.
  const auto putBack = [this, name = documentName.get(), held = entities.get(),
                        systems = wallSystemSpecs.get(), activeSystem = activeWallSystemSpecID.get(),
                        view = viewport.get(), grid = showGrid.get(), selection = selectedEntityIDs.get(),
                        primary = primarySelectedEntityID.get(), line = draft.get(),
                        polygon = polygonDraft.get(), drag = selectDrag.get(), marquee = selectMarquee.get(),
                        hasView = hasInitializedViewport.get(), clipboard = entityClipboard.get(),
                        stack = undoStack_, baseline = selectDragUndoBaseline.get()] {
    documentName = name;
    entities = held;
    wallSystemSpecs = systems;
    activeWallSystemSpecID = activeSystem;
    viewport = view;
    showGrid = grid;
    selectedEntityIDs = selection;
    primarySelectedEntityID = primary;
    draft = line;
    polygonDraft = polygon;
    selectDrag = drag;
    selectMarquee = marquee;
    hasInitializedViewport = hasView;
    entityClipboard = clipboard;
    undoStack_ = stack;
    tracker_.mark(n(SketchField::undoStack));
    selectDragUndoBaseline = baseline;
  };
  document.setName(documentNameFor(*url));
  applyLoadedDocument(std::move(document));
  clearUndoHistory();
  documentFileURL = *url;
  try {
    // Both are whole and on the disk before either takes its place.
    DocumentSave save(*this, *url);
    save.write(host_.files);
    const DocumentHistoryMetadata before = state.metadata;
    state.metadata.currentBranchID = branch.id;
    const auto metadata = prepareHistoryMetadata(host_.files, *url, state.metadata);
    try {
      metadata->commit();
      finishDocumentSave(save);
    } catch (...) {
      takeBackHistoryMetadata(host_.files, *url, *metadata, before);
      throw;
    }
  } catch (...) {
    putBack();
    // The new content may be in its place though it could not be made to last.
    if (documentOnDisk_ != onDisk) isDocumentDirty = true;
    throw;
  }
  refreshDocumentHistory();
  return branch;
}

std::string SketchViewModel::documentHistoryText() const {
  if (!documentFileURL->has_value()) return Error(Error::Case::documentMustBeSaved).what();
  const DocumentHistoryState& state = documentHistoryState;
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
