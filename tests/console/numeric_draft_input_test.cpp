// Typed sizes while a draft is in progress, the tool forms of the commands, and `zoom`.
#include "console/numeric_draft_input.h"

#include <gtest/gtest.h>

#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using testing::TestWorkspace;

struct DrawingSketch : TestWorkspace {
  DrawingSketch() { board.resizeCanvas({800, 600}); }
  void draft(SketchTool tool, SketchPoint start, SketchPoint current) {
    board.activateTool(tool);
    board.beginDraft(start);
    board.setDraftCurrent(current);
  }
  template <class Entity>
  Entity last() const {
    return std::get<Entity>(sketch.entities().back());
  }
};

TEST(TypedLength, EndsTheLineAlongItsPresentDirection) {
  DrawingSketch test;
  test.draft(SketchTool::line, {0, 0}, {-7, 0});
  EXPECT_EQ(test.reply("12"), "Line added (length 12, angle 180°).");
  EXPECT_EQ(test.last<LineEntity>().to, (SketchPoint{-12, 0}));
  EXPECT_EQ(test.board.draft(), nullptr);
  EXPECT_EQ(test.board.tool, SketchTool::line);
  EXPECT_EQ(test.undoSteps(), 1U);

  test.draft(SketchTool::wall, {0, 0}, {0, 0});
  EXPECT_EQ(test.reply(" 2.55 "), "Wall added (length 2.6, angle 0°).");
  EXPECT_EQ(test.last<WallEntity>().to, (SketchPoint{2.55, 0})) << "a draft without direction goes right";
}

TEST(TypedLength, TakesAnAngleInDegrees) {
  DrawingSketch test;
  test.draft(SketchTool::line, {10, 10}, {20, 13});
  EXPECT_EQ(test.reply("12 90"), "Line added (length 12, angle 90°).");
  EXPECT_EQ(test.last<LineEntity>().to, (SketchPoint{10, 22})) << "straight up, to the last digit";
  test.draft(SketchTool::line, {0, 0}, {20, 13});
  EXPECT_EQ(test.reply("2° -90°"), "Line added (length 2, angle 270°).");
  test.draft(SketchTool::line, {0, 0}, {20, 13});
  EXPECT_EQ(test.reply("2 359.97"), "Line added (length 2, angle 360°).");
}

TEST(TypedLength, OfOneIsLongEnoughAtAnyAngle) {
  DrawingSketch test;
  for (int angle = 0; angle < 360; ++angle) {
    test.draft(SketchTool::line, {0.1, 0.7}, {20, 13});
    test.submit("1 " + std::to_string(angle));
    ASSERT_EQ(test.sketch.entities().size(), static_cast<std::size_t>(angle) + 1) << angle;
  }
  test.draft(SketchTool::circle, {0.1, 0.7}, {20, 13});
  test.submit("1");
  test.draft(SketchTool::rectangle, {0.1, 0.7}, {-20, -13});
  test.submit("1");
  EXPECT_EQ(test.sketch.entities().size(), 362U);
}

TEST(TypedSize, OfCirclesAndRectangles) {
  DrawingSketch test;
  test.draft(SketchTool::circle, {5, 5}, {5, 9});
  EXPECT_EQ(test.reply("3"), "Circle added (radius 3).");
  EXPECT_EQ(test.last<CircleEntity>().radius, 3);
  test.draft(SketchTool::rectangle, {0, 0}, {-4, -2});
  EXPECT_EQ(test.reply("10"), "Rectangle added (width 10, height 10).");
  EXPECT_EQ(test.last<RectangleEntity>().origin, (SketchPoint{-10, -10})) << "to the lower left, as drafted";
  test.draft(SketchTool::rectangle, {0, 0}, {4, -2});
  EXPECT_EQ(test.reply("8 3"), "Rectangle added (width 8, height 3).");
  EXPECT_EQ(test.last<RectangleEntity>().origin, (SketchPoint{0, -3}));
}

TEST(TypedSize, ThatDoesNotReadLeavesTheDraft) {
  DrawingSketch test;
  const auto expectUsage = [&](SketchTool tool, const std::string& text, const std::string& usage) {
    test.draft(tool, {0, 0}, {20, 0});
    const auto lines = test.submit(text);
    ASSERT_EQ(lines.size(), 1U) << text;
    EXPECT_EQ(lines[0].text, usage);
    EXPECT_TRUE(lines[0].isError);
    EXPECT_FALSE(lines[0].isSystem);
    EXPECT_EQ(*test.board.draft(), (SketchDraft{{0, 0}, {20, 0}}));
    EXPECT_TRUE(test.sketch.entities().empty());
  };
  const std::string segment = "Usage: <length> [angle] while drawing";
  for (const char* text : {"12 north", "0.5", "-3", "1 2 3", "nan", "inf", "12 inf", "1e999"}) {
    expectUsage(SketchTool::line, text, segment);
  }
  expectUsage(SketchTool::circle, "10 20", "Usage: <radius> while drawing circle");
  expectUsage(SketchTool::rectangle, "10 0.9", "Usage: <width> [height] while drawing rectangle");
  expectUsage(SketchTool::rectangle, "10 x", "Usage: <width> [height] while drawing rectangle");
}

TEST(TypedSize, IsOnlyForDraftsAndLinesThatBeginWithANumber) {
  DrawingSketch test;
  EXPECT_EQ(test.reply("12"), "Unknown command \"12\". Type help for commands.");
  test.draft(SketchTool::line, {0, 0}, {20, 0});
  EXPECT_EQ(test.reply("zoom in"), "Zoomed in.");
  EXPECT_NE(test.board.draft(), nullptr);
  EXPECT_FALSE(CommandInterpreter::applyNumericDraftInput("12; line 0 0 1 1", test.board))
      << "a chain is no number";
  EXPECT_FALSE(CommandInterpreter::applyNumericDraftInput("   ", test.board));

  test.board.activateTool(SketchTool::polygon);
  test.board.addPolygonVertex({0, 0});
  EXPECT_FALSE(CommandInterpreter::applyNumericDraftInput("12", test.board));
}

TEST(TypedSize, OfHugeNumbersNeitherHangsNorCrashes) {
  DrawingSketch test;
  test.draft(SketchTool::line, {0, 0}, {20, 5});
  test.submit("1e300 1e300");
  test.draft(SketchTool::rectangle, {1e308, 0}, {1.5e308, 1});
  test.submit("1e308 1e308");
  test.board.zoomToFit({800, 600});
  test.board.hoverMoved(SketchPoint{400, 300});
}

// --- Tool forms

TEST(ToolForms, ActivateTheToolAndEndWhatIsUnderWay) {
  DrawingSketch test;
  test.draft(SketchTool::circle, {0, 0}, {20, 0});
  EXPECT_EQ(test.reply("line"), "Line tool active.");
  EXPECT_EQ(test.board.tool, SketchTool::line);
  EXPECT_EQ(test.board.draft(), nullptr);
  EXPECT_EQ(test.reply("PL"), "Polygon tool active.");
  EXPECT_EQ(test.board.tool, SketchTool::polygon);
  EXPECT_EQ(test.reply("s"), "Select tool active.");
  EXPECT_EQ(test.reply("l 1 2 3"), "Usage: line [<x1> <y1> <x2> <y2>]");
  EXPECT_EQ(test.board.tool, SketchTool::select);
}

TEST(ToolForms, TrimStartsWithNothingSelectedAndOnlyDropsItsEdgeWhenChosenAgain) {
  DrawingSketch test;
  addLine(test.sketch, {0, 0}, {40, 0});
  selectAll(test.sketch);
  const std::string reply = "Trim tool active. Select cutting edge, then click entities to trim.";
  EXPECT_EQ(test.reply("tr"), reply);
  EXPECT_TRUE(test.sketch.selection->ids.empty());
  test.board.trimAt({20, 0});
  EXPECT_TRUE(*test.board.trimCuttingEdge);
  EXPECT_EQ(test.reply("trim"), reply);
  EXPECT_FALSE(*test.board.trimCuttingEdge);
  EXPECT_EQ(test.sketch.selection->ids.size(), 1U);
  EXPECT_EQ(test.reply("line"), "Line tool active.");
  EXPECT_EQ(test.sketch.selection->ids.size(), 1U) << "only the tool buttons let go of the selection";
}

// --- Zoom

TEST(ZoomCommand, MovesTheViewAboutTheMiddleOfTheCanvas) {
  DrawingSketch test;
  EXPECT_EQ(test.reply("z"), "Zoomed in.");
  EXPECT_EQ(test.board.scale(), 5);
  EXPECT_EQ(test.reply("zoom OUT"), "Zoomed out.");
  EXPECT_EQ(test.board.viewport(), (SketchViewport{{400, 300}, 4}));
  EXPECT_EQ(test.reply("zoom +"), "Zoomed in.");
  EXPECT_EQ(test.reply("zoom -"), "Zoomed out.");
  test.board.pan(30, 30);
  EXPECT_EQ(test.reply("zoom reset"), "View reset.");
  EXPECT_EQ(test.board.viewport(), (SketchViewport{{400, 300}, 4}));
  addLine(test.sketch, {100, 0}, {200, 0});
  EXPECT_EQ(test.reply("zoom fit"), "Zoomed to fit.");
  EXPECT_NEAR(test.board.scale(), (800.0 - 96) / (100 + 96), 1e-12);
  EXPECT_EQ(test.reply("zoom 2"), "Usage: zoom [in|out|fit|reset]");
  EXPECT_EQ(test.reply("zoom in in"), "Usage: zoom [in|out|fit|reset]");
}

}  // namespace
}  // namespace ostrelon
