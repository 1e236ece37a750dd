#include "core/sketch_view_model.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/test_sketch.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using testing::TestSketch;

struct Recorder {
  explicit Recorder(SketchViewModel& sketch)
      : last(sketch.entities),
        subscription(sketch.observe(kAllFields, [this, &sketch](const SketchChange& change) {
          changes.push_back(change.fields);
          differences.push_back(EntityList::difference(last, sketch.entities));
          last = sketch.entities;
        })) {}
  EntityList last;
  std::vector<FieldMask> changes;
  std::vector<EntityList::Difference> differences;
  Subscription subscription;
};

TEST(SketchViewModel, StartsWithTwoLinesAndTheBuiltInSystems) {
  TestSketch t;
  ASSERT_EQ(t.sketch.consoleLines->size(), 2u);
  EXPECT_EQ(t.sketch.consoleLines->front().text, "Ostrelon console ready.");
  EXPECT_TRUE(t.sketch.consoleLines->back().isSystem);
  EXPECT_EQ(t.sketch.activeWallSystemSpec()->name, "W2-INT");
  EXPECT_FALSE(t.sketch.isDocumentDirty);
}

TEST(SketchViewModel, TellsOncePerOperationWithExactlyTheChangedFields) {
  TestSketch t;
  Recorder recorder(t.sketch);
  t.sketch.addWall(std::nullopt, {0, 0}, {10, 0});
  EXPECT_THAT(
      recorder.changes,
      ElementsAre(fieldMask(SketchField::entities, SketchField::undoStack, SketchField::isDocumentDirty,
                            SketchField::selectedEntityIDs, SketchField::primarySelectedEntityID)));
  EXPECT_EQ(recorder.differences.front().added.size(), 1u);
  t.sketch.addPolygon({{0, 0}, {1, 1}});
  t.sketch.setShowGrid(true);
  t.sketch.setActiveWallSystem(*t.sketch.activeWallSystemSpec());
  t.sketch.redo();
  EXPECT_EQ(recorder.changes.size(), 1u) << "an operation that changes nothing tells nobody";
}

TEST(SketchViewModel, ReportsWhatWasAskedForAndNothingAfterTheEnd) {
  TestSketch t;
  std::vector<FieldMask> heard;
  std::optional<Subscription> subscription =
      t.sketch.observe(fieldMask(SketchField::showGrid, SketchField::undoStack),
                       [&](const SketchChange& change) { heard.push_back(change.fields); });
  t.sketch.selectAll();
  t.sketch.setCommandInput("line");
  EXPECT_TRUE(heard.empty());
  t.sketch.setShowGrid(false);
  t.sketch.addLine({0, 0}, {1, 1});
  t.run("circle 0 0 1; rect 0 0 2 2");
  t.sketch.undo();
  EXPECT_EQ(heard.size(), 4U) << "a chain is reported once";
  subscription.reset();
  t.sketch.setShowGrid(true);
  EXPECT_EQ(heard.size(), 4U);
}

TEST(SketchViewModel, ObserversMayComeAndGoWhileTheyAreTold) {
  TestSketch t;
  int first = 0;
  int second = 0;
  Subscription other;
  std::optional<Subscription> own;
  own = t.sketch.observe(fieldMask(SketchField::showGrid), [&](const SketchChange&) {
    ++first;
    other = t.sketch.observe(fieldMask(SketchField::showGrid), [&](const SketchChange&) { ++second; });
    own.reset();
  });
  t.sketch.setShowGrid(false);
  t.sketch.setShowGrid(true);
  EXPECT_EQ(first, 1);
  EXPECT_EQ(second, 1);
}

TEST(Undo, TakesBackAndBringsBackWithoutReselecting) {
  TestSketch t;
  t.sketch.addWall(std::nullopt, {0, 0}, {10, 0});
  const EntityList withWall = t.sketch.entities;
  t.sketch.clearSketch();
  t.sketch.undo();
  EXPECT_EQ(t.sketch.entities.get(), withWall);
  EXPECT_TRUE(t.sketch.selectedEntityIDs->empty());
  t.sketch.undo();
  EXPECT_TRUE(t.sketch.entities->empty());
  t.sketch.redo();
  EXPECT_EQ(t.sketch.entities.get(), withWall);
  EXPECT_EQ(t.sketch.consoleLines->back().text, "Redo.");
  t.sketch.addLine({0, 0}, {1, 1});
  const auto lines = t.sketch.consoleLines->size();
  t.sketch.redo();
  EXPECT_EQ(t.sketch.consoleLines->size(), lines) << "a new edit ends the redo history";
}

TEST(Undo, CutsTheSelectionDownToWhatExists) {
  TestSketch t;
  t.sketch.addWall(std::nullopt, {0, 0}, {10, 0});
  t.sketch.undo();
  EXPECT_TRUE(t.sketch.selectedEntityIDs->empty());
  EXPECT_EQ(*t.sketch.primarySelectedEntityID, std::nullopt);
  EXPECT_TRUE(t.sketch.isDocumentDirty);
}

TEST(Undo, GroupsOfCommandsAreOneStepOrNone) {
  TestSketch t;
  t.sketch.addLine({0, 0}, {1, 1});
  const testing::DocumentState before(t.sketch);

  const auto failed = t.sketch.captureCommandMutationState();
  t.sketch.changeUndoCheckpointSuppressionDepth(1);
  t.sketch.addWall(std::nullopt, {0, 0}, {10, 0});
  t.sketch.changeUndoCheckpointSuppressionDepth(-1);
  t.sketch.restoreCommandMutationState(failed);
  EXPECT_EQ(testing::DocumentState(t.sketch), before);

  const auto done = t.sketch.captureCommandMutationState();
  t.sketch.changeUndoCheckpointSuppressionDepth(1);
  t.sketch.addCircle({0, 0}, 1);
  t.sketch.addCircle({0, 0}, 2);
  t.sketch.changeUndoCheckpointSuppressionDepth(-1);
  t.sketch.commitCommandMutationState(done);
  EXPECT_EQ(t.sketch.undoStack().undoSnapshots().size(), before.undoSteps + 1);
  t.sketch.undo();
  t.sketch.commitCommandMutationState(t.sketch.captureCommandMutationState());
  EXPECT_EQ(t.sketch.undoStack().redoSnapshots().size(), 1u) << "no change keeps the redo history";
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

  TestSketch t;
  t.sketch.replaceUndoSnapshots(std::vector<SketchUndoSnapshot>(25));
  EXPECT_EQ(t.sketch.undoStack().undoSnapshots().size(), kStoredUndoSnapshots);
}

}  // namespace
}  // namespace ostrelon
