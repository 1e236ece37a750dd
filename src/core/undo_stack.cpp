#include "core/undo_stack.h"

#include <utility>

namespace ostrelon {

void SketchUndoStack::pushUndoSnapshot(SketchUndoSnapshot snapshot) {
  undoSnapshots_.push_back(std::move(snapshot));
  enforceSessionLimit();
  redoSnapshots_.clear();
}

void SketchUndoStack::pushRedoSnapshot(SketchUndoSnapshot snapshot) {
  redoSnapshots_.push_back(std::move(snapshot));
  dropOldest(redoSnapshots_);
}

void SketchUndoStack::appendUndoSnapshot(SketchUndoSnapshot snapshot) {
  undoSnapshots_.push_back(std::move(snapshot));
}

std::optional<SketchUndoSnapshot> SketchUndoStack::popUndoSnapshot() {
  if (undoSnapshots_.empty()) return std::nullopt;
  SketchUndoSnapshot last = std::move(undoSnapshots_.back());
  undoSnapshots_.pop_back();
  return last;
}

std::optional<SketchUndoSnapshot> SketchUndoStack::popRedoSnapshot() {
  if (redoSnapshots_.empty()) return std::nullopt;
  SketchUndoSnapshot last = std::move(redoSnapshots_.back());
  redoSnapshots_.pop_back();
  return last;
}

void SketchUndoStack::enforceSessionLimit() { dropOldest(undoSnapshots_); }

void SketchUndoStack::clear() {
  undoSnapshots_.clear();
  redoSnapshots_.clear();
}

void SketchUndoStack::replaceUndoSnapshots(std::vector<SketchUndoSnapshot> snapshots) {
  if (snapshots.size() > kStoredUndoSnapshots) {
    snapshots.erase(snapshots.begin(), snapshots.end() - static_cast<std::ptrdiff_t>(kStoredUndoSnapshots));
  }
  undoSnapshots_ = std::move(snapshots);
  redoSnapshots_.clear();
}

void SketchUndoStack::dropOldest(std::vector<SketchUndoSnapshot>& snapshots) const {
  if (!sessionLimit_) return;
  const auto limit = static_cast<std::size_t>(*sessionLimit_ < 0 ? 0 : *sessionLimit_);
  if (snapshots.size() <= limit) return;
  snapshots.erase(snapshots.begin(), snapshots.end() - static_cast<std::ptrdiff_t>(limit));
}

}  // namespace ostrelon
