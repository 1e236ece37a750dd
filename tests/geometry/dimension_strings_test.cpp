// What the dimension strings around a building say. Walls are half a foot thick where nothing else is said.
#include "geometry/dimension_strings.h"

#include <gtest/gtest.h>

#include <cmath>

#include "core/typed_length.h"
#include "geometry/wall_run.h"
#include "support/random_drawing.h"

namespace ostrelon {
namespace {

std::string said(const DimensionString& string) {
  std::string text = string.row == StringRow::openings ? "O" : string.row == StringRow::walls ? "W" : "A";
  for (const double length : string.lengths()) text += " " + formatLength(length);
  return text;
}

struct DimensionStrings : ::testing::Test {
  Drawing drawing = [] {
    Drawing made;
    made.wallSystemSpecs = {{UUID::random(), "W", 0.5, 8, ""}};
    return made;
  }();

  void wall(SketchPoint from, SketchPoint to) {
    drawing.entities.append(WallEntity{UUID::random(), from, to, drawing.wallSystemSpecs[0].id});
  }
  bool around(const std::vector<SketchPoint>& outline) {
    const auto run = runAxes({outline, true}, 0.5, RunFace::outer);
    const auto* axes = std::get_if<std::vector<WallAxis>>(&run);
    if (axes == nullptr) return false;
    for (const WallAxis& axis : *axes) wall(axis.from, axis.to);
    return true;
  }
  void opening(std::size_t at, double distance, double width) {
    std::vector<Opening> all = drawing.plan.openings.list();
    all.push_back({UUID::random(), entityID(drawing.entities[at]), OpeningKind::window, distance, width});
    drawing.plan.openings = std::move(all);
  }
  std::vector<DimensionString> strings() const {
    return dimensionStrings(drawing, roomPlan(drawing.entities, drawing.wallSystemSpecs),
                            OpeningLayout(drawing, drawing.entities), 4);
  }
  // Those of a side, 0 in front, 1 behind, 2 at the left, 3 at the right.
  std::vector<std::string> side(int number) const {
    std::vector<std::string> texts;
    int current = -1;
    SketchPoint outward;
    for (const DimensionString& string : strings()) {
      if (current < 0 || string.outward != outward) ++current;
      outward = string.outward;
      if (current == number) texts.push_back(said(string));
    }
    return texts;
  }
  using Texts = std::vector<std::string>;
};

TEST_F(DimensionStrings, JogsAreSeenFromTheSidesThatTheyFace) {
  // An L: 30' by 20' without its 10' by 8' corner in front at the right.
  around({{0, 0}, {20, 0}, {20, 8}, {30, 8}, {30, 20}, {0, 20}});
  wall({12, 0.25}, {12, 19.75});  // from front to back
  wall({20, 8}, {20, 19.75});     // goes on behind the corner, so that it is not told twice
  opening(0, 1.75, 4);            // 2' from the corner of the faces
  opening(2, 2.25, 3);            // 3' wide, in the wall that stands back
  EXPECT_EQ(side(0), (Texts{"O 2'-0\" 4'-0\" 14'-0\" 2'-0\" 3'-0\" 5'-0\"", "W 11'-9\" 6\" 7'-9\" 10'-0\"",
                            "A 30'-0\""}));
  EXPECT_EQ(side(1), (Texts{"W 11'-9\" 6\" 7'-6\" 6\" 9'-9\"", "A 30'-0\""}));
  EXPECT_EQ(side(2), Texts{"A 20'-0\""}) << "nothing joins it, so the walls add nothing";
  EXPECT_EQ(side(3), (Texts{"W 8'-0\" 12'-0\"", "A 20'-0\""}));
  const DimensionString front = strings()[0];
  EXPECT_EQ(front.from, (SketchPoint{0, 0}));
  EXPECT_EQ(front.marks[4].depth, 8) << "the line of a mark begins at what it measures";
}

TEST_F(DimensionStrings, AGapBetweenTwoWallsIsAnOpeningAndHidesTheInside) {
  const std::vector<SketchPoint> path{{14, 0}, {20, 0}, {20, 12}, {0, 12}, {0, 0}, {10, 0}};
  for (std::size_t i = 1; i < path.size(); ++i) wall(path[i - 1], path[i]);
  wall({11, 6}, {13, 6});
  EXPECT_EQ(side(0), (Texts{"O 10'-3\" 4'-0\" 6'-3\"", "A 20'-6\""}));
  EXPECT_EQ(side(1), Texts{"A 20'-6\""});
}

TEST_F(DimensionStrings, ACourtyardIsNoOpening) {
  around({{0, 0}, {8, 0}, {8, 6}, {12, 6}, {12, 0}, {20, 0}, {20, 12}, {0, 12}});
  EXPECT_EQ(side(0), (Texts{"W 8'-0\" 4'-0\" 8'-0\"", "A 20'-0\""}));
}

TEST_F(DimensionStrings, BuildingsFarApartAreDimensionedByThemselves) {
  around({{0, 0}, {20, 0}, {20, 12}, {0, 12}});
  around({{25, 2}, {35, 2}, {35, 12}, {25, 12}});
  EXPECT_EQ(side(0), (Texts{"W 20'-0\" 5'-0\" 10'-0\"", "A 35'-0\""}));
  drawing.entities.clear();
  around({{0, 0}, {20, 0}, {20, 12}, {0, 12}});
  around({{32, 2}, {42, 2}, {42, 12}, {32, 12}});
  EXPECT_EQ(strings().size(), 8u) << "an overall string for each side of the two";
}

TEST_F(DimensionStrings, WallsAtAnAngleAreToldByTheirCorners) {
  around({{0, 0}, {20, 0}, {26, 6}, {26, 12}, {0, 12}});
  opening(1, 1, 2);
  EXPECT_EQ(side(0), (Texts{"W 20'-0\" 6'-0\"", "A 26'-0\""}));
  EXPECT_EQ(side(3), (Texts{"W 6'-0\" 6'-0\"", "A 12'-0\""}));
}

TEST_F(DimensionStrings, NothingAndWhatIsTooLargeHaveNone) {
  EXPECT_TRUE(strings().empty());
  drawing.entities.append(LineEntity{UUID::random(), {0, 0}, {9, 0}});
  EXPECT_TRUE(strings().empty());
  wall({-1e300, 0}, {1e300, 0});
  wall({0, 0}, {0, 1e308});
  for (const DimensionString& string : strings()) {
    for (const double length : string.lengths()) EXPECT_TRUE(std::isfinite(length));
  }
}

// A house with a straight front and steps behind, its inside walls and windows anywhere, to 1/32".
// False where its walls would be too short.
bool buildAnyHouse(DimensionStrings& house, testing::RandomDrawing& random) {
  const auto length = [&](double low, double high) {
    return std::round(random.number(low, high) * 384) / 384;
  };
  std::vector<SketchPoint> outline{{0, 0}};
  std::vector<SketchPoint> behind;
  double x = 0;
  double y = length(15, 30);
  const bool isOblique = random.chance(2);
  for (int i = 1 + random.below(4); i > 0; --i) {
    behind.push_back({x, y});
    x += length(4, 15);
    if (isOblique && random.chance(2)) y += length(-3, 3);
    behind.push_back({x, y});
    y = std::max(12.0, y + (random.chance(2) ? 1 : -1) * length(1, 6));
  }
  outline.push_back({x, 0});
  outline.insert(outline.end(), behind.rbegin(), behind.rend());
  if (!house.around(outline)) return false;
  for (int i = random.below(3); i > 0; --i) {
    const double at = length(1, x - 1);
    house.wall({at, 0.25}, {at + (isOblique ? length(-1, 1) : 0), length(4, 9)});
  }
  for (int i = random.below(6); i > 0; --i) {
    house.opening(static_cast<std::size_t>(random.below(static_cast<int>(outline.size()))), length(0, 20),
                  length(1, 6));
  }
  return true;
}

TEST_F(DimensionStrings, OfASideAddUpAndSayTheSameWhereverTheHouseStands) {
  testing::RandomDrawing random(testing::seed());
  int withOpenings = 0;
  for (int round = 0; round < testing::rounds(200); ++round) {
    drawing.entities.clear();
    drawing.plan.openings = {};
    if (!buildAnyHouse(*this, random)) continue;
    const std::vector<DimensionString> here = strings();
    ASSERT_GE(here.size(), 4u);
    std::vector<std::string> texts;
    std::size_t inside = 0;
    for (const DimensionString& string : here) {
      double sum = 0;
      for (const double length : string.lengths()) {
        EXPECT_GT(length, 0);
        sum += length;
      }
      texts.push_back(said(string));
      withOpenings += string.row == StringRow::openings ? 1 : 0;
      if (string.row != StringRow::overall) {
        ++inside;
        continue;
      }
      for (std::size_t i = static_cast<std::size_t>(&string - here.data()) - inside; &here[i] < &string;
           ++i) {
        double same = 0;
        for (const double length : here[i].lengths()) same += length;
        EXPECT_EQ(formatLength(same), formatLength(sum)) << "seed " << testing::seed() << " round " << round;
      }
      inside = 0;
    }
    // Moved and turned; less than half a right angle, or its sides would change their names.
    const double angle = round % 2 == 0 ? 0 : random.number(-0.6, 0.6);
    const SketchPoint by{random.number(-500, 500), random.number(-500, 500)};
    const auto moved = [&](SketchPoint point) {
      return SketchPoint{point.x * std::cos(angle) - point.y * std::sin(angle),
                         point.x * std::sin(angle) + point.y * std::cos(angle)} +
             by;
    };
    std::vector<SketchEntity> entities;
    for (const SketchEntity& entity : drawing.entities) {
      WallEntity one = std::get<WallEntity>(entity);
      one.from = moved(one.from);
      one.to = moved(one.to);
      entities.emplace_back(one);
    }
    drawing.entities = EntityList(std::move(entities));
    std::vector<std::string> there;
    for (const DimensionString& string : strings()) there.push_back(said(string));
    EXPECT_EQ(there, texts) << "seed " << testing::seed() << " round " << round << " turned " << angle;
  }
  EXPECT_GT(withOpenings, 10);
}

}  // namespace
}  // namespace ostrelon
