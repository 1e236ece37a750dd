// The journal of a document: what has been edited since it was last saved, record by record, so that a
// program that dies loses no more than the edit in progress. Pure functions from values to bytes and back;
// journal_file.h puts them on the disk.
//
//   OSTRELON JOURNAL 2
//   frame: the base           what the records go out from: a file by its path and content, or a snapshot
//   frame: a record           one operation: what it changed, and what it did to the undo steps
//   frame: a mark             the document, as it stands here, is about to take its file's place
//   …
//
// A frame is its length, a check of the length and of its number in the file, the hash of its bytes, and the
// bytes; all little-endian. A last frame that is not whole is what a crash has torn, and is passed over; any
// other that does not check out ends the journal there.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/drawing.h"
#include "core/entity_list.h"
#include "core/undo_stack.h"
#include "platform/date.h"
#include "platform/file_system.h"

namespace ostrelon {

/// What a journal follows of an open document.
struct JournalState {
  std::string name;
  Drawing drawing;
  SketchUndoStack undo;
};

/// What the records go out from.
struct JournalBase {
  /// The file of the document, as it was when the base was taken.
  struct File {
    FilePath path;
    std::uint64_t contentHash = 0;
    std::optional<Date> savedAt;
    friend bool operator==(const File&, const File&) = default;
  };
  /// The drawing itself, where no file holds it.
  struct Snapshot {
    EntityList entities;
    std::vector<SketchUndoSnapshot> undo;  ///< oldest first
    friend bool operator==(const Snapshot&, const Snapshot&) = default;
  };

  std::optional<File> file;
  std::optional<Snapshot> snapshot;  ///< absent where the file is the base
  std::string name;
  std::uint64_t entityCount = 0;
  std::vector<WallSystemSpec> wallSystemSpecs;
  UUID activeWallSystemSpecID;
  bool showGrid = true;
  Plan plan = {};
  /// How many changes since the last save the snapshot holds already, and when the last of them was.
  std::uint64_t changes = 0;
  std::optional<Date> changedAt;
  friend bool operator==(const JournalBase&, const JournalBase&) = default;
};

/// What an operation did to the undo steps.
enum class JournalStep : std::uint8_t { none, edit, undo, redo };

/// An undo step, by how it differs from the drawing in front of the operation that took it.
struct JournalUndoStep {
  std::vector<EntitySplice> entities;
  std::optional<PlanChange> plan;             ///< absent where the step takes back none
  std::vector<WallSystemChange> wallSystems;  ///< what it changed of them
  friend bool operator==(const JournalUndoStep&, const JournalUndoStep&) = default;
};
/// `before`: the drawing in front of the operation.
JournalUndoStep journalStepOf(const SketchUndoSnapshot& step, const Drawing& before);

/// One operation. It holds what changed alone.
struct JournalRecord {
  Date at;
  std::vector<EntitySplice> entities;
  JournalStep step = JournalStep::none;
  std::vector<JournalUndoStep> steps;  ///< of an edit, those that it took, oldest first
  std::optional<std::string> name;
  std::optional<bool> showGrid;
  std::optional<std::vector<WallSystemSpec>> wallSystemSpecs;
  std::optional<UUID> activeWallSystemSpecID;
  std::optional<PlanChange> plan;

  bool empty() const;
  /// Whether it changes what a document's file holds, beyond the system that new walls take.
  bool isChange() const;
  friend bool operator==(const JournalRecord&, const JournalRecord&) = default;
};

/// Everything up to here is in the file, if its content has this hash.
struct JournalSaveMark {
  FilePath path;
  std::uint64_t contentHash = 0;
  friend bool operator==(const JournalSaveMark&, const JournalSaveMark&) = default;
};

using JournalEntry = std::variant<JournalRecord, JournalSaveMark>;

// --- Writing

/// The beginning of a journal: its first line and the base.
std::string journalStart(const JournalBase& base);
/// The frame of an entry. `number`: 1 for the first behind the base.
std::string journalFrame(const JournalEntry& entry, std::uint32_t number);
/// The base of a state that no file holds. `before`: the base whose file and changes it takes over.
JournalBase journalSnapshot(const JournalState& state, const JournalBase& before);

// --- Reading

struct JournalContent {
  enum class End {
    whole,
    torn,     ///< the last entry was being written when the program or the machine ended
    damaged,  ///< entries behind the last one given here cannot be read
  };

  JournalBase base;
  std::vector<JournalEntry> entries;
  End end = End::whole;

  /// The number of changes since the last save, those of a base included.
  std::uint64_t changes() const;
  std::optional<Date> changedAt() const;
};

/// Absent for what is no journal of this version or an earlier one, or has no whole base.
std::optional<JournalContent> readJournal(std::string_view bytes);
/// Whether the bytes begin as a journal does, of a version that cannot be read.
bool isJournalOfAnotherVersion(std::string_view bytes);
/// Gives the hash of a file's content, nothing where it cannot be read.
using HashOfFile = std::function<std::optional<std::uint64_t>(const FilePath& path)>;
/// Leaves out what a file holds already: the entries up to the last mark that tells of a file as it is.
/// Gives whether there is a file as the journal knows it, by its base or such a mark.
bool settleOnFile(JournalContent& journal, const HashOfFile& hashOfFile);

// --- Replaying

struct JournalReplay {
  JournalState state;
  bool isComplete = true;  ///< false: an entry did not fit, and it ended in front of that
};

/// The base of a journal that has a snapshot; absent for others, and where it contradicts itself.
std::optional<JournalState> snapshotState(const JournalBase& base);
/// What stands in for a file that is gone: as many placeholders as it had entities.
JournalState placeholderState(const JournalBase& base);
/// Leaves the entities that the journal itself held, with no undo steps.
void dropPlaceholders(JournalState& state);
JournalReplay replayJournal(const std::vector<JournalEntry>& entries, JournalState base);

}  // namespace ostrelon
