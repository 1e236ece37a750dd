#include "geometry/joined_walls.h"
#include "geometry/wall_loops.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "support/random_drawing.h"

namespace ostrelon {
namespace {

using Points = std::vector<SketchPoint>;

// Systems of thickness 2, 2, 1 and 1, of the families A, A, B and C.
const std::vector<WallSystemSpec>& systems() {
  static const std::vector<WallSystemSpec> kSystems{{UUID::random(), "A-OUT", 2, 9, ""},
                                                    {UUID::random(), "A-IN", 1, 9, ""},
                                                    {UUID::random(), "B", 1, 9, ""},
                                                    {UUID::random(), "A-NONE", 0, 9, ""}};
  return kSystems;
}

WallEntity wall(SketchPoint from, SketchPoint to, std::size_t system = 0) {
  return {UUID::random(), from, to, systems()[system].id};
}

JoinedWalls joined(const std::vector<WallEntity>& walls) {
  return JoinedWalls::of(EntityList(std::vector<SketchEntity>(walls.begin(), walls.end())), systems());
}

double lengthOfEdges(const JoinedWall& wall) {
  double sum = 0;
  for (const WallEdge& edge : wall.edges) sum += distanceBetween(edge.from, edge.to);
  return sum;
}

double lengthOfEdges(const std::vector<WallEntity>& walls) {
  double sum = 0;
  joined(walls).visitAll([&](const JoinedWall& wall) { sum += lengthOfEdges(wall); });
  return sum;
}

double signedArea(const Points& points) {
  double twice = 0;
  for (std::size_t i = 0; i < points.size(); ++i) twice += cross(points[i], points[(i + 1) % points.size()]);
  return twice / 2;
}

bool isWithin(const Points& convex, SketchPoint point, double grown = 0) {
  for (std::size_t i = 0; i < convex.size(); ++i) {
    const SketchPoint along = convex[(i + 1) % convex.size()] - convex[i];
    if (cross(along, point - convex[i]) < -grown * lengthOf(along)) return false;
  }
  return true;
}

// --- Rooms by hand

TEST(JoinedWalls, ARoomHasTwoClosedOutlines) {
  const std::vector<WallEntity> room{wall({0, 0}, {10, 0}), wall({10, 0}, {10, 8}), wall({10, 8}, {0, 8}),
                                     wall({0, 8}, {0, 0})};
  EXPECT_DOUBLE_EQ(lengthOfEdges(room), 2 * (12 + 10) + 2 * (8 + 6));
  const JoinedWalls all = joined(room);
  const JoinedWall& bottom = *all.find(room[0].id);
  EXPECT_EQ(bottom.edges, (std::vector<WallEdge>{{{-1, -1}, {11, -1}, true}, {{9, 1}, {1, 1}, true}}));
  const auto joins = [](double off) {
    const std::vector<WallEntity> corner{wall({0, 0}, {5, 0}), wall({5, off}, {5, 9}, 1)};
    return joined(corner).find(corner[1].id)->ends[0].left.join == WallJoin::mitre;
  };
  EXPECT_TRUE(joins(0.0099));
  EXPECT_FALSE(joins(0.0101)) << "a hundredth of the thinner wall";
}

TEST(JoinedWalls, StemsJoinWhereverTheyEnd) {
  const WallEntity host = wall({0, 0}, {10, 0});
  for (const double end : {-0.9, 0.0, 0.5, 1.0, 1 - 1e-7, 1 + 1e-7}) {
    const WallEntity stem = wall({5, end}, {5, 6}, 1);
    EXPECT_NEAR(lengthOfEdges({host, stem}), 10 + 9 + 2 * 2 + 2 * 5 + 1, 1e-6) << end;
  }
  EXPECT_NEAR(lengthOfEdges({host, wall({5, 1.1}, {5, 6}, 1)}), 24 + 2 * 4.9 + 2, 1e-9)
      << "too short to join";
  EXPECT_NEAR(lengthOfEdges({host, wall({5, 0}, {5, 6}, 2)}), 24 + 2 * 5 + 1, 1e-9)
      << "another family: the host's line stays, and the stem's end within it goes";
  EXPECT_NEAR(lengthOfEdges({host, wall({5, -6}, {5, 6}, 1)}), 24 - 2 + 2 * 10 + 2, 1e-9) << "a crossing";
}

TEST(JoinedWalls, StraightOnThereIsAStep) {
  EXPECT_DOUBLE_EQ(lengthOfEdges({wall({0, 0}, {5, 0}), wall({5, 0}, {9, 0})}), 22);
  EXPECT_DOUBLE_EQ(lengthOfEdges({wall({0, 0}, {5, 0}), wall({9, 0}, {5, 0}, 1)}), 10 + 2 + 8 + 1 + 1);
  EXPECT_DOUBLE_EQ(lengthOfEdges({wall({0, 0}, {5, 0}), wall({9, 0}, {5, 0}, 2)}), 10 + 2 + 8 + 1 + 2)
      << "another family: the line stays";
}

TEST(JoinedWalls, LongMitresKeepTheirCaps) {
  const double blunt = 20 * std::numbers::pi / 180;
  const double sharp = 10 * std::numbers::pi / 180;
  const auto corner = [](double angle) {
    return std::vector{wall({0, 0}, {40, 0}),
                       wall({0, 0}, SketchPoint{std::cos(angle), std::sin(angle)} * 40)};
  };
  EXPECT_NEAR(lengthOfEdges(corner(blunt)), 2 * 80 + 4, 1e-9)
      << "what the mitre adds outside it takes inside";
  const auto caps = corner(sharp);
  const JoinedWalls all = joined(caps);
  EXPECT_EQ(all.find(caps[0].id)->ends[0].left.join, WallJoin::cap);
  EXPECT_NEAR(all.find(caps[0].id)->body.box.minX, 0, 1e-3);
}

TEST(JoinedWalls, DuplicatesCollapseAndWhatCannotBeJoinedIsLeftOut) {
  EXPECT_DOUBLE_EQ(lengthOfEdges({wall({0, 0}, {5, 0}), wall({0, 0}, {5, 0}), wall({5, 0}, {0, 0})}), 14);
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_EQ(joined({wall({0, 0}, {0, 0}), wall({0, 0}, {5, 0}, 3), wall({0, 0}, {inf, 0}),
                    wall({1e300, 0}, {-1e300, 0}), wall({0, 0}, {NAN, 1})})
                .size(),
            0U);
  const WallEntity twice = wall({0, 0}, {5, 0});
  EXPECT_EQ(joined({twice, twice}).size(), 0U);
}

TEST(JoinedWalls, GapsCutFacesAndFill) {
  const WallEntity only = wall({0, 0}, {10, 0});
  const JoinedWalls all = joined({only});
  const std::vector<WallGap> gaps{{6, 8}, {2, 3}};
  double length = 0;
  for (const WallEdge& edge : edgesBeside(*all.find(only.id), gaps))
    length += distanceBetween(edge.from, edge.to);
  EXPECT_DOUBLE_EQ(length, 24 - 2 * 3);
  double area = 0;
  for (const Points& part : fillBeside(*all.find(only.id), gaps)) area += signedArea(part);
  EXPECT_DOUBLE_EQ(area, 2 * 7);
}

// --- Random walls against plain polygons

class RandomWalls {
 public:
  explicit RandomWalls(unsigned seed, int size = 6) : random_(seed), size_(size) {}

  /// Walls of a small plan that meet at ends, end in others, cross and lie over each other.
  std::vector<WallEntity> plan(int count, std::size_t families) {
    std::vector<WallEntity> walls;
    while (static_cast<int>(walls.size()) < count) walls.push_back(next(walls, families));
    return walls;
  }
  WallEntity next(const std::vector<WallEntity>& walls, std::size_t families) {
    SketchPoint from = place();
    SketchPoint to = place();
    if (!walls.empty() && random_.chance(2)) from = placeOn(random_.oneOf(walls));
    if (!walls.empty() && random_.chance(3)) to = placeOn(random_.oneOf(walls));
    if (random_.chance(3)) to.y = from.y;
    if (random_.chance(4)) to = from + SketchPoint{random_.number(-9, 9), random_.number(-9, 9)};
    if (lengthOf(to - from) > 30) to = middleOf(from, to);
    return wall(from, to, static_cast<std::size_t>(random_.below(families == 1 ? 2 : 3)));
  }
  SketchPoint anywhere() { return {random_.number(-4, 24), random_.number(-4, 24)}; }
  testing::RandomDrawing& random() { return random_; }

 private:
  SketchPoint place() {
    return {static_cast<double>(4 * random_.below(size_)), static_cast<double>(4 * random_.below(size_))};
  }
  SketchPoint placeOn(const WallEntity& host) {
    if (random_.chance(2)) return random_.chance(2) ? host.from : host.to;
    const SketchPoint along = host.to - host.from;
    const double length = lengthOf(along);
    if (!(length > 0)) return host.from;
    const double off = std::vector<double>{0, 0.5, 1, -1}[static_cast<std::size_t>(random_.below(4))];
    return host.from + along * 0.25 + perpendicular(along) * (off / length);
  }
  testing::RandomDrawing random_;
  int size_;  // of the plan on both axes, in steps of 4
};

// What walls cover, said in the plainest way: the rectangle of each, and for each two of a node the corner
// between their facing caps and the point where their faces cross.
std::vector<Points> plainBodies(const std::vector<WallEntity>& walls) {
  const WallStyles styles(systems());
  std::vector<Points> bodies;
  for (const WallEntity& one : walls) {
    const auto a = styles.axis(one);
    if (!a) continue;
    bodies.push_back(
        {a->from - perpendicular(a->direction) * a->half, a->to - perpendicular(a->direction) * a->half,
         a->to + perpendicular(a->direction) * a->half, a->from + perpendicular(a->direction) * a->half});
    for (const WallEntity& other : walls) {
      const auto b = styles.axis(other);
      if (!b || &one == &other) continue;
      for (int end = 0; end < 2; ++end) {
        for (int otherEnd = 0; otherEnd < 2; ++otherEnd) {
          if (distanceBetween(a->end(end), b->end(otherEnd)) > nodeReach(a->half, b->half)) continue;
          const SketchPoint u = a->inward(end);
          const SketchPoint v = b->inward(otherEnd);
          const SketchPoint left = a->end(end) + perpendicular(u) * a->half;
          const SketchPoint right = b->end(otherEnd) - perpendicular(v) * b->half;
          const double sine = cross(u, v);
          if (std::abs(sine) < 1e-9) continue;
          const SketchPoint corner = left + u * (cross(right - left, v) / sine);
          for (const Points& part : {Points{a->end(end), left, corner}, Points{a->end(end), corner, right}}) {
            bodies.push_back(part);
            if (signedArea(part) < 0) std::reverse(bodies.back().begin(), bodies.back().end());
          }
        }
      }
    }
  }
  return bodies;
}

// A thicker wall may lose a corner to the mitre with a thinner one.
bool isTrimmed(const JoinAxis& thick, SketchPoint point, const std::vector<WallEntity>& walls) {
  const WallStyles styles(systems());
  return std::any_of(walls.begin(), walls.end(), [&](const WallEntity& other) {
    const auto thin = styles.axis(other);
    if (!thin || thin->half >= thick.half) return false;
    for (int i = 0; i < 4; ++i) {
      const SketchPoint end = thick.end(i % 2);
      if (distanceBetween(end, thin->end(i / 2)) < nodeReach(thin->half, thin->half) &&
          distanceBetween(end, point) < 8 * thick.half) {
        return true;
      }
    }
    return false;
  });
}

TEST(JoinedWalls, CoverWhatTheWallsCoverAndTheirCornersAndNothingElse) {
  for (int round = 0; round < testing::rounds(150); ++round) {
    const unsigned seed = testing::seed() + static_cast<unsigned>(round);
    RandomWalls random(seed);
    const auto walls = random.plan(2 + round % 12, 2);
    const auto plain = plainBodies(walls);
    std::vector<Points> drawn;
    joined(walls).visitAll([&](const JoinedWall& wall) {
      for (Points& part : fillBeside(wall, {})) {
        EXPECT_GE(signedArea(part), -1e-9) << "seed " << seed;
        drawn.push_back(std::move(part));
      }
    });
    const auto covers = [](const std::vector<Points>& areas, SketchPoint point, double grown) {
      return std::any_of(areas.begin(), areas.end(),
                         [&](auto& area) { return isWithin(area, point, grown); });
    };
    const WallStyles styles(systems());
    for (int i = 0; i < 400; ++i) {
      const SketchPoint point = random.anywhere();
      const bool isDrawn = covers(drawn, point, 1e-9);
      EXPECT_TRUE(!isDrawn || covers(plain, point, 0.03))
          << "seed " << seed << " " << point.x << " " << point.y;
      for (const WallEntity& one : walls) {
        const auto axis = styles.axis(one);
        if (!axis || isDrawn || isTrimmed(*axis, point, walls)) continue;
        const double along = dot(point - axis->from, axis->direction);
        const double across = std::abs(cross(axis->direction, point - axis->from));
        EXPECT_FALSE(along > 0.03 && along < axis->length - 0.03 && across < axis->half - 0.03)
            << "seed " << seed << " " << point.x << " " << point.y;
      }
    }
  }
}

// The area of the union of convex polygons: strips between all abscissas at which something begins, ends or
// crosses, and in each strip the intervals that are covered in its middle.
double unionArea(const std::vector<Points>& areas) {
  std::vector<double> stops;
  std::vector<std::pair<SketchPoint, SketchPoint>> sides;
  for (const Points& area : areas) {
    for (std::size_t i = 0; i < area.size(); ++i) {
      sides.emplace_back(area[i], area[(i + 1) % area.size()]);
      stops.push_back(area[i].x);
    }
  }
  for (const auto& [a, b] : sides) {
    for (const auto& [c, d] : sides) {
      const double sine = cross(b - a, d - c);
      if (std::abs(sine) < 1e-12) continue;
      const double along = cross(c - a, d - c) / sine;
      if (along > 0 && along < 1) stops.push_back((a + (b - a) * along).x);
    }
  }
  std::sort(stops.begin(), stops.end());
  double sum = 0;
  for (std::size_t i = 0; i + 1 < stops.size(); ++i) {
    if (stops[i + 1] - stops[i] < 1e-12) continue;
    const double x = (stops[i] + stops[i + 1]) / 2;
    std::vector<std::pair<double, double>> covered;
    for (const Points& area : areas) {
      double low = std::numeric_limits<double>::infinity();
      double high = -low;
      for (std::size_t k = 0; k < area.size(); ++k) {
        const SketchPoint a = area[k];
        const SketchPoint b = area[(k + 1) % area.size()];
        if ((a.x <= x) == (b.x <= x)) continue;
        const double y = a.y + (b.y - a.y) * (x - a.x) / (b.x - a.x);
        low = std::min(low, y);
        high = std::max(high, y);
      }
      if (low < high) covered.emplace_back(low, high);
    }
    std::sort(covered.begin(), covered.end());
    double until = -std::numeric_limits<double>::infinity();
    for (const auto& [low, high] : covered) {
      sum += (stops[i + 1] - stops[i]) * std::max(0.0, high - std::max(low, until));
      until = std::max(until, high);
    }
  }
  return sum;
}

// By Green's theorem the edges around an area give it, whatever their order: so none may be missing.
TEST(JoinedWalls, TheEdgesOfAFamilyEncloseWhatItsBodiesCover) {
  for (int round = 0; round < testing::rounds(150); ++round) {
    const unsigned seed = testing::seed() + static_cast<unsigned>(round);
    const auto walls = RandomWalls(seed).plan(2 + round % 12, 1);
    std::vector<Points> bodies;
    double enclosed = 0;
    joined(walls).visitAll([&](const JoinedWall& wall) {
      for (Points& part : fillBeside(wall, {})) bodies.push_back(std::move(part));
      for (const WallEdge& edge : wall.edges) enclosed += cross(edge.from, edge.to) / 2;
    });
    EXPECT_NEAR(enclosed, unionArea(bodies), 1e-6) << "seed " << seed;
  }
}

TEST(JoinedWalls, LoopsOfAllFamiliesEncloseWhatTheBodiesCover) {
  for (int round = 0; round < testing::rounds(150); ++round) {
    const unsigned seed = testing::seed() + static_cast<unsigned>(round);
    const JoinedWalls walls = joined(RandomWalls(seed).plan(2 + round % 12, 2));
    std::vector<Points> bodies;
    walls.visitAll([&](const JoinedWall& wall) {
      for (Points& part : fillBeside(wall, {})) bodies.push_back(std::move(part));
    });
    double enclosed = 0;
    for (const WallLoop& loop : wallLoops(walls)) enclosed += signedArea(loop.points);
    EXPECT_NEAR(enclosed, unionArea(bodies), 1e-2) << "a corner may be off by what counts as one point, "
                                                   << "seed " << seed;
  }
}

TEST(JoinedWalls, LoopsGoAroundTheWallsAndTheRooms) {
  const auto room = [](std::size_t stem) {
    return wallLoops(joined({wall({0, 0}, {10, 0}), wall({10, 0}, {10, 8}), wall({10, 8}, {0, 8}),
                             wall({0, 8}, {0, 0}), wall({5, 1}, {5, 7}, stem)}));
  };
  const auto open = room(1);
  ASSERT_EQ(open.size(), 3U) << "the outside and two rooms";
  EXPECT_EQ(open[0].points, (Points{{-1, -1}, {11, -1}, {11, 9}, {-1, 9}}));
  EXPECT_EQ(open[0].systems, std::vector{systems()[0].id});
  EXPECT_EQ(open[1].points, (Points{{1, 1}, {1, 7}, {4.5, 7}, {4.5, 1}}));
  EXPECT_EQ(open[1].systems, (std::vector{systems()[0].id, systems()[1].id}));
  EXPECT_EQ(room(2).size(), 3U) << "the stem has its own, the room is one";
}

TEST(JoinedWalls, FollowingAnEditGivesWhatDerivingAllGives) {
  for (int round = 0; round < testing::rounds(8); ++round) {
    const unsigned seed = testing::seed() + static_cast<unsigned>(round);
    RandomWalls random(seed, round % 2 == 0 ? 6 : 60);
    auto walls = random.plan(round % 2 == 0 ? 14 : 200, 2);
    EntityList list(std::vector<SketchEntity>(walls.begin(), walls.end()));
    EntityIndex index;
    JoinedWalls followed = JoinedWalls::of(list, systems());
    for (int step = 0; step < 30; ++step) {
      const auto position = static_cast<std::size_t>(random.random().below(static_cast<int>(list.size())));
      WallEntity next = random.next(walls, 2);
      if (random.random().chance(4)) {
        list.remove(position);
      } else if (random.random().chance(3)) {
        list.append(SketchEntity(next));
      } else {
        next.id = entityID(list[position]);
        list.replace(position, next);
      }
      index.update(list);
      const JoinedWalls before = followed;
      ASSERT_TRUE(followed.follow(list, systems(), index));
      const JoinedWalls whole = JoinedWalls::of(list, systems());
      ASSERT_EQ(followed.size(), whole.size()) << "seed " << seed << " step " << step;
      whole.visitAll([&](const JoinedWall& wall) {
        const JoinedWall* mine = followed.find(wall.wall.id);
        ASSERT_NE(mine, nullptr);
        EXPECT_EQ(mine->ends, wall.ends) << "seed " << seed << " step " << step;
        ASSERT_EQ(mine->edges.size(), wall.edges.size()) << "seed " << seed << " step " << step;
        for (std::size_t i = 0; i < wall.edges.size(); ++i) {
          EXPECT_NEAR(distanceBetween(mine->edges[i].from, wall.edges[i].from), 0, 1e-9);
          EXPECT_NEAR(distanceBetween(mine->edges[i].to, wall.edges[i].to), 0, 1e-9);
        }
      });
      std::size_t changes = 0;
      JoinedWalls::visitChanges(before, followed, [&](auto*, auto*) { ++changes; });
      EXPECT_TRUE(changes > 0 || followed.size() == before.size());
    }
  }
}

}  // namespace
}  // namespace ostrelon
