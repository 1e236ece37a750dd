#include "core/entity_index.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/random_drawing.h"

namespace ostrelon {
namespace {

using testing::RandomDrawing;

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
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  RandomDrawing drawing(seed, testing::Spread::scattered);
  const auto many = [&](int count) { return drawing.entities(count); };
  EntityIndex index;
  EntityList list(many(3000));
  std::vector<EntityList> history{list};
  for (int round = 0; round < testing::rounds(300); ++round) {
    const std::size_t at = list.empty() ? 0 : drawing.random() % list.size();
    switch (drawing.random() % 8) {
      case 0:
        list.append(drawing.entity());
        break;
      case 1:
        list.append(many(drawing.below(600)));
        break;
      case 2:
        if (!list.empty()) list.replace(at, drawing.entity(defaultWallSystems(), entityID(list[at])));
        break;
      case 3:
        if (!list.empty()) list.remove(at);
        break;
      case 4:
        list.insert(at, many(drawing.chance(4) ? 1500 : 4));
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
  std::vector<SketchEntity> all = RandomDrawing(1).entities(200);
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
