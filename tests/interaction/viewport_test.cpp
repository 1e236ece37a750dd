// The mapping of the canvas, and the operations that move the view.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "interaction/canvas_transform.h"
#include "support/test_sketch.h"

namespace ostrelon {
namespace {

using testing::TestSketch;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool isUsable(const SketchViewport& viewport) {
  return std::isfinite(viewport.pan.x) && std::isfinite(viewport.pan.y) && viewport.scale >= 0.05 &&
         viewport.scale <= 200;
}

TEST(CanvasTransform, MapsBothWaysWithYTurned) {
  const SketchViewport viewport{{100, 50}, 2};
  EXPECT_EQ(sketchPointToView({10, 5}, viewport), (SketchPoint{120, 40}));
  EXPECT_EQ(viewPointToSketch({120, 40}, viewport), (SketchPoint{10, 5}));
  EXPECT_EQ(visibleSketchBox({400, 200}, viewport), (SketchBox{-50, -75, 150, 25}));
}

TEST(CanvasTransform, PicksTheNearestGridStepAndTheSmallerOfTwo) {
  EXPECT_EQ(gridStep(4), 10);
  EXPECT_EQ(gridStep(200), 1);
  EXPECT_EQ(gridStep(0.05), 500);
  EXPECT_EQ(gridStep(56.0 / 15), 10) << "15 lies midway between 10 and 20";
  EXPECT_EQ(gridScaleLabel(4), "10'");
  EXPECT_EQ(zoomPercentageLabel(4), "100%");
  EXPECT_EQ(zoomPercentageLabel(0.05), "1%");
  EXPECT_EQ(zoomPercentageLabel(200), "5000%");
}

TEST(Viewport, TheFirstCanvasSizeCentresTheOriginAndLaterOnesLeaveTheView) {
  TestSketch test;
  test.sketch.updateCanvasSize({0, 0});
  EXPECT_FALSE(*test.sketch.hasInitializedViewport);
  test.sketch.updateCanvasSize({800, 600});
  EXPECT_TRUE(*test.sketch.hasInitializedViewport);
  EXPECT_EQ(*test.sketch.viewport, (SketchViewport{{400, 300}, 4}));
  test.sketch.updateCanvasSize({1000, 600});
  EXPECT_EQ(*test.sketch.viewport, (SketchViewport{{400, 300}, 4}));
  EXPECT_FALSE(*test.sketch.isDocumentDirty);
}

TEST(Viewport, ACanvasThatWasAPointCentresAgain) {
  TestSketch test;
  test.sketch.updateCanvasSize({1, 1});
  EXPECT_TRUE(*test.sketch.hasInitializedViewport);
  test.sketch.updateCanvasSize({200, 100});
  EXPECT_EQ(test.sketch.viewport->pan, (SketchPoint{100, 50}));
}

TEST(Viewport, ZoomKeepsThePointUnderTheAnchorAndHoldsTheLimits) {
  TestSketch test;
  auto& sketch = test.sketch;
  sketch.updateCanvasSize({800, 600});
  const SketchPoint anchor{123, 456};
  const SketchPoint before = viewPointToSketch(anchor, sketch.viewport);
  sketch.zoomViewport(1.25, anchor);
  EXPECT_EQ(sketch.viewport->scale, 5);
  EXPECT_NEAR(viewPointToSketch(anchor, sketch.viewport).x, before.x, 1e-9);
  EXPECT_NEAR(viewPointToSketch(anchor, sketch.viewport).y, before.y, 1e-9);

  sketch.zoomViewport(1e9, anchor);
  EXPECT_EQ(sketch.viewport->scale, 200);
  const SketchViewport largest = sketch.viewport;
  sketch.zoomViewport(1.25, anchor);
  EXPECT_NEAR(sketch.viewport->pan.x, largest.pan.x, 1e-9);
  sketch.zoomViewport(1e-9, anchor);
  EXPECT_EQ(sketch.viewport->scale, 0.05);
}

TEST(Viewport, FitCentresTheDrawingWithTheMarginCountedTwice) {
  TestSketch test;
  auto& sketch = test.sketch;
  sketch.addLine({0, 0}, {104, 4});
  sketch.zoomToFit({896, 696});
  // 104 and the margins make 200 wide, 100 high; 800 and 600 points are left.
  EXPECT_EQ(sketch.viewport->scale, 4);
  EXPECT_EQ(sketchPointToView({52, 2}, sketch.viewport), (SketchPoint{448, 348}));
  sketch.zoomToFit({90, 500});
  EXPECT_EQ(sketch.viewport->scale, 0.05) << "no room for the margin";
}

TEST(Viewport, FitTakesTheWholeCircleOfAnArcAndRectanglesOfNegativeSize) {
  TestSketch test;
  auto& sketch = test.sketch;
  sketch.addRectangle({10, 10}, {-20, -20});
  sketch.zoomToFit({1096, 1096});
  const double side = 1000.0 / (20 + 96);
  EXPECT_DOUBLE_EQ(sketch.viewport->scale, side);
  EXPECT_DOUBLE_EQ(sketch.viewport->pan.x, 548);
}

TEST(Viewport, AnEmptySketchFitsToTheFreshView) {
  TestSketch test;
  test.sketch.setViewport(7, 8, 9);
  test.sketch.zoomToFit({800, 600});
  EXPECT_EQ(*test.sketch.viewport, (SketchViewport{{400, 300}, 4}));
}

TEST(Viewport, NoFactorDeltaOrEntityMakesTheViewUnusable) {
  TestSketch test;
  auto& sketch = test.sketch;
  sketch.updateCanvasSize({800, 600});
  const SketchViewport start = sketch.viewport;
  for (const double factor : {0.0, -1.0, kNaN}) sketch.zoomViewport(factor, {0, 0});
  sketch.panViewport(kNaN, 0);
  sketch.panViewport(0, kInfinity);
  EXPECT_EQ(*sketch.viewport, start);
  sketch.zoomViewport(kInfinity, {0, 0});
  sketch.zoomViewport(1.25, {kNaN, 0});
  EXPECT_TRUE(isUsable(sketch.viewport));

  sketch.addCircle({kNaN, 0}, 5);
  sketch.addLine({0, 0}, {kInfinity, 0});
  sketch.addLine({-1e308, -1e308}, {1e308, 1e308});
  sketch.zoomToFit({800, 600});
  EXPECT_TRUE(isUsable(sketch.viewport)) << sketch.viewport->pan.x << " " << sketch.viewport->scale;
  sketch.zoomToFit({0, 0});
  EXPECT_TRUE(isUsable(sketch.viewport));
}

TEST(Viewport, WritingTheSameViewTellsNobody) {
  TestSketch test;
  int told = 0;
  const auto subscription =
      test.sketch.observe(fieldMask(SketchField::viewport), [&](const SketchChange&) { ++told; });
  test.sketch.setViewport(1, 2, 3);
  test.sketch.setViewport(1, 2, 3);
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace ostrelon
