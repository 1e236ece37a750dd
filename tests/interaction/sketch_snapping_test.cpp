// Snapping: what is near, what is preferred, and which of equally near points stands.
#include "interaction/sketch_snapping.h"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace SketchSnapping;  // NOLINT(google-build-using-namespace)

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr SketchViewport kPlainView{{0, 0}, 1};  // 8 view points are 8 sketch units

UUID id() { return UUID::random(); }

std::vector<EntitySnapKind> kinds(const std::vector<EntitySnapTarget>& targets) {
  std::vector<EntitySnapKind> kinds;
  for (const auto& target : targets) kinds.push_back(target.kind);
  return kinds;
}

std::vector<SketchPoint> points(const std::vector<EntitySnapTarget>& targets) {
  std::vector<SketchPoint> points;
  for (const auto& target : targets) points.push_back(target.point);
  return points;
}

TEST(SnapTargets, OfALineAreItsEndsThenItsMiddle) {
  const auto targets = entitySnapTargets(LineEntity{id(), {0, 0}, {10, 4}}, "Line 1");
  EXPECT_THAT(points(targets), ElementsAre(SketchPoint{0, 0}, SketchPoint{10, 4}, SketchPoint{5, 2}));
  EXPECT_THAT(kinds(targets),
              ElementsAre(EntitySnapKind::endpoint, EntitySnapKind::endpoint, EntitySnapKind::midpoint));
  EXPECT_EQ(snapTargetDescription(targets[2]), "Midpoint · Line 1");
}

TEST(SnapTargets, OfARectangleStandInMinMaxOrderAlsoForANegativeSize) {
  const auto targets = entitySnapTargets(RectangleEntity{id(), {10, 10}, {-10, -6}}, "Rectangle 1");
  EXPECT_THAT(points(targets), ElementsAre(SketchPoint{0, 4}, SketchPoint{10, 4}, SketchPoint{10, 10},
                                           SketchPoint{0, 10}, SketchPoint{5, 4}, SketchPoint{10, 7},
                                           SketchPoint{5, 10}, SketchPoint{0, 7}, SketchPoint{5, 7}));
  EXPECT_EQ(targets[0].kind, EntitySnapKind::corner);
  EXPECT_EQ(targets[4].kind, EntitySnapKind::edgeMidpoint);
  EXPECT_EQ(targets[8].kind, EntitySnapKind::center);
}

TEST(SnapTargets, OfAPolygonEndWithTheClosingEdgeAndTheMeanOfItsVertices) {
  const auto targets = entitySnapTargets(PolygonEntity{id(), {{0, 0}, {6, 0}, {0, 6}}}, "Polygon 1");
  EXPECT_THAT(points(targets),
              ElementsAre(SketchPoint{0, 0}, SketchPoint{6, 0}, SketchPoint{0, 6}, SketchPoint{3, 0},
                          SketchPoint{3, 3}, SketchPoint{0, 3}, SketchPoint{2, 2}));
  EXPECT_THAT(entitySnapTargets(PolygonEntity{id(), {}}, "Polygon 1"), IsEmpty());
}

TEST(SnapTargets, OfACircleOfferTheTangentsFromAPointOutside) {
  const CircleEntity circle{id(), {0, 0}, 3};
  EXPECT_THAT(kinds(entitySnapTargets(circle, "Circle 1")),
              ElementsAre(EntitySnapKind::center, EntitySnapKind::quadrant, EntitySnapKind::quadrant,
                          EntitySnapKind::quadrant, EntitySnapKind::quadrant));
  const SketchPoint from{5, 0};
  const auto targets = entitySnapTargets(circle, "Circle 1", from);
  ASSERT_EQ(targets.size(), 7U);
  for (std::size_t i = 5; i < 7; ++i) {
    const SketchPoint touch = targets[i].point;
    EXPECT_EQ(targets[i].kind, EntitySnapKind::tangent);
    EXPECT_NEAR(std::hypot(touch.x, touch.y), 3, 1e-12) << "on the circle";
    const SketchPoint line = touch - from;
    EXPECT_NEAR(touch.x * line.x + touch.y * line.y, 0, 1e-12) << "at right angles to the radius";
  }
  EXPECT_GT(targets[5].point.y, 0) << "the first lies to the left as seen from the centre";

  for (const SketchPoint inside : {SketchPoint{3, 0}, SketchPoint{1, 1}}) {
    EXPECT_EQ(entitySnapTargets(circle, "Circle 1", inside).size(), 5U);
  }
  EXPECT_EQ(entitySnapTargets(CircleEntity{id(), {0, 0}, 0}, "Circle 1", from).size(), 5U);
  EXPECT_EQ(entitySnapTargets(ArcEntity{id(), {0, 0}, 3, 0, 1}, "Arc 1", from).size(), 3U);
}

TEST(NearestTarget, IsTheNearestOfAnyKindWithinEightViewPoints) {
  // The pointer lies 3 from the centre and 5 from a corner.
  const EntityList list{RectangleEntity{id(), {0, 0}, {8, 0}}};
  const auto found = nearestEntityTarget(list, {}, {5, 0}, 1);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->point, (SketchPoint{4, 0}));

  const EntityList line{LineEntity{id(), {0, 0}, {100, 0}}};
  EXPECT_TRUE(nearestEntityTarget(line, {}, {-8, 0}, 1));
  EXPECT_FALSE(nearestEntityTarget(line, {}, {-8.0001, 0}, 1));
  EXPECT_TRUE(nearestEntityTarget(line, {}, {-2, 0}, 4)) << "8 view points at scale 4 are 2 units";
  EXPECT_FALSE(nearestEntityTarget(line, {}, {-2.001, 0}, 4));
}

TEST(NearestTarget, KeepsTheFirstOfEquallyNearPointsAndSkipsExcludedEntities) {
  const UUID first = id();
  const UUID second = id();
  const EntityList list{LineEntity{first, {0, 0}, {50, 0}}, LineEntity{second, {0, 0}, {0, 50}}};
  EXPECT_EQ(nearestEntityTarget(list, {}, {0, 0}, 1)->entityID, first);
  const auto other = nearestEntityTarget(list, {first}, {0, 0}, 1);
  EXPECT_EQ(other->entityID, second);
  EXPECT_EQ(other->entityName, "Line 2") << "numbered in the whole document";
}

TEST(NearestTarget, ANearerCentreHidesAnEndpointFromTracking) {
  const EntityList list{LineEntity{id(), {0, 0}, {100, 0}}, CircleEntity{id(), {1, 0}, 40}};
  EXPECT_FALSE(nearestAcquirableTarget(list, {}, {0.9, 0}, 1));
  EXPECT_TRUE(nearestAcquirableTarget(list, {}, {0.2, 0}, 1));
}

TEST(GridSnap, TakesTheLinesWithinReachAndKeepsTheOtherCoordinate) {
  // At scale 4 the step is 10 units and the reach 2.
  const auto line = gridSnap({11, 5.25}, 4);
  ASSERT_TRUE(line);
  EXPECT_EQ(line->point, (SketchPoint{10, 5.25}));
  EXPECT_THAT(line->axes, ElementsAre(AxisSnap::vertical));
  EXPECT_FALSE(line->isMajorIntersection);

  const auto minor = gridSnap({51.9, 8.1}, 4);
  EXPECT_THAT(minor->axes, ElementsAre(AxisSnap::vertical, AxisSnap::horizontal));
  EXPECT_FALSE(minor->isMajorIntersection) << "50 is major, 10 is not";
  EXPECT_TRUE(gridSnap({-50, 99.5}, 4)->isMajorIntersection);
  EXPECT_FALSE(gridSnap({5, 5}, 4));
  EXPECT_FALSE(gridSnap({0, 0}, 0));
  EXPECT_FALSE(gridSnap({0, 0}, -1));
}

TEST(LockAngle, TakesTheNearestMultipleOf45WithinEightDegrees) {
  const auto at = [](double degrees, std::optional<double> reference = std::nullopt) {
    const double radians = degrees * M_PI / 180;
    return lockAngle(reference, std::cos(radians), std::sin(radians));
  };
  EXPECT_EQ(at(7), 0);
  EXPECT_EQ(at(9), std::nullopt);
  EXPECT_EQ(at(353), 0) << "360 is given as 0";
  EXPECT_EQ(at(50), 45);
  EXPECT_EQ(at(182), 180);
  EXPECT_EQ(lockAngle(std::nullopt, 0, 0), std::nullopt);
  EXPECT_EQ(lockAngle(std::nullopt, 0, -3), 270);

  EXPECT_EQ(at(2, 90), 0) << "just within the reach of 90 degrees";
  EXPECT_EQ(at(-2, 45), 0);
  EXPECT_EQ(at(180, 45), std::nullopt) << "beyond the reach";
}

TEST(AxisSnap, LocksInWholeLengthsOrRoundsTheEnd) {
  const auto locked = axisSnap({0.25, 0.5}, {10, 1.5});
  EXPECT_THAT(locked.axes, ElementsAre(AxisSnap::horizontal));
  EXPECT_EQ(locked.point, (SketchPoint{10.25, 0.5})) << "a whole length from the start, exactly level";

  const auto free = axisSnap({0, 0}, {10.4, 1.65});  // 9 degrees
  EXPECT_THAT(free.axes, IsEmpty());
  EXPECT_EQ(free.point, (SketchPoint{10, 2}));
  EXPECT_EQ(axisSnap({0, 0}, {-2.5, 2.5 * 3}).point, (SketchPoint{-3, 8})) << "halves away from zero";

  const auto diagonal = axisSnap({1, 1}, {8.2, -5.9});
  EXPECT_THAT(diagonal.axes, ElementsAre(AxisSnap::diagonalDown));
  EXPECT_EQ(diagonal.point.x - 1, -(diagonal.point.y - 1));
  EXPECT_NEAR(std::hypot(diagonal.point.x - 1, diagonal.point.y - 1), 10, 1e-12);

  EXPECT_THAT(axisSnap({0, 0}, {0.4, 0}).axes, IsEmpty()) << "too short to lock";
  EXPECT_EQ(axisSnap({3.2, 0}, {-6.9, 0}).point, (SketchPoint{3.2 - 10, 0}));
}

TEST(AxisSnap, ProjectsAMovementWithoutRounding) {
  const auto move = axisSnapDelta(10.3, 0.5);
  EXPECT_EQ(move.point, (SketchPoint{10.3, 0}));
  EXPECT_THAT(move.axes, ElementsAre(AxisSnap::horizontal));
  EXPECT_EQ(axisSnapDelta(3, 1.5).point, (SketchPoint{3, 1.5}));
  EXPECT_EQ(axisSnapDelta(0.3, 0).axes, std::vector<AxisSnap>());
}

TEST(SnapPoint, PrefersEntitiesToTheGridAndElseKeepsTheRawPoint) {
  const EntityList list{CircleEntity{id(), {3, 3}, 50}};
  EXPECT_EQ(snapPoint({1, 1}, kPlainView, list, {}, true).point, (SketchPoint{3, 3}));
  const auto grid = snapPoint({101, 0.3}, kPlainView, list, {}, true);
  EXPECT_EQ(grid.point, (SketchPoint{100, 0}));
  EXPECT_TRUE(grid.gridSnap);
  EXPECT_EQ(snapPoint({101, 0.3}, kPlainView, list, {}, false).point, (SketchPoint{101, 0.3}));
}

TEST(Tracking, OffersTheAlignmentOnThePointersSideOfTheAnchor) {
  const SketchPoint anchor{0, 0};
  const SketchPoint target{20, 30};
  const auto right = trackingCandidate(anchor, {10, 1}, target, {AxisSnap::horizontal}, {});
  ASSERT_TRUE(right);
  EXPECT_EQ(right->point, (SketchPoint{20, 0}));
  EXPECT_EQ(right->priority, 4 + 3) << "the axis lock and the locked direction";
  EXPECT_FALSE(trackingCandidate(anchor, {-10, -1}, target, {AxisSnap::horizontal}, {}));

  const auto level =
      trackingCandidate({0, 30}, {10, 31}, target, {AxisSnap::horizontal}, {AxisSnap::horizontal});
  EXPECT_EQ(level->point, target);
  EXPECT_EQ(level->priority, 4 + 5 + 2 + 3);

  const auto diagonal = trackingCandidate(anchor, {10, 10}, target, {AxisSnap::diagonalUp}, {});
  EXPECT_EQ(diagonal->point, (SketchPoint{20, 20}));
  EXPECT_THAT(diagonal->axes, ElementsAre(AxisSnap::diagonalUp));
}

TEST(Tracking, RemembersTheLastAxisAndOtherwiseTakesTheFirst) {
  const SketchPoint target{20, 30};
  const auto free = trackingCandidate({0, 0}, {10, 6}, target, {}, {});
  EXPECT_EQ(free->point, (SketchPoint{20, 0})) << "equal priorities keep the horizontal one";
  const auto kept = trackingCandidate({0, 0}, {10, 6}, target, {}, {AxisSnap::vertical});
  EXPECT_EQ(kept->point, (SketchPoint{0, 30}));
  EXPECT_FALSE(trackingCandidate({0, 0}, {0.3, 0.3}, target, {}, {})) << "too near to the anchor";
}

TEST(EntityMove, FindsTheNearestPairAndKeepsTheFirstOnATie) {
  const UUID moved = id();
  const LineEntity line{moved, {0, 0}, {10, 0}};
  const EntityList list{line, LineEntity{id(), {100, 3}, {140, 3}}, LineEntity{id(), {100, 3}, {100, 90}}};
  const auto match = snapEntityMove({88, 1}, kPlainView, line, list);
  ASSERT_TRUE(match);
  EXPECT_EQ(match->first.point, (SketchPoint{10, 0}));
  EXPECT_EQ(match->first.entityName, "Line 1");
  EXPECT_EQ(match->second.point, (SketchPoint{100, 3}));
  EXPECT_EQ(match->second.entityName, "Line 2");
  EXPECT_FALSE(snapEntityMove({0, 0}, kPlainView, line, list)) << "never to itself";
  EXPECT_EQ(snapEntityMove({88, 1}, kPlainView, line, list, {entityID(list[1])})->second.entityName,
            "Line 3");
}

TEST(HandleDrag, LocksAboutThePointThatStaysBeforeTheGrid) {
  const LineEntity line{id(), {0, 0}, {100, 0}};
  const EntityList list{line};
  const SelectionHandle end{SelectionHandle::Kind::lineEnd};
  const auto locked = snapHandleDrag(end, line, list, {101, 3}, kPlainView, true, 0);
  EXPECT_EQ(locked.point, (SketchPoint{101, 0}));
  EXPECT_FALSE(locked.gridSnap);
  const auto grid = snapHandleDrag(end, line, list, {101, 52}, kPlainView, true, 0);
  EXPECT_TRUE(grid.gridSnap) << "27 degrees lock nothing";
  EXPECT_EQ(grid.point, (SketchPoint{100, 50}));
}

TEST(HandleDrag, OffersTangentsFromThePointThatStays) {
  const LineEntity line{id(), {50, 0}, {60, 0}};
  const EntityList list{line, CircleEntity{id(), {0, 0}, 30}};
  const auto result = snapHandleDrag({SelectionHandle::Kind::lineEnd}, line, list, {18, 24.5}, kPlainView,
                                     true, std::nullopt);
  ASSERT_TRUE(result.entitySnap);
  EXPECT_EQ(snapFeedbackText(result), "Tangent · Circle 2");
  EXPECT_NEAR(result.point.x, 18, 1e-9);
  EXPECT_NEAR(result.point.y, 24, 1e-9);
}

// Whatever the numbers, a search ends and finds nothing that is not there.
TEST(Snapping, CopesWithNumbersThatAreNoPlaces) {
  const EntityList list{LineEntity{id(), {kNaN, 0}, {kInfinity, 1e300}},
                        CircleEntity{id(), {1e300, 0}, 1e300}, PolygonEntity{id(), {{kNaN, kNaN}, {1, 1}}}};
  EntityIndex index;
  index.update(list);
  for (const double x : {0.0, kNaN, kInfinity, 1e300}) {
    for (const double scale : {4.0, 1e-300, 0.0, -1.0, kNaN, kInfinity}) {
      const SketchViewport viewport{{0, 0}, scale};
      for (const EntitySource source : {EntitySource(list), EntitySource(index)}) {
        snapPoint({x, 0}, viewport, source, {}, true);
        snapEntityMove({x, x}, viewport, list[1], source);
        snapHandleDrag({SelectionHandle::Kind::circleRadius}, list[1], source, {x, 1}, viewport, true, x);
      }
      EXPECT_FALSE(nearestEntityTarget(list, {}, {kNaN, 0}, scale));
    }
    axisSnap({x, 0}, {0, x}, x);
    axisSnapDelta(x, -x);
    trackingCandidate({0, 0}, {x, 1}, {x, x}, {}, {});
  }
}

}  // namespace
}  // namespace ostrelon
