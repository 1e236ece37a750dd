#include "app/inspector.h"

#include <gmock/gmock.h>

#include <numbers>

#include "support/test_sketch.h"

namespace ostrelon {
namespace {

using Row = InspectorMetricRow;
using ::testing::ElementsAre;

struct InspectorTest : ::testing::Test {
  testing::TestSketch test;
  SketchViewModel& sketch = test.sketch;

  void select(std::size_t index) { sketch.selectSingleEntity(entityID(sketch.entities.get()[index])); }
  const ConsoleLine& lastLine() { return sketch.consoleLines->back(); }
};

TEST_F(InspectorTest, eachKindShowsItsRowsInOrder) {
  const UUID id;
  EXPECT_THAT(inspectorMetricRows(WallEntity{id, {96, 28.5}, {96, -36}, id}, 4.5),
              ElementsAre(Row{"From", "(96.0, 28.5)"}, Row{"To", "(96.0, -36.0)"}, Row{"Length", "64'6\""},
                          Row{"Thickness", "4.5"}, Row{"Angle", "270°"}));
  EXPECT_THAT(inspectorMetricRows(WallEntity{id, {0, 0}, {1, 1}, id}, std::nullopt),
              ElementsAre(Row{"From", "(0.0, 0.0)"}, Row{"To", "(1.0, 1.0)"}, Row{"Length", "1'5\""},
                          Row{"Angle", "45°"}));
  EXPECT_THAT(inspectorMetricRows(CircleEntity{id, {1, 2}, 3}, std::nullopt),
              ElementsAre(Row{"From", "(1.0, 2.0)"}, Row{"To", "(4.0, 2.0)"}, Row{"Diameter", "6'"}));
  EXPECT_EQ(inspectorMetricRows(CircleEntity{id, {-0.04, -0.06}, 3}, std::nullopt)[0].value, "(0.0, -0.1)");
  EXPECT_THAT(inspectorMetricRows(ArcEntity{id, {0, 0}, 2, 0, std::numbers::pi}, std::nullopt),
              ElementsAre(Row{"From", "(2.0, 0.0)"}, Row{"To", "(-2.0, 0.0)"}, Row{"Length", "6'3\""}));
  EXPECT_THAT(inspectorMetricRows(RectangleEntity{id, {0, 0}, {8, 3.5}}, std::nullopt),
              ElementsAre(Row{"From", "(0.0, 0.0)"}, Row{"To", "(8.0, 3.5)"}, Row{"Width", "8.0"},
                          Row{"Height", "3'6\""}));
  EXPECT_THAT(inspectorMetricRows(PolygonEntity{id, {{0, 0}, {4, 0}, {4, 3}}}, std::nullopt),
              ElementsAre(Row{"From", "(0.0, 0.0)"}, Row{"Perimeter", "12'"}, Row{"Area", "6.0 sq ft"},
                          Row{"Vertices", "3"}));
}

TEST_F(InspectorTest, severalSelectedAreSummedUpByKind) {
  test.run("circle 0 0 4");
  test.run("wall 0 0 10 0");
  test.run("wall 0 0 0 10");
  sketch.selectAll();
  EXPECT_EQ(inspectorSelectionHeading(sketch), "3 selected · 2 walls, 1 circle");
}

TEST_F(InspectorTest, theWindowFollowsTheSelection) {
  sketch.showEntityInspector();
  EXPECT_FALSE(sketch.isEntityInspectorVisible);
  sketch.toggleEntityInspector();
  EXPECT_FALSE(sketch.isEntityInspectorVisible);
  test.run("wall 0 0 10 0");
  sketch.toggleEntityInspector();
  EXPECT_TRUE(sketch.isEntityInspectorVisible);
  test.run("wall 0 0 0 10");
  sketch.selectAll();
  EXPECT_TRUE(sketch.isEntityInspectorVisible) << "another selection keeps it open";
  sketch.clearSelection();
  EXPECT_FALSE(sketch.isEntityInspectorVisible);
}

TEST_F(InspectorTest, aLengthIsReadInFeetAndInches) {
  test.run("line 0 0 10 0");
  select(0);
  for (const char* text : {"0", "-3", "abc", "", "inf", "5'6'7"}) {
    EXPECT_FALSE(applyInspectorLength(sketch, text)) << text;
    EXPECT_EQ(lastLine().text, "Enter a valid feet/inches length.");
    EXPECT_TRUE(lastLine().isError);
    EXPECT_FALSE(lastLine().isSystem);
  }
  EXPECT_TRUE(applyInspectorLength(sketch, "12'6\""));
  EXPECT_EQ(lastLine().text, "Length set to 12.5.");
  EXPECT_TRUE(lastLine().isSystem);
  EXPECT_EQ(inspectorLengthText(sketch.entities->front()), "12'6\"");
  EXPECT_TRUE(applyInspectorLength(sketch, "12.5"));
  EXPECT_EQ(lastLine().text, "No change.");
}

TEST_F(InspectorTest, theLengthThatIsShownAppliedAsItStandsChangesNothing) {
  test.run("line 0 0 14.183 0");
  select(0);
  EXPECT_TRUE(applyInspectorLength(sketch, inspectorLengthText(sketch.entities->front())));
  EXPECT_EQ(lastLine().text, "No change.");
  EXPECT_EQ(std::get<LineEntity>(sketch.entities->front()).to.x, 14.183);
}

TEST_F(InspectorTest, aNudgeTakesPlainNumbers) {
  test.run("line 0 0 10 0");
  select(0);
  const std::size_t steps = sketch.undoStack().undoSnapshots().size();
  for (const auto& [x, y] :
       {std::pair{"", ""}, {"1", ""}, {" 1", "2"}, {"1 ", "2"}, {"0x1", "2"}, {"inf", "0"}}) {
    EXPECT_FALSE(applyInspectorNudge(sketch, x, y));
    EXPECT_EQ(lastLine().text, "Enter numeric nudge values.");
  }
  EXPECT_EQ(sketch.undoStack().undoSnapshots().size(), steps);
  EXPECT_TRUE(applyInspectorNudge(sketch, "1.5", "-2"));
  EXPECT_EQ(lastLine().text, "Selection nudged by (1.5, -2).");
  EXPECT_TRUE(applyInspectorNudge(sketch, "-0", "2"));
  EXPECT_EQ(lastLine().text, "Selection nudged by (0, 2).");
  EXPECT_EQ(std::get<LineEntity>(sketch.entities->front()).from, (SketchPoint{1.5, 0}));
}

TEST_F(InspectorTest, linesAndWallsConvertIntoEachOther) {
  test.run("line 0 0 10 0");
  select(0);
  EXPECT_EQ(inspectorConvertTitle(sketch, *sketch.selectedEntity()), "Convert to Wall (W2-INT)");
  applyInspectorConvert(sketch);
  EXPECT_EQ(lastLine().text, "Selection converted to wall.");
  EXPECT_EQ(inspectorConvertTitle(sketch, *sketch.selectedEntity()), "Convert to Line");
  applyInspectorConvert(sketch);
  EXPECT_EQ(lastLine().text, "Selection converted to line.");
  test.run("circle 0 0 4");
  EXPECT_EQ(inspectorConvertTitle(sketch, sketch.entities->back()), "");
}

TEST_F(InspectorTest, thePickerAssignsAnotherSystemAndSaysSo) {
  test.run("wall 0 0 10 0");
  const std::size_t lines = sketch.consoleLines->size();
  const auto& specs = *sketch.wallSystemSpecs;
  applyInspectorWallSystem(sketch, specs[0].id);
  EXPECT_EQ(sketch.consoleLines->size(), lines) << "the wall has this system already";
  applyInspectorWallSystem(sketch, specs[2].id);
  EXPECT_EQ(lastLine().text, "Wall system set to CMU-8.");
  EXPECT_EQ(std::get<WallEntity>(sketch.entities->front()).systemSpecID, specs[2].id);
}

TEST(EntityEditMessage, refusalsAreErrorsAndTheRestAreNotes) {
  using Result = EntityEditResult;
  EXPECT_EQ(entityEditMessage(LengthEdit{0.1 + 0.2}, Result::applied),
            (EntityEditMessage{"Length set to 0.3.", false, true}));
  EXPECT_EQ(entityEditMessage(NudgeEdit{1e6, 0}, Result::applied),
            (EntityEditMessage{"Selection nudged by (1e+06, 0).", false, true}));
  EXPECT_EQ(entityEditMessage(ConvertEdit{}, Result::noSelection),
            (EntityEditMessage{"Select an entity first.", true, false}));
  EXPECT_EQ(entityEditMessage(ConvertEdit{}, Result::invalidValue),
            (EntityEditMessage{"Invalid edit value.", true, false}));
  EXPECT_EQ(entityEditMessage(LengthEdit{}, Result::unsupported),
            (EntityEditMessage{"Edit is not supported for this selection.", true, false}));
}

}  // namespace
}  // namespace ostrelon
