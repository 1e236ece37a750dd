#include "documents/document_history.h"

#include <utility>

#include "documents/document_name.h"
#include "documents/document_paths.h"
#include "documents/history_files.h"
#include "documents/sketch_document_io.h"
#include "platform/file_beginning.h"
#include "platform/unicode.h"
#include "platform/uuid.h"

namespace ostrelon {
namespace {

using Case = DocumentHistoryStoreError::Case;

constexpr std::size_t kShortIDLength = 11;  // characters of an identifier in a branch's first message

std::string errorText(Case which, std::string_view payload) {
  const std::string quoted(payload);
  switch (which) {
    case Case::branchAlreadyExists:
      return "A branch named " + quoted + " already exists.";
    case Case::branchNotFound:
      return "No branch named " + quoted + " exists.";
    case Case::checkpointNotFound:
      return "No checkpoint named " + quoted + " exists.";
    case Case::branchHasNoCheckpoint:
      return "Branch " + quoted + " does not have a checkpoint to switch to.";
    case Case::documentMustBeSaved:
      return "Save the document before using checkpoints.";
    case Case::invalidBranchName:
      return "Branch name must include at least one letter or number.";
    case Case::dirtyDocument:
      return "Save or checkpoint current changes before switching branches.";
  }
  return {};
}

FilePath storeFolder(const FilePath& url) { return standardizedPath(url).parent_path() / ".ostrel-history"; }
FilePath metadataURL(const FilePath& url) { return storeFolder(url) / "meta.json"; }

FilePath branchFolder(const FilePath& url, const std::string& branchID) {
  if (!isPlainName(branchID)) {
    throw DocumentFormatError("The history is damaged: the branch " + branchID +
                              " leads out of the history folder.");
  }
  return storeFolder(url) / "branches" / branchID;
}

FilePath timelineURL(const FilePath& url, const std::string& branchID) {
  return branchFolder(url, branchID) / "timeline.json";
}

// The path of a file of the store, after checking that no link leads out of the store.
FilePath checkedForLinks(FileSystem& files, const FilePath& url, FilePath inStore) {
  const FilePath folder = storeFolder(url).parent_path();
  FilePath part = folder;
  for (const FilePath& name : inStore.lexically_relative(folder)) {
    part /= name;
    if (files.isLink(part)) {
      throw DocumentFormatError("The history is damaged: " + quotedName(part) +
                                " is a link that leads out of the history folder.");
    }
  }
  return inStore;
}

void writeTimeline(FileSystem& files, const FilePath& url, const std::string& branchID,
                   const std::vector<DocumentCheckpoint>& checkpoints) {
  const FilePath timeline = checkedForLinks(files, url, timelineURL(url, branchID));
  files.createFolders(timeline.parent_path());
  files.writeFile(timeline, encodeBranchTimeline({branchID, checkpoints}));
}

std::string newCheckpointID() { return "cp-" + lowerCased(UUID::random().text()); }

std::string firstCharacters(const std::string& text, std::size_t count) {
  std::size_t end = 0;
  for (; end < text.size(); ++end) {
    const bool continuesCharacter = (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U;
    if (!continuesCharacter && count-- == 0) break;
  }
  return text.substr(0, end);
}

}  // namespace

DocumentHistoryStoreError::DocumentHistoryStoreError(Case which, std::string_view payload)
    : UserError(errorText(which, payload)), case_(which) {}

std::string normalizeBranchID(std::string_view name) {
  std::string id;
  for (const char byte : lowerCased(trimmed(name))) {
    const bool isKept = (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9');
    if (isKept) {
      id += byte;
    } else if (!id.empty() && id.back() != '-') {
      id += '-';
    }
  }
  if (!id.empty() && id.back() == '-') id.pop_back();
  if (id.empty()) throw DocumentHistoryStoreError(Case::invalidBranchName);
  return id;
}

DocumentHistoryState defaultDocumentHistoryState(std::optional<std::string> documentFileName) {
  DocumentHistoryState state;
  state.metadata.documentFileName = std::move(documentFileName);
  return state;
}

DocumentHistoryState loadDocumentHistory(FileSystem& files, const FilePath& url) {
  const FilePath path = checkedDocumentURL(url);
  const FilePath metadata = checkedForLinks(files, path, metadataURL(path));
  if (!files.exists(metadata)) return defaultDocumentHistoryState(path.filename().string());
  DocumentHistoryState state;
  state.metadata = decodeHistoryMetadata(files.readFile(metadata));
  state.checkpointsByBranch.clear();
  for (const DocumentHistoryBranch& branch : state.metadata.branches) {
    const FilePath timeline = checkedForLinks(files, path, timelineURL(path, branch.id));
    state.checkpointsByBranch[branch.id] = files.exists(timeline)
                                               ? decodeBranchTimeline(files.readFile(timeline)).checkpoints
                                               : std::vector<DocumentCheckpoint>();
  }
  return state;
}

DocumentHistoryState ensureDocumentHistory(FileSystem& files, const FilePath& url) {
  DocumentHistoryState state = loadDocumentHistory(files, url);
  if (files.exists(metadataURL(url))) return state;
  files.createFolders(storeFolder(url));
  writeHistoryMetadata(files, url, state.metadata);
  writeTimeline(files, url, state.metadata.currentBranchID, {});
  return loadDocumentHistory(files, url);
}

DocumentCheckpoint createCheckpoint(FileSystem& files, const FilePath& url, std::string_view message,
                                    Date date, const SketchDocumentV2& snapshot,
                                    std::vector<std::string> merged) {
  const FilePath path = checkedDocumentURL(url);
  files.createFolders(storeFolder(path));
  const auto lock = lockDocumentHistory(files, path);
  DocumentHistoryState state = ensureDocumentHistory(files, path);

  DocumentCheckpoint checkpoint;
  checkpoint.id = newCheckpointID();
  checkpoint.message = trimmed(message);
  if (checkpoint.message.empty()) {
    checkpoint.message = "Checkpoint " + std::to_string(state.allCheckpoints().size() + 1);
  }
  checkpoint.createdAt = date;
  checkpoint.fileName = checkpoint.id + kDocumentExtension;
  checkpoint.mergedCheckpointIDs = std::move(merged);

  const std::string& branchID = state.metadata.currentBranchID;
  const FilePath target = checkedForLinks(files, path, checkpointURL(path, branchID, checkpoint.fileName));
  files.createFolders(target.parent_path());
  if (files.exists(target)) {
    throw FileError("Could not write " + quotedName(target) + ": a file of that name is there.");
  }
  files.writeFile(
      target, [&](const FileSystem::Writer& write) { SketchDocumentIO::encodeDocument(snapshot, write); });

  state.checkpointsByBranch[branchID].push_back(checkpoint);
  for (DocumentHistoryBranch& branch : state.metadata.branches) {
    if (branch.id != branchID) continue;
    branch.headCheckpointID = checkpoint.id;
    break;
  }
  writeTimeline(files, path, branchID, state.checkpointsByBranch[branchID]);
  writeHistoryMetadata(files, path, state.metadata);
  return checkpoint;
}

DocumentHistoryBranch createBranch(FileSystem& files, const FilePath& url, const std::string& name,
                                   const std::string& sourceCheckpointID, Date date) {
  const FilePath path = checkedDocumentURL(url);
  files.createFolders(storeFolder(path));
  const auto lock = lockDocumentHistory(files, path);
  DocumentHistoryState state = ensureDocumentHistory(files, path);

  const std::string id = normalizeBranchID(name);
  if (state.findBranch(id) != nullptr || state.findBranch(name) != nullptr) {
    throw DocumentHistoryStoreError(Case::branchAlreadyExists, name);
  }
  const auto source = state.findCheckpoint(sourceCheckpointID);
  if (!source) throw DocumentHistoryStoreError(Case::checkpointNotFound, sourceCheckpointID);

  DocumentCheckpoint first;
  first.id = newCheckpointID();
  first.message = "Branch " + name + " from " + firstCharacters(source->checkpoint.id, kShortIDLength);
  first.createdAt = date;
  first.fileName = first.id + kDocumentExtension;
  first.sourceCheckpointID = source->checkpoint.id;

  const FilePath target = checkedForLinks(files, path, checkpointURL(path, id, first.fileName));
  const FilePath copied = checkpointURL(path, source->branch.id, source->checkpoint.fileName);
  files.createFolders(target.parent_path());
  files.copyFile(checkedForLinks(files, path, copied), target);

  DocumentHistoryBranch branch;
  branch.id = id;
  branch.name = trimmed(name);
  branch.createdAt = date;
  branch.sourceCheckpointID = source->checkpoint.id;
  branch.headCheckpointID = first.id;
  state.metadata.branches.push_back(branch);
  writeTimeline(files, path, id, {first});
  writeHistoryMetadata(files, path, state.metadata);
  return branch;
}

FilePath checkpointURL(const FilePath& url, const std::string& branchID, const std::string& fileName) {
  if (!isPlainName(fileName)) {
    throw DocumentFormatError("The history is damaged: the file " + fileName +
                              " leads out of the history folder.");
  }
  return branchFolder(url, branchID) / "checkpoints" / fileName;
}

std::string readCheckpoint(FileSystem& files, const FilePath& url, const std::string& branchID,
                           const std::string& fileName) {
  return files.readFile(checkedForLinks(files, url, checkpointURL(url, branchID, fileName)));
}

std::optional<std::string> checkpointDocumentName(FileSystem& files, const FilePath& url,
                                                  const std::string& branchID, const std::string& fileName) {
  try {
    const FilePath snapshot = checkedForLinks(files, url, checkpointURL(url, branchID, fileName));
    if (auto name = documentNameIn(readBeginning(files, snapshot, kDocumentNameReach))) return name;
    return documentNameIn(files.readFile(snapshot));
  } catch (const UserError&) {
    return std::nullopt;
  }
}

void writeHistoryMetadata(FileSystem& files, const FilePath& url, const DocumentHistoryMetadata& metadata) {
  prepareHistoryMetadata(files, url, metadata)->commit();
}

std::unique_ptr<PendingFile> prepareHistoryMetadata(FileSystem& files, const FilePath& url,
                                                    const DocumentHistoryMetadata& metadata) {
  return files.prepareFile(checkedForLinks(files, url, metadataURL(url)),
                           [&](const FileSystem::Writer& write) { write(encodeHistoryMetadata(metadata)); });
}

void takeBackHistoryMetadata(FileSystem& files, const FilePath& url, const PendingFile& written,
                             const DocumentHistoryMetadata& before) {
  if (files.info(metadataURL(url)) != written.info()) return;
  try {
    writeHistoryMetadata(files, url, before);
  } catch (const UserError&) {
    return;
  }
}

std::unique_ptr<FileLock> lockDocumentHistory(FileSystem& files, const FilePath& url) {
  return files.lock(storeFolder(url));
}

}  // namespace ostrelon
