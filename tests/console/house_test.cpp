// The sample house, whose measures are worked out by hand: 42' by 28' outside, walls of 6 1/2" and 4 1/2".
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "core/typed_length.h"
#include "geometry/dimension_strings.h"
#include "geometry/opening_operations.h"
#include "geometry/opening_schedule.h"
#include "geometry/rooms.h"
#include "geometry/takeoff.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

struct HouseTest : ::testing::Test, testing::TestWorkspace {
  std::string text;
  void SetUp() override {
    std::ifstream file(OSTRELON_SOURCE_DIR "/examples/house");
    text = std::string(std::istreambuf_iterator<char>(file), {});
    std::istringstream typed(text);
    for (std::string line; std::getline(typed, line);) {
      for (const ConsoleLine& answer : submit(line))
        EXPECT_FALSE(answer.isError) << line << ": " << answer.text;
    }
  }
  WallEntity wall(std::size_t number) { return std::get<WallEntity>(sketch.entities()[number - 1]); }
  double thickness(std::size_t number) {
    return sketch.drawing->wallSystem(wall(number).systemSpecID)->thickness;
  }
  // Between the facing faces of two parallel walls.
  double between(std::size_t a, std::size_t b) {
    const SketchPoint along = wall(a).to - wall(a).from;
    const double axes = std::abs(cross(along, wall(b).from - wall(a).from)) / lengthOf(along);
    return axes - (thickness(a) + thickness(b)) / 2;
  }
};

TEST_F(HouseTest, IsDrawnWithLittleTypingAndMeasuresWhatWasMeant) {
  EXPECT_LT(text.size(), 700u);
  ASSERT_EQ(sketch.entities().size(), 11u);
  EXPECT_EQ(formatLength(lengthOf(wall(1).to - wall(1).from)), "41'-5 1/2\"");
  EXPECT_EQ(formatLength(lengthOf(wall(4).to - wall(4).from)), "27'-5 1/2\"");
  EXPECT_EQ(formatLength(between(2, 4)), "40'-11\"");
  EXPECT_EQ(formatLength(between(1, 3)), "26'-11\"");
  EXPECT_NEAR(between(2, 4) * between(1, 3), 491.0 * 323 / 144, 1e-9) << "square feet inside";
  // The rooms, from the west: study, bedrooms south, hall, bath and bedroom north.
  EXPECT_EQ(formatLength(between(4, 11)) + " by " + formatLength(between(10, 3)),
            "8'-9 3/4\" by 11'-3 1/4\"");
  EXPECT_EQ(formatLength(between(5, 8)) + " by " + formatLength(between(1, 6)), "9'-7 1/2\" by 11'-3 1/4\"");
  EXPECT_EQ(formatLength(between(8, 2)), "9'-3 1/4\"");
  EXPECT_EQ(formatLength(between(6, 7)), "3'-1 1/2\"");
  EXPECT_EQ(formatLength(between(5, 9)) + " by " + formatLength(between(7, 3)), "6'-7 1/2\" by 11'-9 1/4\"");
  EXPECT_EQ(formatLength(between(9, 2)), "12'-3 1/4\"");
}

TEST_F(HouseTest, HasItsDoorsAndWindowsInTheirPlaces) {
  std::string schedule;
  for (const OpeningScheduleRow& row : openingSchedule(openingLayout(sketch))) {
    schedule += row.mark + " " + formatLength(row.width) + " " + std::to_string(row.count) + "\n";
  }
  EXPECT_EQ(schedule,
            "D1 2'-4\" 1\nD2 2'-8\" 5\nD3 3'-0\" 1\n"
            "W1 2'-0\" 1\nW2 3'-0\" 1\nW3 4'-0\" 5\nW4 5'-0\" 3\nW5 6'-0\" 2\nO1 3'-0\" 1\n");
}

TEST_F(HouseTest, ItsRoomsAndWallsMakeUpTheHouse) {
  const RoomPlan plan = roomPlan(sketch.entities(), sketch.drawing->wallSystemSpecs);
  ASSERT_EQ(plan.rooms.size(), 7u);
  // Square inches: the living room is an L around the study and its walls.
  std::vector<double> areas{255.25 * 323 - 110.25 * 139.75,
                            105.75 * 135.25,
                            115.5 * 135.25,
                            231.25 * 37.5,
                            79.5 * 141.25,
                            147.25 * 141.25,
                            111.25 * 135.25};
  std::vector<double> found;
  for (const Room& room : plan.rooms) found.push_back(room.area * 144);
  std::sort(areas.begin(), areas.end());
  std::sort(found.begin(), found.end());
  for (std::size_t i = 0; i < areas.size(); ++i) EXPECT_NEAR(found[i], areas[i], 0.01);
  EXPECT_NEAR(plan.grossArea, 42 * 28, 1e-6);
  const double walls = (504.0 * 336 - 491 * 323 + 5883.75) / 144;
  EXPECT_NEAR(plan.wallArea, walls, 1e-6);
  EXPECT_EQ(reply("rooms"), R"table(Room   Size                     Area     Perimeter
1                               466 SF   96'-4 1/2"
2      8'-9 3/4" × 11'-3 1/4"   99 SF    40'-2"
3      9'-7 1/2" × 11'-3 1/4"   108 SF   41'-9 1/2"
4      19'-3 1/4" × 3'-1 1/2"   60 SF    44'-9 1/2"
5      6'-7 1/2" × 11'-9 1/4"   78 SF    36'-9 1/2"
6      12'-3 1/4" × 11'-9 1/4"  144 SF   48'-1"
7      9'-3 1/4" × 11'-3 1/4"   104 SF   41'-1"
Rooms                           1060 SF
Walls                           116 SF
Gross                           1176 SF)table");
}

// The strings of the drawing, a line each: sides in front, behind, left and right.
std::string stringTexts(const Sketch& sketch) {
  const Drawing& drawing = sketch.drawing;
  std::string text;
  for (const DimensionString& string : dimensionStrings(
           drawing, roomPlan(drawing.entities, drawing.wallSystemSpecs), openingLayout(sketch), 4)) {
    for (const double length : string.lengths()) text += formatLength(length) + "  ";
    text.replace(text.size() - 2, 2, "\n");
  }
  return text;
}

TEST_F(HouseTest, ItsDimensionStringsSayWhatWasWorkedOutByHand) {
  EXPECT_EQ(stringTexts(sketch),
            R"(2'-3 1/4"  5'-0"  2'-0"  3'-0"  2'-0"  6'-0"  5'-0"  4'-0"  6'-0"  4'-0"  2'-8 3/4"
21'-9 3/4"  4 1/2"  9'-7 1/2"  4 1/2"  9'-9 3/4"
42'-0"
3'-8 3/4"  4'-0"  5'-4"  2'-8"  6"  4'-0"  4'-6"  2'-0"  6'-0"  5'-0"  4'-3 1/4"
9'-4 1/4"  4 1/2"  12'-1"  4 1/2"  6'-7 1/2"  4 1/2"  12'-9 3/4"
42'-0"
6'-8 3/4"  6'-0"  7'-0"  3'-0"  5'-3 1/4"
15'-9 3/4"  4 1/2"  11'-9 3/4"
28'-0"
4'-3 1/4"  4'-0"  11'-0"  5'-0"  3'-8 3/4"
11'-9 3/4"  4 1/2"  3'-1 1/2"  4 1/2"  12'-3 3/4"
28'-0"
)");
}

TEST_F(HouseTest, AndSoDoThoseOfTheCottage) {
  std::ifstream file(OSTRELON_SOURCE_DIR "/examples/cottage");
  submit("clear");
  for (std::string line; std::getline(file, line);) submit(line);
  EXPECT_EQ(stringTexts(sketch), R"(4'-3 1/4"  7'-0"  8'-7 3/4"  3'-6"  5'-10 1/4"  7'-0"  3'-6 3/4"
16'-11 1/8"  4 1/2"  10'-0 5/16"  4 1/2"  12'-1 9/16"
39'-10"
5'-10 3/4"  8'-0"  4'-4"  4'-6"  6'-0"  8'-0"  3'-1 1/4"
16'-11 1/8"  4 1/2"  10'-0 5/16"  4 1/2"  12'-1 9/16"
39'-10"
5'-5 3/4"  6'-0"  13'-1 1/4"
13'-3 5/8"  4 1/2"  10'-10 7/8"
24'-7"
5'-5 1/4"  6'-0"  13'-1 3/4"
13'-3 5/8"  4 1/2"  10'-10 7/8"
24'-7"
)");
}

TEST_F(HouseTest, ItsTakeoffCountsEachPlaceOnce) {
  const OpeningLayout openings = openingLayout(sketch);
  const Takeoff all = takeoff(sketch.entities(), sketch.drawing->wallSystemSpecs, openings);
  ASSERT_EQ(all.walls.size(), 2u);
  const auto& inside = all.walls[all.walls[0].system == "W2-INT" ? 0 : 1];
  const auto& outside = all.walls[all.walls[0].system == "W2-INT" ? 1 : 0];
  EXPECT_EQ(outside.walls, 4u);
  EXPECT_NEAR(outside.length * 12, 2 * (497.5 + 329.5), 1e-3);
  EXPECT_NEAR(outside.faceArea, 8 * (2 * (497.5 + 329.5) - 692) / 12, 1e-3);
  EXPECT_NEAR(outside.volume, 8 * (504 * 336 - 491 * 323 - 692 * 6.5) / 144, 1e-3);
  EXPECT_EQ(inside.walls, 7u);
  EXPECT_NEAR(inside.length * 12, 1316.5, 1e-3);
  EXPECT_NEAR(inside.faceArea, 8 * (1316.5 - 192) / 12, 1e-3);
  EXPECT_NEAR(inside.volume, 8 * (5883.75 - 192 * 4.5) / 144, 1e-3);
}

}  // namespace
}  // namespace ostrelon
