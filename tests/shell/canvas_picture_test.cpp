#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <cmath>
#include <numbers>

#include "core/adding.h"
#include "interaction/canvas_renderer.h"
#include "shell/golden_picture.h"
#include "shell/pixel_canvas_painter.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using testing::looksAlike;
using testing::looksLikeGolden;

/// A corner of a house with every kind of entity.
EntityList everyKind(const std::vector<WallSystemSpec>& systems) {
  return {
      WallEntity{UUID::random(), {-60, 40}, {60, 40}, systems[1].id},
      WallEntity{UUID::random(), {-60, 40}, {-60, -40}, systems[1].id},
      WallEntity{UUID::random(), {0, 40}, {0, -10}, systems[0].id},
      WallEntity{UUID::random(), {0, -10}, {50, -38}, systems[2].id},
      LineEntity{UUID::random(), {-57, -40}, {0, -10}},
      CircleEntity{UUID::random(), {-30, 10}, 12},
      ArcEntity{UUID::random(), {2.5, 36}, 20, -std::numbers::pi / 2, 0},
      RectangleEntity{UUID::random(), {55, 36}, {-22, -12}},
      PolygonEntity{UUID::random(), {{20, 10}, {32, 4}, {32, -6}, {20, -12}, {10, -2}}},
  };
}

class CanvasPicture : public ::testing::Test, protected testing::TestWorkspace {
 protected:
  static constexpr int kWidth = 640;
  static constexpr int kHeight = 440;

  CanvasPicture() {
    board.resizeCanvas({kWidth, kHeight});
    board.restoreSnapshot(everyKind(sketch.drawing->wallSystemSpecs));
  }

  QImage paint(const ThemePalette& palette, bool intoPixels = false) const {
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    CanvasFrame frame{{board.viewport(), board.view->canvasSize}, palette};
    frame.gridPixelRatio = 1;
    if (intoPixels) {
      PixelCanvasPainter canvas(image, 1);
      paintCanvas(canvas, board, frame);
    } else {
      QPainter painter(&image);
      QtCanvasPainter canvas(painter);
      paintCanvas(canvas, board, frame);
    }
    return image;
  }
};

TEST_F(CanvasPicture, ShowsEveryKindOfEntity) {
  EXPECT_TRUE(looksLikeGolden(paint(lightPalette()), "entities-light"));
  EXPECT_TRUE(looksLikeGolden(paint(darkPalette()), "entities-dark"));
  EXPECT_TRUE(looksLikeGolden(paint(tansyPalette()), "entities-tansy"));
}

TEST_F(CanvasPicture, LooksTheSameStraightIntoPixels) {
  EXPECT_TRUE(looksAlike(paint(lightPalette(), true), paint(lightPalette()), "entities-pixels"));
}

TEST_F(CanvasPicture, StrokesManyPointsAsItStrokesFew) {
  // One polygon twice: with 16 corners, and with each side cut into twenty.
  std::vector<SketchPoint> few;
  std::vector<SketchPoint> many;
  const auto corner = [](int i) {
    const double radius = i % 2 == 0 ? 45 : 30;
    const double angle = 2 * std::numbers::pi * i / 16;
    return SketchPoint{radius * std::cos(angle), radius * std::sin(angle)};
  };
  for (int i = 0; i < 16; ++i) {
    few.push_back(corner(i));
    for (int s = 0; s < 20; ++s) many.push_back(corner(i) + (corner(i + 1) - corner(i)) * (s / 20.0));
  }
  const auto painted = [this](const std::vector<SketchPoint>& vertices) {
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QtCanvasPainter canvas(painter);
    const CanvasFrame frame{{board.viewport(), board.view->canvasSize}, lightPalette()};
    EntityShape shape;
    outlineEntity(PolygonEntity{{}, vertices}, 0, frame, shape);
    for (const double opacity : {0.24, 1.0}) {
      strokeShape(canvas, frame, shape,
                  {.color = frame.palette.active,
                   .opacity = opacity,
                   .width = opacity < 1 ? 7.0 : 2.75,
                   .cap = LineCap::round,
                   .join = LineJoin::round});
    }
    return image;
  };
  EXPECT_TRUE(looksAlike(painted(many), painted(few), "many-points"));
}

TEST_F(CanvasPicture, ShowsADraftWithItsLabelGuidesMarkersAndLock) {
  board.activateTool(SketchTool::wall);
  board.beginDraft({-40, -30});
  board.setDraftCurrent({30, -30});
  board.lockTrackingTarget({.point = {0, -10}, .entityName = "Wall 3"});
  board.publishSnap({.point = {30, -30},
                     .axes = {AxisSnap::horizontal, AxisSnap::diagonalUp},
                     .gridSnap = GridSnapTarget{{30, -30}, {}, false}},
                    SketchPoint{-40, -30});
  EXPECT_TRUE(looksLikeGolden(paint(lightPalette()), "draft-light"));
  EXPECT_TRUE(looksLikeGolden(paint(darkPalette()), "draft-dark"));
}

TEST_F(CanvasPicture, ShowsAPolygonThatGrowsAndAPulse) {
  setShowGrid(sketch, false);
  board.activateTool(SketchTool::polygon);
  board.addPolygonVertex({-40, -30});
  board.addPolygonVertex({-20, -36});
  board.addPolygonVertex({-11, -24});
  board.updatePolygonDraft({-20, -16});
  board.startTrackingDwell({.point = {50, -38}, .entityName = "Wall 4"}, scheduler.now());
  board.advanceTrackingDwell(advanced(scheduler.now(), Seconds(0.55)));
  EXPECT_TRUE(looksLikeGolden(paint(lightPalette()), "polygon-draft-light"));
}

}  // namespace
}  // namespace ostrelon
