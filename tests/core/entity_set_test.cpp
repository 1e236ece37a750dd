// A set of entities against a plain set of identifiers.
#include "core/entity_set.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <unordered_set>
#include <vector>

#include "support/random_drawing.h"

namespace ostrelon {
namespace {

using Twin = std::unordered_set<UUID>;

SketchEntity line(UUID id = UUID::random()) { return LineEntity{id, {0, 0}, {1, 1}}; }

class SetAndTwin {
 public:
  explicit SetAndTwin(unsigned seed) : random_(seed) {
    std::vector<SketchEntity> entities;
    for (int i = 0; i < 700; ++i) entities.push_back(line());
    list = EntityList(std::move(entities));
  }

  void expectEqual(const char* after) {
    ASSERT_EQ(set.size(), twin.size()) << after;
    std::vector<std::size_t> positions;
    std::size_t position = 0;
    for (const SketchEntity& entity : list) {
      const bool isIn = twin.contains(entityID(entity));
      if (isIn) positions.push_back(position);
      if (set.isOver(list)) {
        ASSERT_EQ(set.containsAt(position), isIn) << after << ", position " << position;
      }
      ++position;
    }
    if (set.isOver(list)) {
      ASSERT_EQ(set.positions(), positions) << after;
    }
    ASSERT_EQ(Twin(set.begin(), set.end()), twin) << after;
    ASSERT_TRUE(set == EntitySet(twin) && EntitySet(twin) == set) << after;
    EntitySet changed = set;
    changed.insert(UUID::random());
    ASSERT_FALSE(changed == set) << after;
    if (!twin.empty()) {
      ASSERT_TRUE(set.contains(*twin.begin()));
    }
    ASSERT_FALSE(set.contains(UUID::random()));
  }

  void chooseAll() {
    set = EntitySet::allOf(list);
    twin.clear();
    for (const SketchEntity& entity : list) twin.insert(entityID(entity));
  }
  void chooseSome() {
    const auto positions = somePositions();
    set = EntitySet::at(list, positions);
    twin.clear();
    for (const std::size_t position : positions) twin.insert(idAt(position));
  }
  void chooseEnd() {
    const std::size_t first = below(list.size());
    set = EntitySet::from(list, first);
    twin.clear();
    for (std::size_t i = first; i < list.size(); ++i) twin.insert(idAt(i));
  }
  void mergeSome() {
    const auto positions = somePositions();
    set.merge(EntitySet::at(list, positions));
    for (const std::size_t position : positions) twin.insert(idAt(position));
  }
  void toggleOne() {
    const UUID id = idAt(below(list.size()));
    if (twin.erase(id) > 0) {
      set.erase(id);
    } else {
      set.insert(id);
      twin.insert(id);
    }
  }
  // The set follows, and so does the twin: what is gone leaves it.
  void editList() {
    const EntityList before = list;
    switch (below(5)) {
      case 0:
        list.append(line());
        break;
      case 1:
        list.removeAll(somePositions());
        break;
      case 2:
        list.insert(below(list.size()), {line(), line()});
        break;
      case 3: {
        const std::size_t place = below(list.size());
        list.replace(place, CircleEntity{idAt(place), {3, 3}, 1});
        break;
      }
      default: {
        // From one place to another.
        const std::size_t from = below(list.size());
        const SketchEntity moved = list[from];
        list.remove(from);
        list.insert(below(list.size()), {moved});
      }
    }
    if (list.size() < 300) {
      std::vector<SketchEntity> more;
      for (int i = 0; i < 400; ++i) more.push_back(line());
      list.append(std::move(more));
    }
    const bool wasOver = set.isOver(before);
    set.follow(list);
    if (!wasOver) {
      set = EntitySet(twin);
      return;
    }
    std::erase_if(twin, [&](const UUID& id) { return !list.indexOf(id); });
  }

  void step() {
    switch (below(9)) {
      case 0:
        return chooseAll();
      case 1:
        return chooseSome();
      case 2:
        return chooseEnd();
      case 3:
        return mergeSome();
      case 4:
        return toggleOne();
      default:
        return editList();
    }
  }

  EntityList list;
  EntitySet set;
  Twin twin;

 private:
  std::size_t below(std::size_t end) { return random_() % end; }
  UUID idAt(std::size_t position) const { return entityID(list[position]); }
  std::vector<std::size_t> somePositions() {
    const std::size_t share = 1 + below(12);
    std::vector<std::size_t> positions;
    for (std::size_t i = 0; i < list.size(); ++i) {
      if (below(share) == 0) positions.push_back(i);
    }
    return positions;
  }

  std::mt19937_64 random_;
};

TEST(EntitySet, IsWhatASetOfIdentifiersIsThroughRandomEdits) {
  const unsigned seed = testing::seed();
  SCOPED_TRACE(seed);
  SetAndTwin both(seed);
  for (int i = 0; i < testing::rounds(300) && !::testing::Test::HasFatalFailure(); ++i) {
    both.step();
    both.expectEqual("a step");
  }
}

TEST(EntitySet, StaysASetOfPositionsThroughEditsInPlace) {
  std::vector<SketchEntity> entities;
  for (int i = 0; i < 1'000; ++i) entities.push_back(line());
  const EntityList list(std::move(entities));
  EntityList edited = list;
  for (std::size_t i = 0; i < list.size(); i += 3) edited.replace(i, CircleEntity{entityID(list[i]), {}, 2});
  const EntitySet all = EntitySet::allOf(list);
  EntitySet followed = all;
  followed.follow(edited);
  EXPECT_TRUE(followed.isOver(edited));
  EXPECT_TRUE(followed == all);
  followed.eraseAt(7);
  EXPECT_FALSE(followed.contains(entityID(list[7])));
  EXPECT_FALSE(followed == all);
}

}  // namespace
}  // namespace ostrelon
