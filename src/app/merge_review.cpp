#include "app/merge_review.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "app/merge_layers.h"
#include "interaction/drawing_bounds.h"
#include "platform/user_error.h"

namespace ostrelon {
namespace {

constexpr const char* kFailure = "Merge failed: ";
constexpr std::size_t kMostTold = 1000;
/// Entities of both sides above which a merge is made away from the main thread.
constexpr std::size_t kLargeMerge = 20'000;
/// Reading that takes longer is announced by a toast.
constexpr Seconds kLongWork(0.3);

Drawing mergedAs(const Merge& merge, const Drawing& ours, const MergeReview::Choices& choices) {
  std::size_t next = 0;
  return mergedDrawing(merge, ours, [&](const MergeConflict&) {
    return next < choices.size() ? choices[next++].value_or(MergeChoice::ours) : MergeChoice::ours;
  });
}

}  // namespace

// One run from what is known to a preview: values in, values out.
struct MergeReview::Work {
  NamedPlaces places;
  DrawingSource theirs;
  Drawing ours;
  std::vector<std::string> mergedHere;
  Decisions decisions;
  std::shared_ptr<const MergeProposal> earlier;  // null: theirs is to be read
  bool isBaseKnown = false;                      // the base of the earlier one is still right

  std::shared_ptr<const MergeProposal> proposal;
  std::shared_ptr<const MergePreview> preview;
  std::optional<std::string> failure;

  void run() {
    try {
      propose();
      const Choices settled = choicesFor(proposal->merge, decisions);
      MergePreview made;
      made.merged = mergedAs(proposal->merge, ours, settled);
      made.difference = compareDrawings(ours, made.merged);
      made.layers = std::make_shared<DifferenceLayers>(
          mergeLayers(proposal->merge, ours, proposal->theirs.drawing, made.merged, settled));
      preview = std::make_shared<MergePreview>(std::move(made));
    } catch (const std::exception& error) {
      failure = error.what();
    }
  }

 private:
  void propose() {
    if (earlier && isBaseKnown && earlier->ours == ours) {
      proposal = earlier;
      return;
    }
    MergeProposal made;
    made.theirs = earlier ? earlier->theirs : namedDrawing(theirs);
    made.base = isBaseKnown ? earlier->base : commonAncestor(places, ours, mergedHere, made.theirs);
    made.ours = ours;
    made.merge = mergeDrawings(made.base ? &*made.base : nullptr, ours, made.theirs.drawing,
                               NumberPrecision::asInFiles);
    made.settled = mergedAs(made.merge, ours, {});
    made.incoming = compareDrawings(ours, made.settled);
    made.told = toldDifferences(made.incoming, ours, made.settled, kMostTold);
    proposal = std::make_shared<MergeProposal>(std::move(made));
  }
};

MergeReview::ConflictKey MergeReview::keyOf(const MergeConflict& conflict) {
  return std::visit(
      [&](const auto& one) {
        return ConflictKey(conflict.index(), one.ours.has_value(), conflictID(conflict));
      },
      conflict);
}

MergeReview::Choices MergeReview::choicesFor(const Merge& merge, const Decisions& decisions) {
  Choices choices;
  choices.reserve(merge.conflicts.size());
  for (const MergeConflict& conflict : merge.conflicts) {
    const auto decision = decisions.find(keyOf(conflict));
    choices.push_back(decision == decisions.end() ? std::nullopt : std::optional(decision->second));
  }
  return choices;
}

MergeReview::MergeReview(Workspace& workspace, bool inBackground)
    : workspace_(workspace), inBackground_(inBackground) {
  const FieldMask fields = fieldsOf(workspace.sketch.drawing, workspace.document.history);
  subscription_ = workspace.observe(fields, [this](FieldMask) {
    if (!theirs_) return;
    followTask_ = workspace_.host().scheduler.after(Seconds(0), [this] { follow(); });
  });
}

std::size_t MergeReview::undecided() const {
  return static_cast<std::size_t>(std::count(choices->begin(), choices->end(), std::nullopt));
}

// --- From name to preview

void MergeReview::begin(const std::string& name) {
  try {
    begin(drawingSource(workspace_.document, name));
  } catch (const UserError& error) {
    end();
    report(std::string(kFailure) + error.what(), true);
  }
}

void MergeReview::begin(DrawingSource theirs) {
  end();
  theirs_ = std::move(theirs);
  documentNumber_ = workspace_.documentsOpened();
  places_ = namedPlaces(workspace_.document);
  toast_ = "Reading " + theirs_->name + "…";
  toastTask_ = workspace_.host().scheduler.after(
      kLongWork, [this] { workspace_.messages.showToast(toast_, DocumentToastState::Style::saving); });
  update();
}

void MergeReview::follow() {
  if (!theirs_) return;
  if (documentNumber_ != workspace_.documentsOpened()) {
    end();
  } else {
    update();
  }
}

void MergeReview::update() {
  if (work_) {
    isStale_ = true;
    return;
  }
  const DocumentSession& document = workspace_.document;
  auto work = std::make_shared<Work>();
  work->places = places_;
  work->theirs = *theirs_;
  work->ours = document.sketch().drawing;
  work->mergedHere = document.mergedCheckpoints();
  work->decisions = decisions_;
  work->earlier = proposal;
  work->isBaseKnown =
      isOpen() && work->mergedHere == mergedHere_ && document.history.writes() == historyWrites_;
  mergedHere_ = work->mergedHere;
  historyWrites_ = document.history.writes();
  const std::size_t size =
      isOpen() ? work->ours.entities.size() + (*proposal)->theirs.drawing.entities.size() : 0;
  if (!inBackground_ || (isOpen() && size < kLargeMerge)) {
    work->run();
    finish(*work);
    return;
  }
  work_ = work;
  isStale_ = false;
  isWorking = true;
  task_ = workspace_.host().scheduler.inBackground([work] { work->run(); },
                                                   [this, work] {
                                                     work_.reset();
                                                     finish(*work);
                                                   });
}

void MergeReview::finish(const Work& work) {
  clearToast();
  if (work.failure) {
    end();
    report(kFailure + *work.failure, true);
    return;
  }
  if (work.proposal->merge.empty()) {
    const std::string start = isOpen() ? "Nothing is left to merge: " : "Nothing to merge: ";
    end();
    report(start + work.proposal->theirs.name + " has nothing that is not here.", false);
    return;
  }
  {
    const ChangeScope scope(tracker_);
    proposal = work.proposal;
    choices = choicesFor((*proposal)->merge, decisions_);
    preview = work.preview;
    isWorking = false;
    // What was chosen or drawn meanwhile.
    if (std::exchange(isStale_, false)) update();
  }
}

// --- Settling

void MergeReview::choose(std::size_t conflict, MergeChoice choice) {
  if (conflict >= choices->size()) return;
  decisions_.insert_or_assign(keyOf((*proposal)->merge.conflicts[conflict]), choice);
  const ChangeScope scope(tracker_);
  choices.edit()[conflict] = choice;
  update();
}

void MergeReview::chooseAll(MergeChoice choice) {
  if (!isOpen()) return;
  for (const MergeConflict& conflict : (*proposal)->merge.conflicts) {
    decisions_.insert_or_assign(keyOf(conflict), choice);
  }
  const ChangeScope scope(tracker_);
  choices = Choices(choices->size(), choice);
  update();
}

bool MergeReview::take() {
  // An edit in the same moment has not been followed yet.
  if (isOpen() && !isWorking && !((*proposal)->ours == workspace_.sketch.drawing)) update();
  if (!canTake()) return false;
  const std::shared_ptr<const MergeProposal> taken = proposal;
  const std::shared_ptr<const MergePreview> result = preview;
  // A checkpoint means nothing to a document that has been saved into a folder with another history.
  const auto& file = *workspace_.document.fileURL;
  const bool isInHistory = file && places_.document && file->parent_path() == places_.document->parent_path();
  end();
  workspace_.document.takeMerged(result->merged, isInHistory ? taken->theirs.checkpointID : std::nullopt);
  report(fmt::format("Merged {}: {}", taken->theirs.name, differenceCounts(result->difference)), false);
  return true;
}

void MergeReview::cancel() { end(); }

void MergeReview::end() {
  const ChangeScope scope(tracker_);
  task_.cancel();
  followTask_.cancel();
  clearToast();
  work_.reset();
  isStale_ = false;
  theirs_.reset();
  decisions_.clear();
  proposal = nullptr;
  choices = {};
  preview = nullptr;
  isWorking = false;
}

void MergeReview::clearToast() {
  toastTask_.cancel();
  const auto& shown = *workspace_.messages.toast;
  if (shown && shown->message == toast_) workspace_.messages.clearToast();
}

void MergeReview::report(const std::string& text, bool isError) {
  workspace_.messages.append(text, isError, !isError);
  workspace_.messages.showToast(
      text, isError ? DocumentToastState::Style::error : DocumentToastState::Style::success);
}

std::optional<SketchBox> incomingBounds(const MergeProposal& proposal, const ToldDifference& told) {
  if (told.isWallSystem) return std::nullopt;
  std::vector<SketchEntity> sides;
  for (const Drawing* drawing : {&proposal.ours, &proposal.settled}) {
    if (const SketchEntity* entity = drawing->entities.find(told.id)) sides.push_back(*entity);
  }
  return drawingBounds(EntityList(std::move(sides)));
}

}  // namespace ostrelon
