#include "geometry/hit_testing.h"
#include "core/circle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "geometry/entity_geometry.h"
#include "geometry/marquee.h"
#include "geometry/selection_handles.h"

namespace ostrelon {
namespace {

constexpr double kPi = std::numbers::pi;

UUID id() { return UUID::random(); }

TEST(HitTesting, TheNearestWinsAndOfEqualOnesTheLater) {
  const LineEntity first{id(), {0, 0}, {10, 0}};
  const LineEntity second{id(), {0, 0}, {10, 0}};
  const CircleEntity near{id(), {5, 3}, 2.5};
  const EntityList entities{first, second, near};
  EXPECT_EQ(pickEntityAtPoint(entities, {5, -1}, 4)->entity, SketchEntity(second));
  EXPECT_EQ(pickEntityAtPoint(entities, {5, 0.4}, 4)->entity, SketchEntity(near));
  EXPECT_EQ(pickEntityAtPoint(entities, {20, 20}, 4), std::nullopt);
  EXPECT_EQ(pickEntityAtPoint(EntityList(), {0, 0}, 4), std::nullopt);
}

TEST(HitTesting, EightViewPointsAreAHitAtAnyScale) {
  const EntityList entities{LineEntity{id(), {0, 0}, {10, 0}}};
  for (const double scale : {0.25, 4.0, 128.0}) {
    EXPECT_TRUE(pickEntityAtPoint(entities, {5, 8 / scale}, scale)) << scale;
    EXPECT_FALSE(pickEntityAtPoint(entities, {5, 8.0001 / scale}, scale)) << scale;
  }
}

TEST(HitTesting, OutlinesAreHitNotInsides) {
  EXPECT_EQ(distanceToEntity(RectangleEntity{id(), {10, 10}, {-10, -10}}, {4, 5}), 4);
  EXPECT_EQ(distanceToEntity(RectangleEntity{id(), {0, 0}, {10, 10}}, {13, 14}), 5);
  EXPECT_EQ(distanceToEntity(CircleEntity{id(), {0, 0}, 10}, {0, 0}), 10);
  EXPECT_EQ(distanceToEntity(WallEntity{id(), {0, 0}, {10, 0}, id()}, {5, 3}), 3)
      << "a wall is its centre line";
  EXPECT_EQ(distanceToEntity(LineEntity{id(), {1, 1}, {1, 1}}, {4, 5}), 5);
  EXPECT_EQ(distanceToEntity(PolygonEntity{id(), {{3, 4}}}, {0, 0}), 5);
  EXPECT_EQ(distanceToEntity(PolygonEntity{id(), {}}, {0, 0}), std::numeric_limits<double>::infinity());
  const ArcEntity overZero{id(), {0, 0}, 2, 350 * kPi / 180, 10 * kPi / 180};
  EXPECT_DOUBLE_EQ(distanceToEntity(overZero, {3, 0}), 1);
  EXPECT_DOUBLE_EQ(distanceToEntity(overZero, {-2, 0}),
                   distanceBetween({-2, 0}, pointOnCircle({0, 0}, 2, 10 * kPi / 180)));
}

TEST(Marquee, MinimumEdgesAreInsideAndMaximumEdgesAreNot) {
  const SketchBox rect{0, 0, 10, 10};
  EXPECT_TRUE(rectContains(rect, {0, 0}));
  EXPECT_FALSE(rectContains(rect, {10, 5}));
  const auto window = [&](const SketchEntity& entity) { return entityContainedInRect(entity, rect); };
  EXPECT_TRUE(window(LineEntity{id(), {0, 0}, {9, 9}}));
  EXPECT_FALSE(window(LineEntity{id(), {0, 0}, {10, 9}}));
  EXPECT_TRUE(window(CircleEntity{id(), {5, 5}, 5})) << "a circle counts all edges in";
  EXPECT_FALSE(window(PolygonEntity{id(), {}}));
  EXPECT_FALSE(window(ArcEntity{id(), {5, 5}, 1, 2, 2})) << "an arc of no span";
  EXPECT_TRUE(window(RectangleEntity{id(), {5, 5}, {-5, -5}}));
}

TEST(Marquee, CrossingTakesWhatItTouches) {
  const SketchBox rect{0, 0, 10, 10};
  const auto crosses = [&](const SketchEntity& entity) { return entityIntersectsRect(entity, rect); };
  EXPECT_TRUE(crosses(LineEntity{id(), {-5, 5}, {15, 5}}));
  EXPECT_TRUE(crosses(LineEntity{id(), {-5, 5}, {0, 5}}));
  EXPECT_FALSE(crosses(LineEntity{id(), {2, 10}, {8, 10}})) << "along the maximum edge";
  EXPECT_FALSE(crosses(CircleEntity{id(), {5, 5}, 50})) << "the marquee lies within the circle";
  EXPECT_FALSE(crosses(RectangleEntity{id(), {-5, -5}, {50, 50}}));
  EXPECT_TRUE(crosses(CircleEntity{id(), {14, 5}, 5}));
  EXPECT_FALSE(crosses(CircleEntity{id(), {15, 5}, 5})) << "touching the bounding square is no overlap";
  EXPECT_FALSE(crosses(CircleEntity{id(), {5, 5}, 0}));
  EXPECT_TRUE(crosses(ArcEntity{id(), {-1, 5}, 3, -1, 1}));
  EXPECT_FALSE(crosses(ArcEntity{id(), {-1, 5}, 3, 2, 4}));
  EXPECT_TRUE(crosses(PolygonEntity{id(), {{-5, -5}, {20, -5}, {-5, 20}}}));

  const EntityList list{LineEntity{id(), {-5, 5}, {15, 5}}};
  EXPECT_TRUE(entitiesInMarquee(list, {5, 5, 5, 5}, true).empty()) << "a marquee of no size";
  EXPECT_EQ(entitiesInMarquee(list, {5, 0, 5, 10}, true).size(), 1u) << "one of no width still crosses";
}

TEST(Handles, MoveWhatTheyBelongTo) {
  using Kind = SelectionHandle::Kind;
  const RectangleEntity rectangle{id(), {0, 0}, {10, 5}};
  const auto dragged = [&](Kind kind, SketchPoint to) {
    return std::get<RectangleEntity>(*applyHandleDrag({kind}, rectangle, rectangle, to));
  };
  EXPECT_EQ(dragged(Kind::rectMinXMinY, {20, -5}).origin, (SketchPoint{9, -5}));
  EXPECT_EQ(dragged(Kind::rectMaxXMaxY, {-4, 7}).origin, (SketchPoint{-5, 0}));
  EXPECT_EQ(dragged(Kind::rectMaxXMaxY, {-4, 7}).size, (SketchSize{1, 7}));
  EXPECT_EQ(dragged(Kind::rectMinXMaxY, {2, -3}).size, (SketchSize{8, 1}));
  EXPECT_EQ(dragged(Kind::rectMaxXMinY, {12, -3}).origin, (SketchPoint{0, -3}));
  EXPECT_EQ(dragged(Kind::rectMaxXMinY, {12, -3}).size, (SketchSize{12, 8}));

  const CircleEntity circle{id(), {0, 0}, 5};
  EXPECT_EQ(std::get<CircleEntity>(*applyHandleDrag({Kind::circleRadius}, circle, circle, {0, 0})).radius, 1);
  const ArcEntity arc{id(), {0, 0}, 5, 0, 1};
  EXPECT_EQ(selectionHandles(arc).size(), 2u);
  EXPECT_EQ(applyHandleDrag({Kind::lineStart}, arc, arc, {1, 1}), std::nullopt);
  EXPECT_EQ(handleFixedPoint({Kind::lineStart}, arc), std::nullopt);
  const PolygonEntity polygon{id(), {{0, 0}, {1, 0}, {1, 1}}};
  EXPECT_EQ(applyHandleDrag(SelectionHandle::polygonVertex(3), polygon, polygon, {1, 1}), std::nullopt);
  EXPECT_EQ(applyHandleDrag({Kind::lineStart}, polygon, circle, {1, 1}), std::nullopt);
  EXPECT_EQ(hitSelectionHandle(circle, {0, 2.5}, 4), SelectionHandle{Kind::circleCenter});
  EXPECT_EQ(hitSelectionHandle(circle, {0, 2.6}, 4), std::nullopt);
}

}  // namespace
}  // namespace ostrelon
