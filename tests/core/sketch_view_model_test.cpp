#include "app/workspace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/test_workspace.h"
#include "core/adding.h"
#include "geometry/edit_operations.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using testing::TestWorkspace;

struct Recorder {
  explicit Recorder(Workspace& workspace)
      : last(workspace.sketch.entities()),
        subscription(workspace.observe(kAllFields, [this, &workspace](FieldMask changed) {
          changes.push_back(changed);
          differences.push_back(EntityList::difference(last, workspace.sketch.entities()));
          last = workspace.sketch.entities();
        })) {}
  EntityList last;
  std::vector<FieldMask> changes;
  std::vector<EntityList::Difference> differences;
  Subscription subscription;
};

TEST(SketchViewModel, StartsWithTwoLinesAndTheBuiltInSystems) {
  TestWorkspace t;
  ASSERT_EQ(t.messages.lines->size(), 2u);
  EXPECT_EQ(t.messages.lines->front().text, "Ostrelon console ready.");
  EXPECT_TRUE(t.messages.lines->back().isSystem);
  EXPECT_EQ(t.sketch.drawing->activeWallSystem()->name, "W2-INT");
  EXPECT_FALSE(t.document.isDirty());
}

TEST(SketchViewModel, TellsOncePerOperationWithExactlyTheChangedFields) {
  TestWorkspace t;
  Recorder recorder(t.sketch);
  addWall(t.sketch, std::nullopt, {0, 0}, {10, 0});
  EXPECT_THAT(
      recorder.changes,
      ElementsAre(fieldMask(SketchField::entities, SketchField::undoStack, SketchField::isDocumentDirty,
                            SketchField::selectedEntityIDs, SketchField::primarySelectedEntityID)));
  EXPECT_EQ(recorder.differences.front().added.size(), 1u);
  addPolygon(t.sketch, {{0, 0}, {1, 1}});
  setShowGrid(t.sketch, true);
  setActiveWallSystem(t.sketch, t.messages, *t.sketch.drawing->activeWallSystem());
  t.board.redo();
  EXPECT_EQ(recorder.changes.size(), 1u) << "an operation that changes nothing tells nobody";
}

TEST(SketchViewModel, ReportsWhatWasAskedForAndNothingAfterTheEnd) {
  TestWorkspace t;
  std::vector<FieldMask> heard;
  std::optional<Subscription> subscription =
      t.workspace.observe(fieldMask(SketchField::showGrid, SketchField::undoStack),
                       [&](FieldMask changed) { heard.push_back(changed); });
  selectAll(t.sketch);
  t.console.setInput("line");
  EXPECT_TRUE(heard.empty());
  setShowGrid(t.sketch, false);
  addLine(t.sketch, {0, 0}, {1, 1});
  t.run("circle 0 0 1; rect 0 0 2 2");
  t.board.undo();
  EXPECT_EQ(heard.size(), 4U) << "a chain is reported once";
  subscription.reset();
  setShowGrid(t.sketch, true);
  EXPECT_EQ(heard.size(), 4U);
}

TEST(SketchViewModel, ObserversMayComeAndGoWhileTheyAreTold) {
  TestWorkspace t;
  int first = 0;
  int second = 0;
  Subscription other;
  std::optional<Subscription> own;
  own = t.workspace.observe(fieldMask(SketchField::showGrid), [&](FieldMask) {
    ++first;
    other = t.workspace.observe(fieldMask(SketchField::showGrid), [&](FieldMask) { ++second; });
    own.reset();
  });
  setShowGrid(t.sketch, false);
  setShowGrid(t.sketch, true);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 1);
}

TEST(Undo, TakesBackAndBringsBackWithoutReselecting) {
  TestWorkspace t;
  addWall(t.sketch, std::nullopt, {0, 0}, {10, 0});
  const EntityList withWall = t.sketch.entities();
  t.board.clearSketch();
  t.board.undo();
  EXPECT_EQ(t.sketch.entities(), withWall);
  EXPECT_TRUE(t.sketch.selection->ids.empty());
  t.board.undo();
  EXPECT_TRUE(t.sketch.entities().empty());
  t.board.redo();
  EXPECT_EQ(t.sketch.entities(), withWall);
  EXPECT_EQ(t.messages.lines->back().text, "Redo.");
  addLine(t.sketch, {0, 0}, {1, 1});
  const auto lines = t.messages.lines->size();
  t.board.redo();
  EXPECT_EQ(t.messages.lines->size(), lines) << "a new edit ends the redo history";
}

TEST(Undo, CutsTheSelectionDownToWhatExists) {
  TestWorkspace t;
  addWall(t.sketch, std::nullopt, {0, 0}, {10, 0});
  t.board.undo();
  EXPECT_TRUE(t.sketch.selection->ids.empty());
  EXPECT_EQ(t.sketch.selection->primary, std::nullopt);
  EXPECT_TRUE(t.document.isDirty());
}

TEST(Undo, GroupsOfCommandsAreOneStepOrNone) {
  TestWorkspace t;
  addLine(t.sketch, {0, 0}, {1, 1});
  const testing::WorkspaceState before(t.sketch);

  const auto failed = t.sketch.captureCommandMutationState();
  t.sketch.changeUndoCheckpointSuppressionDepth(1);
  addWall(t.sketch, std::nullopt, {0, 0}, {10, 0});
  t.sketch.changeUndoCheckpointSuppressionDepth(-1);
  t.sketch.restoreCommandMutationState(failed);
  EXPECT_EQ(testing::WorkspaceState(t.sketch), before);

  const auto done = t.sketch.captureCommandMutationState();
  t.sketch.changeUndoCheckpointSuppressionDepth(1);
  addCircle(t.sketch, {0, 0}, 1);
  addCircle(t.sketch, {0, 0}, 2);
  t.sketch.changeUndoCheckpointSuppressionDepth(-1);
  t.sketch.commitCommandMutationState(done);
  EXPECT_EQ(t.sketch.undoStack->undoSnapshots().size(), before.undoSteps + 1);
  t.board.undo();
  t.sketch.commitCommandMutationState(t.sketch.captureCommandMutationState());
  EXPECT_EQ(t.sketch.undoStack->redoSnapshots().size(), 1u) << "no change keeps the redo history";
}

TEST(Undo, KeepsToItsLimits) {
  SketchUndoStack stack(2);
  for (int i = 0; i < 4; ++i)
    stack.pushUndoSnapshot({EntityList{CircleEntity{UUID::random(), {}, double(i)}}});
  ASSERT_EQ(stack.undoSnapshots().size(), 2u);
  EXPECT_EQ(std::get<CircleEntity>(stack.undoSnapshots().back().entities[0]).radius, 3);
  for (int i = 0; i < 3; ++i) stack.pushRedoSnapshot({});
  EXPECT_EQ(stack.redoSnapshots().size(), 2u);
  stack.appendUndoSnapshot({});
  EXPECT_EQ(stack.undoSnapshots().size(), 3u) << "redo goes beyond the limit";

  TestWorkspace t;
  t.sketch.replaceUndoSnapshots(std::vector<SketchUndoSnapshot>(25));
  EXPECT_EQ(t.sketch.undoStack->undoSnapshots().size(), kStoredUndoSnapshots);
}

}  // namespace
}  // namespace ostrelon
