// The mapping of the canvas, and the operations that move the view.
#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "core/adding.h"
#include "interaction/canvas_transform.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using testing::TestWorkspace;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

bool isUsable(const SketchViewport& viewport) {
  return std::isfinite(viewport.pan.x) && std::isfinite(viewport.pan.y) && viewport.scale >= 0.05 &&
         viewport.scale <= 200;
}

TEST(Viewport, ACanvasThatWasAPointCentresAgain) {
  TestWorkspace test;
  test.board.resizeCanvas({1, 1});
  EXPECT_TRUE(test.board.view->isInitialized);
  test.board.resizeCanvas({200, 100});
  EXPECT_EQ(test.board.viewport().pan, (SketchPoint{100, 50}));
}

TEST(Viewport, NoFactorDeltaOrEntityMakesTheViewUnusable) {
  TestWorkspace test;
  Board& board = test.board;
  board.resizeCanvas({800, 600});
  const SketchViewport start = board.viewport();
  for (const double factor : {0.0, -1.0, kNaN}) board.zoom(factor, {0, 0});
  board.pan(kNaN, 0);
  board.pan(0, kInfinity);
  EXPECT_EQ(board.viewport(), start);
  board.zoom(kInfinity, {0, 0});
  board.zoom(1.25, {kNaN, 0});
  EXPECT_TRUE(isUsable(board.viewport()));

  addCircle(test.sketch, {kNaN, 0}, 5);
  addLine(test.sketch, {0, 0}, {kInfinity, 0});
  addLine(test.sketch, {-1e308, -1e308}, {1e308, 1e308});
  board.zoomToFit({800, 600});
  EXPECT_TRUE(isUsable(board.viewport())) << board.viewport().pan.x << " " << board.viewport().scale;
  board.zoomToFit({0, 0});
  EXPECT_TRUE(isUsable(board.viewport()));
}

TEST(Viewport, WritingTheSameViewTellsNobody) {
  TestWorkspace test;
  int told = 0;
  const auto subscription = test.workspace.observe(fieldsOf(test.board.view), [&](FieldMask) { ++told; });
  test.board.setViewport({{1, 2}, 3});
  test.board.setViewport({{1, 2}, 3});
  EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace ostrelon
