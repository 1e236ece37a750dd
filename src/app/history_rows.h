// All that exists of a document, as rows in groups: its file as it was saved last, the checkpoints branch by
// branch, and the drawings that were kept; apart from these, what other documents of the same folder have.
//
//   const HistoryQuery query = historyQuery(application);       // main thread
//   const HistoryGroups groups = historyGroups(files, query);   // any thread: reads no drawing
//   readHistoryDrawing(files, groups.front().rows.front().source);
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "documents/app_settings.h"
#include "documents/opened_document.h"
#include "platform/date.h"
#include "platform/file_system.h"

namespace ostrelon {

class Application;

/// Which document it is about.
struct HistoryQuery {
  std::string documentName;
  std::optional<FilePath> file;  ///< absent for a document that was never saved
  std::optional<AutoSaveRecoveryCandidate> lastAutoSave;
  FilePath keptFolder;  ///< empty where no drawings are kept
  friend bool operator==(const HistoryQuery&, const HistoryQuery&) = default;
};

/// The file of a document.
struct HistoryFile {
  FilePath path;
  friend auto operator<=>(const HistoryFile&, const HistoryFile&) = default;
};

/// A checkpoint in the history of a document's folder.
struct HistoryCheckpoint {
  FilePath document;  ///< whose folder it is
  std::string id;
  std::string branchID;
  std::string fileName;
  friend auto operator<=>(const HistoryCheckpoint&, const HistoryCheckpoint&) = default;
};

/// A drawing that was kept before it was replaced.
struct HistoryKept {
  FilePath folder;  ///< of all kept drawings
  std::string id;
  friend auto operator<=>(const HistoryKept&, const HistoryKept&) = default;
};

/// Where a row's drawing is read from. What a source names never changes, but for a file.
using HistorySource = std::variant<HistoryFile, HistoryCheckpoint, HistoryKept>;

/// One state of a drawing.
struct HistoryRow {
  std::string title;  ///< a checkpoint's message, else what it is
  std::string note;   ///< what is to be known beyond that; mostly empty
  std::optional<Date> at;
  std::string documentName;
  HistorySource source;
  friend bool operator==(const HistoryRow&, const HistoryRow&) = default;

  const HistoryCheckpoint* checkpoint() const { return std::get_if<HistoryCheckpoint>(&source); }
  const HistoryKept* kept() const { return std::get_if<HistoryKept>(&source); }
};

/// Rows that belong together, newest first; never empty.
struct HistoryGroup {
  std::string title;
  std::string note;  ///< as where a branch starts; may be empty
  std::optional<std::string> branchID;
  bool isCurrentBranch = false;
  bool isOfOtherDocument = false;
  std::vector<HistoryRow> rows;
  friend bool operator==(const HistoryGroup&, const HistoryGroup&) = default;
};

struct HistoryGroups {
  /// The file, the current branch, the others from the one that changed last, kept drawings, and in the end
  /// those of other documents in the same order.
  std::vector<HistoryGroup> groups;
  /// Why there may be more than these; empty where nothing went wrong.
  std::string failure;
  friend bool operator==(const HistoryGroups&, const HistoryGroups&) = default;
};

HistoryQuery historyQuery(const Application& application);
/// A history that cannot be read is told, and leaves the rest.
HistoryGroups historyGroups(FileSystem& files, const HistoryQuery& query);

/// The document as it was then, with no undo steps. Throws `UserError`.
OpenedDocument readHistoryDrawing(FileSystem& files, const HistorySource& source);

/// "12 walls, 3 lines, 1 polygon", the most frequent kinds first; "Nothing drawn" for none.
std::string entityCountsText(const EntityList& entities);

}  // namespace ostrelon
