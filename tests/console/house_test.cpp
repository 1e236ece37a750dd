// The sample house, whose measures are worked out by hand: 42' by 28' outside, walls of 6 1/2" and 4 1/2".
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "core/typed_length.h"
#include "geometry/opening_operations.h"
#include "geometry/opening_schedule.h"
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

}  // namespace
}  // namespace ostrelon
