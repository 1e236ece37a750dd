// Items of the plan: what follows what, what is copied along, and how two plans merge.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "core/adding.h"
#include "core/plan_items.h"
#include "geometry/edit_operations.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

struct PlanItemsTest : ::testing::Test, testing::TestWorkspace {
  UUID wall;
  UUID other;
  UUID door = UUID::random();

  // A wall along x and one along y, with a door in the first.
  void SetUp() override {
    addWall(sketch, std::nullopt, {0, 0}, {20, 0});
    addWall(sketch, std::nullopt, {0, 0}, {0, 10});
    wall = entityID(sketch.entities()[0]);
    other = entityID(sketch.entities()[1]);
    sketch.edit([&](Drawing& drawing) { drawing.plan.openings = {{door, wall, {}, 4, 3}}; });
  }

  DimensionEnd at(SketchPoint point, AnchorKind anchor, const UUID& id) const {
    return {point, anchor, id, 0, false};
  }
  void add(const DimensionEnd& from, const DimensionEnd& to) {
    sketch.edit([&](Drawing& drawing) {
      putPlanItem(drawing.plan, Dimension{UUID::random(), from, to, DimensionDirection::aligned, 2});
    });
  }
  const Dimension& dimension(std::size_t index = 0) const { return sketch.drawing->plan.dimensions[index]; }
  void become(SketchPoint from, SketchPoint to, UndoStep step = UndoStep::own) {
    replaceEntity(sketch, wall, WallEntity{wall, from, to, sketch.drawing->activeWallSystemSpecID}, step);
  }
};

TEST_F(PlanItemsTest, TheEndsOfADimensionFollowAndAreLostWithWhatTheyHoldOnTo) {
  add(at({0, 0}, AnchorKind::start, wall), at({20.25, -0.5}, AnchorKind::end, wall));
  add(at({7, 0}, AnchorKind::jambFar, door), at({0, 10}, AnchorKind::end, other));
  become({1, 2}, {21, 2});
  EXPECT_EQ(dimension().from.point, (SketchPoint{1, 2}));
  EXPECT_EQ(dimension().to.point, (SketchPoint{21.25, 1.5})) << "as far from the end as it was clicked";
  EXPECT_EQ(dimension(1).from.point, (SketchPoint{8, 2})) << "the jamb goes with its wall";
  EXPECT_EQ(dimension(1).to.point, (SketchPoint{0, 10}));
  sketch.undo();
  EXPECT_EQ(dimension(1).from.point, (SketchPoint{7, 0}));

  sketch.edit([&](Drawing& drawing) { drawing.plan.openings = {{door, wall, {}, 6, 3}}; });
  EXPECT_EQ(dimension(1).from.point, (SketchPoint{9, 0})) << "and with its door";

  deleteEntity(sketch, messages, wall);
  EXPECT_TRUE(dimension().from.lost && dimension().to.lost && dimension(1).from.lost);
  EXPECT_FALSE(dimension(1).to.lost);
  EXPECT_EQ(dimension().from.point, (SketchPoint{0, 0}));
  EXPECT_THAT(planItemTitle(dimension()), ::testing::EndsWith("?"));
  sketch.undo();
  EXPECT_FALSE(dimension().from.lost || dimension(1).from.lost);
}

TEST_F(PlanItemsTest, ADragOutAndBackLeavesADimensionExactlyWhereItWas) {
  add(at({0, 0}, AnchorKind::start, wall), at({19.7, 0.3}, AnchorKind::endLeft, wall));
  const Plan before = sketch.drawing->plan;
  sketch.beginDragStep();
  for (const double x : {0.1, 0.7, 1e5, 0.0}) become({x, x / 3}, {20 + x, x / 3}, UndoStep::none);
  sketch.endDragStep();
  EXPECT_EQ(sketch.drawing->plan, before);
}

TEST_F(PlanItemsTest, CopiesTakeAlongTheDimensionsBothOfWhoseEndsAreCopied) {
  add(at({0, 0}, AnchorKind::start, wall), at({7, 0}, AnchorKind::jambFar, door));
  add(at({0, 0}, AnchorKind::start, wall), at({0, 10}, AnchorKind::end, other));
  duplicateEntity(sketch, messages, wall, 1, 1);
  ASSERT_EQ(sketch.drawing->plan.dimensions.size(), 3U);
  EXPECT_EQ(dimension(2).from.entityID, entityID(sketch.entities()[2]));
  EXPECT_EQ(dimension(2).to.entityID, sketch.drawing->plan.openings[1].id);
  EXPECT_EQ(dimension(2).to.point, (SketchPoint{8, 1}));
  selectEntities(sketch, {0, 1});
  copySelection(sketch);
  pasteClipboard(sketch, {5, 5});
  ASSERT_EQ(sketch.drawing->plan.dimensions.size(), 5U) << "both, as both walls were copied";
  EXPECT_EQ(dimension(4).to.entityID, entityID(sketch.entities()[4]));
}

TEST_F(PlanItemsTest, AChangeOfAPlanLeadsFromOneToTheOtherWhateverItsKind) {
  add(at({0, 0}, AnchorKind::start, wall), at({0, 10}, AnchorKind::end, other));
  const Plan before = sketch.drawing->plan;
  Plan after = before;
  after.sheet.project = "Lake House";
  after.look.dimensionStrings = true;
  putPlanItem(after, RoomName{UUID::random(), {1, 1}, "Bath", {}});
  putPlanItem(after, Note{UUID::random(), {1, 1}, "Verify", {}});
  EXPECT_TRUE(removePlanItem(after, dimension().id));
  Plan changed = before;
  EXPECT_TRUE(applyPlanChange(planChange(before, after), changed));
  EXPECT_EQ(changed, after);
  Plan none;
  EXPECT_FALSE(applyPlanChange(planChange(before, after), none)) << "it has no dimension to remove";
  EXPECT_TRUE(none.empty());
}

}  // namespace
}  // namespace ostrelon
