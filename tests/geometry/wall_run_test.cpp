#include "geometry/wall_run.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "support/random_drawing.h"

namespace ostrelon {
namespace {

using Axes = std::vector<WallAxis>;

TEST(WallRun, TheTypedLineIsTheOuterOrInnerFaceWhicheverWayRound) {
  const double half = 0.25;
  const Axes outer{{{half, half}, {9.75, half}},
                   {{9.75, half}, {9.75, 7.75}},
                   {{9.75, 7.75}, {half, 7.75}},
                   {{half, 7.75}, {half, half}}};
  const RunPath room{{{0, 0}, {10, 0}, {10, 8}, {0, 8}}, true};
  EXPECT_EQ(std::get<Axes>(runAxes(room, 0.5, RunFace::outer)), outer);
  const Axes inner = std::get<Axes>(runAxes({{{0, 0}, {0, 8}, {10, 8}, {10, 0}}, true}, 0.5, RunFace::inner));
  EXPECT_EQ(inner[1], (WallAxis{{-half, 8.25}, {10.25, 8.25}})) << "clockwise";
  // Of an open path the outer face is the left one.
  const Axes open = std::get<Axes>(runAxes({{{0, 0}, {10, 0}, {10, 8}}, false}, 0.5, RunFace::outer));
  EXPECT_EQ(open, (Axes{{{0, -half}, {10.25, -half}}, {{10.25, -half}, {10.25, 8}}}));
  EXPECT_EQ(justifiedAxis({{0, 0}, {0, 8}}, 0.5, WallJustification::rightFace),
            (WallAxis{{-half, 0}, {-half, 8}}));
}

TEST(WallRun, RefusesFacesThatDoNotMeet) {
  const RunPath backAndForth{{{0, 0}, {10, 0}, {4, 0}}, false};
  EXPECT_EQ(std::get<RunRefusal>(runAxes(backAndForth, 0.5, RunFace::outer)),
            (RunRefusal{RunProblem::turnsBack, 1}));
  EXPECT_EQ(std::get<Axes>(runAxes(backAndForth, 0.5, RunFace::middle)).size(), 2u);
  EXPECT_EQ(std::get<RunRefusal>(runAxes({{{0, 0}, {10, 0}, {5, 0}}, true}, 0.5, RunFace::inner)),
            (RunRefusal{RunProblem::noArea, 0}));
  const RunPath narrow{{{0, 0}, {10, 0}, {10, 0.4}, {0, 0.4}}, true};
  EXPECT_EQ(std::get<RunRefusal>(runAxes(narrow, 0.5, RunFace::outer)),
            (RunRefusal{RunProblem::wallTooShort, 2}));
}

TEST(WallRun, EveryWallHasTheTypedLineAsItsFaceAndMeetsItsNeighbours) {
  testing::RandomDrawing random(testing::seed());
  int drawn = 0;
  for (int round = 0; round < testing::rounds(500); ++round) {
    RunPath path{{}, random.chance(2)};
    for (int i = 3 + random.below(5); i > 0; --i) {
      path.points.push_back({random.number(-50, 50), random.number(-50, 50)});
    }
    const double thickness = random.number(0.1, 1);
    const auto result = runAxes(path, thickness, random.chance(2) ? RunFace::outer : RunFace::inner);
    const auto* axes = std::get_if<Axes>(&result);
    if (axes == nullptr) continue;
    ++drawn;
    for (std::size_t i = 0; i < axes->size(); ++i) {
      const auto& [from, to] = (*axes)[i];
      const auto heightOver = [&](SketchPoint point) {
        return cross(to - from, point - from) / lengthOf(to - from);
      };
      const SketchPoint end = path.points[(i + 1) % path.points.size()];
      EXPECT_NEAR(heightOver(path.points[i]), heightOver(end), 1e-6) << testing::seed();
      EXPECT_NEAR(std::abs(heightOver(end)), thickness / 2, 1e-6) << testing::seed();
      if (i > 0) {
        EXPECT_EQ((*axes)[i - 1].to, from) << testing::seed();
      }
    }
    if (path.isClosed) {
      EXPECT_EQ(axes->back().to, axes->front().from) << testing::seed();
    }
  }
  EXPECT_GT(drawn, 100);
}

}  // namespace
}  // namespace ostrelon
