// A merge that is looked at before it is done: what would come into the open drawing, the conflicts with the
// choice made for each, and the merged drawing as a preview. The drawing is untouched until the merge is
// taken.
//
//   review.begin("option-a");
//   review.choose(0, MergeChoice::theirs);
//   if (review.canTake()) review.take();
//
// The open drawing may be edited meanwhile: the merge is then made anew, and keeps the choices made for
// conflicts that are still there. The review ends by `take`, by `cancel`, where edits have left nothing to
// merge, and with the document.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "app/workspace.h"
#include "documents/named_drawing.h"
#include "documents/told_difference.h"
#include "interaction/difference_layers.h"
#include "platform/scheduler.h"

namespace ostrelon {

/// The drawing that taking the merge would leave; what is undecided is as in ours.
struct MergePreview {
  Drawing merged;
  DrawingDifference difference;  ///< from ours to the merged one
  /// As the canvas shows it: app/merge_layers.h.
  std::shared_ptr<const DifferenceLayers> layers;
};

/// What is merged, and what the merge is. Not changed once it is made.
struct MergeProposal {
  NamedDrawing theirs;
  std::optional<Drawing> base;
  Drawing ours;  ///< the open drawing that it was made for
  Merge merge;
  Drawing settled;             ///< ours with what comes in without a question
  DrawingDifference incoming;  ///< from ours to `settled`
  /// The first thousand of what comes in, in words.
  std::vector<ToldDifference> told;
};

class MergeReview {
  ChangeTracker tracker_;
  template <class T>
  using Field = Observable<T, MergeReview>;

 public:
  using Choices = std::vector<std::optional<MergeChoice>>;

  /// The workspace must outlive the object. `inBackground`: drawings are read, and large ones merged, away
  /// from the main thread; else every operation has had its whole effect when it returns.
  MergeReview(Workspace& workspace, bool inBackground);
  MergeReview(const MergeReview&) = delete;
  MergeReview& operator=(const MergeReview&) = delete;

  /// Null while nothing is under review.
  Field<std::shared_ptr<const MergeProposal>> proposal{tracker_};
  /// One for each conflict, in their order; absent while it is undecided.
  Field<Choices> choices{tracker_};
  /// Null while nothing is under review.
  Field<std::shared_ptr<const MergePreview>> preview{tracker_};
  /// The preview does not show the last choice or edit yet.
  Field<bool> isWorking{tracker_, false};

  [[nodiscard]] Subscription observe(FieldMask fields, ChangeTracker::Callback changed) {
    return tracker_.observe(fields, std::move(changed));
  }

  bool isOpen() const { return proposal.get() != nullptr; }
  std::size_t undecided() const;
  bool canTake() const { return isOpen() && !isWorking && undecided() == 0; }

  /// Takes the place of the review before. What is wrong, or that there is nothing to merge, is reported in
  /// the console and in a toast.
  void begin(DrawingSource theirs);
  /// A branch, a checkpoint, or a document's path.
  void begin(const std::string& name);
  /// `conflict`: 0-based. Nothing happens where there is none.
  void choose(std::size_t conflict, MergeChoice choice);
  void chooseAll(MergeChoice choice);
  /// Merges, as one undo step, and ends the review. False, with nothing changed, unless `canTake`.
  bool take();
  /// Ends the review, or the reading for one.
  void cancel();

 private:
  struct Work;
  // What a conflict is known by from one merge to the next.
  using ConflictKey = std::tuple<std::size_t, bool, UUID>;  // its kind, ours has it, identifier
  using Decisions = std::map<ConflictKey, MergeChoice>;
  static ConflictKey keyOf(const MergeConflict& conflict);
  static Choices choicesFor(const Merge& merge, const Decisions& decisions);

  void follow();
  void update();
  void finish(const Work& work);
  void end();
  void clearToast();
  void report(const std::string& text, bool isError);

  Workspace& workspace_;
  const bool inBackground_;
  std::optional<DrawingSource> theirs_;  // absent: nothing is or will be under review
  std::uint64_t documentNumber_ = 0;     // of the document that the review is for
  NamedPlaces places_;                   // as they were when it began
  Decisions decisions_;                  // also of conflicts that edits have done away with
  std::vector<std::string> mergedHere_;  // what the common ancestor was found for:
  std::uint64_t historyWrites_ = 0;
  std::shared_ptr<Work> work_;  // under way
  bool isStale_ = false;        // something has changed since the work was begun
  ScheduledTask task_;
  ScheduledTask followTask_;
  ScheduledTask toastTask_;
  std::string toast_;
  Subscription subscription_;
};

/// Where the drawing shows what comes in, sketch units; absent for wall systems.
std::optional<SketchBox> incomingBounds(const MergeProposal& proposal, const ToldDifference& told);

}  // namespace ostrelon
