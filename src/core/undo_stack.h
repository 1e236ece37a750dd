// Undo as a stack of whole copies of the entity list; the lists share their storage.
#pragma once

#include <optional>
#include <vector>

#include "core/entity_list.h"

namespace ostrelon {

struct SketchUndoSnapshot {
  EntityList entities;
  friend bool operator==(const SketchUndoSnapshot&, const SketchUndoSnapshot&) = default;
};

/// The number of undo steps that a document file keeps.
inline constexpr std::size_t kStoredUndoSnapshots = 20;

class SketchUndoStack {
 public:
  SketchUndoStack() = default;
  /// `sessionLimit`: the largest number of snapshots in one list; without one there is no limit.
  explicit SketchUndoStack(int sessionLimit) : sessionLimit_(sessionLimit) {}

  const std::vector<SketchUndoSnapshot>& undoSnapshots() const { return undoSnapshots_; }  ///< newest last
  const std::vector<SketchUndoSnapshot>& redoSnapshots() const { return redoSnapshots_; }  ///< newest last

  /// A new edit: appends, applies the limit, and ends the redo history.
  void pushUndoSnapshot(SketchUndoSnapshot snapshot);
  void pushRedoSnapshot(SketchUndoSnapshot snapshot);
  /// Appends as redo does: with no limit, and keeping the redo list.
  void appendUndoSnapshot(SketchUndoSnapshot snapshot);
  std::optional<SketchUndoSnapshot> popUndoSnapshot();
  std::optional<SketchUndoSnapshot> popRedoSnapshot();
  void enforceSessionLimit();
  void clear();
  /// The last `kStoredUndoSnapshots` of the list, with no redo.
  void replaceUndoSnapshots(std::vector<SketchUndoSnapshot> snapshots);

 private:
  void dropOldest(std::vector<SketchUndoSnapshot>& snapshots) const;

  std::optional<int> sessionLimit_;
  std::vector<SketchUndoSnapshot> undoSnapshots_;
  std::vector<SketchUndoSnapshot> redoSnapshots_;
};

}  // namespace ostrelon
