#include "geometry/trim.h"
#include "core/circle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "support/random_drawing.h"

namespace ostrelon {
namespace {

constexpr double kPi = std::numbers::pi;

UUID id() { return UUID::random(); }

template <class Kind>
Kind keptAs(const TrimGeometry& geometry) {
  return std::get<Kind>(std::get<TrimReplace>(std::get<TrimOutcome>(geometry)).entity);
}

bool isDeleted(const TrimGeometry& geometry) {
  const auto* outcome = std::get_if<TrimOutcome>(&geometry);
  return outcome != nullptr && std::holds_alternative<TrimDelete>(*outcome);
}

TEST(Trim, ALineLosesTheSideOfThePoint) {
  const LineEntity line{id(), {0, 0}, {10, 0}};
  const LineEntity cutter{id(), {4, -5}, {4, 5}};
  EXPECT_EQ(keptAs<LineEntity>(trimSegment(line, cutter, {8, 1})).to, (SketchPoint{4, 0}));
  EXPECT_EQ(keptAs<LineEntity>(trimSegment(line, cutter, {1, 1})).from, (SketchPoint{4, 0}));
  EXPECT_EQ(keptAs<LineEntity>(trimSegment(line, cutter, {4, 1})).from, (SketchPoint{4, 0}))
      << "a point exactly over the hit removes the start";
  EXPECT_EQ(std::get<TrimFailure>(trimSegment(line, LineEntity{id(), {0, -1}, {0, 1}}, {5, 0})),
            TrimFailure::intersectionAtEndpoint);
  EXPECT_EQ(std::get<TrimFailure>(trimSegment(line, LineEntity{id(), {0, 1}, {10, 1}}, {5, 0})),
            TrimFailure::noIntersection);
  const WallEntity wall{id(), {0, 0}, {10, 0}, id()};
  const WallEntity trimmed = keptAs<WallEntity>(trimSegment(wall, cutter, {8, 0}));
  EXPECT_EQ(trimmed.id, wall.id);
  EXPECT_EQ(trimmed.systemSpecID, wall.systemSpecID);
}

TEST(Trim, TheFirstSideOfARectangleThatCutsWins) {
  const LineEntity line{id(), {-10, 2}, {20, 2}};
  const RectangleEntity cutter{id(), {0, 0}, {10, 5}};
  EXPECT_EQ(keptAs<LineEntity>(trimSegment(line, cutter, {-5, 2})).from, (SketchPoint{10, 2}));
  EXPECT_EQ(std::get<TrimFailure>(trimSegment(LineEntity{id(), {10, 2}, {20, 2}}, cutter, {15, 2})),
            TrimFailure::noIntersection)
      << "the failure is that of the last side";
}

TEST(Trim, ALineThroughACircleKeepsTheFarSide) {
  const LineEntity line{id(), {0, 0}, {10, 0}};
  const CircleEntity circle{id(), {4, 0}, 1};
  EXPECT_EQ(keptAs<LineEntity>(trimSegment(line, circle, {1, 0})).from, (SketchPoint{3, 0}));
  EXPECT_EQ(keptAs<LineEntity>(trimSegment(line, circle, {9, 0})).to, (SketchPoint{5, 0}));
  EXPECT_EQ(keptAs<LineEntity>(trimSegment(line, circle, {4, 0})).from, (SketchPoint{5, 0}))
      << "between the hits the longer stub stays";
  EXPECT_EQ(keptAs<LineEntity>(trimSegment(line, CircleEntity{id(), {5, 0}, 1}, {5, 0})).to,
            (SketchPoint{4, 0}))
      << "of equal stubs the first";
  EXPECT_EQ(std::get<TrimFailure>(trimSegment(line, CircleEntity{id(), {0, 0}, 1}, {5, 0})),
            TrimFailure::intersectionAtEndpoint);
  EXPECT_EQ(std::get<TrimFailure>(trimSegment(line, CircleEntity{id(), {0, 9}, 1}, {5, 0})),
            TrimFailure::noIntersection);
}

TEST(Trim, ACircleKeepsTheArcWithoutThePoint) {
  const CircleEntity circle{id(), {0, 0}, 5};
  const LineEntity chord{id(), {3, -10}, {3, 10}};
  const ArcEntity big = keptAs<ArcEntity>(trimCircle(circle, chord, {5, 0}));
  EXPECT_EQ(big.id, circle.id);
  EXPECT_FALSE(angleInArcSpan(0, big.startAngle, big.endAngle));
  const ArcEntity small = keptAs<ArcEntity>(trimCircle(circle, chord, {-5, 0}));
  EXPECT_TRUE(angleInArcSpan(0, small.startAngle, small.endAngle)) << "through angle 0";
  EXPECT_NEAR(arcSpan(big.startAngle, big.endAngle) + arcSpan(small.startAngle, small.endAngle), 2 * kPi,
              1e-9);
  EXPECT_TRUE(isDeleted(trimCircle(circle, LineEntity{id(), {5, -10}, {5, 10}}, {-5, 0}))) << "a tangent";
  EXPECT_EQ(std::get<TrimFailure>(trimCircle(circle, LineEntity{id(), {3, 0}, {3, 10}}, {5, 0})),
            TrimFailure::noIntersection)
      << "a cutter that ends inside";
  EXPECT_EQ(std::get<TrimFailure>(trimCircle(circle, CircleEntity{id(), {0, 0}, 5}, {5, 0})),
            TrimFailure::noIntersection);
  const ArcEntity bitten = keptAs<ArcEntity>(trimCircle(circle, CircleEntity{id(), {6, 0}, 5}, {5, 0}));
  EXPECT_FALSE(angleInArcSpan(0, bitten.startAngle, bitten.endAngle));
  EXPECT_NEAR(std::fabs(pointOnCircle({0, 0}, 5, bitten.startAngle).x), 3, 1e-9);
}

TEST(Trim, AnArcIsCutOnItsChordByACircleAndAsACircleByALine) {
  const ArcEntity arc{id(), {0, 0}, 5, 0, kPi};
  const ArcEntity left = keptAs<ArcEntity>(trimArc(arc, CircleEntity{id(), {3, 0}, 1}, {5, 0}));
  EXPECT_NEAR(left.startAngle, 0, 1e-9);
  EXPECT_NEAR(left.endAngle, kPi, 1e-9);
  EXPECT_EQ(std::get<TrimFailure>(trimArc(arc, CircleEntity{id(), {5, 0}, 1}, {5, 0})),
            TrimFailure::intersectionAtEndpoint);
  const ArcEntity whole = keptAs<ArcEntity>(trimArc(arc, LineEntity{id(), {-9, -3}, {9, -3}}, {0, 5}));
  EXPECT_TRUE(angleInArcSpan(1.5 * kPi, whole.startAngle, whole.endAngle))
      << "the arc's own span plays no part";
}

TEST(Trim, ARectangleIsCutAsAPolygon) {
  const RectangleEntity rectangle{id(), {0, 0}, {10, 10}};
  const RectangleEntity half =
      keptAs<RectangleEntity>(trimRectangle(rectangle, LineEntity{id(), {4, -1}, {4, 11}}, {9, 5}));
  EXPECT_EQ(half.id, rectangle.id);
  EXPECT_EQ(half.size, (SketchSize{4, 10}));
  const TrimGeometry cut = trimRectangle(rectangle, LineEntity{id(), {0, 5}, {5, 0}}, {9, 9});
  const auto& lines = std::get<TrimReplaceMany>(std::get<TrimOutcome>(cut)).entities;
  ASSERT_EQ(lines.size(), 3u);
  for (const SketchEntity& line : lines) EXPECT_NE(entityID(line), rectangle.id);
  EXPECT_TRUE(isDeleted(trimRectangle(rectangle, LineEntity{id(), {20, 0}, {20, 1}}, {5, 5})))
      << "a line that misses it counts as infinite";
  EXPECT_EQ(keptAs<RectangleEntity>(trimRectangle(rectangle, LineEntity{id(), {20, 0}, {20, 1}}, {30, 5})),
            rectangle);
  EXPECT_TRUE(isDeleted(trimRectangle(rectangle, CircleEntity{id(), {0, 0}, 11}, {1, 1})))
      << "a circle that leaves one corner";
  EXPECT_EQ(keptAs<RectangleEntity>(trimRectangle(rectangle, CircleEntity{id(), {5, 5}, 1}, {5, 5})),
            rectangle);
}

TEST(Trim, AnUprightCutLeavesAnExactRectangleWhereverItGoes) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  testing::RandomDrawing drawing(seed);
  for (int i = 0; i < 500; ++i) {
    const RectangleEntity rectangle{id(), drawing.point(), {drawing.number(1, 9), drawing.number(1, 9)}};
    const double x = rectangle.origin.x + rectangle.size.width * drawing.number(0.1, 0.9);
    const LineEntity cutter{id(), {x, drawing.coordinate()}, {x, drawing.coordinate() + 50}};
    const auto kept = keptAs<RectangleEntity>(trimRectangle(rectangle, cutter, {x + 1, 0}));
    EXPECT_EQ(kept.origin, rectangle.origin);
    EXPECT_EQ(kept.size.width, x - rectangle.origin.x);
    EXPECT_NEAR(kept.size.height, rectangle.size.height, 1e-9);
  }
}

TEST(Trim, ACutThroughACornerLeavesALineOfNoLength) {
  const RectangleEntity rectangle{id(), {0, 0}, {10, 10}};
  // What stays is the triangle (0, 0), (5, 10), (0, 10), whose four points have two values of x and of
  // y, like those of a rectangle.
  const TrimGeometry cut = trimRectangle(rectangle, LineEntity{id(), {0, 0}, {5, 10}}, {9, 1});
  const auto& lines = std::get<TrimReplaceMany>(std::get<TrimOutcome>(cut)).entities;
  ASSERT_EQ(lines.size(), 4u);
  EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                          [](const SketchEntity& entity) {
                            const auto& line = std::get<LineEntity>(entity);
                            return line.from == line.to;
                          }),
            1);
  EXPECT_EQ(std::get<TrimFailure>(trimRectangle(rectangle, LineEntity{id(), {5, 5}, {5, 5}}, {9, 1})),
            TrimFailure::noIntersection)
      << "a cutter of no length has no direction";
}

TEST(Extend, OnlyTheEndTowardsTheBoundaryMoves) {
  const auto extended = [](SketchPoint c, SketchPoint d) {
    return extendSegmentToBoundary({0, 0}, {10, 0}, c, d);
  };
  EXPECT_EQ(extended({20, -5}, {20, 5}), (Segment{{0, 0}, {20, 0}}));
  EXPECT_EQ(extended({-7, -5}, {-7, 5}), (Segment{{-7, 0}, {10, 0}}));
  EXPECT_EQ(extended({20, 1}, {20, 5}), std::nullopt) << "beyond the boundary's ends";
  EXPECT_EQ(extended({5, -5}, {5, 5}), std::nullopt) << "it meets already";
  EXPECT_EQ(extended({15, 0}, {12, 0}), (Segment{{0, 0}, {12, 0}})) << "collinear";
  EXPECT_EQ(extended({-3, 0}, {-9, 0}), (Segment{{-3, 0}, {10, 0}}));
  EXPECT_EQ(extended({0, 1}, {10, 1}), std::nullopt);
  EXPECT_EQ(extended({20, 0}, {20, 0}), std::nullopt);
}

TEST(TrimTool, RandomCutsOfRectanglesKeepCornersOnTheFarSideOnly) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  testing::RandomDrawing drawing(seed);
  for (int i = 0; i < testing::rounds(2000); ++i) {
    const RectangleEntity target{id(), drawing.point(), {drawing.number(1, 9), drawing.number(1, 9)}};
    const LineEntity cutter{id(), drawing.point(), drawing.point()};
    const SketchPoint point = drawing.point();
    const SketchPoint direction = cutter.to - cutter.from;
    const double side = cross(direction, point - cutter.from);
    if (squaredLength(direction) < 1 || std::fabs(side) < 0.1) continue;
    const TrimGeometry geometry = trimRectangle(target, cutter, point);
    std::vector<SketchPoint> kept;
    std::visit(Overloaded{
                   [&](const TrimReplace& outcome) {
                     const auto& rest = std::get<RectangleEntity>(outcome.entity);
                     kept = rectangleCorners(rest.origin, rest.size);
                   },
                   [&](const TrimReplaceMany& outcome) {
                     for (const SketchEntity& line : outcome.entities) {
                       kept.push_back(std::get<LineEntity>(line).from);
                     }
                   },
                   [](const TrimDelete&) {},
               },
               std::get<TrimOutcome>(geometry));
    for (const SketchPoint& corner : kept) {
      EXPECT_LE(distanceToRectangle(corner, target.origin, target.size), 1e-6) << "nothing moves";
      EXPECT_LE(cross(direction, corner - cutter.from) * side, 1e-3) << "nothing stays beside the point";
    }
    for (const SketchPoint& corner : rectangleCorners(target.origin, target.size)) {
      if (cross(direction, corner - cutter.from) * side > -1e-3) continue;
      if (kept.empty()) continue;
      EXPECT_TRUE(std::any_of(kept.begin(), kept.end(), [&](SketchPoint other) {
        return distanceBetween(other, corner) < 1e-9;
      })) << "a corner of the far side stays";
    }
  }
}

TEST(Trim, APointAtAnEndOfTheCutterLiesToItsLeft) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  testing::RandomDrawing drawing(seed);
  const std::vector<SketchPoint> square = rectangleCorners({-30, -30}, {60, 60});
  for (int i = 0; i < 500; ++i) {
    const Segment cutter{{drawing.number(-20, 20), drawing.number(-20, 20)},
                         {drawing.number(-20, 20), drawing.number(-20, 20)}};
    const SketchPoint along = cutter.second - cutter.first;
    const auto leftGone = clipPolygonByLine(square, cutter, cutter.first + SketchPoint{-along.y, along.x});
    EXPECT_EQ(clipPolygonByLine(square, cutter, cutter.first), leftGone);
    EXPECT_EQ(clipPolygonByLine(square, cutter, cutter.second), leftGone);
  }
}

TEST(TrimTool, RandomTrimsNeverMoveTheSideTheyKeep) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  testing::RandomDrawing drawing(seed);
  int cuts = 0;
  for (int i = 0; i < testing::rounds(3000); ++i) {
    const SketchEntity target = drawing.entity();
    const SketchEntity cutter = drawing.entity();
    if (!isTrimmable(target) || !isTrimmable(cutter)) continue;
    const TrimGeometry geometry = trimEntity(target, cutter, drawing.point());
    const auto* outcome = std::get_if<TrimOutcome>(&geometry);
    const auto* kept = outcome != nullptr ? std::get_if<TrimReplace>(outcome) : nullptr;
    if (kept == nullptr) continue;
    ++cuts;
    EXPECT_EQ(entityID(kept->entity), entityID(target));
    if (const auto* line = std::get_if<LineEntity>(&target)) {
      const auto& rest = std::get<LineEntity>(kept->entity);
      EXPECT_TRUE(rest.from == line->from || rest.to == line->to);
      EXPECT_LE(distanceBetween(rest.from, rest.to), distanceBetween(line->from, line->to) + 1e-9);
    } else if (const auto* circle = std::get_if<CircleEntity>(&target)) {
      if (const auto* arc = std::get_if<ArcEntity>(&kept->entity)) {
        EXPECT_EQ(arc->center, circle->center);
        EXPECT_EQ(arc->radius, circle->radius);
      }
    }
  }
  EXPECT_GT(cuts, 100);
}

}  // namespace
}  // namespace ostrelon
