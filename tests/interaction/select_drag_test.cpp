// The select tool's gestures: clicks, marquees, and drags of handles, entities and groups.
#include <gmock/gmock.h>

#include "geometry/selection_handles.h"
#include "interaction/board.h"

namespace ostrelon {
namespace {

using testing::Board;
using ::testing::UnorderedElementsAre;

TEST(SelectClick, PicksAtThePressWhenTheReleaseIsNear) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  const std::size_t steps = board.undoSteps();
  board.gestures.press(board.view({20, 0}));
  board.gestures.drag(board.view({20, 0}) + SketchPoint{7.9, 0});
  EXPECT_TRUE(board.sketch.selectedEntityIDs->empty()) << "nothing changes before the release";
  board.gestures.release(board.view({20, 0}) + SketchPoint{7.9, 0});
  EXPECT_THAT(*board.sketch.selectedEntityIDs, UnorderedElementsAre(board.idOf(0)));
  EXPECT_EQ(board.undoSteps(), steps) << "a click leaves no step";

  board.gestures.press(board.view({0, 60}));
  board.gestures.release(board.view({0, 60}) + SketchPoint{8, 0});
  EXPECT_EQ(board.sketch.selectedEntityIDs->size(), 1U) << "a jump of 8 without a move does nothing";
  board.click({0, 60}, true);
  EXPECT_EQ(board.sketch.selectedEntityIDs->size(), 1U) << "Shift beside everything keeps the selection";
  board.click({0, 60});
  EXPECT_TRUE(board.sketch.selectedEntityIDs->empty());
}

TEST(Marquee, DirectionDecidesAndShiftAtTheReleaseAdds) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.addLine({0, 30}, {4, 30});
  board.stroke({-10, -10}, {10, 10});
  EXPECT_TRUE(board.sketch.selectedEntityIDs->empty()) << "left to right takes only what lies inside";
  board.stroke({10, 10}, {-10, -10});
  EXPECT_THAT(*board.sketch.selectedEntityIDs, UnorderedElementsAre(board.idOf(0)));
  board.press({-10, 20});
  board.drag({-5, 25});
  board.drag({20, 40});
  EXPECT_EQ(board.sketch.selectMarquee->value().currentSketchPoint, (SketchPoint{20, 40}));
  board.release({20, 40}, true);
  EXPECT_THAT(*board.sketch.selectedEntityIDs, UnorderedElementsAre(board.idOf(0), board.idOf(1)));
  EXPECT_FALSE(*board.sketch.selectMarquee);
}

TEST(BodyDrag, MovesAnUnselectedEntityAloneInOneUndoStep) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.addLine({0, 60}, {40, 60});
  board.click({20, 60});
  const std::size_t steps = board.undoSteps();
  board.press({13, 0});
  board.drag({16, 12});
  EXPECT_THAT(*board.sketch.selectedEntityIDs, UnorderedElementsAre(board.idOf(0)));
  board.drag({15, 21});
  EXPECT_EQ(board.feedback(), "Grid line");
  EXPECT_EQ(board.line(0).from, (SketchPoint{2, 20})) << "the pointer lands on the grid line y = 20";
  board.release({15, 21});
  EXPECT_EQ(board.undoSteps(), steps + 1);
  EXPECT_TRUE(board.hasNoSnapState());
  board.sketch.undo();
  EXPECT_EQ(board.line(0).from, (SketchPoint{0, 0}));
}

TEST(BodyDrag, SnapsItsOwnPointsToThoseOfOthers) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.addLine({60, 33}, {60, 70});
  board.press({13, 0});
  board.drag({33.5, 32});
  EXPECT_EQ(board.line(0).to, (SketchPoint{60, 33}));
  EXPECT_EQ(board.feedback(), "Endpoint · Line 2");
  EXPECT_EQ(*board.sketch.activeEntitySnapPoint, (SketchPoint{60, 33}));
  EXPECT_EQ(*board.sketch.activeEntitySnapSourcePoint, (SketchPoint{60.5, 32}));
}

TEST(BodyDrag, LocksToAnAxisOnlyWhenTheGridIsOff) {
  Board board;
  board.sketch.addCircle({0, 0}, 20);
  board.sketch.setShowGrid(false);
  board.press({20, 0});
  board.drag({45.5, 1});
  EXPECT_EQ(std::get<CircleEntity>(board.entities()[0]).center, (SketchPoint{25.5, 0}));
  EXPECT_EQ(board.feedback(), "Snapped to X-axis");
  board.drag({20, 0});
  board.release({20, 0});
  EXPECT_EQ(board.undoSteps(), 1U) << "out and back leaves no step";
}

TEST(GroupDrag, MovesTheWholeSelectionByOneStepWithoutTheGrid) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.addCircle({0, 60}, 5);
  board.sketch.addLine({100, 22}, {140, 22});
  board.click({20, 0});
  board.click({5, 60}, true);
  const std::size_t steps = board.undoSteps();
  board.press({13, 0});
  board.drag({23.25, 6});
  EXPECT_EQ(board.line(0).from, (SketchPoint{10.25, 6}));
  EXPECT_EQ(std::get<CircleEntity>(board.entities()[1]).center, (SketchPoint{10.25, 66}));
  board.drag({73.5, 21});
  EXPECT_EQ(board.line(0).to, (SketchPoint{100, 22}));
  EXPECT_EQ(board.feedback(), "Endpoint · Line 3") << "numbered in the whole document";
  EXPECT_EQ(std::get<CircleEntity>(board.entities()[1]).center, (SketchPoint{60, 82}));
  board.release({73.5, 21});
  EXPECT_EQ(board.undoSteps(), steps + 1);
  EXPECT_EQ(board.sketch.selectedEntityIDs->size(), 2U);
}

TEST(GroupDrag, GoesOnWhenOthersHaveChangedTheDrawingMeanwhile) {
  Board board;
  for (const double y : {-60.0, 0.0, 30.0, 60.0}) board.sketch.addLine({0, y}, {40, y});
  board.sketch.selectEntities({1, 3});
  const UUID lead = board.idOf(1);
  const UUID other = board.idOf(3);
  board.press({13, 0});
  board.drag({33, 3});
  board.drag({33, 7});
  board.sketch.deleteEntity(board.idOf(0));
  board.drag({33, 11});
  const auto lineOf = [&](const UUID& id) { return std::get<LineEntity>(*board.sketch.entity(id)); };
  EXPECT_EQ(lineOf(lead).from, (SketchPoint{20, 11}));
  EXPECT_EQ(lineOf(other).from, (SketchPoint{20, 71}));
  EXPECT_EQ(board.line(1).from, (SketchPoint{0, 30})) << "the one between them stays";
  board.sketch.deleteEntity(other);
  board.drag({33, 15});
  EXPECT_EQ(lineOf(lead).from, (SketchPoint{20, 15}));
  EXPECT_EQ(board.entities().size(), 2u);
  board.release({33, 15});
}

TEST(HandleDrag, TakesPrecedenceAndKeepsTheReferenceAngle) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.addLine({41, -1}, {41, 20});
  board.click({20, 0});
  board.press({41, 0.5});
  board.drag({55, 0.5});
  EXPECT_EQ(board.line(0).to, (SketchPoint{55, 0}))
      << "the end of the selected line, though the other is nearer";
  EXPECT_EQ(*board.sketch.handleDragReferenceAngle, 0);
  EXPECT_EQ(*board.sketch.snapGuideAnchor, (SketchPoint{0, 0}));
  EXPECT_EQ(board.feedback(), "Snapped to X-axis");
  board.release({55, 0.5});
  EXPECT_FALSE(*board.sketch.handleDragReferenceAngle);
  EXPECT_EQ(board.undoSteps(), 3U);
}

TEST(HandleDrag, OfAnArcMovesNothingAndLeavesNoStep) {
  Board board;
  board.sketch.addCircle({0, 0}, 20);
  board.sketch.addLine({-50, 0}, {50, 0});
  board.sketch.activateTool(SketchTool::trim);
  board.click({40, 0});
  board.click({0, -20});
  board.sketch.activateSelectTool();
  ASSERT_TRUE(std::holds_alternative<ArcEntity>(board.entities()[0]));
  board.click({0, 20});
  const testing::DocumentState before(board.sketch);
  board.stroke({20, 0}, {50, 50});
  EXPECT_EQ(testing::DocumentState(board.sketch), before);
  EXPECT_FALSE(*board.sketch.selectDrag);
}

TEST(HandleDrag, RectangleCornersFollowThePointerOnBothAxes) {
  Board board;
  board.sketch.setShowGrid(false);
  board.sketch.addRectangle({0, 0}, {40, 20});
  board.click({20, 0});
  board.stroke({40, 0}, {55.6, -11.2});
  const auto rectangle = std::get<RectangleEntity>(board.entities()[0]);
  EXPECT_EQ(rectangle.origin.y + rectangle.size.height, 20);
  EXPECT_EQ(rectangle.origin, (SketchPoint{0, -11}));
  EXPECT_EQ(rectangle.size, (SketchSize{56, 31}));
}

TEST(SelectDrag, OfAnEntityThatWentAwayStopsSilently) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.press({13, 0});
  board.drag({13, 30});
  board.sketch.undo();
  EXPECT_FALSE(*board.sketch.selectDrag);
  board.drag({13, 50});
  board.release({13, 50});
  EXPECT_TRUE(board.entities().empty());
}

TEST(SelectDrag, ASecondaryClickMeanwhileChangesNothing) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.press({13, 0});
  board.drag({13, 23});
  EXPECT_FALSE(board.gestures.contextMenu(board.view({100, 60})));
  board.release({13, 23});
  EXPECT_EQ(board.undoSteps(), 2U) << "the drag is still one step";
}

TEST(SelectDrag, CancelledWithWhatWasAddedMeanwhileLeavesNothingSelected) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.press({13, 0});
  board.drag({13, 30});
  board.reply("wall 0 60 10 60");
  board.sketch.showEntityInspector();
  board.sketch.handleEscape();
  EXPECT_EQ(board.entities().size(), 1U);
  EXPECT_TRUE(board.sketch.selectedEntityIDs->empty());
  EXPECT_FALSE(*board.sketch.primarySelectedEntityID);
  EXPECT_FALSE(*board.sketch.isEntityInspectorVisible);
  board.sketch.undo();
  EXPECT_EQ(board.entities().size(), 2U) << "undo brings back what was added";
}

TEST(SelectDrag, EditsMeanwhileAreUndoneInOrder) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  std::vector<EntityList> course{board.entities()};
  board.press({13, 0});
  board.drag({13, 20});
  course.push_back(board.entities());
  board.reply("line 0 60 10 60");
  course.push_back(board.entities());
  board.reply("circle 0 60 5; circle 0 60 8");
  board.drag({13, 30});
  board.release({13, 30});
  while (!course.empty()) {
    board.sketch.undo();
    EXPECT_EQ(board.entities(), course.back()) << course.size();
    course.pop_back();
  }

  board.sketch.redo();
  board.press({13, 0});
  board.drag({13, 20});
  board.drag({13, 0});
  board.reply("line 0 60 10 60");
  const std::size_t steps = board.undoSteps();
  board.release({13, 0});
  EXPECT_EQ(board.undoSteps(), steps) << "what was not dragged takes no step";
}

// --- The canvas gesture of the trim tool

TEST(TrimClick, CutsAtThePressAndSaysSo) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.addLine({20, -20}, {20, 20});
  board.sketch.addPolygon({{0, 50}, {40, 50}, {20, 70}});
  board.sketch.activateTool(SketchTool::trim);
  const auto last = [&] { return board.sketch.consoleLines->back(); };
  board.click({20, 10});
  EXPECT_EQ(last().text, "Line 2 set as cutting edge. Click entities to trim.");
  EXPECT_FALSE(last().isError);
  EXPECT_FALSE(last().isSystem);
  board.click({20, 10});
  EXPECT_EQ(last().text, "Cannot trim the cutting edge with itself.");
  EXPECT_TRUE(last().isError);
  board.click({20, 50});
  EXPECT_EQ(last().text, "Entity type cannot be trimmed.");
  EXPECT_TRUE(last().isError);

  board.gestures.press(board.view({35, 0}));
  board.gestures.release(board.view({35, 0}) + SketchPoint{8, 0});
  EXPECT_EQ(board.line(0).to.x, 40) << "a drag is no click";
  board.click({35, 0});
  EXPECT_EQ(board.line(0).to.x, 20);
  EXPECT_EQ(last().text, "Entity 1 trimmed at intersection with Entity 2.");
  EXPECT_FALSE(last().isError);

  const std::size_t lines = board.sketch.consoleLines->size();
  board.click({-80, -60});
  EXPECT_FALSE(*board.sketch.trimCuttingEdgeEntityID) << "beside everything drops the edge";
  EXPECT_EQ(board.sketch.consoleLines->size(), lines);
}

// --- The context menu

TEST(ContextMenu, SelectsWhatIsUnderThePointerUnderAnyTool) {
  Board board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.sketch.addWall(std::nullopt, {0, 50}, {40, 50});
  board.sketch.activateTool(SketchTool::circle);
  const auto line = board.gestures.contextMenu(board.view({10, 0}));
  ASSERT_TRUE(line);
  EXPECT_EQ(contextMenuTitles(*line), (std::vector<std::string>{"Inspect", "-", "Duplicate", "Delete"}));
  EXPECT_EQ(line->front().shortcut, "⌘I");
  EXPECT_THAT(*board.sketch.selectedEntityIDs, UnorderedElementsAre(board.idOf(0)));

  EXPECT_FALSE(board.gestures.contextMenu(board.view({90, 60})));
  EXPECT_TRUE(board.sketch.selectedEntityIDs->empty());
}

TEST(ContextMenu, OfAWallChangesItsSystem) {
  Board board;
  board.sketch.addWall(std::nullopt, {0, 50}, {40, 50});
  const auto menu = board.gestures.contextMenu(board.view({10, 50}));
  ASSERT_TRUE(menu);
  EXPECT_EQ(menu->back().title, "Change Wall System");
  const auto systems = std::get<ContextMenuSubmenu>(menu->back().content);
  ASSERT_EQ(systems.size(), 3U);
  EXPECT_EQ(systems[2].title, "CMU-8");
  runContextMenuItem(systems[2], board.sketch);
  EXPECT_EQ(std::get<WallEntity>(board.entities()[0]).systemSpecID, board.sketch.wallSystemSpecs->at(2).id);
  EXPECT_EQ(board.sketch.consoleLines->back().text, "Wall system set to CMU-8.");

  runContextMenuItem((*menu)[2], board.sketch);
  EXPECT_EQ(board.entities().size(), 2U);
  runContextMenuItem((*menu)[3], board.sketch);
  EXPECT_EQ(board.entities().size(), 1U) << "the copy was the selection";
  board.gestures.contextMenu(board.view({10, 50}));
  runContextMenuItem((*menu)[0], board.sketch);
  EXPECT_TRUE(*board.sketch.isEntityInspectorVisible);
}

TEST(ContextMenu, NeedsACanvas) {
  testing::TestSketch test;
  test.sketch.addLine({0, 0}, {40, 0});
  CanvasGestures gestures(test.sketch);
  EXPECT_FALSE(gestures.contextMenu({0, 0}));
  EXPECT_TRUE(test.sketch.selectedEntityIDs->empty());
}

}  // namespace
}  // namespace ostrelon
