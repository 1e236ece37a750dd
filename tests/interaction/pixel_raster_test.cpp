#include "interaction/pixel_raster.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <vector>

namespace ostrelon {
namespace {

/// A white picture to paint on in black.
class Sheet {
 public:
  static constexpr int kSide = 64;

  PixelBuffer buffer() { return {pixels_.data(), kSide, 0, 0, kSide, kSide}; }
  std::uint32_t pixel(int x, int y) const { return pixels_[static_cast<std::size_t>(y * kSide + x)]; }
  /// How dark a pixel is, 0 to 1.
  double coverage(int x, int y) const { return 1 - (pixel(x, y) & 0xFF) / 255.0; }
  /// The area covered, in pixels.
  double area() const {
    double sum = 0;
    for (int y = 0; y < kSide; ++y) {
      for (int x = 0; x < kSide; ++x) sum += coverage(x, y);
    }
    return sum;
  }
  /// The largest difference from a picture that is sampled 8 times 8 in each pixel.
  double worstAgainst(const std::function<bool(SketchPoint)>& covers) const {
    double worst = 0;
    for (int y = 0; y < kSide; ++y) {
      for (int x = 0; x < kSide; ++x) {
        int hits = 0;
        for (int i = 0; i < 64; ++i) hits += covers({x + (i % 8 + 0.5) / 8, y + (i / 8 + 0.5) / 8});
        worst = std::max(worst, std::abs(coverage(x, y) - hits / 64.0));
      }
    }
    return worst;
  }

 private:
  std::vector<std::uint32_t> pixels_ = std::vector<std::uint32_t>(kSide * kSide, 0xFFFFFFFF);
};

constexpr PixelColor kBlack{};

double distanceToLine(SketchPoint p, const CanvasSegment& line) {
  const SketchPoint d = line.to - line.from;
  const double squared = d.x * d.x + d.y * d.y;
  const SketchPoint v = p - line.from;
  const double t = squared > 0 ? std::clamp((v.x * d.x + v.y * d.y) / squared, 0.0, 1.0) : 0;
  return distanceBetween(p, line.from + d * t);
}

TEST(PixelRaster, CoversLinesAlongTheAxesExactly) {
  Sheet sheet;
  rasterButtLine(sheet.buffer(), {{10, 20}, {20, 20}}, 1.5, kBlack);
  EXPECT_NEAR(sheet.coverage(15, 19), 0.75, 0.005);
  EXPECT_NEAR(sheet.coverage(15, 20), 0.75, 0.005);
  EXPECT_EQ(sheet.coverage(15, 21), 0);
  EXPECT_EQ(sheet.coverage(9, 20), 0);
  EXPECT_EQ(sheet.coverage(20, 20), 0);
  EXPECT_NEAR(sheet.area(), 15, 0.05);
}

TEST(PixelRaster, StaysCloseToTheTrueCoverage) {
  std::mt19937_64 random(7);
  std::uniform_real_distribution<double> at(8, 56);
  for (int i = 0; i < 12; ++i) {
    const CanvasSegment line{{at(random), at(random)}, {at(random), at(random)}};
    Sheet round;
    rasterRoundLine(round.buffer(), line, 1.5, kBlack);
    EXPECT_LT(round.worstAgainst([&](SketchPoint p) { return distanceToLine(p, line) <= 0.75; }), 0.2) << i;

    const SketchPoint center{at(random), at(random)};
    const double radius = std::abs(line.to.x - line.from.x) + 3;
    Sheet circle;
    rasterCircle(circle.buffer(), center, radius, 1.5, kBlack);
    EXPECT_LT(circle.worstAgainst(
                  [&](SketchPoint p) { return std::abs(distanceBetween(p, center) - radius) <= 0.75; }),
              0.2)
        << i;
  }
}

TEST(PixelRaster, FillsTurnedRectanglesToTheirArea) {
  for (int i = 0; i < 30; ++i) {
    const double angle = i * 0.21;
    const SketchPoint u{std::cos(angle) * 15, std::sin(angle) * 15};
    const SketchPoint v{-std::sin(angle) * 6, std::cos(angle) * 6};
    const SketchPoint c{32.3, 31.6};
    std::vector<SketchPoint> corners{c + u + v, c + u - v, c - u - v, c - u + v};
    if (i % 2 == 1) std::reverse(corners.begin(), corners.end());
    ASSERT_TRUE(isSmallConvex(corners));
    Sheet sheet;
    rasterConvexArea(sheet.buffer(), corners, kBlack);
    EXPECT_NEAR(sheet.area(), 4 * 15 * 6, 2) << i;
    EXPECT_EQ(sheet.coverage(32, 31), 1);
  }
}

TEST(PixelRaster, TellsConvexAreasFromOthers) {
  EXPECT_TRUE(isSmallConvex(std::vector<SketchPoint>{{0, 0}, {4, 0}, {4, 4}}));
  EXPECT_FALSE(isSmallConvex(std::vector<SketchPoint>{{0, 0}, {4, 0}}));
  EXPECT_FALSE(isSmallConvex(std::vector<SketchPoint>{{0, 0}, {4, 0}, {8, 0}}));
  EXPECT_FALSE(isSmallConvex(std::vector<SketchPoint>{{0, 0}, {4, 4}, {4, 0}, {0, 4}})) << "a bow tie";
  EXPECT_FALSE(isSmallConvex(std::vector<SketchPoint>{{0, 0}, {4, 0}, {1, 1}, {0, 4}})) << "a dent";
  std::vector<SketchPoint> star;
  for (int i = 0; i < 5; ++i) {
    const double angle = i * 4 * std::numbers::pi / 5;
    star.push_back({std::cos(angle), std::sin(angle)});
  }
  EXPECT_FALSE(isSmallConvex(star)) << "it turns twice around";
}

TEST(PixelRaster, LaysALatticeOnceWhereItCrosses) {
  Sheet sheet;
  const double lines[] = {20.5, 40.5};
  rasterLattice(sheet.buffer(), lines, lines, 1, {.alpha = 128});
  EXPECT_EQ(sheet.pixel(20, 20), sheet.pixel(20, 5));
  EXPECT_EQ(sheet.pixel(20, 20), sheet.pixel(5, 40));
  EXPECT_EQ(sheet.coverage(21, 21), 0);
}

TEST(PixelRaster, TouchesNothingOutsideTheClipWhateverTheNumbers) {
  Sheet sheet;
  PixelBuffer buffer = sheet.buffer();
  buffer.clipMinX = buffer.clipMinY = 10;
  buffer.clipMaxX = buffer.clipMaxY = 20;
  std::mt19937_64 random(3);
  std::uniform_real_distribution<double> at(-1e6, 1e6);
  for (int i = 0; i < 200; ++i) {
    const double reach = i % 2 == 0 ? 1 : 1e-4;
    const CanvasSegment line{{at(random) * reach, at(random) * reach},
                             {at(random) * reach, at(random) * reach}};
    rasterRoundLine(buffer, line, 3, kBlack);
    rasterButtLine(buffer, line, 3, kBlack);
    rasterCircle(buffer, line.from, std::abs(line.to.x), 3, kBlack);
    const SketchPoint corners[] = {line.from, line.to, {15, 15}};
    rasterConvexArea(buffer, corners, kBlack);
  }
  for (int y = 0; y < Sheet::kSide; ++y) {
    for (int x = 0; x < Sheet::kSide; ++x) {
      if (x < 10 || x >= 20 || y < 10 || y >= 20) {
        ASSERT_EQ(sheet.pixel(x, y), 0xFFFFFFFFu) << x << ", " << y;
      }
    }
  }
  EXPECT_EQ(sheet.coverage(15, 15), 1);
}

TEST(PixelRaster, AreasThatMeetOrOverlapAreOneArea) {
  const std::vector<SketchPoint> left{{10, 8}, {30, 20}, {26, 50}, {6, 44}};
  const std::vector<SketchPoint> right{{30, 20}, {52, 31}, {47, 58}, {26, 50}};
  const std::vector<SketchPoint> over{{20, 25}, {40, 34}, {37, 46}, {18, 40}};
  CanvasPath path;
  for (const auto& piece : {left, right, over}) path.addPiece(piece, true);
  Sheet sheet;
  rasterConvexAreas(sheet.buffer(), path, 1, {0, 0, 0, 128});
  for (int y = 22; y < 48; ++y) {
    // Along the edge that both share, and across what lies over both.
    const int x = static_cast<int>(30 - 4 * (y - 20) / 30.0);
    EXPECT_EQ(sheet.pixel(x, y), 0xFF7F7F7FU) << y;
    EXPECT_EQ(sheet.pixel(x - 1, y), 0xFF7F7F7FU) << y;
  }
  EXPECT_EQ(sheet.pixel(2, 2), 0xFFFFFFFFU);
  Sheet one;
  rasterConvexAreas(one.buffer(), path, 1, kBlack);
  const auto within = [&](const std::vector<SketchPoint>& piece, SketchPoint p) {
    for (std::size_t i = 0; i < piece.size(); ++i) {
      if (cross(piece[(i + 1) % piece.size()] - piece[i], p - piece[i]) < 0) return false;
    }
    return true;
  };
  EXPECT_LT(one.worstAgainst([&](SketchPoint p) { return within(left, p) || within(right, p); }), 0.3);
}

}  // namespace
}  // namespace ostrelon
