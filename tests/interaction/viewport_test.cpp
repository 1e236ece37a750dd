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
  EXPECT_EQ(visibleSketchRect({400, 200}, viewport), (VisibleSketchRect{-50, -75, 200, 100}));
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

TEST(Viewport, ACanvasThatWasAPointCentresAgain) {
  TestSketch test;
  test.sketch.updateCanvasSize({1, 1});
  EXPECT_TRUE(*test.sketch.hasInitializedViewport);
  test.sketch.updateCanvasSize({200, 100});
  EXPECT_EQ(test.sketch.viewport->pan, (SketchPoint{100, 50}));
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
