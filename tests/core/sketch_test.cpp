// Editing, undo steps and how observers are notified of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct SketchTest : ::testing::Test, testing::TestWorkspace {
  std::vector<FieldMask> told;
  Subscription subscription =
      workspace.observe(kAllFields, [this](FieldMask changed) { told.push_back(changed); });

  // What observers have heard since the last call.
  std::vector<FieldMask> heard() { return std::exchange(told, {}); }
  FieldMask editFields() const { return fieldsOf(sketch.drawing, sketch.undoStack, sketch.isDirty); }
};

TEST_F(SketchTest, OneOperationIsOneNotificationOfExactlyItsFields) {
  addWall(sketch, std::nullopt, {0, 0}, {10, 0});
  EXPECT_THAT(heard(), ElementsAre(editFields() | sketch.selection.bit()));
  addLine(sketch, {0, 0}, {10, 0});
  EXPECT_THAT(heard(), ElementsAre(fieldsOf(sketch.drawing, sketch.undoStack))) << "dirty before";
  setShowGrid(sketch, false);
  EXPECT_THAT(heard(), ElementsAre(sketch.drawing.bit()));
  submit("circle 0 0 1; rect 0 0 2 2");
  std::erase_if(told, [&](FieldMask fields) { return (fields & editFields()) == 0; });
  ASSERT_EQ(told.size(), 1U) << "a chain";
  EXPECT_EQ(heard().front() & editFields(), fieldsOf(sketch.drawing, sketch.undoStack));
  board.undo();
  EXPECT_THAT(heard(), ElementsAre(fieldsOf(sketch.drawing, sketch.undoStack, messages.lines)));

  const auto revision = workspace.revision();
  addPolygon(sketch, {{0, 0}, {1, 1}});
  setShowGrid(sketch, false);
  setActiveWallSystem(sketch, messages, *sketch.drawing->activeWallSystem());
  sketch.clearSelection();
  heard();
  sketch.clearSelection();
  sketch.redo();
  heard();
  EXPECT_FALSE(sketch.redo());
  EXPECT_THAT(heard(), IsEmpty()) << "what changes nothing is heard by nobody";
  EXPECT_EQ(workspace.revision(), revision + 2);
}

TEST_F(SketchTest, ObserversHearOfTheirFieldsAloneAndMayComeAndGoMeanwhile) {
  int first = 0;
  int second = 0;
  Subscription other;
  std::optional<Subscription> own;
  own = workspace.observe(sketch.drawing.bit(), [&](FieldMask) {
    ++first;
    other = workspace.observe(sketch.drawing.bit(), [&](FieldMask) { ++second; });
    own.reset();
  });
  console.setInput("line");
  selectAll(sketch);
  EXPECT_EQ(first, 0);
  setShowGrid(sketch, false);
  setShowGrid(sketch, true);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 1);
}

TEST_F(SketchTest, UndoTakesBackAndBringsBackWithoutReselecting) {
  addWall(sketch, std::nullopt, {0, 0}, {10, 0});
  const EntityList withWall = sketch.entities();
  board.clearSketch();
  board.undo();
  EXPECT_EQ(sketch.entities(), withWall);
  EXPECT_TRUE(sketch.selection->empty());
  sketch.selectOnly(entityID(withWall.front()));
  board.undo();
  EXPECT_TRUE(sketch.entities().empty());
  EXPECT_EQ(*sketch.selection, Selection()) << "cut down to what exists";
  board.redo();
  EXPECT_EQ(sketch.entities(), withWall);
  EXPECT_EQ(lines().back().text, "Redo.");
  board.undo();
  addLine(sketch, {0, 0}, {1, 1});
  EXPECT_FALSE(sketch.redo()) << "a new edit ends the redo history";
}

TEST_F(SketchTest, AGroupOfEditsIsOneStepOrNone) {
  addLine(sketch, {0, 0}, {1, 1});
  const testing::WorkspaceState before(*this);
  EXPECT_FALSE(sketch.asOneStep([&] {
    addWall(sketch, std::nullopt, {0, 0}, {10, 0});
    return false;
  }));
  EXPECT_EQ(testing::WorkspaceState(*this), before);

  const auto addTwo = [&] {
    addCircle(sketch, {0, 0}, 1);
    return sketch.asOneStep([&] {
      addCircle(sketch, {0, 0}, 2);
      return true;
    });
  };
  EXPECT_TRUE(sketch.asOneStep(addTwo));
  EXPECT_EQ(undoSteps(), before.undoSteps + 1);
  board.undo();
  EXPECT_EQ(sketch.entities().size(), 1U);
  EXPECT_TRUE(sketch.asOneStep([] { return true; }));
  EXPECT_TRUE(sketch.redo()) << "no change keeps the redo history";
}

TEST_F(SketchTest, ADragIsOneStepOrNone) {
  addLine(sketch, {0, 0}, {40, 0});
  const EntityList before = sketch.entities();
  const auto drag = [&](bool cancelled) {
    board.beginSelectDrag({13, 0});
    for (const double y : {10, 20, 30}) board.updateSelectDrag({13, y});
    cancelled ? board.cancelSelectDrag() : board.finishSelectDrag();
  };
  drag(true);
  EXPECT_EQ(undoSteps(), 1U);
  EXPECT_EQ(sketch.entities(), before);
  drag(false);
  EXPECT_EQ(undoSteps(), 2U);
  board.undo();
  EXPECT_EQ(sketch.entities(), before);
}

TEST(UndoStack, KeepsToItsLimits) {
  SketchUndoStack stack(2);
  for (int i = 0; i < 4; ++i)
    stack.pushUndoSnapshot({EntityList{CircleEntity{UUID::random(), {}, double(i)}}});
  ASSERT_EQ(stack.undoSnapshots().size(), 2u);
  EXPECT_EQ(std::get<CircleEntity>(stack.undoSnapshots().back().entities[0]).radius, 3);
  for (int i = 0; i < 3; ++i) stack.pushRedoSnapshot({});
  EXPECT_EQ(stack.redoSnapshots().size(), 2u);
  stack.appendUndoSnapshot({});
  EXPECT_EQ(stack.undoSnapshots().size(), 3u) << "redo goes beyond the limit";
  stack.replaceUndoSnapshots(std::vector<SketchUndoSnapshot>(25));
  EXPECT_EQ(stack.undoSnapshots().size(), kStoredUndoSnapshots);
}

TEST_F(SketchTest, OpeningsStayWhereTheyAreOnTheGroundAndGoWithTheirWalls) {
  addWall(sketch, std::nullopt, {0, 0}, {20, 0});
  const UUID wall = entityID(sketch.entities()[0]);
  sketch.edit([&](Drawing& drawing) { drawing.plan.openings = {{UUID::random(), wall, {}, 4, 3}}; });
  const auto distance = [&] { return sketch.drawing->plan.openings[0].distance; };
  const auto become = [&](SketchPoint from, SketchPoint to, UndoStep step = UndoStep::own) {
    replaceEntity(sketch, wall, WallEntity{wall, from, to, {}}, step);
  };
  become({0, 0}, {15, 0});
  EXPECT_EQ(distance(), 4);
  become({1, 0}, {15, 0});
  EXPECT_EQ(distance(), 3) << "from its end, as the start has moved";
  become({5, 5}, {5, 19});
  EXPECT_EQ(distance(), 3) << "the whole wall has moved";
  convertSelectedEntity(sketch, EntityConversionTarget::line);
  convertSelectedEntity(sketch, EntityConversionTarget::wall);
  EXPECT_EQ(distance(), 3);
  sketch.undo();
  sketch.undo();
  sketch.undo();
  sketch.undo();
  EXPECT_EQ(distance(), 4);
  EXPECT_EQ(sketch.undoStack->undoSnapshots().back().twin.plan, std::nullopt)
      << "what did not change costs nothing";

  const std::size_t steps = undoSteps();
  const Plan before = sketch.drawing->plan;
  sketch.beginDragStep();
  for (const double x : {0.1, 0.7, 19.9, 0.0}) become({x, 0}, {15, 0}, UndoStep::none);
  sketch.endDragStep();
  EXPECT_EQ(sketch.drawing->plan, before);
  EXPECT_EQ(undoSteps(), steps) << "out and back to exactly the start";

  duplicateSelection(sketch, messages, 1, 1);
  ASSERT_EQ(sketch.drawing->plan.openings.size(), 2U);
  EXPECT_EQ(sketch.drawing->plan.openings[1].wallID, entityID(sketch.entities()[1]));
  board.clearSketch();
  EXPECT_TRUE(sketch.drawing->plan.openings.empty());
  sketch.undo();
  EXPECT_EQ(sketch.drawing->plan.openings.size(), 2U);
  sketch.redo();
  EXPECT_TRUE(sketch.drawing->plan.openings.empty());
}

TEST_F(SketchTest, UndoTakesBackWhatAStepChangedOfTheWallSystemsAndNothingElse) {
  const std::vector<WallSystemSpec> before = sketch.drawing->wallSystemSpecs;
  sketch.asOneStep([&] {
    sketch.edit(
        [](Drawing& drawing) {
          drawing.wallSystemSpecs.erase(drawing.wallSystemSpecs.begin());
          drawing.wallSystemSpecs[0].thickness = 0.5;
        },
        UndoStep::withWallSystems);
    sketch.edit(
        [](Drawing& drawing) {
          drawing.wallSystemSpecs.push_back({UUID::random(), "New"});
        },
        UndoStep::withWallSystems);
    return true;
  });
  EXPECT_EQ(undoSteps(), 1U);
  WallSystemSpec noted = sketch.drawing->wallSystemSpecs[0];
  noted.assemblyNotes = "panel";
  updateWallSystemSpec(sketch, noted);
  const std::vector<WallSystemSpec> after = sketch.drawing->wallSystemSpecs;
  sketch.undo();
  std::vector<WallSystemSpec> expected = before;
  expected[1].assemblyNotes = "panel";
  EXPECT_EQ(sketch.drawing->wallSystemSpecs, expected);
  sketch.redo();
  EXPECT_EQ(sketch.drawing->wallSystemSpecs, after);
}

}  // namespace
}  // namespace ostrelon
