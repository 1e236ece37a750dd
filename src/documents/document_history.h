// The history of documents: named checkpoints on branches, kept in a hidden folder beside the
// document files and shared by all documents of that folder.
//
//   .ostrel-history/meta.json                                 the branches, and which one is current
//   .ostrel-history/branches/ID/timeline.json                 the checkpoints of a branch
//   .ostrel-history/branches/ID/checkpoints/CHECKPOINT.ostrel one snapshot: a document without undo
//
// What is read from these files is not trusted: an identifier or a file name that is not a plain name
// of one folder or file is an error, and so is a symbolic link anywhere in the store or in its place, so that
// nothing outside the store is read or written.
//
// The operations take the URL of the document file and throw `DocumentHistoryStoreError`,
// `DocumentFileStoreError`, `DocumentFormatError` or `FileError`.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "documents/document_history_state.h"
#include "documents/sketch_document.h"
#include "platform/file_system.h"
#include "platform/user_error.h"

namespace ostrelon {

class DocumentHistoryStoreError : public UserError {
 public:
  enum class Case {
    branchAlreadyExists,
    branchNotFound,
    checkpointNotFound,
    branchHasNoCheckpoint,
    documentMustBeSaved,
    invalidBranchName,
    dirtyDocument,
  };

  /// `payload`: the name or identifier that the text quotes, for the cases that have one.
  explicit DocumentHistoryStoreError(Case which, std::string_view payload = {});
  Case which() const { return case_; }

 private:
  Case case_;
};

/// The folder name of a branch: lower case, ASCII letters and digits, all else a single "-". Throws
/// `invalidBranchName` when nothing is left.
std::string normalizeBranchID(std::string_view name);

/// The state of a document whose folder has no store.
DocumentHistoryState defaultDocumentHistoryState(std::optional<std::string> documentFileName);

DocumentHistoryState loadDocumentHistory(FileSystem& files, const FilePath& url);
/// As `loadDocumentHistory`, and makes the store when there is none.
DocumentHistoryState ensureDocumentHistory(FileSystem& files, const FilePath& url);

/// Adds a checkpoint with this snapshot to the current branch. A blank message becomes "Checkpoint n".
/// `merged`: the checkpoints that were merged into the drawing since the last one.
DocumentCheckpoint createCheckpoint(FileSystem& files, const FilePath& url, std::string_view message,
                                    Date date, const SketchDocumentV2& snapshot,
                                    std::vector<std::string> merged = {});
/// Adds a branch that starts with a copy of a checkpoint of any branch. The current branch stays.
DocumentHistoryBranch createBranch(FileSystem& files, const FilePath& url, const std::string& name,
                                   const std::string& sourceCheckpointID, Date date);

/// Where the snapshot of a checkpoint lies. Throws for names that are not plain.
FilePath checkpointURL(const FilePath& url, const std::string& branchID, const std::string& fileName);
/// The snapshot's bytes.
std::string readCheckpoint(FileSystem& files, const FilePath& url, const std::string& branchID,
                           const std::string& fileName);
/// The name of the document that a checkpoint is one of: all documents of a folder share its history. Absent
/// where the snapshot cannot be read.
std::optional<std::string> checkpointDocumentName(FileSystem& files, const FilePath& url,
                                                  const std::string& branchID, const std::string& fileName);
/// Writes `meta.json`.
void writeHistoryMetadata(FileSystem& files, const FilePath& url, const DocumentHistoryMetadata& metadata);
/// The same, up to where it takes the place of the old one.
std::unique_ptr<PendingFile> prepareHistoryMetadata(FileSystem& files, const FilePath& url,
                                                    const DocumentHistoryMetadata& metadata);
/// The way back from a change that failed half-way: puts `before` into the place that `written` has taken, if
/// it has. Reports no failure of its own, since there is one to report already.
void takeBackHistoryMetadata(FileSystem& files, const FilePath& url, const PendingFile& written,
                             const DocumentHistoryMetadata& before);
/// Held while the store is read, changed and written back, against another copy of the program.
std::unique_ptr<FileLock> lockDocumentHistory(FileSystem& files, const FilePath& url);

}  // namespace ostrelon
