// Where the lines and texts of dimensions stand. A character is taken to be half an em wide.
#include "geometry/dimension_annotation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "support/random_drawing.h"

namespace ostrelon {
namespace {

constexpr double kInch = 4;  // sketch units, as at 1/4" = 1'

double halfAnEm(std::string_view text) { return 0.5 * static_cast<double>(text.size()); }

Dimension between(SketchPoint from, SketchPoint to, double offset,
                  DimensionDirection direction = DimensionDirection::aligned) {
  Dimension dimension;
  dimension.id = UUID::random();
  dimension.from.point = from;
  dimension.to.point = to;
  dimension.direction = direction;
  dimension.offset = offset;
  return dimension;
}

Annotation drawn(const Dimension& dimension) {
  return dimensionAnnotations(std::vector{dimension}, kInch, halfAnEm).at(0);
}

// How far two texts of the same angle are apart, along them or across; below 0 where they overlap.
double apart(const AnnotationText& a, const AnnotationText& b) {
  const SketchPoint along{std::cos(a.angle), std::sin(a.angle)};
  const double em = a.height / 0.72;
  const double between =
      std::abs(dot(b.middle - a.middle, along)) - (halfAnEm(a.text) + halfAnEm(b.text)) * em / 2;
  const double across = std::abs(dot(b.middle - a.middle, perpendicular(along))) - a.height;
  return std::max(between, across);
}

TEST(DimensionAnnotation, TheTextStandsOverTheMiddleOfItsLineAndIsNeverUpsideDown) {
  const Annotation level = drawn(between({0, 0}, {12.5, 0}, 3));
  ASSERT_EQ(level.texts.size(), 1u);
  EXPECT_EQ(level.texts[0].text, "12'-6\"");
  EXPECT_EQ(level.texts[0].height, 3.0 / 32 * kInch);
  EXPECT_EQ(level.texts[0].middle.x, 6.25);
  EXPECT_GT(level.texts[0].middle.y, 3 + 3.0 / 64 * kInch) << "clear of the line";
  EXPECT_EQ(level.lines[0].points, (std::vector<SketchPoint>{{0, 3}, {12.5, 3}}));
  EXPECT_EQ(level.lines.size(), 5u) << "the line, two ticks, two lines from what is measured";
  EXPECT_EQ(level.box.minY, 0.25) << "these begin a sixteenth of an inch from it";

  EXPECT_EQ(drawn(between({12.5, 0}, {0, 0}, -3)).texts[0].middle, level.texts[0].middle);
  const Annotation upright = drawn(between({0, 9}, {0, 0}, 2));
  EXPECT_DOUBLE_EQ(upright.texts[0].angle, std::numbers::pi / 2) << "read from the right";
  EXPECT_LT(upright.texts[0].middle.x, 2.0);
  const Annotation sloped = drawn(between({0, 0}, {12, 9}, -2, DimensionDirection::vertical));
  EXPECT_EQ(sloped.texts[0].text, "9'-0\"");
  EXPECT_EQ(sloped.lines[0].points, (std::vector<SketchPoint>{{2, 0}, {2, 9}}));
}

TEST(DimensionAnnotation, WhatHasLostAnEndAsks) {
  Dimension dimension = between({0, 0}, {5, 0}, 1);
  dimension.to.lost = true;
  EXPECT_EQ(drawn(dimension).texts[0].text, "5'-0\"?");
}

TEST(DimensionAnnotation, ATightTextGoesBeyondTheEndElseAwayFromWhatIsMeasured) {
  const Annotation alone = drawn(between({0, 0}, {0.5, 0}, -3));
  EXPECT_GT(alone.texts[0].middle.x, 0.5);
  EXPECT_GT(alone.texts[0].middle.y, -3.0) << "over the line, which goes on under it";
  EXPECT_EQ(alone.lines.back().points[0], (SketchPoint{0.5, -3}));
  // In a chain below what it measures, the one in the middle goes farther down, the last one beyond the end.
  const std::vector<Dimension> chain{between({0, 0}, {9, 0}, -3), between({9, 0}, {9.5, 0}, -3),
                                     between({9.5, 0}, {18, 0}, -3), between({18, 0}, {18.5, 0}, -3)};
  const auto texts = dimensionAnnotations(chain, kInch, halfAnEm);
  EXPECT_EQ(texts[1].texts[0].middle.x, 9.25);
  EXPECT_LT(texts[1].texts[0].middle.y, -3.0);
  EXPECT_GT(texts[3].texts[0].middle.x, 18.5);
}

TEST(DimensionAnnotation, WhatIsNotFiniteShowsNothing) {
  EXPECT_TRUE(dimensionAnnotations(std::vector{between({0, 0}, {1e300, 0}, 1), between({0, 0}, {NAN, 0}, 1)},
                                   kInch, halfAnEm)
                  .empty());
}

TEST(DimensionAnnotation, AStringLeavesRoomForTheOthersOfItsSide) {
  DimensionString inner{StringRow::openings, {0, 0}, {1, 0}, {0, -1}, {{0, 0}, {3, 2}, {10, 0}}};
  DimensionString outer{StringRow::overall, {0, 0}, {1, 0}, {0, -1}, {{0, 0}, {10, 0}}};
  const auto both = stringAnnotations(std::vector{inner, outer}, kInch, halfAnEm);
  ASSERT_EQ(both.size(), 2u);
  EXPECT_TRUE(both[0].itemID == UUID()) << "derived, so nothing to select";
  EXPECT_EQ(both[0].lines[0].points, (std::vector<SketchPoint>{{0, -1.5}, {10, -1.5}}));
  EXPECT_EQ(both[0].box.maxY, 2 - 0.25) << "from the jamb that stands back";
  EXPECT_EQ(both[1].lines[0].points, (std::vector<SketchPoint>{{0, -4.5}, {10, -4.5}}));
  EXPECT_EQ(both[1].lines[2].points[0], (SketchPoint{0, -4})) << "the inner string stands between";
  EXPECT_EQ(stringAnnotations(std::vector{outer}, kInch, halfAnEm)[0].box.maxY, -0.25);
}

TEST(DimensionAnnotation, NoTwoTextsOfASideOverlapWhateverItMeasures) {
  testing::RandomDrawing random(testing::seed());
  for (int round = 0; round < testing::rounds(300); ++round) {
    const double angle = random.number(-4, 4);
    DimensionString string{StringRow::openings, random.point(), {std::cos(angle), std::sin(angle)}, {}, {}};
    string.outward = perpendicular(string.along) * (random.chance(2) ? 1 : -1);
    std::vector<DimensionString> side;
    for (const StringRow row : {StringRow::openings, StringRow::walls, StringRow::overall}) {
      string.row = row;
      string.marks = {{0, 0}};
      for (double at = 0; at < 40;) {
        at += random.chance(2) ? random.number(0.1, 1) : random.number(1, 9);
        string.marks.push_back({std::min(at, 40.0), 0});
      }
      if (row == StringRow::overall) string.marks = {{0, 0}, {40, 0}};
      side.push_back(string);
    }
    std::vector<AnnotationText> texts;
    for (const Annotation& annotation : stringAnnotations(side, kInch, halfAnEm)) {
      texts.insert(texts.end(), annotation.texts.begin(), annotation.texts.end());
      for (const AnnotationText& text : annotation.texts) {
        EXPECT_TRUE(annotation.box.contains(text.middle));
        EXPECT_LE(std::abs(text.angle), std::numbers::pi / 2 + 1e-6);
      }
    }
    for (std::size_t i = 0; i < texts.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        EXPECT_GE(apart(texts[i], texts[j]), -1e-9)
            << texts[i].text << " " << texts[j].text << " seed " << testing::seed() << " round " << round;
      }
    }
  }
}

}  // namespace
}  // namespace ostrelon
