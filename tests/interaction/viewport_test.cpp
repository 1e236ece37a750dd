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
