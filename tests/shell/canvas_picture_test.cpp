#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <numbers>

#include "interaction/canvas_renderer.h"
#include "shell/golden_picture.h"
#include "shell/pixel_canvas_painter.h"
#include "support/test_sketch.h"

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

class CanvasPicture : public ::testing::Test, protected testing::TestSketch {
 protected:
  static constexpr int kWidth = 640;
  static constexpr int kHeight = 440;

  CanvasPicture() {
    sketch.updateCanvasSize({kWidth, kHeight});
    sketch.restoreSnapshot(everyKind(*sketch.wallSystemSpecs));
  }

  QImage paint(const ThemePalette& palette, bool intoPixels = false) const {
    QImage image(kWidth, kHeight, QImage::Format_RGB32);
    CanvasFrame frame{{*sketch.viewport, *sketch.canvasSize}, palette};
    frame.gridPixelRatio = 1;
    if (intoPixels) {
      PixelCanvasPainter canvas(image, 1);
      paintCanvas(canvas, sketch, frame);
    } else {
      QPainter painter(&image);
      QtCanvasPainter canvas(painter);
      paintCanvas(canvas, sketch, frame);
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

TEST_F(CanvasPicture, ShowsADraftWithItsLabelGuidesMarkersAndLock) {
  sketch.activateTool(SketchTool::wall);
  sketch.beginDraft({-40, -30});
  sketch.setDraftCurrent({30, -30});
  sketch.lockTrackingTarget({.point = {0, -10}, .entityName = "Wall 3"});
  sketch.publishSnap({.point = {30, -30},
                      .axes = {AxisSnap::horizontal, AxisSnap::diagonalUp},
                      .gridSnap = GridSnapTarget{{30, -30}, {}, false}},
                     SketchPoint{-40, -30});
  EXPECT_TRUE(looksLikeGolden(paint(lightPalette()), "draft-light"));
  EXPECT_TRUE(looksLikeGolden(paint(darkPalette()), "draft-dark"));
}

TEST_F(CanvasPicture, ShowsAPolygonThatGrowsAndAPulse) {
  sketch.setShowGrid(false);
  sketch.activateTool(SketchTool::polygon);
  sketch.addPolygonVertex({-40, -30});
  sketch.addPolygonVertex({-20, -36});
  sketch.addPolygonVertex({-11, -24});
  sketch.updatePolygonDraft({-20, -16});
  sketch.startTrackingDwell({.point = {50, -38}, .entityName = "Wall 4"}, scheduler.now());
  sketch.advanceTrackingDwell(advanced(scheduler.now(), Seconds(0.55)));
  EXPECT_TRUE(looksLikeGolden(paint(lightPalette()), "polygon-draft-light"));
}

}  // namespace
}  // namespace ostrelon
