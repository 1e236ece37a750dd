// Undo as a stack of whole copies of the entity list; the lists share their storage.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "core/entity_list.h"
#include "core/plan.h"
#include "core/wall_system_changes.h"

namespace ostrelon {

/// What a step takes back beside the entities, of what it changed itself; nothing of a step that changed
/// entities alone.
struct UndoTwin {
  std::optional<Plan> plan;  ///< as it was
  std::vector<WallSystemChange> wallSystems;
  bool empty() const { return !plan && wallSystems.empty(); }
  friend bool operator==(const UndoTwin&, const UndoTwin&) = default;
};

struct SketchUndoSnapshot {
  EntityList entities;
  UndoTwin twin = {};
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
  /// What else the newest step takes back, known once it has been done. There must be one.
  void setUndoTwin(UndoTwin twin) { undoSnapshots_.back().twin = std::move(twin); }
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
