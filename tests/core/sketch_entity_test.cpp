#include "core/sketch_entity.h"
#include "core/circle.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "core/entity_list.h"
#include "interaction/sketch_tool.h"

namespace ostrelon {
namespace {

constexpr double kPi = std::numbers::pi;

TEST(SketchEntity, IsDescribedInOneLine) {
  const UUID id = UUID::random();
  EXPECT_EQ(entityDescription(LineEntity{id, {0, 0}, {3, 4}}), "line from (0.0, 0.0) to (3.0, 4.0) · L=5.0");
  EXPECT_EQ(entityDescription(WallEntity{id, {0, 0}, {3, 4}, id}),
            "wall [unknown] from (0.0, 0.0) to (3.0, 4.0) · L=5.0");
  EXPECT_EQ(entityDescription(WallEntity{id, {0, 0}, {3, 4}, id}, "CMU-8"),
            "wall [CMU-8] from (0.0, 0.0) to (3.0, 4.0) · L=5.0");
  EXPECT_EQ(entityDescription(CircleEntity{id, {1, 2}, 3}), "circle center (1.0, 2.0) · r=3.0");
  EXPECT_EQ(entityDescription(ArcEntity{id, {1, 2}, 3, 1.5 * kPi, 0.5 * kPi}),
            "arc center (1.0, 2.0) · r=3.0 · span=180.0°");
  EXPECT_EQ(entityDescription(RectangleEntity{id, {1, 2}, {3, -4}}), "rect origin (1.0, 2.0) · 3.0×-4.0");
  EXPECT_EQ(entityDescription(PolygonEntity{id, {{0, 0}, {4, 0}, {4, 3}}}),
            "polygon · 3 vertices · P=12.0 · A=6.0");
}

TEST(SketchEntity, LabelsCarryTheNumberAndAWallsSystem) {
  const SketchEntity wall = WallEntity{UUID::random(), {}, {1, 0}, UUID::random()};
  const SketchEntity arc = ArcEntity{UUID::random(), {}, 1, 0, 1};
  EXPECT_EQ(entityLabel(wall, 2, "W2-EXT"), "Wall 2 (W2-EXT)");
  EXPECT_EQ(entityLabel(wall, 2), "Wall 2");
  EXPECT_EQ(entityLabel(arc, 3, "W2-EXT"), "Arc 3");
  EXPECT_EQ(entityNumber(entityID(arc), EntityList{wall, arc}), 2);
  EXPECT_EQ(entityNumber(UUID::random(), EntityList{wall, arc}), std::nullopt);
}

TEST(SketchEntity, MetricsFollowTheKind) {
  const UUID id = UUID::random();
  const auto wall = entityMetrics(WallEntity{id, {0, 0}, {0, -2}, id}, 4.5);
  EXPECT_EQ(wall.length, 2);
  EXPECT_EQ(wall.width, 4.5);
  EXPECT_EQ(wall.angle, 270);
  EXPECT_EQ(entityMetrics(LineEntity{id, {0, 0}, {1, 0}}, 4.5).width, std::nullopt);

  const auto circle = entityMetrics(CircleEntity{id, {1, 1}, 2});
  EXPECT_EQ(circle.length, 4);
  EXPECT_EQ(circle.to, (SketchPoint{3, 1}));

  const auto arc = entityMetrics(ArcEntity{id, {0, 0}, 2, 0.25, 0.25});
  EXPECT_EQ(arc.length, 0);
  EXPECT_EQ(arc.angle, std::nullopt);

  const auto rectangle = entityMetrics(RectangleEntity{id, {1, 2}, {3, 4}});
  EXPECT_EQ(rectangle.length, 4);
  EXPECT_EQ(rectangle.width, 3);

  const auto nothing = entityMetrics(PolygonEntity{id, {}});
  EXPECT_EQ(nothing.from, std::nullopt);
  EXPECT_EQ(nothing.length, 0);
  EXPECT_EQ(nothing.vertexCount, 0);
  EXPECT_EQ(polygonPerimeter({{0, 0}, {3, 4}}), 10);
  EXPECT_EQ(polygonArea({{0, 0}, {3, 4}}), 0);
}

TEST(SketchEntity, AnglesStayBelowTheFullTurn) {
  for (const double angle : {-1e-20, -2 * kPi, 2 * kPi, 7 * kPi, -0.1}) {
    EXPECT_GE(normalizedAngle(angle), 0) << angle;
    EXPECT_LT(normalizedAngle(angle), 2 * kPi) << angle;
  }
  EXPECT_EQ(arcSpan(0, 2 * kPi), 0);
  EXPECT_LT(directionDegrees(1, -1e-300), 360);
}

TEST(SketchEntity, WallsHaveFourCornersRoundTheirCentreLine) {
  const auto corners = wallCorners({0, 0}, {10, 0}, 4);
  EXPECT_EQ(corners, (std::vector<SketchPoint>{{0, 2}, {10, 2}, {10, -2}, {0, -2}}));
  EXPECT_TRUE(wallCorners({1, 1}, {1, 1}, 4).empty());
  EXPECT_TRUE(wallCorners({std::nan(""), 1}, {1, 1}, 4).empty());
}

}  // namespace
}  // namespace ostrelon
