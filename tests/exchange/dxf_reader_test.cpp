// Imported drawings: what other programs write, and what nobody should.
#include "exchange/dxf_reader.h"
#include "core/circle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numbers>
#include <random>

#include "core/adding.h"
#include "exchange/dxf_import.h"
#include "exchange/dxf_writer.h"
#include "support/dxf.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using ::testing::HasSubstr;
using testing::leftOut;
using testing::TestWorkspace;
constexpr double kPi = std::numbers::pi;

// A file whose ENTITIES section holds this; a blank stands for the end of a line.
std::string fileWith(std::string entities, const std::string& header = "") {
  std::string text = "0 SECTION 2 HEADER " + header + "0 ENDSEC 0 SECTION 2 ENTITIES " + std::move(entities) +
                     "0 ENDSEC 0 EOF ";
  std::replace(text.begin(), text.end(), ' ', '\n');
  return text;
}

DxfDrawing read(const std::string& entities) { return testing::readDxf(fileWith(entities)); }

DxfFile parsed(const std::string& entities, const std::string& header = "") {
  return parseDxf(fileWith(entities, header));
}

void import(TestWorkspace& test, const DxfFile& file, const std::string& name = "plan.dxf",
            const DxfImportOptions& options = {}) {
  PreparedDxf prepared = prepareDxf(file, options);
  importDxf(test.board, prepared, name);
}

std::string errorOf(const std::string& text) {
  try {
    parseDxf(text);
  } catch (const DxfError& error) {
    return error.what();
  }
  return "no error";
}

TEST(DxfReader, ReadsLinesCirclesAndArcs) {
  const auto drawing = read(
      "0 LINE 8 WALLS 10 1.5 20 -2 30 9 11 3e1 21 +4. "
      "0 CIRCLE 8 0 10 5 20 6 40 .5 "
      "0 ARC 10 0 20 0 40 2 50 90 51 -180 "
      "0 ARC 10 0 20 0 40 2 50 30 51 390 ");
  ASSERT_EQ(drawing.entities.size(), 4U);
  const auto& line = std::get<LineEntity>(drawing.entities[0]);
  EXPECT_EQ(line.from, (SketchPoint{1.5, -2}));
  EXPECT_EQ(line.to, (SketchPoint{30, 4}));
  EXPECT_EQ(std::get<CircleEntity>(drawing.entities[1]).radius, 0.5);
  const auto& arc = std::get<ArcEntity>(drawing.entities[2]);
  EXPECT_NEAR(arc.startAngle, kPi / 2, 1e-12);
  EXPECT_NEAR(arcSpan(arc.startAngle, arc.endAngle), kPi / 2, 1e-12);
  EXPECT_EQ(std::get<CircleEntity>(drawing.entities[3]).radius, 2) << "a full turn is a circle";
}

TEST(DxfReader, ReadsPolylinesOfBothForms) {
  const auto drawing = read(
      "0 LWPOLYLINE 90 3 70 1 10 0 20 0 10 4 20 0 10 0 20 3 "
      "0 LWPOLYLINE 70 0 10 0 20 0 10 4 20 0 10 4 20 3 10 0 20 0 "
      "0 POLYLINE 66 1 70 1 0 VERTEX 10 0 20 0 0 VERTEX 10 2 20 0 0 VERTEX 10 2 20 2 0 SEQEND 8 0 "
      "0 LWPOLYLINE 70 0 10 0 20 0 10 1 20 0 10 1 20 1 "
      "0 POLYLINE 70 1 0 VERTEX 10 7 20 7 0 VERTEX 10 7 20 7 ");
  ASSERT_EQ(drawing.entities.size(), 5U);
  EXPECT_EQ(std::get<PolygonEntity>(drawing.entities[0]).vertices, (PolygonVertices{{0, 0}, {4, 0}, {0, 3}}));
  EXPECT_EQ(std::get<PolygonEntity>(drawing.entities[1]).vertices, (PolygonVertices{{0, 0}, {4, 0}, {4, 3}}))
      << "it ends where it began";
  EXPECT_EQ(std::get<PolygonEntity>(drawing.entities[2]).vertices, (PolygonVertices{{0, 0}, {2, 0}, {2, 2}}));
  EXPECT_EQ(std::get<LineEntity>(drawing.entities[3]).to, (SketchPoint{1, 0}));
  EXPECT_EQ(std::get<LineEntity>(drawing.entities[4]).to, (SketchPoint{1, 1}));
  EXPECT_EQ(leftOut(drawing, DxfReason::noSize, "POLYLINE"), 1U) << "no two points";
}

TEST(DxfReader, KeepsBulgedPiecesAsArcs) {
  // A quarter turn to the left of the chord, a half turn back to the right, and a straight end.
  const auto drawing =
      read("0 LWPOLYLINE 70 0 10 1 20 0 42 0.41421356237309503 10 0 20 1 42 -1 10 -2 20 1 10 -2 20 5 ");
  ASSERT_EQ(drawing.entities.size(), 3U);
  const auto& quarter = std::get<ArcEntity>(drawing.entities[0]);
  EXPECT_NEAR(quarter.center.x, 0, 1e-12);
  EXPECT_NEAR(quarter.center.y, 0, 1e-12);
  EXPECT_NEAR(quarter.radius, 1, 1e-12);
  EXPECT_NEAR(quarter.startAngle, 0, 1e-12);
  EXPECT_NEAR(quarter.endAngle, kPi / 2, 1e-12);
  const auto& half = std::get<ArcEntity>(drawing.entities[1]);
  EXPECT_NEAR(half.center.x, -1, 1e-12);
  EXPECT_NEAR(arcSpan(half.startAngle, half.endAngle), kPi, 1e-12);
  const SketchPoint middle = pointOnCircle(half.center, half.radius, half.startAngle + kPi / 2);
  EXPECT_NEAR(middle.y, 0, 1e-12) << "clockwise from (0, 1) to (-2, 1) passes below";
}

TEST(DxfReader, MirrorsBackWhatIsSeenFromBehindAndLeavesOutTiltedPlanes) {
  const auto drawing = read(
      "0 ARC 10 1 20 2 40 3 50 0 51 90 210 0 220 0 230 -1 "
      "0 LWPOLYLINE 70 1 210 0 220 0 230 -1 10 1 20 0 10 2 20 0 10 2 20 1 "
      "0 CIRCLE 10 0 20 0 40 1 210 1 220 0 230 0 ");
  ASSERT_EQ(drawing.entities.size(), 2U);
  const auto& arc = std::get<ArcEntity>(drawing.entities[0]);
  EXPECT_EQ(arc.center, (SketchPoint{-1, 2}));
  EXPECT_NEAR(arc.startAngle, kPi / 2, 1e-12);
  EXPECT_NEAR(arc.endAngle, kPi, 1e-12);
  EXPECT_EQ(std::get<PolygonEntity>(drawing.entities[1]).vertices[1], (SketchPoint{-2, 0}));
  EXPECT_EQ(leftOut(drawing, DxfReason::tilted, "CIRCLE"), 1U);
}

TEST(DxfReader, CountsWhatItLeavesOutByKind) {
  const auto drawing = read(
      "0 TEXT 1 Kitchen 0 INSERT 2 DOOR 0 TEXT 1 Hall 0 LINE 67 1 10 0 20 0 11 1 21 1 0 \x07\x07 8 0 "
      "0 LINE 10 0 20 0 11 1 21 1 0 POLYLINE 70 64 0 VERTEX 70 192 10 0 20 0 0 SEQEND "
      "0 LINE 60 1 10 0 20 0 11 1 21 1 ");
  EXPECT_EQ(drawing.entities.size(), 1U);
  EXPECT_EQ(drawing.leftOut, (std::map<std::pair<DxfReason, std::string>, std::size_t>{
                                 {{DxfReason::unknownKind, "TEXT"}, 2},
                                 {{DxfReason::noBlock, "INSERT"}, 1},
                                 {{DxfReason::onPaper, "LINE"}, 1},
                                 {{DxfReason::invisible, "LINE"}, 1},
                                 {{DxfReason::noSize, "POLYLINE"}, 1},
                                 {{DxfReason::unknownKind, "other kinds"}, 1}}));
}

TEST(DxfReader, SaysWhatIsWrongAndWhere) {
  EXPECT_EQ(errorOf(""), "The file is empty.");
  EXPECT_EQ(errorOf("hello\nworld\n"), "This is not a DXF file.");
  EXPECT_EQ(errorOf(std::string("AC1015\0\0\0", 9)), "This is not a DXF file.");
  EXPECT_EQ(errorOf("0\nEOF\n0\nSECTION"), "This is not a DXF file.");
  EXPECT_THAT(errorOf("0\nSECTION\n2\nENTITIES\n0\nLINE\n10"), HasSubstr("ends in the middle, at line 7"));
  EXPECT_THAT(errorOf("0\nSECTION\n2\nENTITIES\n0\nLINE\n10\n5\n"), HasSubstr("cut off"));
  EXPECT_THAT(errorOf("0\nSECTION\n2\nHEADER\nx\ny\n"), HasSubstr("Line 5: \"x\" stands where a group code"));
  EXPECT_EQ(errorOf(fileWith("0 CIRCLE 10 0 20 0 ")), "The CIRCLE at line 12 has no radius.");
  EXPECT_EQ(errorOf(fileWith("0 CIRCLE 10 0 20 zero 40 1 ")), "Line 16: \"zero\" is not a number.");
  EXPECT_EQ(errorOf(fileWith("0 CIRCLE 10 0 20 0 40 inf ")), "Line 18: a number is not finite.");
  EXPECT_EQ(errorOf(fileWith("0 LWPOLYLINE 70 1 10 0 10 1 20 0 ")), "Line 16: a vertex has no y.");
}

TEST(DxfReader, TakesLineEndsOfAllSystemsAndBlanksAroundCodes) {
  EXPECT_EQ(
      testing::readDxf(
          "999\r\nby hand\r\n  0\r\nSECTION\r\n  2\r\nENTITIES\r\n  0\r\nLINE\r\n 10\r\n 1.0 \r\n 20\r\n0\r\n"
          " 11\r\n2\r\n 21\r\n3\r\n  0\r\nENDSEC\r\n  0\r\nEOF\r\n\r\n")
          .entities.size(),
      1U);
}

TEST(DxfImport, IsOneStepThatCanBeUndone) {
  TestWorkspace test;
  test.board.resizeCanvas({800, 600});
  addLine(test.sketch, {0, 0}, {1, 1});
  const EntityList before = test.sketch.entities();
  const std::size_t steps = test.undoSteps();
  import(test, parsed("0 LINE 10 0 20 0 11 5 21 5 0 TEXT 1 x 0 CIRCLE 10 0 20 0 40 1 ", "9 $INSUNITS 70 2 "));
  EXPECT_EQ(test.sketch.entities().size(), 3U);
  EXPECT_EQ(test.undoSteps(), steps + 1);
  EXPECT_TRUE(test.document.isDirty());
  EXPECT_EQ(
      test.messages.lines->back().text,
      "Imported 2 entities from \"plan.dxf\" in feet; left out 1 object that cannot be drawn here: TEXT 1.");
  test.board.undo();
  EXPECT_EQ(test.sketch.entities(), before);
}

TEST(DxfImport, TakesTheUnitThatIsGivenOrDeclaredOrLikely) {
  const std::string entities =
      "0 LINE 10 0 20 0 11 3048 21 304.8 0 CIRCLE 10 609.6 20 0 40 152.4 "
      "0 LWPOLYLINE 70 1 10 0 20 0 10 304.8 20 0 10 0 20 304.8 ";
  const DxfFile metric = parsed(entities, "9 $INSUNITS 70 4 ");
  TestWorkspace converted;
  import(converted, metric);
  EXPECT_NEAR(std::get<LineEntity>(converted.sketch.entities().front()).to.x, 10, 1e-12);
  EXPECT_NEAR(std::get<CircleEntity>(converted.sketch.entities()[1]).radius, 0.5, 1e-12);
  EXPECT_NEAR(std::get<PolygonEntity>(converted.sketch.entities().back()).vertices[2].y, 1, 1e-12);
  EXPECT_EQ(converted.messages.lines->back().text, "Imported 3 entities from \"plan.dxf\" in millimeters.");
  TestWorkspace plain;
  import(plain, metric, "plan.dxf", {.unit = kDxfFeet});
  EXPECT_EQ(std::get<LineEntity>(plain.sketch.entities().front()).to, (SketchPoint{3048, 304.8}));
  TestWorkspace likely;
  import(likely, parsed(entities));
  EXPECT_NEAR(std::get<LineEntity>(likely.sketch.entities().front()).to.x, 10, 1e-12);
  EXPECT_EQ(likely.messages.lines->back().text,
            "Imported 3 entities from \"plan.dxf\", which names no unit and was taken to be in millimeters.");
  // The same numbers, by what the file says of its system.
  const auto unitOf = [](double length, std::optional<bool> isMetric) {
    return likelyDxfUnit({length, length / 2}, isMetric).name;
  };
  EXPECT_EQ(unitOf(40, std::nullopt), "feet");
  EXPECT_EQ(unitOf(480, std::nullopt), "inches");
  EXPECT_EQ(unitOf(12000, false), "inches");
  EXPECT_EQ(unitOf(12, true), "meters");
  EXPECT_EQ(unitOf(900, true), "millimeters");
}

TEST(DxfImport, MovesWhatLiesFarAwayToTheOriginWhenAskedAndElseSaysSo) {
  const DxfFile file = parsed("0 LINE 10 2000000.25 20 -7 11 2000010 21 5 ", "9 $INSUNITS 70 2 ");
  TestWorkspace kept;
  import(kept, file);
  EXPECT_EQ(kept.messages.lines->back().text,
            "The drawing lies up to 2000010 feet from the origin, where a saved file keeps places 1.5 inches "
            "apart; import it moved to the origin.");
  TestWorkspace moved;
  import(moved, file, "plan.dxf", {.toOrigin = true});
  EXPECT_EQ(std::get<LineEntity>(moved.sketch.entities().front()).from, (SketchPoint{0.25, 0}));
  EXPECT_EQ(moved.messages.lines->back().text, "Moved by (-2e+06, 7) feet to the origin.");
}

TEST(DxfImport, AFileWithNothingToDrawIsAnErrorAndChangesNothing) {
  TestWorkspace test;
  EXPECT_THROW(import(test, parsed("")), DxfError);
  try {
    import(test, parsed("0 TEXT 1 a 0 IMAGE 2 b "));
    FAIL();
  } catch (const DxfError& error) {
    EXPECT_STREQ(error.what(),
                 "There is nothing in the file but 2 objects that cannot be drawn here: IMAGE 1, TEXT 1.");
  }
  EXPECT_TRUE(test.sketch.entities().empty());
  EXPECT_FALSE(test.document.isDirty());
  EXPECT_TRUE(test.sketch.undoStack->undoSnapshots().empty());
}

}  // namespace
}  // namespace ostrelon
