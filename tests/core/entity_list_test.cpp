#include "core/entity_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/random_drawing.h"

namespace ostrelon {
namespace {

SketchEntity line(double x) { return LineEntity{UUID::random(), {x, 0}, {x, 1}}; }

std::vector<SketchEntity> lines(std::size_t count) {
  std::vector<SketchEntity> all;
  for (std::size_t i = 0; i < count; ++i) all.push_back(line(static_cast<double>(i)));
  return all;
}

void expectSame(const EntityList& list, const std::vector<SketchEntity>& expected) {
  ASSERT_EQ(list.size(), expected.size());
  EXPECT_TRUE(std::equal(list.begin(), list.end(), expected.begin(), expected.end()));
  EXPECT_TRUE(std::equal(list.rbegin(), list.rend(), expected.rbegin(), expected.rend()));
  for (std::size_t i = 0; i < expected.size(); i += 1 + expected.size() / 50) EXPECT_EQ(list[i], expected[i]);
  EXPECT_EQ(list, EntityList(expected));
}

TEST(EntityList, HoldsWhatAVectorHoldsThroughRandomEdits) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  const auto below = [&](std::size_t limit) { return random() % (limit + 1); };

  EntityList list(lines(3000));
  std::vector<SketchEntity> expected(list.begin(), list.end());
  std::vector<std::pair<EntityList, std::vector<SketchEntity>>> snapshots;
  for (int round = 0; round < testing::rounds(400); ++round) {
    const std::size_t at = below(expected.empty() ? 0 : expected.size() - 1);
    switch (random() % 8) {
      case 0: {
        auto more = lines(random() % 5 == 0 ? 2500 : 3);
        expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(at), more.begin(), more.end());
        list.insert(at, std::move(more));
        break;
      }
      case 1:
        expected.push_back(line(-1));
        list.append(expected.back());
        break;
      case 2: {
        auto more = lines(random() % 700);
        expected.insert(expected.end(), more.begin(), more.end());
        list.append(std::move(more));
        break;
      }
      case 3:
        if (expected.empty()) break;
        expected[at] = line(-2);
        list.replace(at, expected[at]);
        break;
      case 4:
        if (expected.empty()) break;
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(at));
        list.remove(at);
        break;
      case 5: {
        std::unordered_set<UUID> gone;
        const bool isMany = random() % 2 == 0;
        for (const SketchEntity& entity : expected) {
          if (random() % (isMany ? 3 : 500) == 0) gone.insert(entityID(entity));
        }
        std::erase_if(expected, [&](const SketchEntity& entity) { return gone.contains(entityID(entity)); });
        list.removeAll(gone);
        break;
      }
      case 6:
        snapshots.emplace_back(list, expected);
        break;
      case 7: {
        std::vector<std::size_t> places;
        std::vector<SketchEntity> others;
        for (std::size_t i = random() % 9; i < expected.size(); i += 1 + random() % 200) {
          places.push_back(i);
          others.push_back(withEntityID(line(-3), entityID(expected[i])));
          expected[i] = others.back();
        }
        EXPECT_TRUE(list.replaceAll(places, others));
        break;
      }
    }
    if (!snapshots.empty()) {
      const auto& [other, values] = snapshots[random() % snapshots.size()];
      const auto start = std::mismatch(expected.begin(), expected.end(), values.begin(), values.end());
      EXPECT_EQ(list.commonStart(other), start.first - expected.begin());
      const auto end = std::mismatch(expected.rbegin(), expected.rend(), values.rbegin(), values.rend());
      EXPECT_EQ(list.commonEnd(other), end.first - expected.rbegin());
      EntityList made = other;
      EXPECT_TRUE(made.apply(EntityList::splices(other, list)));
      EXPECT_EQ(made, list);
      EXPECT_TRUE(made.apply(EntityList::splices(list, other)));
      EXPECT_EQ(made, other);
    }
    ASSERT_EQ(list.size(), expected.size());
  }
  expectSame(list, expected);
  for (const auto& [snapshot, then] : snapshots) expectSame(snapshot, then);
}

TEST(EntityList, ReplacesManyOrNone) {
  EntityList list(lines(300));
  const EntityList before = list;
  const SketchEntity first = withEntityID(line(-1), entityID(list[1]));
  EXPECT_FALSE(list.replaceAll({1, 200}, {first, line(-1)})) << "another identifier stands there";
  EXPECT_FALSE(list.replaceAll({1, 300}, {first, line(-1)})) << "beyond the end";
  EXPECT_TRUE(list.sharesAllStorage(before));
  EXPECT_TRUE(list.replaceAll({1}, {first}));
  EXPECT_EQ(list[1], first);
}

TEST(EntityList, DifferenceTellsWhatWasAddedRemovedAndChanged) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  EntityList before(lines(20'000));
  EntityList after = before;
  const SketchEntity changed = LineEntity{entityID(after[7777]), {1, 2}, {3, 4}};
  const SketchEntity old = after[7777];
  after.replace(7777, changed);
  const SketchEntity removed = after[12];
  after.remove(12);
  const SketchEntity added = line(5);
  after.insert(random() % 15'000, {added});

  const auto difference = EntityList::difference(before, after);
  EXPECT_THAT(difference.removed, ::testing::ElementsAre(removed));
  EXPECT_THAT(difference.added, ::testing::ElementsAre(added));
  EXPECT_THAT(difference.changed, ::testing::ElementsAre(::testing::Pair(old, changed)));
  EXPECT_TRUE(EntityList::difference(after, after).empty());
  std::size_t told = 0;
  for (const EntitySplice& splice : EntityList::splices(before, after)) {
    told += splice.removed + splice.added.size();
  }
  EXPECT_EQ(told, 4u) << "one out, one in, one of another value";
  EXPECT_FALSE(after.apply({{20'001, 0, {}}})) << "beyond the end";
  EXPECT_FALSE(after.apply({{3, 2, {}}, {4, 0, {}}})) << "one over the other";
  EXPECT_EQ(EntityList::difference(EntityList(), before).added.size(), before.size());
  EXPECT_EQ(EntityList::difference(before, EntityList()).removed.size(), before.size());
}

TEST(EntityList, OneEditCopiesOneChunkAndSharesTheRest) {
  EntityList before(lines(100'000));
  EntityList after = before;
  after.replace(50'000, line(1));
  const auto old = before.chunks();
  const auto now = after.chunks();
  ASSERT_EQ(old.size(), now.size());
  std::size_t differing = 0;
  for (std::size_t i = 0; i < old.size(); ++i) differing += old[i] != now[i] ? 1 : 0;
  EXPECT_EQ(differing, 1u);
  EXPECT_NE(before, after);
  after.replace(50'000, before[50'000]);
  EXPECT_EQ(before, after);
}

TEST(EntityList, ListsBuiltFromMostlyTheSameChunksAreEditedAndComparedLikeAnyOther) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  std::vector<std::shared_ptr<const EntityList::Chunk>> chunks;
  const auto newChunk = [&] { return std::make_shared<const EntityList::Chunk>(lines(random() % 20)); };
  for (int count = 0; count < 300; ++count) chunks.push_back(newChunk());
  EntityList before = EntityList::fromChunks(chunks);
  for (int round = 0; round < 50; ++round) {
    const auto at = chunks.begin() + static_cast<std::ptrdiff_t>(random() % chunks.size());
    switch (random() % 4) {
      case 0:
        *at = newChunk();
        break;
      case 1:
        chunks.insert(at, newChunk());
        break;
      case 2:
        chunks.erase(at);
        break;
      default:
        chunks.push_back(chunks[random() % chunks.size()]);  // the same entities twice
    }
    EntityList after = EntityList::fromChunks(chunks, before);
    std::vector<SketchEntity> expected;
    for (const auto& chunk : chunks) expected.insert(expected.end(), chunk->begin(), chunk->end());
    expectSame(after, expected);
    EXPECT_LE(EntityList::difference(before, after).added.size(), 20u);
    after.replace(expected.size() / 2, line(round));
    EXPECT_EQ(EntityList::fromChunks(chunks), EntityList(expected)) << "edits leave what is shared alone";
    before = EntityList::fromChunks(chunks, before);
  }
}

TEST(EntityList, ShrinksToNothing) {
  EntityList list(lines(5000));
  while (!list.empty()) list.remove(list.size() / 2);
  EXPECT_EQ(list, EntityList());
  EXPECT_EQ(list.begin(), list.end());
  list.append(line(1));
  EXPECT_EQ(list.size(), 1u);
}

}  // namespace
}  // namespace ostrelon
