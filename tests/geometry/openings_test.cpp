// Where openings fit, what follows of them, and what is drawn.
#include "geometry/openings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/circle.h"
#include "geometry/opening_schedule.h"

namespace ostrelon {
namespace {

using ::testing::DoubleNear;
using ::testing::Field;

auto isAt(double x, double y) {
  return AllOf(Field(&SketchPoint::x, DoubleNear(x, 1e-9)), Field(&SketchPoint::y, DoubleNear(y, 1e-9)));
}

struct Openings : ::testing::Test {
  const std::vector<WallSystemSpec> systems{{UUID::random(), "W", 0.5, 8, ""}};
  Drawing drawing = [this] {
    Drawing made;
    made.wallSystemSpecs = systems;
    made.entities = {wall({0, 0}, {20, 0}), wall({10, 0.25}, {10, 9}), wall({20, 0}, {20, 9})};
    return made;
  }();

  WallEntity wall(SketchPoint from, SketchPoint to) const {
    return {UUID::random(), from, to, systems[0].id};
  }
  OpeningWall host(std::size_t at = 0) const { return *openingWall(drawing.entities[at], at, systems); }
  Opening opening(double distance, double width, OpeningKind kind = OpeningKind::door) const {
    return {UUID::random(), host().id, kind, distance, width};
  }
  OpeningFit fit(const Opening& one) const {
    return placedOpening(one, host(), drawing.entities, drawing.plan.openings).fit;
  }
};

TEST_F(Openings, FitBetweenTheEndsOfTheirWallBesideOthersAndWhereNoWallStands) {
  EXPECT_EQ(fit(opening(0, 10)), OpeningFit::fits) << "a wall at its jamb does not cross it";
  EXPECT_EQ(fit(opening(10, 10)), OpeningFit::fits) << "nor does one at its end";
  EXPECT_EQ(fit(opening(9, 2)), OpeningFit::crossed) << "one that ends on the near face does";
  EXPECT_EQ(fit(opening(-1, 2)), OpeningFit::beyondWall);
  EXPECT_EQ(fit(opening(18, 2.01)), OpeningFit::beyondWall);
  EXPECT_EQ(fit(opening(1, 0)), OpeningFit::beyondWall);
  drawing.plan.openings = {opening(2, 3)};
  EXPECT_EQ(fit(opening(5, 3)), OpeningFit::fits);
  EXPECT_EQ(fit(opening(4.9, 3)), OpeningFit::overlaps);
  EXPECT_EQ(fit(opening(1, 5)), OpeningFit::overlaps);
  EXPECT_EQ(fit(drawing.plan.openings[0]), OpeningFit::fits) << "it is not in its own way";

  // Of two that overlap one stays, and what overlaps nothing but a misfit fits.
  drawing.plan.openings = {opening(2, 3), opening(4, 3), opening(6, 2)};
  const OpeningLayout layout(drawing, drawing.entities);
  EXPECT_EQ(layout.all()[0].fit, OpeningFit::fits);
  EXPECT_EQ(layout.all()[1].fit, OpeningFit::overlaps);
  EXPECT_EQ(layout.all()[2].fit, OpeningFit::fits);
  EXPECT_EQ(layout.misfits(), 1U);
  const OpeningRoom room = openingRoom(host(), 5.5, drawing.plan.openings, drawing.plan.openings[1].id);
  EXPECT_EQ(room.from, 5);
  EXPECT_EQ(room.to, 6);
}

TEST_F(Openings, ADoorsLeafAndArcGoToItsHingeAndSwing) {
  const auto drawn = [&](DoorHinge hinge, DoorSwing swing) {
    Opening door = opening(4, 3);
    door.hinge = hinge;
    door.swing = swing;
    return openingShape(door, host());
  };
  struct Case {
    DoorHinge hinge;
    DoorSwing swing;
    SketchPoint at;
    SketchPoint tip;
    double start;
  };
  for (const Case& one : {Case{DoorHinge::left, DoorSwing::in, {4, 0.25}, {4, 3.25}, 0},
                          Case{DoorHinge::right, DoorSwing::in, {7, 0.25}, {7, 3.25}, 90},
                          Case{DoorHinge::left, DoorSwing::out, {4, -0.25}, {4, -3.25}, -90},
                          Case{DoorHinge::right, DoorSwing::out, {7, -0.25}, {7, -3.25}, 180}}) {
    const OpeningShape shape = drawn(one.hinge, one.swing);
    EXPECT_THAT(shape.leaf->first, isAt(one.at.x, one.at.y));
    EXPECT_THAT(shape.leaf->second, isAt(one.tip.x, one.tip.y));
    EXPECT_NEAR(arcSpan(shape.arc->startAngle, shape.arc->endAngle), kFullTurn / 4, 1e-9);
    EXPECT_NEAR(arcSpan(radiansOf(one.start), shape.arc->startAngle + 1), 1, 1e-9);
    EXPECT_TRUE(openingBounds(shape).contains(one.tip));
  }
}

TEST_F(Openings, TheScheduleCountsByKindAndWidth) {
  drawing.plan.openings = {opening(0, 3), opening(4, 2.5), opening(7, 3 + 1e-6),
                           opening(12, 3, OpeningKind::window), opening(19, 3)};
  const OpeningLayout layout(drawing, drawing.entities);
  EXPECT_EQ(openingScheduleText(layout, drawing.plan),
            "Mark  Kind    Width  Wall  Count\n"
            "D1    door    2'-6\"  1     1\n"
            "D2    door    3'-0\"  1     2\n"
            "W1    window  3'-0\"  1     1\n"
            "Door of 3'-0\" at 19'-0\" in Wall 1 is left out: Does not fit Wall 1 (20'-0\").");
}

}  // namespace
}  // namespace ostrelon
