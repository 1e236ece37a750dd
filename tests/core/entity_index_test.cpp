#include "core/entity_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace ostrelon {
namespace {

class RandomDrawing {
 public:
  explicit RandomDrawing(unsigned seed) : random(seed) {}

  double number(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
  SketchPoint point() { return {number(-500, 500), number(-500, 500)}; }
  SketchEntity entity(UUID id = UUID::random()) {
    const SketchPoint at = point();
    // Sizes over many levels of the grids, and now and then one that is off all of them.
    const double size = std::pow(4.0, number(-4, 5));
    switch (random() % 12) {
      case 0:
        return CircleEntity{id, at, size};
      case 1:
        return ArcEntity{id, at, size, number(-7, 7), number(-7, 7)};
      case 2:
        return RectangleEntity{id, at, {number(-size, size), number(-size, size)}};
      case 3:
        return PolygonEntity{id, {at, at + SketchPoint{size, 0}, at + SketchPoint{0, size}}};
      case 4:
        return WallEntity{id, at, at + SketchPoint{size, size / 2}, id};
      case 5:
        if (random() % 8 != 0) break;
        return CircleEntity{id, {1e300, std::nan("")}, std::numeric_limits<double>::infinity()};
      default:
        break;
    }
    return LineEntity{id, at, at + SketchPoint{number(-size, size), number(-size, size)}};
  }

  std::mt19937 random;
};

bool touches(const SketchBox& a, const SketchBox& b) {
  return !(a.minX > b.maxX || a.maxX < b.minX || a.minY > b.maxY || a.maxY < b.minY);
}

void expectAgrees(const EntityIndex& index, const EntityList& list, RandomDrawing& drawing) {
  for (int i = 0; i < 40 && !list.empty(); ++i) {
    const std::size_t at = drawing.random() % list.size();
    EXPECT_EQ(index.positionOf(entityID(list[at])), at);
    EXPECT_EQ(index.find(entityID(list[at])), &list[at]);
  }
  EXPECT_EQ(index.positionOf(UUID::random()), std::nullopt);
  for (int i = 0; i < 10; ++i) {
    const SketchPoint middle = drawing.point();
    const double reach = std::pow(4.0, drawing.number(-3, 3));
    const SketchBox box{middle.x - reach, middle.y - reach, middle.x + reach, middle.y + reach};
    std::vector<EntityIndex::Candidate> candidates;
    if (!index.candidatesIn(box, candidates)) continue;
    std::vector<std::size_t> found;
    for (const auto& candidate : candidates) {
      ASSERT_NE(candidate.entity, nullptr);
      if (touches(entityBounds(*candidate.entity), box)) found.push_back(index.positionOf(candidate));
    }
    std::sort(found.begin(), found.end());
    std::vector<std::size_t> expected;
    std::size_t position = 0;
    for (const SketchEntity& entity : list) {
      if (touches(entityBounds(entity), box)) expected.push_back(position);
      ++position;
    }
    EXPECT_EQ(found, expected);
  }
}

TEST(EntityIndex, AnswersAsAWalkThroughRandomEdits) {
  const auto seed = std::random_device{}();
  SCOPED_TRACE(seed);
  RandomDrawing drawing(seed);
  const auto many = [&](std::size_t count) {
    std::vector<SketchEntity> all;
    for (std::size_t i = 0; i < count; ++i) all.push_back(drawing.entity());
    return all;
  };
  EntityIndex index;
  EntityList list(many(3000));
  std::vector<EntityList> history{list};
  for (int round = 0; round < 300; ++round) {
    const std::size_t at = list.empty() ? 0 : drawing.random() % list.size();
    switch (drawing.random() % 8) {
      case 0:
        list.append(drawing.entity());
        break;
      case 1:
        list.append(many(drawing.random() % 600));
        break;
      case 2:
        if (!list.empty()) list.replace(at, drawing.entity(entityID(list[at])));
        break;
      case 3:
        if (!list.empty()) list.remove(at);
        break;
      case 4:
        list.insert(at, many(drawing.random() % 4 == 0 ? 1500 : 4));
        break;
      case 5: {
        std::unordered_set<UUID> gone;
        const unsigned share = drawing.random() % 2 == 0 ? 4 : 400;
        for (const SketchEntity& entity : list) {
          if (drawing.random() % share == 0) gone.insert(entityID(entity));
        }
        list.removeAll(gone);
        break;
      }
      case 6:  // an undo to any earlier state
        list = history[drawing.random() % history.size()];
        break;
      case 7:
        history.push_back(list);
        break;
    }
    if (drawing.random() % 3 == 0) continue;  // the index may lag behind several edits
    index.update(list);
    expectAgrees(index, list, drawing);
  }
}

TEST(EntityIndex, IdentifiersGivenTwiceAnswerWithTheFirst) {
  RandomDrawing drawing(1);
  std::vector<SketchEntity> all;
  for (int i = 0; i < 200; ++i) all.push_back(drawing.entity());
  const UUID twice = entityID(all[150]);
  all.push_back(LineEntity{twice, {0, 0}, {1, 1}});
  EntityIndex index;
  index.update(EntityList(all));
  EXPECT_EQ(index.positionOf(twice), 150u);
  std::vector<EntityIndex::Candidate> candidates;
  EXPECT_FALSE(index.candidatesIn({0, 0, 1, 1}, candidates)) << "such a list is walked";
  all.pop_back();
  index.update(EntityList(all));
  EXPECT_TRUE(index.candidatesIn({0, 0, 1, 1}, candidates));
}

}  // namespace
}  // namespace ostrelon
