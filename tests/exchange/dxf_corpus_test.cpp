// Small files, one a feature, in tests/exchange/dxf: drawn as an independent reader draws them; and what
// nobody should write.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "core/circle.h"
#include "exchange/dxf_import.h"
#include "exchange/dxf_reader.h"
#include "geometry/entity_geometry.h"
#include "support/dxf.h"
#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using testing::leftOut;

const std::filesystem::path kFolder = OSTRELON_SOURCE_DIR "/tests/exchange/dxf";

std::string bytesOf(const std::string& name) { return testing::readBytes(kFolder / (name + ".dxf")); }

// The points of an entity's outline; a closed one ends where it began.
std::vector<SketchPoint> outline(const SketchEntity& entity) {
  const auto arc = [](SketchPoint center, double radius, double start, double sweep) {
    constexpr int kSteps = 2000;
    std::vector<SketchPoint> points;
    for (int i = 0; i <= kSteps; ++i)
      points.push_back(pointOnCircle(center, radius, start + sweep * i / kSteps));
    return points;
  };
  if (const auto* line = std::get_if<LineEntity>(&entity)) return {line->from, line->to};
  if (const auto* circle = std::get_if<CircleEntity>(&entity))
    return arc(circle->center, circle->radius, 0, kFullTurn);
  if (const auto* bow = std::get_if<ArcEntity>(&entity)) {
    return arc(bow->center, bow->radius, bow->startAngle, arcSpan(bow->startAngle, bow->endAngle));
  }
  std::vector<SketchPoint> points = std::get<PolygonEntity>(entity).vertices.list();
  points.push_back(points.front());
  return points;
}

TEST(DxfCorpus, IsDrawnAsAnIndependentReaderDrawsIt) {
  const std::string python = testing::pythonWithReader();
  if (python.empty()) GTEST_SKIP() << "python3-ezdxf is not installed";
  const testing::TemporaryFolder folder;
  const std::string command = python + " " OSTRELON_SOURCE_DIR "/tests/exchange/dxf_corpus_check.py " +
                              kFolder.string() + " > " + (folder / "found.json").string();
  ASSERT_EQ(std::system(command.c_str()), 0);
  const auto found = nlohmann::json::parse(testing::readBytes(folder / "found.json"));
  EXPECT_GT(found.size(), 15U);
  for (const auto& [name, theirs] : found.items()) {
    SCOPED_TRACE(name);
    const DxfFile file = parseDxf(bytesOf(name));
    const DxfDrawing drawing = drawDxf(file);
    double length = 0;
    std::vector<SketchPoint> all;
    for (const SketchEntity& entity : drawing.entities) {
      const auto points = outline(entity);
      for (std::size_t i = 0; i + 1 < points.size(); ++i) length += distanceBetween(points[i], points[i + 1]);
      all.insert(all.end(), points.begin(), points.end());
    }
    ASSERT_FALSE(all.empty());
    const auto [left, right] =
        std::minmax_element(all.begin(), all.end(), [](auto a, auto b) { return a.x < b.x; });
    const auto [bottom, top] =
        std::minmax_element(all.begin(), all.end(), [](auto a, auto b) { return a.y < b.y; });
    const std::array box{left->x, bottom->y, right->x, top->y};
    for (std::size_t i = 0; i < box.size(); ++i)
      EXPECT_NEAR(box[i], theirs["box"][i].get<double>(), 0.003) << i;
    // Widths are drawn there as faces, piece by piece.
    if (name != "widths") {
      EXPECT_NEAR(length, theirs["length"].get<double>(), 0.002 * length);
    }
    for (const DxfLayer& layer : file.layers) {
      EXPECT_NE(std::find(theirs["layers"].begin(), theirs["layers"].end(), layer.name),
                theirs["layers"].end())
          << layer.name;
    }
  }
}

TEST(DxfCorpus, BlocksKeepCirclesRoundAndMakePolygonsOfWhatIsStretched) {
  const DxfDrawing drawing = drawDxf(parseDxf(bytesOf("insert_scaled")));
  ASSERT_GT(drawing.entities.size(), 6U);
  EXPECT_EQ(std::get<CircleEntity>(drawing.entities[1]).radius, 1);
  EXPECT_TRUE(std::holds_alternative<PolygonEntity>(drawing.entities[4]));
  const DxfDrawing mirrored = drawDxf(parseDxf(bytesOf("insert_mirrored")));
  const auto& arc = std::get<ArcEntity>(mirrored.entities[2]);
  EXPECT_NEAR(arcSpan(arc.startAngle, arc.endAngle), kFullTurn / 4, 1e-12) << "no three quarters";
}

TEST(DxfCorpus, WhatIsHiddenIsLeftOutAndCountedUnlessItsLayerIsNamed) {
  const DxfFile file = parseDxf(bytesOf("layers"));
  const DxfDrawing drawing = drawDxf(file);
  EXPECT_EQ(drawing.entities.size(), 1U);
  for (const DxfReason reason :
       {DxfReason::layerOff, DxfReason::layerFrozen, DxfReason::invisible, DxfReason::onPaper}) {
    EXPECT_EQ(leftOut(drawing, reason, "LINE"), 1U);
  }
  const PreparedDxf chosen = prepareDxf(file, {.layers = std::vector<std::string>{"off", "FROZEN"}});
  EXPECT_EQ(chosen.drawing.entities.size(), 2U);
  EXPECT_EQ(leftOut(chosen.drawing, DxfReason::layerNotTaken, "LINE"), 1U);
  ASSERT_EQ(chosen.layers.size(), 3U);
  EXPECT_EQ(chosen.layers[0].name, "SHOWN");
  EXPECT_FALSE(chosen.layers[0].isTaken);
  EXPECT_TRUE(chosen.layers[1].isHidden && chosen.layers[1].isTaken);
  EXPECT_THROW(prepareDxf(file, {.layers = std::vector<std::string>{"WALLS"}}), DxfError);
}

TEST(DxfCorpus, EveryEncodingAndLineEndReadsTheSame) {
  const std::string plain = bytesOf("insert_nested");
  const auto same = [&](const std::string& bytes) {
    const auto a = drawDxf(parseDxf(plain)).entities;
    const auto b = drawDxf(parseDxf(bytes)).entities;
    return a.size() == b.size() && std::get<LineEntity>(a.front()).to == std::get<LineEntity>(b.front()).to;
  };
  std::string carriageReturns = plain;
  std::replace(carriageReturns.begin(), carriageReturns.end(), '\n', '\r');
  EXPECT_TRUE(same(carriageReturns));
  EXPECT_TRUE(same("\xEF\xBB\xBF" + plain));
  std::string little;
  std::string big;
  for (const char c : plain) {
    little += {c, '\0'};
    big += {'\0', c};
  }
  EXPECT_TRUE(same("\xFF\xFE" + little));
  EXPECT_TRUE(same("\xFE\xFF" + big));
  EXPECT_TRUE(same(little)) << "without a mark";
  // A name in an escape, and one in UTF-8 that no code page announces.
  const auto layer = [](const std::string& name) {
    return parseDxf("0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n" + name +
                    "\n10\n0\n20\n0\n11\n1\n21\n1\n0\nENDSEC\n0\nEOF\n")
        .layers.back()
        .name;
  };
  EXPECT_EQ(layer("\\U+00C9tage"), "Étage");
  EXPECT_EQ(layer("Étage"), "Étage");
  EXPECT_EQ(layer("\xC9tage"), "Étage");
}

TEST(DxfCorpus, BinaryFilesReadAsTheirTextForm) {
  // The groups of a LINE from (1, 2) to (3, 4.5) in both widths of codes.
  for (const bool isShort : {false, true}) {
    std::string bytes("AutoCAD Binary DXF\r\n\x1A\0", 22);
    const auto code = [&](int value) {
      bytes += static_cast<char>(value);
      if (!isShort) bytes += '\0';
    };
    const auto text = [&](int group, const char* value) {
      code(group);
      bytes.append(value, std::strlen(value) + 1);
    };
    const auto number = [&](int group, double value) {
      code(group);
      char raw[sizeof value];
      std::memcpy(raw, &value, sizeof value);
      bytes.append(raw, sizeof raw);
    };
    text(0, "SECTION");
    text(2, "ENTITIES");
    text(0, "LINE");
    text(8, "0");
    code(62);
    bytes += std::string("\x05\0", 2);
    number(10, 1);
    number(20, 2);
    number(11, 3);
    number(21, 4.5);
    const std::string cut = bytes.substr(0, bytes.size() - 3);
    text(0, "ENDSEC");
    text(0, "EOF");
    const auto entities = drawDxf(parseDxf(bytes)).entities;
    ASSERT_EQ(entities.size(), 1U);
    EXPECT_EQ(std::get<LineEntity>(entities[0]).to, (SketchPoint{3, 4.5}));
    EXPECT_THROW(parseDxf(cut), DxfError);
  }
}

TEST(DxfCorpus, DamagedPlacesAreRefusedOrLostAlone) {
  std::string text = bytesOf("insert_array");
  const auto place = text.find("AcDbCircle");
  ASSERT_NE(place, std::string::npos);
  std::string noNumber = text;
  noNumber.replace(noNumber.find("40\n0.5"), 6, "40\nbig");
  EXPECT_THROW(parseDxf(noNumber), DxfError);
  DxfFile file = parseDxf(noNumber, DxfDamage::salvage);
  EXPECT_EQ(file.lostPlaces, 1U);
  EXPECT_THAT(file.losses, ElementsAre(HasSubstr("\"big\" is not a number")));
  EXPECT_EQ(drawDxf(file).entities.size(), 12U) << "six times all but the circle";

  std::string garbage = text;
  garbage.insert(place, "\nlost\nwords\n");
  EXPECT_THROW(parseDxf(garbage), DxfError);
  file = parseDxf(garbage, DxfDamage::salvage);
  EXPECT_GT(file.lostPlaces, 0U);
  EXPECT_EQ(drawDxf(file).entities.size(), 12U);

  const std::string cut = text.substr(0, text.rfind("INSERT"));
  EXPECT_THROW(parseDxf(cut), DxfError);
  EXPECT_EQ(parseDxf(cut, DxfDamage::salvage).lostPlaces, 1U);
  EXPECT_THROW(parseDxf("no drawing\n", DxfDamage::salvage), DxfError);
}

std::string blocksInBlocks(int depth, const std::string& innermost) {
  std::string text = "0\nSECTION\n2\nBLOCKS\n";
  for (int i = 0; i < depth; ++i) {
    text += "0\nBLOCK\n2\nB" + std::to_string(i) + "\n";
    const std::string inner = i == 0 ? innermost : "0\nINSERT\n2\nB" + std::to_string(i - 1) + "\n";
    text += inner + inner + "0\nENDBLK\n";
  }
  return text + "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nINSERT\n2\nB" + std::to_string(depth - 1) +
         "\n0\nENDSEC\n0\nEOF\n";
}

TEST(DxfCorpus, BlocksWithinBlocksAreBounded) {
  const auto errorOf = [](const std::string& text) {
    try {
      drawDxf(parseDxf(text), {.mostEntities = 100'000});
    } catch (const DxfError& error) {
      return std::string(error.what());
    }
    return std::string("no error");
  };
  const std::string line = "0\nLINE\n10\n0\n20\n0\n11\n1\n21\n1\n";
  EXPECT_EQ(drawDxf(parseDxf(blocksInBlocks(5, line))).entities.size(), 32U);
  EXPECT_THAT(errorOf(blocksInBlocks(40, line)), HasSubstr("more than 100000 entities"));
  EXPECT_THAT(errorOf(blocksInBlocks(40, "")), HasSubstr("more than")) << "also where nothing is drawn";
  const std::string array = "0\nINSERT\n2\nB\n70\n30000\n71\n30000\n44\n1\n45\n1\n";
  EXPECT_THAT(
      errorOf("0\nSECTION\n2\nBLOCKS\n0\nBLOCK\n2\nB\n0\nENDBLK\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" +
              array + "0\nENDSEC\n0\nEOF\n"),
      HasSubstr("more than"));
  const DxfDrawing itself = drawDxf(parseDxf(blocksInBlocks(1, "0\nINSERT\n2\nb0\n" + line)));
  EXPECT_EQ(itself.entities.size(), 2U);
  EXPECT_EQ(leftOut(itself, DxfReason::ownBlock, "INSERT"), 2U);
}

}  // namespace
}  // namespace ostrelon
