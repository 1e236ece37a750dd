// Drawing with the pointer: from presses, moves and releases to entities.
#include "interaction/drawing_tools.h"

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include "interaction/board.h"

namespace ostrelon {
namespace {

using testing::Board;
using ::testing::ElementsAre;

TEST(LineTool, AStrokeDrawsALineFromSnapToSnapAndStaysActive) {
  Board board;
  board.sketch.activateTool(SketchTool::line);
  board.press({0.5, 0.5});
  EXPECT_EQ(board.sketch.draft->value(), (SketchDraft{{0, 0}, {0, 0}}));
  EXPECT_EQ(board.feedback(), "Major grid intersection");
  EXPECT_EQ(*board.sketch.cursorSketchPoint, (SketchPoint{0.5, 0.5})) << "the pointer itself is not snapped";
  board.drag({25.2, 4.7});
  EXPECT_EQ(board.sketch.draft->value().current, (SketchPoint{25, 5}));
  EXPECT_EQ(board.sketch.draftMeasurementText(), "Length 25.5 · Angle 11.3°");
  board.release({90, 90});

  ASSERT_EQ(board.entities().size(), 1U);
  EXPECT_EQ(board.line(0).from, (SketchPoint{0, 0}));
  EXPECT_EQ(board.line(0).to, (SketchPoint{25, 5})) << "the release is no change";
  EXPECT_EQ(board.sketch.selectedTool, SketchTool::line);
  EXPECT_TRUE(board.sketch.selectedEntityIDs->empty());
  EXPECT_TRUE(board.hasNoSnapState());
  EXPECT_TRUE(*board.sketch.isDocumentDirty);
  EXPECT_EQ(board.undoSteps(), 1U);
}

TEST(LineTool, AClickDrawsNothingAndLeavesNoTrace) {
  Board board;
  board.sketch.activateTool(SketchTool::line);
  const testing::DocumentState before(board.sketch);
  board.click({0, 0});
  EXPECT_EQ(testing::DocumentState(board.sketch), before);
  EXPECT_FALSE(*board.sketch.draft);
  EXPECT_TRUE(board.hasNoSnapState());
}

TEST(LineTool, LocksToAnAxisBetweenTheGridLines) {
  Board board;
  board.sketch.activateTool(SketchTool::line);
  board.press({5, 5});
  board.drag({25.2, 5.5});
  EXPECT_EQ(board.sketch.draft->value().current, (SketchPoint{25, 5}));
  EXPECT_THAT(*board.sketch.activeAxisSnaps, ElementsAre(AxisSnap::horizontal));
  EXPECT_THAT(*board.sketch.lastDraftConstraintAxes, ElementsAre(AxisSnap::horizontal));
  EXPECT_EQ(*board.sketch.snapGuideAnchor, (SketchPoint{5, 5}));
  EXPECT_EQ(board.feedback(), "Snapped to X-axis");
  board.drag({29, 5.5});
  EXPECT_EQ(board.sketch.draft->value().current, (SketchPoint{30, 5.5})) << "a grid line beats the lock";
  EXPECT_EQ(board.feedback(), "Grid line");
  board.drag({23.2, 2.1});
  EXPECT_EQ(board.sketch.draft->value().current, (SketchPoint{23, 2})) << "9 degrees: rounded, no lock";
  EXPECT_TRUE(board.sketch.activeAxisSnaps->empty());
}

TEST(LineTool, TheTangentIsTakenFromTheStartOfTheDraft) {
  Board board;
  board.sketch.addCircle({0, 0}, 30);
  board.sketch.activateTool(SketchTool::line);
  board.press({50, 0});
  board.drag({18.5, 24.5});
  EXPECT_EQ(board.feedback(), "Tangent · Circle 1");
  EXPECT_NEAR(board.sketch.draft->value().current.y, 24, 1e-9);
  board.drag({-18.5, 24.5});
  EXPECT_NE(board.feedback(), "Tangent · Circle 1");
}

TEST(WallTool, DrawsWithTheActiveSystemAndSelectsNothing) {
  Board board;
  const WallSystemSpec second = board.sketch.wallSystemSpecs->at(1);
  board.sketch.setActiveWallSystem(second);
  board.sketch.activateTool(SketchTool::wall);
  board.stroke({0, 0}, {0, 40});
  ASSERT_EQ(board.entities().size(), 1U);
  EXPECT_EQ(std::get<WallEntity>(board.entities()[0]).systemSpecID, second.id);
  EXPECT_TRUE(board.sketch.selectedEntityIDs->empty());
}

TEST(CircleAndRectangle, KeepRawPointsWithoutGridAndAreDroppedWhenTooSmall) {
  Board board;
  board.sketch.setShowGrid(false);
  board.sketch.activateTool(SketchTool::circle);
  board.stroke({0.3, 0.3}, {4.3, 3.3});
  ASSERT_EQ(board.entities().size(), 1U);
  const auto circle = std::get<CircleEntity>(board.entities()[0]);
  EXPECT_NEAR(circle.center.x, 0.3, 1e-12);
  EXPECT_NEAR(circle.radius, 5, 1e-12);

  board.sketch.activateTool(SketchTool::rectangle);
  board.press({60, 60});
  board.drag({55, 60.5});
  EXPECT_EQ(board.sketch.draftMeasurementText(), "Width 5 · Height 0.5");
  board.release({55, 60.5});
  EXPECT_EQ(board.entities().size(), 1U) << "a side of 0.5 is too short";
  board.stroke({60, 60}, {55, 50});
  const auto rectangle = std::get<RectangleEntity>(board.entities()[1]);
  EXPECT_EQ(rectangle.origin, (SketchPoint{55, 50})) << "the lower left of the two points";
  EXPECT_EQ(rectangle.size, (SketchSize{5, 10}));
}

TEST(Drafts, AreMeasuredInTheDirectionOfTheLengthOne) {
  EXPECT_FALSE(isDraftLargeEnough(SketchTool::line, {{0, 0}, {0.9, 0}}));
  EXPECT_TRUE(isDraftLargeEnough(SketchTool::line, {{0, 0}, {0, -1}}));
  EXPECT_FALSE(isDraftLargeEnough(SketchTool::rectangle, {{0, 0}, {5, 0.5}}));
  EXPECT_FALSE(draftedEntity(SketchTool::polygon, {{0, 0}, {5, 5}}, {}));
}

// --- Polygons

TEST(PolygonTool, GrowsByClicksAndClosesOverItsVertices) {
  Board board;
  board.sketch.activateTool(SketchTool::polygon);
  board.click({0, 0});
  EXPECT_EQ(board.feedback(), "Major grid intersection") << "the snap of the click stands";
  EXPECT_EQ(*board.sketch.snapGuideAnchor, (SketchPoint{0, 0}));
  board.hover({40.5, 0.5});
  EXPECT_EQ(board.sketch.polygonDraft->value().current, (SketchPoint{40, 0}));
  EXPECT_EQ(board.sketch.draftMeasurementText(), "Vertices 1 · Segment 40");
  board.click({40, 0});
  EXPECT_FALSE(board.sketch.closePolygon());
  EXPECT_TRUE(*board.sketch.polygonDraft) << "two vertices do not close";
  board.click({40, 30});
  EXPECT_TRUE(board.sketch.closePolygon());
  ASSERT_EQ(board.entities().size(), 1U);
  EXPECT_THAT(std::get<PolygonEntity>(board.entities()[0]).vertices.list(),
              ElementsAre(SketchPoint{0, 0}, SketchPoint{40, 0}, SketchPoint{40, 30}));
  EXPECT_EQ(board.sketch.selectedTool, SketchTool::polygon);
  EXPECT_TRUE(board.hasNoSnapState());
  EXPECT_EQ(board.undoSteps(), 1U);
}

TEST(PolygonTool, APressThatTravelsEightViewPointsPlacesNoVertex) {
  Board board;
  board.sketch.activateTool(SketchTool::polygon);
  board.gestures.press({400, 300});
  board.gestures.release({400, 308});
  EXPECT_FALSE(*board.sketch.polygonDraft);
  board.gestures.press({400, 300});
  board.gestures.drag({500, 300});
  board.gestures.release({407.9, 300});
  EXPECT_THAT(board.sketch.polygonDraft->value().vertices, ElementsAre(SketchPoint{0, 0}))
      << "at the press, and only the distance at the release counts";
}

TEST(PolygonTool, ADoubleClickAddsItsVerticesAndCloses) {
  Board board;
  board.sketch.activateTool(SketchTool::polygon);
  board.click({0, 0});
  board.click({40, 0});
  board.click({40, 40});
  board.click({40, 40});
  board.gestures.doubleClick();
  ASSERT_EQ(board.entities().size(), 1U);
  EXPECT_EQ(std::get<PolygonEntity>(board.entities()[0]).vertices.size(), 4U);
  EXPECT_FALSE(*board.sketch.polygonDraft);
}

// --- Tools and the escape ladder

TEST(Tools, LeavingTheTrimToolDropsItsEdgeAndItsSelection) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.activateTool(SketchTool::trim);
  board.click({20, 0});
  EXPECT_TRUE(*board.sketch.trimCuttingEdgeEntityID);
  EXPECT_EQ(board.sketch.selectedEntityIDs->size(), 1U);
  board.sketch.activateTool(SketchTool::line);
  EXPECT_FALSE(*board.sketch.trimCuttingEdgeEntityID);
  EXPECT_TRUE(board.sketch.selectedEntityIDs->empty());
}

TEST(Tools, ChangingTheToolEndsADrag) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.press({13, 0});
  board.drag({13, 21});
  board.sketch.activateTool(SketchTool::pan);
  EXPECT_FALSE(*board.sketch.selectDrag);
  EXPECT_EQ(board.line(0).from.y, 20) << "another tool finishes the drag";
  EXPECT_EQ(board.undoSteps(), 2U);
  board.release({13, 21});

  board.sketch.activateSelectTool();
  board.press({13, 20});
  board.drag({13, 43});
  board.sketch.activateSelectTool();
  EXPECT_EQ(board.line(0).from.y, 20) << "the select tool takes it back";
  EXPECT_EQ(board.undoSteps(), 2U);

  board.press({13, 43});
  board.drag({50, 60});
  ASSERT_TRUE(*board.sketch.selectMarquee);
  board.sketch.activateTool(SketchTool::pan);
  EXPECT_FALSE(*board.sketch.selectMarquee);
}

TEST(Escape, TakesOneStepOfTheLadderAtATime) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.activateTool(SketchTool::line);
  board.press({-30, -30});
  board.drag({0.2, 0.2});
  ASSERT_TRUE(*board.sketch.pendingTrackingAcquire);
  board.sketch.handleEscape();
  EXPECT_FALSE(*board.sketch.pendingTrackingAcquire) << "first the dwell";
  EXPECT_TRUE(*board.sketch.draft);
  EXPECT_TRUE(board.hasNoSnapState());
  board.sketch.handleEscape();
  EXPECT_FALSE(*board.sketch.draft) << "then the draft and the tool";
  EXPECT_EQ(board.sketch.selectedTool, SketchTool::select);
  board.gestures.forgetPress();

  board.click({20, 0});
  board.hover({20, 0});
  board.press({20, 0});
  board.drag({20, 30});
  board.sketch.handleEscape();
  EXPECT_EQ(board.line(0).from, (SketchPoint{0, 0})) << "a drag is taken back";
  EXPECT_EQ(board.sketch.selectedEntityIDs->size(), 1U);
  board.gestures.forgetPress();
  board.press({100, 30});
  board.drag({90, 20});
  ASSERT_TRUE(*board.sketch.selectMarquee);
  board.sketch.handleEscape();
  EXPECT_FALSE(*board.sketch.selectMarquee);
  EXPECT_EQ(board.sketch.selectedEntityIDs->size(), 1U);
  board.sketch.handleEscape();
  EXPECT_TRUE(board.sketch.selectedEntityIDs->empty());
  EXPECT_FALSE(*board.sketch.hoveredEntityID);
}

TEST(Escape, LeavesTheLengthEditorBeforeAnythingElse) {
  Board board;
  board.sketch.activateTool(SketchTool::line);
  board.press({0, 0});
  board.drag({30, 0});
  board.sketch.beginSegmentLengthEdit();
  EXPECT_EQ(*board.sketch.segmentLengthEditText, "30'");
  board.hover({35, 0});
  EXPECT_TRUE(*board.sketch.isSegmentLengthEditing) << "hovering does not close it";
  board.sketch.handleEscape();
  EXPECT_FALSE(*board.sketch.isSegmentLengthEditing);
  EXPECT_TRUE(*board.sketch.draft);
}

// --- Hovering

TEST(Hover, ShowsTheEntityUnderTheSelectAndTrimTools) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.addPolygon({{0, 50}, {40, 50}, {20, 70}});
  board.hover({20, 1});
  EXPECT_EQ(*board.sketch.hoveredEntityID, board.idOf(0));
  EXPECT_EQ(*board.sketch.hoverViewPoint, board.view({20, 1}));
  EXPECT_EQ(*board.sketch.cursorSketchPoint, (SketchPoint{20, 1}));

  board.sketch.activateTool(SketchTool::trim);
  EXPECT_TRUE(*board.sketch.hoveredEntityID) << "until the next hover";
  board.hover({20, 50});
  EXPECT_FALSE(*board.sketch.hoveredEntityID) << "a polygon cannot be trimmed";
  EXPECT_FALSE(*board.sketch.hoverViewPoint);
  board.hover({20, 0});
  EXPECT_EQ(*board.sketch.hoveredEntityID, board.idOf(0));
  board.gestures.leave();
  EXPECT_FALSE(*board.sketch.hoveredEntityID);
  EXPECT_FALSE(*board.sketch.cursorSketchPoint);
}

TEST(Hover, OffersEntityPointsButNoGridBeforeTheFirstPointOfACircle) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.activateTool(SketchTool::circle);
  board.hover({20.5, 0.5});
  EXPECT_EQ(board.feedback(), "Midpoint · Line 1");
  EXPECT_FALSE(*board.sketch.pendingTrackingAcquire);
  board.hover({60, 50});
  EXPECT_TRUE(board.hasNoSnapState());
  board.press({60, 50});
  board.hover({80, 50});
  EXPECT_EQ(board.sketch.draft->value().current, (SketchPoint{60, 50})) << "a draft does not follow";
}

TEST(Hover, OnACanvasWithoutSizeShowsNothing) {
  testing::TestSketch test;
  test.sketch.hoverMoved(SketchPoint{10, 10});
  EXPECT_FALSE(*test.sketch.cursorSketchPoint);
  EXPECT_FALSE(*test.sketch.hoveredEntityID);
}

TEST(Hover, TellsObserversOnceAMoveAndNotAtAllWhenNothingChanges) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.activateTool(SketchTool::line);
  int told = 0;
  FieldMask fields = 0;
  const auto subscription = board.sketch.observe(kAllFields, [&](const SketchChange& change) {
    ++told;
    fields |= change.fields;
  });
  board.hover({0.5, 0.5});
  EXPECT_EQ(told, 1);
  EXPECT_EQ(fields, fieldMask(SketchField::cursorSketchPoint, SketchField::activeEntitySnapPoint,
                              SketchField::snapFeedback, SketchField::pendingTrackingAcquire,
                              SketchField::trackingAcquireDwellStart));
  board.hover({0.5, 0.5});
  EXPECT_EQ(told, 1);
}

// --- The end of a gesture before its release

TEST(Gestures, OnceEndedFromElsewhereDoNothingUntilTheNextPress) {
  using Steps = std::function<void(Board&)>;
  struct Case {
    const char* name;
    SketchTool tool;
    Steps before, end;
    SketchPoint from{13, 0}, to{33, 22};
  };
  const auto type = [](const char* text) { return [text](Board& board) { board.reply(text); }; };
  const auto choose = [](SketchTool tool) {
    return [tool](Board& board) { board.sketch.activateTool(tool); };
  };
  const Steps escape = [](Board& board) { board.sketch.handleEscape(); };
  const Steps undo = [](Board& board) { board.sketch.undo(); };
  const Steps moveFar = [](Board& board) { board.drag({33, 22}); };
  const Steps nothing = [](Board&) {};
  const Steps thereAndBack = [](Board& board) {
    board.sketch.activateTool(SketchTool::pan);
    board.sketch.activateTool(SketchTool::select);
  };
  const Steps twoVertices = [](Board& board) {
    board.release({13, 0});
    board.click({40, 0});
    board.click({40, 40});
    board.press({13, 40});
  };
  const std::vector<Case> cases{
      {"line, Escape on empty paper", SketchTool::line, nothing, escape, {-20, 40}, {13, 0}},
      {"line, Escape", SketchTool::line, moveFar, escape},
      {"line, a typed size", SketchTool::line, moveFar, type("20 90")},
      {"line, undo", SketchTool::line, moveFar, undo},
      {"line, its own tool again", SketchTool::line, moveFar, choose(SketchTool::line)},
      {"line, another tool", SketchTool::line, moveFar, choose(SketchTool::wall)},
      {"line, the trim command, which keeps the draft", SketchTool::line, moveFar, type("trim")},
      {"circle, clear", SketchTool::circle, moveFar, type("clear")},
      {"polygon, closed",
       SketchTool::polygon,
       twoVertices,
       [](Board& b) { b.sketch.closePolygon(); },
       {13, 0},
       {13, 40}},
      {"polygon, not begun, another tool",
       SketchTool::polygon,
       nothing,
       choose(SketchTool::line),
       {13, 0},
       {13, 0}},
      {"body drag, Escape", SketchTool::select, moveFar, escape},
      {"body drag, undo", SketchTool::select, moveFar, undo},
      {"body drag, another tool", SketchTool::select, moveFar, choose(SketchTool::line)},
      {"marquee, Escape", SketchTool::select, moveFar, escape, {-20, 40}, {13, 0}},
      {"select, not begun, there and back", SketchTool::select, nothing, thereAndBack},
      {"click, there and back", SketchTool::select, nothing, thereAndBack, {13, 0}, {13, 0}},
      {"trim, a click, another tool",
       SketchTool::trim,
       nothing,
       choose(SketchTool::rectangle),
       {13, 0},
       {13, 0}},
      {"pan, another tool", SketchTool::pan, nothing, choose(SketchTool::select)},
  };
  for (const Case& one : cases) {
    SCOPED_TRACE(one.name);
    Board board;
    board.sketch.addLine({0, 0}, {40, 0});
    board.sketch.addLine({0, 60}, {40, 60});
    board.sketch.activateTool(one.tool);
    board.press(one.from);
    one.before(board);
    one.end(board);
    EXPECT_FALSE(board.gestures.isPressed());
    const auto revision = board.sketch.revision();
    board.drag(one.to);
    board.drag(one.to + SketchPoint{0.5, 0});
    board.release(one.to);
    EXPECT_EQ(board.sketch.revision(), revision);
    board.sketch.activateTool(SketchTool::line);
    board.stroke({-80, -40}, {-80, -60});
    EXPECT_EQ(std::get<LineEntity>(board.entities().back()).from, (SketchPoint{-80, -40}));
  }
}

TEST(Gestures, GoOnWhenNothingOfThemHasEnded) {
  Board board;
  board.sketch.activateTool(SketchTool::line);
  board.press({0, 0});
  board.drag({20, 0});
  // A chain that fails at its run and takes its change of tool back.
  board.reply("select; wall 0 60 5 60; wall 5 60 9 60; select 2; assign CMU-8");
  board.reply("zoom in");
  board.drag({40, 0});
  board.release({40, 0});
  ASSERT_EQ(board.entities().size(), 1U);
  EXPECT_EQ(board.line(0).to, (SketchPoint{40, 0}));
}

// --- Events that are none

TEST(Gestures, IgnoreWhatHasNoPressAndWhatIsNoPlace) {
  Board board;
  const double nan = std::numeric_limits<double>::quiet_NaN();
  board.sketch.activateTool(SketchTool::line);
  board.drag({0, 0});
  board.release({50, 0});
  board.gestures.press({nan, 0});
  board.gestures.release({500, 300});
  EXPECT_TRUE(board.entities().empty());
  board.gestures.press({400, 300});
  board.gestures.drag({nan, nan});
  board.gestures.drag({1e300, -1e300});
  board.gestures.release({1e300, 0});
  board.gestures.hover({nan, 0});
  board.gestures.magnify({nan, 0}, 1);
  board.gestures.magnify({0, 0}, -1);
  board.gestures.scroll(nan, 0);
  EXPECT_EQ(*board.sketch.viewport, (SketchViewport{{400, 300}, 4}));
}

TEST(Gestures, ScrollAndPinchMoveTheView) {
  Board board;
  board.gestures.scroll(-12.5, 30);
  EXPECT_EQ(board.sketch.viewport->pan, (SketchPoint{387.5, 330}));
  const SketchPoint under = viewPointToSketch({100, 100}, board.sketch.viewport);
  board.gestures.magnify({100, 100}, 0.5);
  EXPECT_EQ(board.sketch.viewport->scale, 6);
  EXPECT_NEAR(viewPointToSketch({100, 100}, board.sketch.viewport).x, under.x, 1e-9);
  testing::TestSketch unsized;
  CanvasGestures gestures(unsized.sketch);
  gestures.scroll(5, 5);
  gestures.magnify({0, 0}, 1);
  EXPECT_EQ(*unsized.sketch.viewport, SketchViewport());
}

}  // namespace
}  // namespace ostrelon
