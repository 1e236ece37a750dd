// A merge under review: what it shows, what it leaves alone, and how it follows the drawing.
#include "app/merge_review.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/merge_layers.h"
#include "geometry/edit_operations.h"
#include "support/manual_background.h"
#include "support/test_application.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;
using testing::TestApplication;

constexpr auto kOurs = MergeChoice::ours;
constexpr auto kTheirs = MergeChoice::theirs;
constexpr auto kBoth = MergeChoice::both;

// On the branch "option" wall 1 and circle 2 were moved and a line was added; here wall 1 was moved elsewhere
// and circle 2 was removed.
struct MergeReviews : ::testing::Test {
  TestApplication t;
  MergeReview& review = t.application.mergeReview();

  void SetUp() override {
    std::filesystem::create_directories(t.home / "Documents");
    t.submit("wall 0 0 40 0");
    t.submit("circle 10 10 3");
    t.document.save(t.home / "Documents" / "plan.ostrel");
    t.submit("checkpoint start");
    t.submit("branch create option");
    t.submit("branch switch option");
    nudge(1, 0, 5);
    nudge(2, 1, 1);
    t.submit("line 0 20 40 20");
    t.submit("checkpoint their work");
    t.submit("branch switch main");
    nudge(1, 0, -5);
    t.submit("select 2");
    deleteSelection(t.sketch, t.messages);
    t.submit("checkpoint our work");
    ASSERT_FALSE(t.document.isDirty());
  }
  void nudge(int entity, double dx, double dy) {
    t.submit("select " + std::to_string(entity));
    nudgeSelectedEntity(t.sketch, dx, dy);
  }
  std::string conflict(std::size_t at) const {
    const MergeProposal& shown = **review.proposal;
    return conflictText(shown.merge.conflicts[at], shown.ours, shown.theirs.drawing);
  }
  std::size_t undoSteps() const { return t.sketch.undoStack->undoSnapshots().size(); }
};

TEST_F(MergeReviews, AreSettledOneByOneAndTakenAsOneStep) {
  const Drawing ours = t.sketch.drawing;
  const std::size_t steps = undoSteps();
  review.begin("option");
  ASSERT_TRUE(review.isOpen());
  EXPECT_EQ((*review.proposal)->theirs.name, "branch option");
  ASSERT_THAT((*review.proposal)->merge.conflicts, SizeIs(2));
  EXPECT_EQ(conflict(0), "Wall 1: here moved 5' down, there moved 5' up");
  EXPECT_THAT(conflict(1), HasSubstr("here removed, there moved"));
  EXPECT_THAT((*review.proposal)->incoming.added, SizeIs(1));
  EXPECT_EQ(review.undecided(), 2U);
  EXPECT_FALSE(review.take());
  EXPECT_THAT((*review.preview)->difference.changed, SizeIs(0)) << "what is undecided is as in ours";

  review.choose(0, kTheirs);
  EXPECT_THAT((*review.preview)->difference.changed, SizeIs(1));
  EXPECT_FALSE(review.canTake());
  review.choose(1, kBoth);
  review.choose(7, kBoth);
  EXPECT_THAT(*review.choices, ElementsAre(kTheirs, kBoth));
  EXPECT_EQ(t.sketch.drawing.get(), ours) << "nothing but a preview";
  EXPECT_EQ(undoSteps(), steps);
  EXPECT_FALSE(t.document.isDirty());

  const Drawing expected = (*review.preview)->merged;
  ASSERT_TRUE(review.take());
  EXPECT_FALSE(review.isOpen());
  EXPECT_EQ(t.sketch.drawing.get(), expected);
  EXPECT_EQ(t.sketch.entities().size(), 3U);
  EXPECT_EQ(undoSteps(), steps + 1);
  EXPECT_EQ(t.lastLine().text, "Merged branch option: 2 added, 1 changed.");
  // The next checkpoint records what was merged, so that nothing is asked twice.
  t.submit("checkpoint merged");
  review.begin("option");
  EXPECT_FALSE(review.isOpen());
  EXPECT_EQ(t.lastLine().text, "Nothing to merge: branch option has nothing that is not here.");
}

TEST_F(MergeReviews, LeaveNoTraceWhenCancelledAndAreUndoneWhole) {
  const Drawing ours = t.sketch.drawing;
  review.begin("option");
  review.chooseAll(kBoth);
  EXPECT_TRUE(review.canTake());
  review.cancel();
  t.settle();
  EXPECT_FALSE(review.isOpen());
  EXPECT_EQ(t.sketch.drawing.get(), ours);
  EXPECT_FALSE(t.document.isDirty());
  EXPECT_THAT(t.document.mergedCheckpoints(), SizeIs(0));

  review.begin("option");
  EXPECT_EQ(review.undecided(), 2U) << "another review has choices of its own";
  review.chooseAll(kOurs);
  ASSERT_TRUE(review.take());
  EXPECT_THAT(t.document.mergedCheckpoints(), SizeIs(1));
  t.board.undo();
  EXPECT_EQ(t.sketch.drawing.get(), ours);
  EXPECT_THAT(t.document.mergedCheckpoints(), SizeIs(0));
}

TEST_F(MergeReviews, FollowTheDrawingAndEndWithIt) {
  review.begin("option");
  review.choose(0, kTheirs);
  review.choose(1, kOurs);
  t.submit("line 5 5 6 6");
  nudge(1, 0, 5);  // back to where it was: no conflict is left of it
  t.settle();
  ASSERT_THAT(*review.choices, ElementsAre(kOurs)) << "of the circle";
  EXPECT_EQ((*review.proposal)->ours, t.sketch.drawing.get());
  t.board.undo();
  t.settle();
  EXPECT_THAT(*review.choices, ElementsAre(kTheirs, kOurs)) << "choices come back with their conflicts";
  // An edit in the moment of taking is in what is taken.
  t.submit("circle 99 99 1");
  ASSERT_TRUE(review.take());
  EXPECT_EQ(t.sketch.entities().size(), 4U);

  t.board.undo();
  review.begin("option");
  t.submit("merge option theirs");
  t.settle();
  EXPECT_FALSE(review.isOpen());
  EXPECT_EQ(t.lastLine().text, "Nothing is left to merge: branch option has nothing that is not here.");
  t.submit("checkpoint all");
  review.begin((t.document.documentsFolder() / "plan").string());
  EXPECT_FALSE(review.isOpen()) << "the document itself";
  t.submit("circle 50 50 1");
  review.begin("plan");
  EXPECT_EQ(review.undecided(), 1U) << "a file has no common ancestor";
  t.document.begin();
  t.settle();
  EXPECT_FALSE(review.isOpen());
  review.begin("nothing");
  EXPECT_FALSE(review.isOpen());
  EXPECT_EQ(t.lastLine().text, "Merge failed: There is no branch, checkpoint or document named \"nothing\".");
}

TEST_F(MergeReviews, AreReadAndMadeAwayFromTheMainThread) {
  testing::ManualBackground scheduler;
  Workspace workspace(Host{scheduler, t.dialogs, t.files});
  MergeReview far(workspace, true);
  workspace.document.open(t.home / "Documents" / "plan.ostrel");
  workspace.document.refreshHistory();
  far.begin("option");
  EXPECT_FALSE(far.isOpen());
  workspace.console.setInput("line 7 7 8 8");
  workspace.console.submit();
  scheduler.clock.advance(Seconds(0.5));
  EXPECT_EQ((*workspace.messages.toast)->message, "Reading branch option…");
  scheduler.finishBackground();
  ASSERT_TRUE(far.isOpen());
  EXPECT_EQ((*far.proposal)->ours, workspace.sketch.drawing.get()) << "what was drawn meanwhile is in it";
  EXPECT_EQ(workspace.messages.toast.get(), std::nullopt);
  far.chooseAll(kOurs);
  EXPECT_TRUE(far.take());

  far.begin("option");
  far.cancel();
  scheduler.finishBackground();
  EXPECT_FALSE(far.isOpen()) << "given up before it was there";
}

TEST_F(MergeReviews, ShowBothSidesOfWhatIsUndecidedWhereItIs) {
  review.begin("option");
  const MergeProposal& shown = **review.proposal;
  const double half = t.sketch.drawing->wallSystemSpecs.front().thickness / 2;
  const SketchBox wall{-half, -5 - half, 40 + half, 5 + half};
  const SketchBox circle{8, 8, 14, 14};
  const auto layers = [&] { return (*review.preview)->layers; };
  EXPECT_EQ(layers()->groups[0].box, wall);
  EXPECT_EQ(layers()->groups[1].box, circle);
  EXPECT_THAT(layers()->of(DifferenceLayer::changedAfter), SizeIs(1));
  EXPECT_THAT(layers()->of(DifferenceLayer::added), SizeIs(2)) << "the line, and the circle as theirs has it";
  review.chooseAll(kOurs);
  EXPECT_FALSE(isFinite(layers()->groups[0].box)) << "no cloud is left around what is settled";
  EXPECT_EQ(layers()->items[1].box, circle);
  EXPECT_THAT(layers()->of(DifferenceLayer::changedAfter), SizeIs(0));
  EXPECT_THAT(layers()->of(DifferenceLayer::added), SizeIs(1));
  EXPECT_EQ(incomingBounds(shown, shown.told.at(0)), (SketchBox{0, 20, 40, 20}));

  const WallSystemSpec& used = shown.ours.wallSystemSpecs.front();
  EXPECT_EQ(conflictBounds(WallSystemConflict{{}, used, {}, 0}, shown.ours, shown.theirs.drawing),
            (SketchBox{-half, -5 - half, 40 + half, -5 + half}));
  EXPECT_EQ(conflictBounds(WallSystemConflict{{}, {}, used, 0}, shown.ours, shown.theirs.drawing),
            std::nullopt);
}

}  // namespace
}  // namespace ostrelon
