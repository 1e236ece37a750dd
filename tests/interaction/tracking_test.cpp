// Tracking: the dwell over an endpoint or midpoint, the lock, and what it does to a draft.
#include "interaction/tracking.h"

#include <gmock/gmock.h>

#include "interaction/board.h"
#include "interaction/drawing_tools.h"

namespace ostrelon {
namespace {

using testing::Board;

// A board with one line and the line tool.
struct TrackingBoard : Board {
  TrackingBoard() {
    sketch.addLine({0, 0}, {40, 0});
    sketch.activateTool(SketchTool::line);
  }
  void wait(double seconds) { scheduler.advance(Seconds(seconds)); }
  bool isLocked() const { return sketch.acquiredEntitySnap->has_value(); }
  double progress() const { return sketch.trackingAcquireProgress; }
  void lockOnTheStart() {
    hover({0.5, 0.5});
    wait(1);
  }
};

TEST(Dwell, LocksAtRestAfterExactlyOneSecond) {
  TrackingBoard board;
  board.hover({0.5, 0.5});
  EXPECT_EQ(board.feedback(), "Hold to lock · Endpoint · Line 1 · 0%");
  EXPECT_TRUE(board.sketch.hasTrackingAcquireDwellTask());
  for (int poll = 1; poll < 20; ++poll) {
    board.wait(0.05);
    EXPECT_DOUBLE_EQ(board.progress(), 0.05 * poll);
    EXPECT_EQ(board.feedback(), "Hold to lock · Endpoint · Line 1 · " + std::to_string(5 * poll) + "%");
    ASSERT_FALSE(board.isLocked()) << poll;
  }
  board.wait(0.05);
  ASSERT_TRUE(board.isLocked()) << "the twentieth look";
  EXPECT_EQ(board.sketch.acquiredEntitySnap->value().point, (SketchPoint{0, 0}));
  EXPECT_EQ(board.progress(), 1);
  EXPECT_FALSE(*board.sketch.pendingTrackingAcquire);
  EXPECT_FALSE(board.sketch.hasTrackingAcquireDwellTask());
  EXPECT_EQ(board.feedback(), "Locked · Endpoint · Line 1");
}

TEST(Dwell, StartedAtAnOddMomentLocksAtTheTwentiethLookToo) {
  TrackingBoard board;
  board.wait(0.123457);
  board.hover({20.5, 0.5});
  board.wait(0.999999);
  EXPECT_FALSE(board.isLocked());
  board.wait(0.000001);
  EXPECT_TRUE(board.isLocked());
}

TEST(Dwell, EndsWhenThePointerMovesOff) {
  TrackingBoard board;
  board.hover({0.5, 0.5});
  board.wait(0.99);
  board.hover({0, 60});
  EXPECT_EQ(board.progress(), 0);
  EXPECT_FALSE(board.sketch.hasTrackingAcquireDwellTask());
  board.wait(10);
  EXPECT_FALSE(board.isLocked());
}

TEST(Dwell, OnAnotherPointCountsAnewAndKeepsThePhaseOfTheLooks) {
  TrackingBoard board;
  board.hover({0.5, 0.5});
  board.wait(0.53);
  board.hover({20, 0});
  EXPECT_EQ(board.progress(), 0);
  EXPECT_EQ(board.feedback(), "Hold to lock · Midpoint · Line 1 · 0%");
  board.wait(1.01);
  EXPECT_FALSE(board.isLocked()) << "looks come at 0.55, 0.60, …: the one at 1.50 is too early";
  board.wait(0.01);
  EXPECT_TRUE(board.isLocked());
  EXPECT_EQ(board.sketch.acquiredEntitySnap->value().kind, EntitySnapKind::midpoint);
}

TEST(Dwell, AdvancesWithThePointerToo) {
  TrackingBoard board;
  board.sketch.tickTrackingAcquire({0, 0}, board.scheduler.now());
  board.sketch.tickTrackingAcquire({0.1, 0}, advanced(board.scheduler.now(), Seconds(0.604)));
  EXPECT_DOUBLE_EQ(board.progress(), 0.604);
  EXPECT_EQ(board.sketch.trackingHoldText(board.sketch.pendingTrackingAcquire->value()),
            "Hold to lock · Endpoint · Line 1 · 60%");
  board.sketch.tickTrackingAcquire({0, 0.1}, advanced(board.scheduler.now(), Seconds(1)));
  EXPECT_TRUE(board.isLocked());
}

TEST(Dwell, IsForLinesAndWallsAndForEndsAndMiddles) {
  TrackingBoard board;
  for (const SketchTool tool : {SketchTool::circle, SketchTool::polygon, SketchTool::select}) {
    board.sketch.activateTool(tool);
    board.hover({0.5, 0.5});
    EXPECT_FALSE(*board.sketch.pendingTrackingAcquire);
  }
  board.sketch.addCircle({20, 0}, 5);
  board.sketch.addRectangle({100, 0}, {20, 20});
  board.sketch.activateTool(SketchTool::wall);
  board.hover({100, 0});
  EXPECT_FALSE(*board.sketch.pendingTrackingAcquire) << "a corner";
  EXPECT_EQ(board.feedback(), "Corner · Rectangle 3");
}

TEST(Dwell, GoesOnWhenThePointerLeavesTheCanvas) {
  TrackingBoard board;
  board.hover({0.5, 0.5});
  board.gestures.leave();
  EXPECT_TRUE(board.hasNoSnapState());
  board.wait(1);
  EXPECT_TRUE(board.isLocked());
}

TEST(Dwell, AndLockSurviveUndoClearAndANewDocument) {
  TrackingBoard board;
  board.lockOnTheStart();
  board.hover({20, 0});
  board.sketch.undo();
  board.sketch.clearSketch();
  board.sketch.newDocument();
  EXPECT_TRUE(board.isLocked());
  EXPECT_TRUE(*board.sketch.pendingTrackingAcquire);
}

TEST(Lock, StaysInForceWhileAnotherDwellRunsWithThePointerAlone) {
  TrackingBoard board;
  board.lockOnTheStart();
  board.hover({20, 0});
  EXPECT_EQ(board.feedback(), "Locked · Endpoint · Line 1");
  EXPECT_FALSE(board.sketch.hasTrackingAcquireDwellTask());
  board.wait(5);
  EXPECT_EQ(board.progress(), 0);
  board.hover({20, 0.1});
  EXPECT_EQ(board.sketch.acquiredEntitySnap->value().kind, EntitySnapKind::midpoint);
}

TEST(Lock, AlignsTheEndOfTheDraftFromAnyDistance) {
  TrackingBoard board;
  board.lockOnTheStart();
  board.sketch.setShowGrid(false);
  board.press({-66, 55});
  board.drag({-63, 52});
  // The pointer goes along the diagonal, but only its side of the anchor counts.
  EXPECT_EQ(board.feedback(), "Endpoint · Line 1") << "a tracking result carries the locked point itself";
  EXPECT_EQ(board.sketch.draft->value().current, (SketchPoint{0, -11}));
  EXPECT_EQ(pointerBadgePoint(board.sketch), std::optional(SketchPoint{-63, 52})) << "not at the lock";
  board.drag({-60, 55.2});
  EXPECT_EQ(board.sketch.draft->value().current, (SketchPoint{0, 55}));
  EXPECT_EQ(*board.sketch.activeAxisSnaps, std::vector{AxisSnap::horizontal});
  board.drag({-80, 60});
  EXPECT_EQ(board.feedback(), "Locked · Endpoint · Line 1") << "no alignment on that side";
  EXPECT_EQ(*board.sketch.activeEntitySnapPoint, (SketchPoint{0, 0}));
  EXPECT_EQ(board.sketch.draft->value().current, (SketchPoint{-80, 60}));
  board.release({-80, 60});
  EXPECT_FALSE(board.isLocked()) << "a lock lasts for one draft";
}

TEST(Lock, IsReleasedByEscapeAndByAChangeOfTool) {
  TrackingBoard board;
  board.lockOnTheStart();
  board.hover({0, 60});
  board.sketch.handleEscape();
  EXPECT_FALSE(board.isLocked());
  EXPECT_EQ(board.sketch.selectedTool, SketchTool::line) << "one step at a time";
  EXPECT_EQ(board.progress(), 0);

  board.lockOnTheStart();
  board.sketch.activateTool(SketchTool::circle);
  EXPECT_FALSE(board.isLocked());
}

TEST(Lock, HoldsACopyOfThePoint) {
  TrackingBoard board;
  board.lockOnTheStart();
  board.sketch.deleteEntity(board.idOf(0));
  EXPECT_EQ(board.sketch.acquiredEntitySnap->value().point, (SketchPoint{0, 0}));
}

TEST(Dwell, EndsWithItsObject) {
  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  testing::NoFileSystem files;
  {
    SketchViewModel sketch(Host{scheduler, dialogs, files});
    sketch.updateCanvasSize({800, 600});
    sketch.addLine({0, 0}, {40, 0});
    sketch.activateTool(SketchTool::line);
    sketch.hoverMoved(SketchPoint{400, 300});
    ASSERT_TRUE(sketch.hasTrackingAcquireDwellTask());
  }
  scheduler.advance(Seconds(2));
}

}  // namespace
}  // namespace ostrelon
