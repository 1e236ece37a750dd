// Comparing the open drawing with another one while drawing goes on: what is compared, the difference that is
// looked at, and taking single ones.
//
//   comparison.begin(drawingSource(workspace.document, "main"));
//   comparison.next();      // looks at the first difference
//   comparison.takeBack();  // the open drawing has it as the other one does, as one undo step
//   comparison.end();
//
// The other drawing is the one before, the open one the one after. The comparison follows the open drawing,
// and large drawings are compared away from the main thread; it ends when another document is opened.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/compared_drawings.h"
#include "app/workspace.h"
#include "documents/named_drawing.h"

namespace ostrelon {

struct ComparisonState {
  std::string name;                                  ///< of the other drawing: "branch main", "the last save"
  std::string title;                                 ///< the same as windows call it
  std::shared_ptr<const ComparedDrawings> compared;  ///< as it was worked out last; never null
  ComparisonFilter filter;
  std::optional<std::size_t> current;  ///< the row that is looked at
  std::size_t resumeAt = 0;            ///< without one: the row that comes next
  double blend = kBothSides;           ///< 0 shows the other drawing alone, 1 the open one
  bool isBeforeHeld = false;           ///< the other drawing alone is shown as long as a key is held

  double shownBlend() const { return isBeforeHeld ? 0 : blend; }
  /// Null where no row is looked at.
  const ComparisonRow* currentRow() const { return current ? &compared->rows.at(*current) : nullptr; }
  friend bool operator==(const ComparisonState&, const ComparisonState&) = default;
};

/// What a row lets be done. Of what has changed both do the same.
bool canTakeThis(const ComparisonRow& row);  ///< the other drawing has it, or its own version of it
bool canTakeBack(const ComparisonRow& row);  ///< the open drawing has it, or its own version of it

class Comparison {
  ChangeTracker tracker_;

 public:
  /// `inBackground`: whether large drawings are read and compared away from the main thread.
  Comparison(Workspace& workspace, bool inBackground);
  Comparison(const Comparison&) = delete;
  Comparison& operator=(const Comparison&) = delete;

  /// Absent while nothing is compared.
  Observable<std::optional<ComparisonState>, Comparison> state{tracker_};
  bool isOn() const { return state->has_value(); }
  [[nodiscard]] Subscription observe(FieldMask fields, ChangeTracker::Callback changed) {
    return tracker_.observe(fields, std::move(changed));
  }

  // --- Beginning and ending. What cannot be read is reported in the console and in a toast, and what was
  // compared before goes on.

  void begin(DrawingSource other) { begin(std::move(other), false); }
  /// What the document's changes since the last save, or since it was begun, go out from.
  void beginWithLastSave();
  /// A branch, the beginning of a checkpoint's identifier, or a document from the Documents folder.
  void beginWith(const std::string& name);
  void beginWithFile(const FilePath& path);
  void end();

  // --- Going through it. Each shows the difference in the middle of the canvas.

  /// From the last one it goes on with the first, and the other way round. False where there is none.
  bool next() { return step(1); }
  bool previous() { return step(-1); }
  void show(std::size_t row);

  void setFilter(const ComparisonFilter& filter);
  void setBlend(double blend);  ///< 0 to 1
  void setBeforeHeld(bool isHeld);

  // --- Taking the difference that is looked at, as one undo step; of a wall system there is no undo. The
  // open drawing ends like the other one in this. False where that does not apply to it.

  /// Takes what the other drawing has, or its version of it.
  bool takeThis();
  /// Takes back what the open drawing has added or changed.
  bool takeBack();

 private:
  struct Job;

  void begin(DrawingSource other, bool isLastSave);
  void refreshSoon();
  void start(const std::shared_ptr<Job>& job);
  void finish(Job& job);
  void refresh();
  void placeCurrent(const ComparedDrawings& compared, ComparisonState& next) const;
  bool step(int by);
  void take(const ComparisonRow& row);
  void report(const std::string& failure);
  void clearToast();
  template <class Change>
  void change(Change change);

  Workspace& workspace_;
  bool inBackground_;
  bool isLastSave_ = false;
  std::uint64_t basisNumber_ = 0;
  std::uint64_t documentNumber_ = 0;
  std::optional<FilePath> file_;  // of the document when the comparison was begun
  Drawing other_;
  bool isStale_ = false;  // something has changed since the job under way was begun
  ScheduledTask job_;
  bool isWorking_ = false;
  std::string toast_;  // that the program is at work, while it is shown
  ScheduledTask refreshTask_;
  Subscription drawingSubscription_;
};

}  // namespace ostrelon
