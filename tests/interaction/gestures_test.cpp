// The gestures where a script cannot reach: numbers that are no places, observers, and what ends with its
// object. What they draw, select and lock is in tests/automation/transcripts.
#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "core/adding.h"
#include "interaction/canvas_gestures.h"
#include "interaction/canvas_transform.h"
#include "interaction/drawing_tools.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

// In the view that a canvas of 800 by 600 begins with.
SketchPoint toView(SketchPoint point) { return {400 + 4 * point.x, 300 - 4 * point.y}; }

// A canvas of 800 by 600 view points, with a line from its middle.
struct GesturesTest : ::testing::Test, testing::TestWorkspace {
  CanvasGestures gestures{board};

  GesturesTest() {
    board.resizeCanvas({800, 600});
    addLine(sketch, {0, 0}, {40, 0});
  }
};

TEST_F(GesturesTest, DraftsAreMeasuredInTheDirectionOfTheLengthOne) {
  EXPECT_FALSE(isDraftLargeEnough(SketchTool::line, {{0, 0}, {0.9, 0}}));
  EXPECT_TRUE(isDraftLargeEnough(SketchTool::line, {{0, 0}, {0, -1}}));
  EXPECT_FALSE(isDraftLargeEnough(SketchTool::rectangle, {{0, 0}, {5, 0.5}}));
  EXPECT_FALSE(draftedEntity(SketchTool::polygon, {{0, 0}, {5, 5}}, {}));
}

TEST_F(GesturesTest, ACanvasWithoutSizeShowsNothing) {
  testing::TestWorkspace unsized;
  addLine(unsized.sketch, {0, 0}, {40, 0});
  CanvasGestures hand(unsized.board);
  hand.hover({10, 10});
  hand.scroll(5, 5);
  hand.magnify({0, 0}, 1);
  EXPECT_FALSE(hand.contextMenu({0, 0}));
  EXPECT_FALSE(unsized.board.cursor->has_value());
  EXPECT_TRUE(unsized.sketch.selection->ids.empty());
  EXPECT_EQ(unsized.board.viewport(), SketchViewport());
}

TEST_F(GesturesTest, AMoveIsReportedOnceAndNotAtAllWhenNothingChanges) {
  board.activateTool(SketchTool::line);
  int told = 0;
  FieldMask fields = 0;
  const auto subscription = workspace.observe(kAllFields, [&](FieldMask changed) {
    ++told;
    fields |= changed;
  });
  gestures.hover({402, 298});
  EXPECT_EQ(told, 1);
  EXPECT_EQ(fields, fieldsOf(board.cursor, board.snap, board.tracking));
  gestures.hover({402, 298});
  EXPECT_EQ(told, 1);
}

TEST_F(GesturesTest, WhatIsNoPlaceIsIgnored) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  board.activateTool(SketchTool::line);
  gestures.press({nan, 0});
  gestures.release({500, 300});
  EXPECT_EQ(sketch.entities().size(), 1U);
  gestures.press({400, 300});
  gestures.drag({nan, nan});
  gestures.hover({nan, 0});
  gestures.magnify({nan, 0}, 1);
  gestures.scroll(nan, 0);
  EXPECT_EQ(board.viewport(), (SketchViewport{{400, 300}, 4}));
}

TEST_F(GesturesTest, ADwellAdvancesWithThePointerTooAndEndsWithItsObject) {
  {
    Workspace shortLived(Host{scheduler, dialogs, files});
    addLine(shortLived.sketch, {0, 0}, {40, 0});
    shortLived.board.activateTool(SketchTool::line);
    shortLived.board.resizeCanvas({800, 600});
    shortLived.board.hoverMoved(SketchPoint{400, 300});
    ASSERT_TRUE(shortLived.board.isDwelling());
  }
  scheduler.advance(Seconds(2));
  board.activateTool(SketchTool::line);
  board.tickTracking({0, 0}, scheduler.now());
  board.tickTracking({0.1, 0}, advanced(scheduler.now(), Seconds(0.604)));
  EXPECT_DOUBLE_EQ(board.tracking->progress, 0.604);
  board.tickTracking({0, 0.1}, advanced(scheduler.now(), Seconds(1)));
  EXPECT_TRUE(board.tracking->locked.has_value());
}

TEST_F(GesturesTest, TheDwellIsCountedInFives) {
  board.activateTool(SketchTool::line);
  board.hoverMoved(toView({0, 0}));
  for (int poll = 0; poll < 20; ++poll, scheduler.advance(Seconds(0.05))) {
    EXPECT_EQ(board.snap->feedback, "Hold to lock · Endpoint · Line 1 · " + std::to_string(5 * poll) + "%");
  }
  ASSERT_TRUE(board.tracking->locked);
  gestures.press(toView({-66, 55}));
  gestures.drag(toView({-63, 52}));
  EXPECT_EQ(pointerBadgePoint(board), std::optional(SketchPoint{-63, 52})) << "not at the lock";
}

TEST_F(GesturesTest, ATypedSizeOfOneIsLargeEnoughAtAnyAngle) {
  const auto type = [&](SketchTool tool, SketchPoint to, const std::string& text) {
    const std::size_t before = sketch.entities().size();
    board.activateTool(tool);
    board.beginDraft({0.1, 0.7});
    board.setDraftCurrent(to);
    reply(text);
    EXPECT_EQ(sketch.entities().size(), before + 1) << text;
  };
  for (int angle = 0; angle < 360; ++angle) type(SketchTool::line, {20, 13}, "1 " + std::to_string(angle));
  type(SketchTool::circle, {20, 13}, "1");
  type(SketchTool::rectangle, {-20, -13}, "1");
}

TEST_F(GesturesTest, TheContextMenuOfAWallChangesItsSystem) {
  board.clearSketch();
  addWall(sketch, std::nullopt, {0, 50}, {40, 50});
  const auto menu = gestures.contextMenu({440, 100});
  ASSERT_TRUE(menu);
  const auto systems = std::get<ContextMenuSubmenu>(menu->back().content);
  ASSERT_EQ(systems.size(), 3U);
  runContextMenuItem(systems[2], sketch, messages);
  EXPECT_EQ(std::get<WallEntity>(sketch.entities().front()).systemSpecID,
            sketch.drawing->wallSystemSpecs.at(2).id);
  EXPECT_EQ(messages.lines->back().text, "Wall system set to CMU-8.");
  runContextMenuItem((*menu)[2], sketch, messages);
  EXPECT_EQ(sketch.entities().size(), 2U);
  runContextMenuItem((*menu)[3], sketch, messages);
  EXPECT_EQ(sketch.entities().size(), 1U) << "the copy was the selection";
  gestures.contextMenu({440, 100});
  runContextMenuItem((*menu)[0], sketch, messages);
  EXPECT_TRUE(sketch.selection->isInspected);
}

}  // namespace
}  // namespace ostrelon
