// What room names, dividers and notes look like, and where their texts go.
#include "geometry/annotations.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "core/plan_items.h"
#include "geometry/annotation_builder.h"

namespace ostrelon {
namespace {

using testing::ElementsAre;

// A room of 20 by 10 feet within its faces.
Drawing oneRoom() {
  Drawing drawing;
  WallSystemSpec system;
  system.id = UUID::random();
  system.name = "W";
  system.thickness = 0.5;
  drawing.wallSystemSpecs = {system};
  const std::vector<SketchPoint> corners{{-0.25, -0.25}, {20.25, -0.25}, {20.25, 10.25}, {-0.25, 10.25}};
  for (std::size_t i = 0; i < corners.size(); ++i) {
    drawing.entities.append(
        WallEntity{UUID::random(), corners[i], corners[(i + 1) % corners.size()], system.id});
  }
  return drawing;
}

std::vector<std::string> textsOf(const Annotation& annotation) {
  std::vector<std::string> texts;
  for (const AnnotationText& text : annotation.texts) texts.push_back(text.text);
  return texts;
}

TEST(Annotations, ALabelTellsNameSizeAndAreaAndStaysBetweenTheWalls) {
  Drawing drawing = oneRoom();
  putPlanItem(drawing.plan, RoomName{UUID::random(), {10, 5}, "Hall", {}});
  putPlanItem(drawing.plan, RoomName{UUID::random(), {0.5, 0.2}, "Corner", {}});
  const RoomPlan rooms = roomPlan(drawing);
  ASSERT_EQ(rooms.rooms.size(), 1U);
  const auto labels = annotations(drawing, &rooms, {}, 4);
  ASSERT_EQ(labels.size(), 2U);
  EXPECT_THAT(textsOf(labels[0]), ElementsAre("Hall", "20'-0\" × 10'-0\"", "200 SF"));
  EXPECT_EQ(labels[0].box.center(), (SketchPoint{10, 5}));
  EXPECT_DOUBLE_EQ(labels[0].texts[0].height, 4 * 3.0 / 32);
  EXPECT_TRUE((SketchBox{0, 0, 20, 10}.contains(labels[1].box)));
  EXPECT_FALSE(labels[0].box.overlaps(labels[1].box));
  EXPECT_THAT(textsOf(annotations(drawing, nullptr, {}, 4)[0]), ElementsAre("Hall"));
}

TEST(Annotations, DividersPartRoomsAndTakeNoArea) {
  Drawing drawing = oneRoom();
  putPlanItem(drawing.plan, RoomDivider{UUID::random(), {12, -0.25}, {12, 10.25}});
  const RoomPlan rooms = roomPlan(drawing);
  ASSERT_EQ(rooms.rooms.size(), 2U);
  EXPECT_NEAR(rooms.rooms[0].area, 120, 1e-3);
  EXPECT_NEAR(rooms.rooms[1].area, 80, 1e-3);
  EXPECT_NEAR(rooms.rooms[0].area + rooms.rooms[1].area + rooms.wallArea, rooms.grossArea, 1e-6);
  EXPECT_TRUE(annotations(drawing, &rooms, {}, 4).at(0).lines.at(0).isDashed);
}

TEST(Annotations, TheLeaderOfANoteBeginsBesideItsTextAndEndsInAnArrow) {
  Drawing drawing;
  putPlanItem(drawing.plan, Note{UUID::random(), {0, 0}, "Two\nlines", SketchPoint{10, 0}});
  putPlanItem(drawing.plan, Note{UUID::random(), {0, 0}, "Two\nlines", SketchPoint{0.1, 0}});
  const auto notes = annotations(drawing, nullptr, {}, 4);
  EXPECT_THAT(textsOf(notes[0]), ElementsAre("Two", "lines"));
  const AnnotationLine& leader = notes[0].lines.at(0);
  EXPECT_GT(leader.points[0].x, annotationTextWidth("lines", notes[0].texts[0].height) / 2);
  EXPECT_EQ(notes[0].fills.at(0).outline[0], (SketchPoint{10, 0}));
  EXPECT_TRUE(notes[1].lines.empty()) << "a target within the text needs no leader";
}

TEST(Annotations, NoTextStandsUpsideDown) {
  AnnotationBuilder builder(AnnotationKind::note, {}, 4);
  for (const double degrees : {0.0, 90.0, 135.0, 180.0, -90.0, -135.0}) {
    builder.text("x", {}, degrees * std::numbers::pi / 180);
  }
  std::vector<int> angles;
  for (const AnnotationText& text : builder.take().texts) {
    angles.push_back(static_cast<int>(std::lround(text.angle * 180 / std::numbers::pi)));
  }
  EXPECT_THAT(angles, ElementsAre(0, 90, -45, 0, 90, 45));
}

}  // namespace
}  // namespace ostrelon
