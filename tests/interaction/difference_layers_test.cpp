#include "interaction/difference_layers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <map>

#include "core/difference_colors.h"
#include "support/random_drawing.h"
#include "support/recording_painter.h"
#include "support/temporary_folder.h"

namespace ostrelon {
namespace {

using testing::RandomDrawing;
using testing::RecordingPainter;

bool isNear(const SketchBox& a, const SketchBox& b, double reach) { return a.grown(reach).overlaps(b); }

// Joins two groups at a time, as the words of the header have it.
std::vector<SketchBox> groupedPlainly(std::vector<SketchBox> boxes, double reach) {
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    for (std::size_t j = i + 1; j < boxes.size(); ++j) {
      if (!isNear(boxes[i], boxes[j], reach)) continue;
      boxes[i] = boxes[i].united(boxes[j]);
      boxes.erase(boxes.begin() + static_cast<std::ptrdiff_t>(j));
      return groupedPlainly(std::move(boxes), reach);
    }
  }
  return boxes;
}

TEST(DifferenceLayers, GroupsByNearnessAsThePlainWayDoes) {
  RandomDrawing random(testing::seed());
  for (int round = 0; round < testing::rounds(60); ++round) {
    std::vector<SketchBox> boxes;
    const int count = 1 + random.below(60);
    for (int i = 0; i < count; ++i) {
      const SketchPoint corner{random.number(0, 100), random.number(0, 100)};
      boxes.push_back(SketchBox::spanning(corner, SketchSize{random.number(0, 8), random.number(0, 8)}));
    }
    const double reach = random.chance(5) ? 0 : random.number(0, 6);
    std::map<std::size_t, SketchBox> groups;
    const auto numbers = groupedByNearness(boxes, reach);
    for (std::size_t i = 0; i < boxes.size(); ++i) {
      const auto [group, isNew] = groups.try_emplace(numbers[i], boxes[i]);
      group->second = group->second.united(boxes[i]);
    }
    const auto plain = groupedPlainly(boxes, reach);
    ASSERT_EQ(groups.size(), plain.size()) << "seed " << testing::seed() << ", round " << round;
    for (const auto& [number, box] : groups) {
      EXPECT_EQ(std::count(plain.begin(), plain.end(), box), 1) << "seed " << testing::seed();
    }
  }
}

TEST(DifferenceLayers, PutsWhatHasNoPlaceLast) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  DrawingDifference difference;
  difference.added = {LineEntity{UUID::random(), {0, 0}, {inf, 1}},
                      LineEntity{UUID::random(), {0, 0}, {4, 0}},
                      LineEntity{UUID::random(), {900, 0}, {904, 0}}};
  const DifferenceLayers layers = differenceLayers(difference, {}, {});
  ASSERT_EQ(layers.groups.size(), 3u);
  EXPECT_EQ(layers.groups[2].items, (std::vector<std::size_t>{0}));
  EXPECT_EQ(layers.bounds(), (SketchBox{0, 0, 904, 0}));
  RecordingPainter painter;
  paintClouds(painter, {{{{200, 150}, 4}, {400, 300}}, lightPalette()}, layers, 0);
  EXPECT_EQ(painter.calls.size(), 4u) << "one cloud with its number in view: outline, and tag of three";
}

TEST(DifferenceLayers, AreReadableOnEverySurfaceOfEveryPalette) {
  for (const ThemePalette* palette : {&lightPalette(), &darkPalette(), &tansyPalette()}) {
    const DifferenceColors colors = differenceColors(*palette);
    for (const Color color : {colors.removed, colors.changed, colors.added}) {
      for (const Color surface : {palette->background, palette->card, palette->muted}) {
        EXPECT_GE(contrastRatio(color, surface), kReadableContrast);
      }
    }
    const double faded = contrastRatio(fadedPalette(*palette).foreground, palette->background);
    EXPECT_GT(faded, 2);
    EXPECT_LT(faded, 4);
  }
}

TEST(DifferenceLayers, PaintACloudAroundMuchOnlyWhereItIsSeen) {
  DrawingDifference difference;
  difference.added = {RectangleEntity{UUID::random(), {0, 0}, {1e7, 1e7}}};
  const DifferenceLayers layers = differenceLayers(difference, {}, {});
  RecordingPainter painter;
  // The lower left corner in the middle of the view, at a scale of which the cloud has millions of arcs.
  const CanvasFrame frame{{{{200, 150}, 100}, {400, 300}}, lightPalette()};
  paintClouds(painter, frame, layers);
  ASSERT_EQ(painter.calls.front().pieces.size(), 2u);
  for (const auto& piece : painter.calls.front().pieces) EXPECT_LT(piece.size(), 200u);
}

TEST(DifferenceLayers, ArePaintedAsTheyAlwaysAre) {
  const auto systems = defaultWallSystems();
  const auto id = [](char last) {
    return *UUID::parse(std::string("00000000-0000-0000-0000-00000000000") + last);
  };
  Drawing before;
  before.entities = {LineEntity{id('1'), {-40, 25}, {-10, 25}}, LineEntity{id('2'), {-40, -25}, {-20, -25}},
                     WallEntity{id('3'), {10, 0}, {30, 0}, systems.at(0).id}};
  Drawing after = before;
  after.entities = {LineEntity{id('1'), {-40, 25}, {-10, 25}},
                    WallEntity{id('3'), {10, 2}, {30, 2}, systems.at(0).id},
                    CircleEntity{id('4'), {-30, -25}, 3}};
  const DifferenceLayers layers =
      differenceLayers(compareDrawings(before, after), before.wallSystemSpecs, after.wallSystemSpecs);
  RecordingPainter painter;
  paintDifference(painter, {{{{200, 150}, 4}, {400, 300}}, lightPalette()}, layers, after.entities, 0.25);
  const std::string golden = OSTRELON_SOURCE_DIR "/tests/interaction/golden/difference.txt";
  if (std::getenv("OSTRELON_UPDATE_GOLDEN") != nullptr) testing::writeBytes(golden, painter.text());
  EXPECT_EQ(painter.text(), testing::readBytes(golden));
}

}  // namespace
}  // namespace ostrelon
