// The gestures where a script cannot reach: numbers that are no places, observers, and what ends with its
// object. What they draw, select and lock is in tests/automation/transcripts.
#include <gtest/gtest.h>

#include <limits>

#include "interaction/canvas_gestures.h"
#include "interaction/canvas_transform.h"
#include "interaction/drawing_tools.h"
#include "support/test_sketch.h"

namespace ostrelon {
namespace {

// A canvas of 800 by 600 view points, with a line from its middle.
struct GesturesTest : ::testing::Test, testing::TestSketch {
  CanvasGestures gestures{sketch};

  GesturesTest() {
    sketch.updateCanvasSize({800, 600});
    sketch.addLine({0, 0}, {40, 0});
  }
};

TEST_F(GesturesTest, DraftsAreMeasuredInTheDirectionOfTheLengthOne) {
  EXPECT_FALSE(isDraftLargeEnough(SketchTool::line, {{0, 0}, {0.9, 0}}));
  EXPECT_TRUE(isDraftLargeEnough(SketchTool::line, {{0, 0}, {0, -1}}));
  EXPECT_FALSE(isDraftLargeEnough(SketchTool::rectangle, {{0, 0}, {5, 0.5}}));
  EXPECT_FALSE(draftedEntity(SketchTool::polygon, {{0, 0}, {5, 5}}, {}));
}

TEST_F(GesturesTest, ACanvasWithoutSizeShowsNothing) {
  testing::TestSketch unsized;
  unsized.sketch.addLine({0, 0}, {40, 0});
  CanvasGestures hand(unsized.sketch);
  hand.hover({10, 10});
  hand.scroll(5, 5);
  hand.magnify({0, 0}, 1);
  EXPECT_FALSE(hand.contextMenu({0, 0}));
  EXPECT_FALSE(*unsized.sketch.cursorSketchPoint);
  EXPECT_TRUE(unsized.sketch.selectedEntityIDs->empty());
  EXPECT_EQ(*unsized.sketch.viewport, SketchViewport());
}

TEST_F(GesturesTest, AMoveIsReportedOnceAndNotAtAllWhenNothingChanges) {
  sketch.activateTool(SketchTool::line);
  int told = 0;
  FieldMask fields = 0;
  const auto subscription = sketch.observe(kAllFields, [&](const SketchChange& change) {
    ++told;
    fields |= change.fields;
  });
  gestures.hover({402, 298});
  EXPECT_EQ(told, 1);
  EXPECT_EQ(fields, fieldMask(SketchField::cursorSketchPoint, SketchField::activeEntitySnapPoint,
                              SketchField::snapFeedback, SketchField::pendingTrackingAcquire,
                              SketchField::trackingAcquireDwellStart));
  gestures.hover({402, 298});
  EXPECT_EQ(told, 1);
}

TEST_F(GesturesTest, WhatIsNoPlaceIsIgnored) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  sketch.activateTool(SketchTool::line);
  gestures.press({nan, 0});
  gestures.release({500, 300});
  EXPECT_EQ(sketch.entities->size(), 1U);
  gestures.press({400, 300});
  gestures.drag({nan, nan});
  gestures.hover({nan, 0});
  gestures.magnify({nan, 0}, 1);
  gestures.scroll(nan, 0);
  EXPECT_EQ(*sketch.viewport, (SketchViewport{{400, 300}, 4}));
}

TEST_F(GesturesTest, ADwellAdvancesWithThePointerTooAndEndsWithItsObject) {
  {
    SketchViewModel shortLived(Host{scheduler, dialogs, files});
    shortLived.addLine({0, 0}, {40, 0});
    shortLived.activateTool(SketchTool::line);
    shortLived.updateCanvasSize({800, 600});
    shortLived.hoverMoved(SketchPoint{400, 300});
    ASSERT_TRUE(shortLived.hasTrackingAcquireDwellTask());
  }
  scheduler.advance(Seconds(2));
  sketch.activateTool(SketchTool::line);
  sketch.tickTrackingAcquire({0, 0}, scheduler.now());
  sketch.tickTrackingAcquire({0.1, 0}, advanced(scheduler.now(), Seconds(0.604)));
  EXPECT_DOUBLE_EQ(sketch.trackingAcquireProgress, 0.604);
  sketch.tickTrackingAcquire({0, 0.1}, advanced(scheduler.now(), Seconds(1)));
  EXPECT_TRUE(sketch.acquiredEntitySnap->has_value());
}

TEST_F(GesturesTest, TheContextMenuOfAWallChangesItsSystem) {
  sketch.clearSketch();
  sketch.addWall(std::nullopt, {0, 50}, {40, 50});
  const auto menu = gestures.contextMenu({440, 100});
  ASSERT_TRUE(menu);
  const auto systems = std::get<ContextMenuSubmenu>(menu->back().content);
  ASSERT_EQ(systems.size(), 3U);
  runContextMenuItem(systems[2], sketch);
  EXPECT_EQ(std::get<WallEntity>(sketch.entities->front()).systemSpecID, sketch.wallSystemSpecs->at(2).id);
  EXPECT_EQ(sketch.consoleLines->back().text, "Wall system set to CMU-8.");
  runContextMenuItem((*menu)[2], sketch);
  EXPECT_EQ(sketch.entities->size(), 2U);
  runContextMenuItem((*menu)[3], sketch);
  EXPECT_EQ(sketch.entities->size(), 1U) << "the copy was the selection";
  gestures.contextMenu({440, 100});
  runContextMenuItem((*menu)[0], sketch);
  EXPECT_TRUE(*sketch.isEntityInspectorVisible);
}

}  // namespace
}  // namespace ostrelon
