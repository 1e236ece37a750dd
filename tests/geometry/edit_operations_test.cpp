#include <gtest/gtest.h>

#include <limits>

#include "geometry/entity_edits.h"
#include "geometry/entity_geometry.h"
#include "support/random_drawing.h"
#include "support/test_sketch.h"

namespace ostrelon {
namespace {

using testing::DocumentState;
using testing::TestSketch;

std::string lastLine(const SketchViewModel& sketch) { return sketch.consoleLines->back().text; }

UUID addAndSelect(SketchViewModel& sketch) {
  const UUID id = entityID(sketch.entities->back());
  sketch.selectSingleEntity(id);
  return id;
}

TEST(Edits, LengthFollowsTheKind) {
  TestSketch t;
  t.sketch.addLine({0, 0}, {3, 4});
  addAndSelect(t.sketch);
  EXPECT_EQ(t.sketch.setSelectedEntityLength(10), EntityEditResult::applied);
  EXPECT_EQ(std::get<LineEntity>(t.sketch.entities->back()).to, (SketchPoint{6, 8}));
  EXPECT_EQ(t.sketch.setSelectedEntityLength(10), EntityEditResult::unchanged);
  EXPECT_EQ(t.sketch.setSelectedEntityLength(0), EntityEditResult::invalidValue);
  EXPECT_EQ(t.sketch.setSelectedEntityLength(std::numeric_limits<double>::infinity()),
            EntityEditResult::invalidValue);
  EXPECT_FALSE(t.sketch.moveSelectedLine(std::numeric_limits<double>::quiet_NaN(), 0));
  t.sketch.addCircle({0, 0}, 1);
  addAndSelect(t.sketch);
  t.sketch.setSelectedEntityLength(6);
  EXPECT_EQ(std::get<CircleEntity>(t.sketch.entities->back()).radius, 3) << "the value is the diameter";
  t.sketch.addRectangle({0, 0}, {2, 2});
  addAndSelect(t.sketch);
  t.sketch.setSelectedEntityLength(6);
  EXPECT_EQ(std::get<RectangleEntity>(t.sketch.entities->back()).size, (SketchSize{2, 6}));
  t.sketch.addPolygon({{0, 0}, {1, 0}, {1, 1}});
  addAndSelect(t.sketch);
  EXPECT_EQ(t.sketch.setSelectedEntityLength(6), EntityEditResult::unsupported);
  t.sketch.addLine({5, 5}, {5, 5});
  addAndSelect(t.sketch);
  EXPECT_EQ(t.sketch.setSelectedEntityLength(6), EntityEditResult::unsupported) << "a segment of no length";
  t.sketch.selectAll();
  EXPECT_EQ(t.sketch.setSelectedEntityLength(6), EntityEditResult::noSelection);
}

TEST(Edits, NudgeTestsItsValuesBeforeTheSelection) {
  TestSketch t;
  EXPECT_EQ(t.sketch.nudgeSelectedEntity(0, 0), EntityEditResult::unchanged);
  EXPECT_EQ(t.sketch.nudgeSelectedEntity(std::numeric_limits<double>::infinity(), 0),
            EntityEditResult::invalidValue);
  EXPECT_EQ(t.sketch.nudgeSelectedEntity(1, 0), EntityEditResult::noSelection);
}

TEST(Edits, ConversionKeepsTheEntityAndItsPlace) {
  TestSketch t;
  t.sketch.addLine({0, 0}, {3, 4});
  const UUID id = addAndSelect(t.sketch);
  EXPECT_EQ(t.sketch.convertSelectedEntity(EntityConversionTarget::wall, UUID::random()),
            EntityEditResult::invalidValue);
  EXPECT_EQ(t.sketch.convertSelectedEntity(EntityConversionTarget::line), EntityEditResult::unchanged);
  EXPECT_EQ(t.sketch.convertSelectedEntity(EntityConversionTarget::wall), EntityEditResult::applied);
  EXPECT_EQ(t.sketch.wallSystemName(*t.sketch.entity(id)), "W2-INT");
  const UUID other = t.sketch.wallSystemSpecs->at(2).id;
  EXPECT_EQ(t.sketch.convertSelectedEntity(EntityConversionTarget::wall, other), EntityEditResult::unchanged)
      << "a wall keeps its system";
  EXPECT_TRUE(t.sketch.assignWallSystem(other, id));
  EXPECT_EQ(t.sketch.wallSystemName(*t.sketch.entity(id)), "CMU-8");
  EXPECT_FALSE(t.sketch.assignWallSystem(UUID::random(), id));
}

TEST(Edits, AlignmentBringsCentroidsToTheirMean) {
  TestSketch t;
  t.sketch.addLine({0, 0}, {2, 0});
  t.sketch.addCircle({10, 6}, 1);
  EXPECT_EQ(t.sketch.alignSelection(AlignmentAxis::horizontal), 0);
  t.sketch.selectAll();
  EXPECT_EQ(t.sketch.alignSelection(AlignmentAxis::horizontal), 2);
  EXPECT_EQ(std::get<CircleEntity>(t.sketch.entities.get()[1]).center, (SketchPoint{10, 3}));
  const DocumentState before(t.sketch);
  EXPECT_EQ(t.sketch.alignSelection(AlignmentAxis::horizontal), 0);
  EXPECT_EQ(DocumentState(t.sketch), before) << "already level: no undo step";
}

TEST(Edits, CopiesGetFreshIdentifiersAndBecomeTheSelection) {
  TestSketch t;
  EXPECT_EQ(t.sketch.copySelection(), 0);
  EXPECT_EQ(t.sketch.pasteClipboard(), 0);
  t.sketch.addLine({0, 0}, {1, 0});
  t.sketch.addWall(t.sketch.wallSystemSpecs->at(1).id, {0, 0}, {5, 0});
  t.sketch.selectAll();
  EXPECT_EQ(t.sketch.copySelection(), 2);
  t.sketch.deleteSelection();
  EXPECT_EQ(lastLine(t.sketch), "2 entities deleted.");
  EXPECT_EQ(t.sketch.pasteClipboard(), 2);
  EXPECT_EQ(t.sketch.pasteClipboard(), 2);
  ASSERT_EQ(t.sketch.entities->size(), 4u);
  EXPECT_EQ(std::get<LineEntity>(t.sketch.entities.get()[2]).from, (SketchPoint{24, 24}))
      << "pastes coincide";
  EXPECT_EQ(t.sketch.primarySelectedEntityID, std::optional(entityID(t.sketch.entities.get()[2])));
  EXPECT_EQ(t.sketch.wallSystemName(t.sketch.entities.get()[3]), "W2-EXT");
  t.sketch.undo();
  EXPECT_EQ(t.sketch.entities->size(), 2u);
  EXPECT_TRUE(t.sketch.selectedEntityIDs->empty());

  t.sketch.duplicateEntity(entityID(t.sketch.entities.get()[1]), 1, 2);
  EXPECT_EQ(lastLine(t.sketch), "Wall duplicated.");
  t.sketch.duplicateSelection(1, 2);
  EXPECT_EQ(lastLine(t.sketch), "Entity duplicated.");
  EXPECT_EQ(std::get<WallEntity>(t.sketch.entities->back()).from, (SketchPoint{26, 28}));
}

TEST(Edits, DeletingTheSelectedClosesTheInspector) {
  TestSketch t;
  t.sketch.addLine({0, 0}, {1, 0});
  t.sketch.addLine({0, 0}, {1, 0});
  t.sketch.selectAll();
  const UUID primary = **t.sketch.primarySelectedEntityID;
  t.sketch.deleteEntity(primary);
  EXPECT_EQ(t.sketch.primarySelectedEntityID, std::optional(entityID(t.sketch.entities.get()[0])));
  t.sketch.deleteEntity(entityID(t.sketch.entities.get()[0]));
  EXPECT_EQ(*t.sketch.primarySelectedEntityID, std::nullopt);
  EXPECT_EQ(lastLine(t.sketch), "Entity deleted.");
  const auto steps = t.sketch.undoStack().undoSnapshots().size();
  t.sketch.deleteEntity(UUID::random());
  EXPECT_EQ(t.sketch.undoStack().undoSnapshots().size(), steps + 1);
}

TEST(Edits, TheLengthThatASegmentHasIsNoChange) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  testing::RandomDrawing drawing(seed);
  for (int i = 0; i < 200; ++i) {
    const LineEntity line{UUID::random(), drawing.point(), drawing.point()};
    const double length = distanceBetween(line.from, line.to);
    if (!(length > 0)) continue;
    EXPECT_EQ(resizedEntity(line, length), std::optional<SketchEntity>(line));
  }
}

TEST(Edits, EntitiesOfOneIdentifierAreDeletedTogether) {
  TestSketch t;
  const UUID shared = UUID::random();
  const UUID other = UUID::random();
  EntityList list;
  for (int i = 0; i < 3000; ++i) list.append(LineEntity{i % 3 == 0 ? other : shared, {0, 0}, {1, 1}});
  t.sketch.restoreSnapshot(list);
  t.sketch.selectEntities({1});
  t.sketch.deleteSelection();
  EXPECT_EQ(t.sketch.entities->size(), 1000u);
  t.sketch.deleteEntity(other);
  EXPECT_TRUE(t.sketch.entities->empty());
}

TEST(LengthEditor, SetsTheSelectedSegment) {
  TestSketch t;
  t.sketch.addLine({0, 0}, {3, 4});
  addAndSelect(t.sketch);
  t.sketch.beginSegmentLengthEdit();
  EXPECT_EQ(*t.sketch.segmentLengthEditText, "5'");
  t.sketch.setSegmentLengthEditText("0");
  EXPECT_FALSE(t.sketch.commitSegmentLengthEdit());
  EXPECT_EQ(*t.sketch.segmentLengthEditError, "Enter a valid feet/inches length.");
  EXPECT_TRUE(t.sketch.isSegmentLengthEditing);
  t.sketch.setSegmentLengthEditText("7'6");
  EXPECT_TRUE(t.sketch.commitSegmentLengthEdit());
  EXPECT_DOUBLE_EQ(entityMetrics(t.sketch.entities->back()).length.value(), 7.5);
  EXPECT_FALSE(t.sketch.isSegmentLengthEditing);
  t.sketch.addCircle({0, 0}, 2);
  addAndSelect(t.sketch);
  t.sketch.beginSegmentLengthEdit("3");
  EXPECT_FALSE(t.sketch.commitSegmentLengthEdit());
  EXPECT_EQ(*t.sketch.segmentLengthEditError, "Length edit is only available for line and wall segments.");
}

}  // namespace
}  // namespace ostrelon
