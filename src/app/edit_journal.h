// Follows the workspace with a journal, one record an operation, and brings back what the journals of
// processes that have died hold.
//
// What goes wrong with the journal never stands in the way of an edit: it is told once, and the journal is
// begun anew with the next edit.
//
// What changes much of a large drawing is recorded in the turn of the event loop behind the operation, while
// the window paints and all else waits; everything else before the operation ends.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/workspace.h"
#include "documents/journal_file.h"

namespace ostrelon {

/// A journal that can be recovered, as it is offered.
struct RecoverableJournal {
  std::string id;
  std::string documentName;
  std::optional<FilePath> path;  ///< absent for a document that was never saved
  std::optional<Date> savedAt;   ///< when the document was last saved or opened
  std::optional<Date> changedAt;
  std::uint64_t changes = 0;  ///< since then
  friend bool operator==(const RecoverableJournal&, const RecoverableJournal&) = default;
};

class EditJournal {
 public:
  /// `workspace` must outlive the object. Journals lie in `folder`. Reads and writes nothing yet.
  EditJournal(Workspace& workspace, FilePath folder);
  EditJournal(const EditJournal&) = delete;
  EditJournal& operator=(const EditJournal&) = delete;
  ~EditJournal();

  /// Whether this process shows on the disk as one that lives; from then on its journals are its own.
  void holdMarker();
  /// Nothing is to be brought back: the program ends by the user's wish.
  void remove();
  /// Whether there is anything that a crash now would leave to recover.
  bool isOpen() const { return file_.isOpen() || isDue_; }
  /// Records what has not been yet and waits for the disk. Throws `FileError`.
  void sync();

  // --- What others have left

  /// The one changed last first. What is offered no more in this run is not among them.
  std::vector<RecoverableJournal> recoverable() const;
  /// The document takes the place of the open one, with unsaved changes; says so in the console. Throws
  /// `UserError`, and has changed nothing then.
  void recover(const std::string& id);
  /// Gone for good. Throws `UserError`.
  void discard(const std::string& id);
  /// Gives the drawing that recovering would bring back, and leaves the journal as it is. To be called from
  /// any thread, also after this object's end. Throws `UserError`.
  std::function<Drawing()> looking(const std::string& id) const;

 private:
  void changed();
  void recordChanges();
  /// About how many entities the next record, or the snapshot in its place, goes through.
  std::size_t sizeOfNext() const;
  void followBasis();
  bool isCaughtUp() const;
  /// What changed since the last record; absent where the undo steps are other ones altogether.
  std::optional<JournalRecord> recordOfChanges() const;
  void write(const JournalRecord& record);
  void beginAnew();
  void mark(const DocumentSave& save);
  void remember();
  void told(const std::string& failure);
  JournalState state() const;
  LeftJournal left(const std::string& id) const;

  Workspace& workspace_;
  FilePath folder_;
  JournalFile file_;
  JournalBase base_;
  std::uint64_t basisNumber_ = 0;
  std::uint64_t changes_ = 0;  // since the base's file was written
  std::uint32_t number_ = 0;   // of the last frame
  std::size_t limit_ = 0;      // the size at which the journal folds itself
  bool isIncomplete_ = false;  // a record could not be written: the next one begins with a snapshot
  bool hasTold_ = false;
  bool hasDragStep_ = false;  // something has taken a step while a drag is under way

  // What has been recorded of the workspace.
  std::string name_;
  Drawing drawing_;
  std::size_t undoCount_ = 0;
  std::size_t redoCount_ = 0;
  EntityList lastUndo_;
  SketchUndoSnapshot lastRedo_;
  std::uint64_t drawingWrites_ = 0;
  std::uint64_t undoWrites_ = 0;
  std::uint64_t nameWrites_ = 0;

  ScheduledTask later_;  // records what changed much
  bool isDue_ = false;   // … and has not yet
  Subscription subscription_;
};

}  // namespace ostrelon
