// Exported drawings: their layers, their text, and what other programs read in them.
#include "exchange/dxf_writer.h"
#include "core/circle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>
#include <numbers>
#include <sstream>

#include "exchange/dxf_import.h"
#include "exchange/dxf_layers.h"
#include "support/dxf.h"
#include "support/temporary_folder.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using testing::TemporaryFolder;
using testing::TestWorkspace;

std::string dxfText(const EntityList& entities, const std::vector<WallSystemSpec>& systems,
                    DxfVersion version) {
  std::string text;
  writeDxf(entities, systems, version, [&text](std::string_view piece) { text += piece; });
  return text;
}

WallSystemSpec system(std::string name, double thickness = 1) {
  return {UUID::random(), std::move(name), thickness, 96, ""};
}

TEST(DxfLayers, AreNamedAfterTheWallSystemsAsFarAsTheFormatAllows) {
  EXPECT_EQ(dxfLayerName(" W2-EXT ", DxfVersion::r12), "W2-EXT");
  EXPECT_EQ(dxfLayerName("Brick 2×4: old/new", DxfVersion::r12), "Brick_2_4__old_new");
  EXPECT_EQ(dxfLayerName("Brick 2×4: old/new", DxfVersion::r2000),
            "Brick 2\xD7"
            "4_ old_new");
  EXPECT_EQ(dxfLayerName("✓", DxfVersion::r2000), "\\U+2713");
  EXPECT_EQ(dxfLayerName("line\nbreak \xFF", DxfVersion::r2000), "line_break _");
  EXPECT_EQ(dxfLayerName("  ", DxfVersion::r2000), "WALL");
  EXPECT_EQ(dxfLayerName(std::string(300, 'x'), DxfVersion::r12).size(), 31U);
  EXPECT_EQ(dxfLayerName(std::string(300, 'x'), DxfVersion::r2000).size(), 255U);
}

TEST(DxfLayers, NamesThatBecomeAlikeAreToldApartAndEqualOnesShareALayer) {
  const std::vector<WallSystemSpec> systems{system("a/b"), system("a:b"), system("A/B"), system("0"),
                                            system("wall-unknown")};
  const DxfLayers layers(systems, DxfVersion::r2000);
  EXPECT_EQ(layers.layerOf(systems[0].id), "a_b");
  EXPECT_EQ(layers.layerOf(systems[1].id), "a_b_2");
  EXPECT_EQ(layers.layerOf(systems[2].id), "a_b");
  EXPECT_EQ(layers.layerOf(systems[3].id), "0_2");
  EXPECT_EQ(layers.layerOf(systems[4].id), "wall-unknown_2");
  EXPECT_EQ(layers.layerOf(UUID::random()), "WALL-UNKNOWN");
  EXPECT_EQ(layers.names().size(), 5U);
}

// One of each kind, and what the canvas does not show.
struct SampleDrawing {
  std::vector<WallSystemSpec> systems{system("W2-EXT", 6.5), system("Brick ×", 2)};
  EntityList entities{
      LineEntity{UUID::random(), {1, 2}, {-3.25, 4}},
      WallEntity{UUID::random(), {0, 0}, {100, 0}, systems[0].id},
      WallEntity{UUID::random(), {0, 10}, {0, 20}, systems[1].id},
      WallEntity{UUID::random(), {5, 5}, {5, 15}, UUID::random()},
      CircleEntity{UUID::random(), {7, 8}, -2.5},
      ArcEntity{UUID::random(), {1, 1}, 3, std::numbers::pi / 2, 0},
      RectangleEntity{UUID::random(), {10, 10}, {-4, 6}},
      PolygonEntity{UUID::random(), {{0, 0}, {4, 0.1}, {2, 3}}},
      WallEntity{UUID::random(), {3, 3}, {3, 3}, systems[0].id},
      ArcEntity{UUID::random(), {1, 1}, 3, 1, 1},
      PolygonEntity{UUID::random(), {}},
      LineEntity{UUID::random(), {0, 0}, {std::numeric_limits<double>::quiet_NaN(), 0}},
  };
};

// The same file as a program leaves it that does not keep the data of others.
std::string withoutOwnData(const std::string& text) {
  std::istringstream lines(text);
  std::string kept;
  for (std::string code, value; std::getline(lines, code) && std::getline(lines, value);) {
    if (code.size() < 4) kept += code + '\n' + value + '\n';
  }
  return kept;
}

class DxfVersions : public ::testing::TestWithParam<DxfVersion> {};
INSTANTIATE_TEST_SUITE_P(All, DxfVersions, ::testing::Values(DxfVersion::r12, DxfVersion::r2000),
                         [](const auto& version) {
                           return version.param == DxfVersion::r12 ? std::string("R12")
                                                                   : std::string("R2000");
                         });

TEST_P(DxfVersions, ComeBackAsTheGeometryThatWentOut) {
  const SampleDrawing sample;
  std::string text;
  const DxfWritten written = writeDxf(sample.entities, sample.systems, GetParam(),
                                      [&text](std::string_view piece) { text += piece; });
  EXPECT_EQ(written.entities, 8U);
  EXPECT_EQ(written.leftOut, 4U);

  const DxfDrawing back = testing::readDxf(text);
  ASSERT_EQ(back.entities.size(), 8U);
  EXPECT_EQ(back.leftOutCount(), 0U);
  EXPECT_EQ(std::get<LineEntity>(back.entities[0]).to, (SketchPoint{-3.25, 4}));
  const auto& wall = std::get<WallEntity>(back.entities[1]);
  EXPECT_EQ(wall.to, (SketchPoint{100, 0}));
  ASSERT_EQ(back.systems.size(), 2U);
  EXPECT_EQ(back.systems[0].id, wall.systemSpecID);
  EXPECT_EQ(back.systems[0].thickness, 6.5);
  EXPECT_EQ(back.systems[1].name, "Brick ×");
  EXPECT_TRUE(std::holds_alternative<WallEntity>(back.entities[3])) << "of an unknown system";
  EXPECT_EQ(std::get<CircleEntity>(back.entities[4]).radius, 2.5);
  const auto& arc = std::get<ArcEntity>(back.entities[5]);
  EXPECT_NEAR(arcSpan(arc.startAngle, arc.endAngle), 1.5 * std::numbers::pi, 1e-12);
  EXPECT_EQ(std::get<PolygonEntity>(back.entities[6]).vertices,
            (PolygonVertices{{10, 10}, {6, 10}, {6, 16}, {10, 16}}));
  EXPECT_EQ(std::get<PolygonEntity>(back.entities[7]).vertices[1], (SketchPoint{4, 0.1}));

  // To a program that knows nothing of them walls are outlines and center lines.
  const DxfDrawing strange = testing::readDxf(withoutOwnData(text));
  ASSERT_EQ(strange.entities.size(), 11U);
  EXPECT_EQ(std::get<PolygonEntity>(strange.entities[1]).vertices,
            (PolygonVertices{{0, 3.25}, {100, 3.25}, {100, -3.25}, {0, -3.25}}));
  EXPECT_EQ(std::get<LineEntity>(strange.entities[2]).to, (SketchPoint{100, 0}));
  EXPECT_EQ(std::get<PolygonEntity>(strange.entities[5]).vertices,
            (PolygonVertices{{2, 5}, {2, 15}, {8, 15}, {8, 5}}))
      << "an unknown system has the thickness with which the canvas paints it";
}

TEST_P(DxfVersions, WallsComeBackWithTheirOpeningsWhateverTheUnitTheLayersAndTheLook) {
  TestWorkspace test;
  WallSystemSpec own = system("Étage ✓", 0.5);
  own.assemblyNotes = "two\nlines";
  Drawing drawing;
  drawing.wallSystemSpecs = {own};
  const WallEntity wall{UUID::random(), {0, 0}, {20, 0}, own.id};
  drawing.entities = {wall, WallEntity{UUID::random(), {20, 0}, {20, 12}, own.id},
                      LineEntity{UUID::random(), {1, 1}, {1, 1}}};
  drawing.plan.openings = {
      {UUID::random(), wall.id, OpeningKind::door, 2, 3, DoorHinge::right, DoorSwing::out},
      {UUID::random(), wall.id, OpeningKind::window, 10, 4}};
  for (const DxfExportUnit unit : {DxfExportUnit::feet, DxfExportUnit::inches, DxfExportUnit::millimeters}) {
    for (const bool isByKind : {false, true}) {
      DxfForm form(GetParam());
      form.unit = unit;
      form.layering = isByKind ? DxfLayering::byKind : DxfLayering::bySystem;
      std::string text;
      const DxfWritten written = writeDxf(
          drawing.entities, drawing.wallSystemSpecs, form, [&](std::string_view piece) { text += piece; },
          OpeningLayout(drawing, drawing.entities), PlanLook{isByKind, false, false});
      EXPECT_EQ(written.leftOut, 1U) << "a line of no length";
      PreparedDxf prepared = prepareDxf(parseDxf(text));
      EXPECT_EQ(prepared.unitSource, DxfUnitSource::declared);
      const std::string layer = GetParam() == DxfVersion::r12 ? "Etage__" : "Étage ✓";
      EXPECT_EQ(prepared.layers.at(0).name, isByKind ? "A-WALL-" + layer : layer);
      EXPECT_TRUE(prepared.drawing.leftOut.empty());
      TestWorkspace importing;
      importDxf(importing.board, prepared, "plan.dxf");
      const Drawing& back = importing.sketch.drawing;
      ASSERT_EQ(back.entities.size(), 2U);
      const auto& first = std::get<WallEntity>(back.entities[0]);
      EXPECT_NEAR(first.to.x, 20, 1e-9);
      const WallSystemSpec* system = back.wallSystem(first.systemSpecID);
      ASSERT_NE(system, nullptr);
      EXPECT_EQ(system->name, own.name);
      EXPECT_EQ(system->thickness, own.thickness);
      EXPECT_EQ(system->assemblyNotes, own.assemblyNotes);
      ASSERT_EQ(back.plan.openings.size(), 2U);
      const Opening& door = back.plan.openings[0];
      EXPECT_EQ(door.wallID, first.id);
      EXPECT_NEAR(door.distance, 2, 1e-9);
      EXPECT_NEAR(door.width, 3, 1e-9);
      EXPECT_TRUE(door.hinge == DoorHinge::right && door.swing == DoorSwing::out);
      EXPECT_EQ(back.plan.openings[1].kind, OpeningKind::window);
      importing.board.undo();
      EXPECT_EQ(importing.sketch.drawing->wallSystemSpecs.size(), defaultWallSystems().size());
      EXPECT_TRUE(importing.sketch.drawing->plan.openings.empty());
    }
  }
}

TEST_P(DxfVersions, CutWallsOpenForWhatIsInThemAndPutThatOnItsLayers) {
  Drawing drawing;
  drawing.wallSystemSpecs = {{UUID::random(), "A-DOOR", 1, 8, ""}};
  const WallEntity wall{UUID::random(), {0, 0}, {20, 0}, drawing.wallSystemSpecs[0].id};
  drawing.entities = {wall};
  drawing.plan.openings = {{UUID::random(), wall.id, OpeningKind::door, 2, 3},
                           {UUID::random(), wall.id, OpeningKind::window, 10, 4},
                           {UUID::random(), wall.id, OpeningKind::door, 19, 3}};
  std::string text;
  writeDxf(
      drawing.entities, drawing.wallSystemSpecs, GetParam(), [&](std::string_view piece) { text += piece; },
      OpeningLayout(drawing, drawing.entities));
  const DxfDrawing back = testing::readDxf(withoutOwnData(text));
  ASSERT_EQ(back.entities.size(), 9U)
      << "three outlines, a leaf, an arc, three lines of glass, a centre line";
  EXPECT_EQ(std::get<PolygonEntity>(back.entities[1]).vertices,
            (PolygonVertices{{5, 0.5}, {10, 0.5}, {10, -0.5}, {5, -0.5}}));
  EXPECT_EQ(std::get<LineEntity>(back.entities[3]).to, (SketchPoint{2, 3.5}));
  EXPECT_EQ(std::get<ArcEntity>(back.entities[4]).radius, 3);
  EXPECT_NE(text.find("A-DOOR_2"), std::string::npos) << "the wall system keeps to a layer of its own";
  EXPECT_NE(text.find("A-GLAZ"), std::string::npos);
}

TEST_P(DxfVersions, CleanWallsAreJoinedOutlinesThatOpenForDoors) {
  Drawing drawing;
  drawing.wallSystemSpecs = {system("W1")};
  const WallEntity wall{UUID::random(), {0, 0}, {20, 0}, drawing.wallSystemSpecs[0].id};
  drawing.entities = {wall, WallEntity{UUID::random(), {20, 0}, {20, 10}, wall.systemSpecID}};
  drawing.plan.openings = {{UUID::random(), wall.id, OpeningKind::door, 2, 3}};
  std::string text;
  writeDxf(
      drawing.entities, drawing.wallSystemSpecs, GetParam(), [&](std::string_view piece) { text += piece; },
      OpeningLayout(drawing, drawing.entities), PlanLook{true, false, true});
  const DxfDrawing back = testing::readDxf(withoutOwnData(text));
  ASSERT_EQ(back.entities.size(), 6U) << "two outlines, a leaf, an arc, two centre lines";
  std::vector<std::size_t> corners;
  for (std::size_t i : {0U, 1U}) corners.push_back(std::get<PolygonEntity>(back.entities[i]).vertices.size());
  std::sort(corners.begin(), corners.end());
  EXPECT_EQ(corners, (std::vector<std::size_t>{4, 6})) << "one before the door, one around the corner";
  EXPECT_NE(text.find("WALL-CENTER"), std::string::npos);
  EXPECT_EQ(dxfText(drawing.entities, drawing.wallSystemSpecs, GetParam()).find("WALL-CENTER"),
            std::string::npos);
}

TEST_P(DxfVersions, PassThroughInPiecesOfABoundedSize) {
  std::vector<SketchEntity> lines;
  for (int i = 0; i < 20000; ++i) lines.emplace_back(LineEntity{UUID::random(), {0, 0}, {1.0 * i, 0}});
  std::size_t largest = 0;
  std::size_t pieces = 0;
  writeDxf(EntityList(std::move(lines)), {}, GetParam(), [&](std::string_view piece) {
    largest = std::max(largest, piece.size());
    ++pieces;
  });
  EXPECT_GT(pieces, 10U);
  EXPECT_LT(largest, 70000U);
}

TEST_P(DxfVersions, AnIndependentReaderFindsNoFaultAndTheSameGeometry) {
  const std::string python = testing::pythonWithReader();
  if (python.empty()) GTEST_SKIP() << "python3-ezdxf is not installed";
  const SampleDrawing sample;
  const TemporaryFolder folder;
  testing::writeBytes(folder / "plan.dxf", dxfText(sample.entities, sample.systems, GetParam()));
  const std::string command = python + " " OSTRELON_SOURCE_DIR "/tests/exchange/dxf_reader_check.py " +
                              (folder / "plan.dxf").string() + " > " + (folder / "found.json").string();
  ASSERT_EQ(std::system(command.c_str()), 0);
  const auto found = nlohmann::json::parse(testing::readBytes(folder / "found.json"));

  EXPECT_EQ(found["problems"], nlohmann::json::array());
  const bool isR12 = GetParam() == DxfVersion::r12;
  EXPECT_EQ(found["version"], isR12 ? "AC1009" : "AC1015");
  if (!isR12) {
    EXPECT_EQ(found["unit"], 2) << "feet";
  }
  const auto& entities = found["entities"];
  ASSERT_EQ(entities.size(), 11U);
  const char* closed = isR12 ? "POLYLINE" : "LWPOLYLINE";
  const std::vector<std::string> kinds{"LINE", closed,   "LINE", closed, "LINE", closed,
                                       "LINE", "CIRCLE", "ARC",  closed, closed};
  for (std::size_t i = 0; i < kinds.size(); ++i) {
    EXPECT_EQ(entities[i]["kind"], kinds[i]);
    if (kinds[i] == closed) {
      EXPECT_EQ(entities[i]["closed"], true);
    }
  }
  EXPECT_EQ(entities[1]["layer"], "W2-EXT");
  EXPECT_EQ(entities[2]["layer"], "W2-EXT");
  EXPECT_EQ(entities[2]["lineType"], "CENTER");
  EXPECT_EQ(entities[3]["layer"], isR12 ? "Brick__" : "Brick ×");
  EXPECT_EQ(entities[5]["layer"], "WALL-UNKNOWN");
  EXPECT_EQ(entities[7]["layer"], "0");
  EXPECT_EQ(entities[1]["points"],
            nlohmann::json::parse("[[0.0,3.25],[100.0,3.25],[100.0,-3.25],[0.0,-3.25]]"));
  EXPECT_EQ(entities[2]["points"], nlohmann::json::parse("[[0.0,0.0],[100.0,0.0]]"));
  EXPECT_EQ(entities[7]["radius"], 2.5);
  EXPECT_NEAR(entities[8]["angles"][0].get<double>(), 90, 1e-12);
  EXPECT_NEAR(entities[8]["angles"][1].get<double>(), 0, 1e-12);
}

// A picture in the plain grey format that poppler writes.
struct GreyPicture {
  int width = 0;
  int height = 0;
  std::string pixels;

  static GreyPicture read(const std::filesystem::path& path) {
    std::istringstream text(testing::readBytes(path));
    std::string kind;
    int white = 0;
    GreyPicture picture;
    text >> kind >> picture.width >> picture.height >> white;
    text.get();
    picture.pixels.assign(std::istreambuf_iterator<char>(text), {});
    return picture;
  }
  /// Width by height of the box around everything dark; 0 where there is nothing.
  double inkAspect() const {
    int minX = width;
    int minY = height;
    int maxX = -1;
    int maxY = -1;
    for (std::size_t i = 0; i < pixels.size(); ++i) {
      if (static_cast<unsigned char>(pixels[i]) > 0x80) continue;
      const int x = static_cast<int>(i) % width;
      const int y = static_cast<int>(i) / width;
      minX = std::min(minX, x);
      maxX = std::max(maxX, x);
      minY = std::min(minY, y);
      maxY = std::max(maxY, y);
    }
    return maxX > minX && maxY > minY ? static_cast<double>(maxX - minX) / (maxY - minY) : 0;
  }
};

TEST_P(DxfVersions, ACadProgramPrintsItInItsProportions) {
  if (std::system("command -v librecad >/dev/null && command -v xvfb-run >/dev/null") != 0) {
    GTEST_SKIP() << "librecad and xvfb are not installed";
  }
  if (std::system("command -v pdftoppm >/dev/null") != 0) {
    GTEST_SKIP() << "poppler-utils is not installed";
  }
  const TemporaryFolder folder;
  const EntityList entities{RectangleEntity{UUID::random(), {0, 0}, {200, 80}},
                            WallEntity{UUID::random(), {10, 50}, {190, 50}, UUID::random()},
                            CircleEntity{UUID::random(), {100, 40}, 30}};
  testing::writeBytes(folder / "plan.dxf", dxfText(entities, {}, GetParam()));
  const std::string command =
      "cd " + folder.path().string() +
      " && chmod 700 . && export HOME=$PWD XDG_RUNTIME_DIR=$PWD && unset QT_QPA_PLATFORM"
      " && timeout 60 xvfb-run -a librecad dxf2pdf -a -m plan.dxf >log 2>&1"
      " && pdftoppm -r 72 -gray -singlefile plan.pdf page >>log 2>&1";
  ASSERT_EQ(std::system(command.c_str()), 0) << testing::readBytes(folder / "log");
  const GreyPicture page = GreyPicture::read(folder / "page.pgm");
  ASSERT_GT(page.width, 500) << "a sheet of ordinary paper";
  ASSERT_LT(page.width, 900);
  EXPECT_NEAR(page.inkAspect(), 200.0 / 80, 0.03);
}

}  // namespace
}  // namespace ostrelon
