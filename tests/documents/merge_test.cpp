// Merging drawings, against plain rules applied to one identifier after the other; and from which checkpoint.
#include "documents/merge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "documents/history_files.h"
#include "support/random_edits.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::RandomDrawing;
using testing::randomDrawing;
using testing::randomlyEdited;
using ::testing::SizeIs;
using testing::TestWorkspace;

constexpr std::array kChoices{MergeChoice::ours, MergeChoice::theirs, MergeChoice::both};

Drawing merged(const Drawing& base, const Drawing& ours, const Drawing& theirs, MergeChoice choice) {
  return mergedDrawing(mergeDrawings(&base, ours, theirs), ours,
                       [=](const MergeConflict&) { return choice; });
}

std::vector<SketchEntity> listOf(const EntityList& list) { return {list.begin(), list.end()}; }

std::map<UUID, SketchEntity> setOf(const EntityList& list) {
  std::map<UUID, SketchEntity> set;
  for (const SketchEntity& entity : list) set.emplace(entityID(entity), entity);
  return set;
}

// --- The plain twin

using Side = const SketchEntity*;

bool same(Side a, Side b) { return a == nullptr || b == nullptr ? a == b : *a == *b; }

std::optional<SketchPoint> mergedEnd(SketchPoint base, SketchPoint ours, SketchPoint theirs) {
  if (ours == theirs || theirs == base) return ours;
  if (ours == base) return theirs;
  return std::nullopt;
}

std::optional<SketchEntity> joinedWall(Side base, Side ours, Side theirs) {
  for (const Side side : {base, ours, theirs}) {
    if (side == nullptr || !std::holds_alternative<WallEntity>(*side)) return std::nullopt;
  }
  WallEntity wall = std::get<WallEntity>(*ours);
  const auto& other = std::get<WallEntity>(*theirs);
  const auto from = mergedEnd(std::get<WallEntity>(*base).from, wall.from, other.from);
  const auto to = mergedEnd(std::get<WallEntity>(*base).to, wall.to, other.to);
  if (!from || !to || distanceBetween(*from, *to) < 1 || wall.systemSpecID != other.systemSpecID) {
    return std::nullopt;
  }
  wall.from = *from;
  wall.to = *to;
  return wall;
}

struct Twin {
  std::vector<SketchEntity> list;
  std::size_t conflicts = 0;
};

Twin plainMerge(const Drawing& base, const Drawing& ours, const Drawing& theirs, MergeChoice choice) {
  Twin twin;
  std::vector<SketchEntity> behind;
  std::set<UUID> isConflict;
  const auto visit = [&](const UUID& id, Side o, Side t) {
    const Side b = base.entities.find(id);
    if (same(o, t) || same(b, t)) {
      if (o != nullptr) twin.list.push_back(*o);
    } else if (same(b, o)) {
      if (t != nullptr) (o == nullptr ? behind : twin.list).push_back(*t);
    } else if (const auto wall = joinedWall(b, o, t)) {
      twin.list.push_back(*wall);
    } else {
      ++twin.conflicts;
      if (o == nullptr) {
        if (choice != MergeChoice::ours) behind.push_back(*t);
      } else if (t == nullptr) {
        if (choice != MergeChoice::theirs) twin.list.push_back(*o);
      } else {
        twin.list.push_back(choice == MergeChoice::theirs ? *t : *o);
        if (choice == MergeChoice::both) isConflict.insert(id);
      }
    }
  };
  for (const SketchEntity& entity : ours.entities) {
    visit(entityID(entity), &entity, theirs.entities.find(entityID(entity)));
  }
  for (const SketchEntity& entity : theirs.entities) {
    if (isConflict.contains(entityID(entity))) behind.push_back(withEntityID(entity, UUID()));
    if (ours.entities.find(entityID(entity)) == nullptr) visit(entityID(entity), nullptr, &entity);
  }
  for (const SketchEntity& entity : base.entities) {
    const UUID& id = entityID(entity);
    if (ours.entities.find(id) == nullptr && theirs.entities.find(id) == nullptr) visit(id, nullptr, nullptr);
  }
  twin.list.insert(twin.list.end(), behind.begin(), behind.end());
  return twin;
}

TEST(Merge, RandomEditsMergeAsThePlainRulesSay) {
  const unsigned seed = testing::seed();
  RandomDrawing random(seed);
  for (int round = 0; round < testing::rounds(30); ++round) {
    SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
    const Drawing base = randomDrawing(random, 60 + random.below(200));
    const Drawing ours = randomlyEdited(random, base, random.below(40));
    const Drawing theirs = randomlyEdited(random, base, random.below(40));
    for (const MergeChoice choice : kChoices) {
      const Merge merge = mergeDrawings(&base, ours, theirs);
      const Twin twin = plainMerge(base, ours, theirs, choice);
      ASSERT_THAT(merge.conflicts, SizeIs(twin.conflicts));
      std::vector<SketchEntity> list = listOf(merged(base, ours, theirs, choice).entities);
      ASSERT_EQ(list.size(), twin.list.size());
      std::set<UUID> ids;
      for (std::size_t i = 0; i < list.size(); ++i) {
        EXPECT_TRUE(ids.insert(entityID(list[i])).second) << "twice the same identifier";
        if (entityID(twin.list[i]) == UUID()) list[i] = withEntityID(list[i], UUID());
      }
      ASSERT_EQ(list, twin.list);
    }
    // Whoever merges, it becomes the same drawing; a conflict is one on either side.
    ASSERT_EQ(mergeDrawings(&base, theirs, ours).conflicts.size(),
              mergeDrawings(&base, ours, theirs).conflicts.size());
    ASSERT_EQ(setOf(merged(base, ours, theirs, MergeChoice::ours).entities),
              setOf(merged(base, theirs, ours, MergeChoice::theirs).entities));
    // With itself, and with a side that did nothing.
    ASSERT_TRUE(mergeDrawings(&base, ours, ours).empty());
    ASSERT_TRUE(mergeDrawings(&base, ours, base).empty());
    ASSERT_TRUE(mergeDrawings(nullptr, ours, ours).empty());
    ASSERT_THAT(mergeDrawings(&base, base, theirs).conflicts, IsEmpty());
    ASSERT_EQ(setOf(merged(base, base, theirs, MergeChoice::ours).entities), setOf(theirs.entities));
  }
}

TEST(Merge, EditsOfOtherEntitiesNeverMeet) {
  const unsigned seed = testing::seed();
  RandomDrawing random(seed);
  for (int round = 0; round < testing::rounds(20); ++round) {
    SCOPED_TRACE("seed " + std::to_string(seed) + " round " + std::to_string(round));
    const Drawing base = randomDrawing(random, 200);
    const Drawing ours = randomlyEdited(random, base, 40, [](const UUID& id) { return id.low % 2 == 0; });
    const Drawing theirs = randomlyEdited(random, base, 40, [](const UUID& id) { return id.low % 2 == 1; });
    ASSERT_THAT(mergeDrawings(&base, ours, theirs).conflicts, IsEmpty());
    const Drawing result = merged(base, ours, theirs, MergeChoice::ours);
    auto both = setOf(ours.entities);
    for (const auto& [id, entity] : setOf(base.entities)) {
      if (id.low % 2 == 1) both.erase(id);
    }
    for (const auto& [id, entity] : setOf(theirs.entities)) {
      if (base.entities.find(id) == nullptr || id.low % 2 == 1) both.emplace(id, entity);
    }
    ASSERT_EQ(setOf(result.entities), both);

    TestWorkspace t;
    t.sketch.replace(ours);
    t.sketch.select({{entityID(base.entities[0]), entityID(base.entities[1])}, std::nullopt, false});
    t.document.takeMerged(result, std::nullopt);
    EXPECT_EQ(t.sketch.entities(), result.entities);
    for (const UUID& id : t.sketch.selection->ids) EXPECT_NE(t.sketch.entity(id), nullptr);
    EXPECT_EQ(t.undoSteps(), 1U);
    t.sketch.undo();
    ASSERT_EQ(t.sketch.entities(), ours.entities);
  }
}

TEST(Merge, EndsOfTwoSidesMakeNoWallThatIsTooShort) {
  const UUID id = UUID::random();
  const auto wall = [&](double from, double to) {
    Drawing drawing;
    drawing.entities = {WallEntity{id, {from, 0}, {to, 0}, drawing.wallSystemSpecs.front().id}};
    return drawing;
  };
  const Drawing base = wall(0, 10);
  EXPECT_EQ(merged(base, wall(5, 10), wall(0, 6), MergeChoice::ours), wall(5, 6));
  EXPECT_THAT(mergeDrawings(&base, wall(5, 10), wall(0, 5.5)).conflicts, SizeIs(1));
}

TEST(Merge, WithoutAnAncestorAllThatDiffersIsAQuestion) {
  Drawing ours;
  const UUID shared = UUID::random();
  ours.entities = {LineEntity{UUID::random(), {0, 0}, {1, 1}}, LineEntity{UUID::random(), {9, 0}, {1, 1}},
                   CircleEntity{shared, {0, 0}, 1}, LineEntity{UUID::random(), {5, 5}, {6, 6}}};
  Drawing theirs = ours;
  theirs.entities.replace(2, CircleEntity{shared, {0, 0}, 2});
  theirs.entities.remove(3);
  theirs.entities.append(ArcEntity{UUID::random(), {0, 0}, 1, 0, 1});
  const Merge merge = mergeDrawings(nullptr, ours, theirs);
  std::vector<std::string> texts;
  for (const MergeConflict& conflict : merge.conflicts) texts.push_back(conflictText(conflict, ours, theirs));
  EXPECT_THAT(
      texts,
      ElementsAre("Circle 3: here circle center (0.0, 0.0) · r=1.0, there circle center (0.0, 0.0) · r=2.0",
                  "Line 4: here only, line from (5.0, 5.0) to (6.0, 6.0) · L=1.4",
                  "Arc 4: there only, arc center (0.0, 0.0) · r=1.0 · span=57.3°"));
  const auto settled = [&](MergeChoice choice) {
    return mergedDrawing(merge, ours, [=](const MergeConflict&) { return choice; }).entities;
  };
  EXPECT_EQ(settled(MergeChoice::ours), ours.entities);
  EXPECT_EQ(setOf(settled(MergeChoice::theirs)), setOf(theirs.entities));
  EXPECT_EQ(settled(MergeChoice::both).size(), 6U);
}

// --- Wall systems

TEST(Merge, WallSystemsMergeByIdentifierAndEqualNamesAreOneQuestion) {
  const WallSystemSpec exterior{UUID::random(), "EXT", 6, 96, ""};
  const auto with = [](WallSystemSpec system, double thickness) {
    system.thickness = thickness;
    return system;
  };
  Drawing base;
  base.wallSystemSpecs = {exterior};
  base.entities = {WallEntity{UUID::random(), {0, 0}, {9, 0}, exterior.id}};
  Drawing ours = base;
  Drawing theirs = base;
  theirs.wallSystemSpecs = {with(exterior, 8)};
  EXPECT_EQ(merged(base, ours, theirs, MergeChoice::ours).wallSystemSpecs, theirs.wallSystemSpecs);
  EXPECT_TRUE(mergeDrawings(&base, theirs, ours).empty());
  ours.wallSystemSpecs = {with(exterior, 7)};
  EXPECT_THAT(mergeDrawings(&base, ours, theirs).conflicts, SizeIs(1));
  EXPECT_EQ(merged(base, ours, theirs, MergeChoice::ours).wallSystemSpecs, ours.wallSystemSpecs);
  EXPECT_EQ(merged(base, ours, theirs, MergeChoice::theirs).wallSystemSpecs, theirs.wallSystemSpecs);
  EXPECT_THAT(merged(base, ours, theirs, MergeChoice::both).wallSystemSpecs, SizeIs(2));

  // Both sides have made a system of one name.
  ours = theirs = base;
  const WallSystemSpec here{UUID::random(), "Garage", 4, 96, ""};
  const WallSystemSpec there{UUID::random(), "garage", 5, 96, ""};
  const WallEntity wall{UUID::random(), {0, 5}, {9, 5}, there.id};
  ours.wallSystemSpecs.push_back(here);
  theirs.wallSystemSpecs.push_back(there);
  theirs.entities.append(wall);
  const auto nameAndThickness = [&](MergeChoice choice) {
    const Drawing result = merged(base, ours, theirs, choice);
    const WallSystemSpec* system =
        result.wallSystem(std::get<WallEntity>(*result.entities.find(wall.id)).systemSpecID);
    return std::tuple(system->id == there.id, system->thickness, result.wallSystemSpecs.size());
  };
  EXPECT_EQ(nameAndThickness(MergeChoice::ours), std::tuple(false, 4, 2));
  EXPECT_EQ(nameAndThickness(MergeChoice::theirs), std::tuple(false, 5, 2));
  EXPECT_EQ(nameAndThickness(MergeChoice::both), std::tuple(true, 5, 3));
  // No question where they are alike.
  theirs.wallSystemSpecs.back() = here;
  theirs.wallSystemSpecs.back().id = there.id;
  EXPECT_THAT(mergeDrawings(&base, ours, theirs).conflicts, IsEmpty());
  EXPECT_EQ(nameAndThickness(MergeChoice::ours), std::tuple(false, 4, 2));

  // A system that one side gave up stays with the walls that the other has made of it.
  theirs = base;
  theirs.wallSystemSpecs.clear();
  theirs.entities.clear();
  ours = base;
  EXPECT_THAT(merged(base, ours, theirs, MergeChoice::ours).wallSystemSpecs, IsEmpty());
  ours.entities.append(WallEntity{UUID::random(), {0, 7}, {9, 7}, exterior.id});
  EXPECT_THAT(merged(base, ours, theirs, MergeChoice::ours).wallSystemSpecs, ElementsAre(exterior));
  EXPECT_THAT(merged(base, theirs, ours, MergeChoice::ours).wallSystemSpecs, ElementsAre(exterior));
}

// --- From which checkpoint

TEST(Merge, TheNearestCommonAncestorFollowsBranchesAndEarlierMerges) {
  const auto checkpoint = [](std::string id, std::optional<std::string> source = std::nullopt,
                             std::vector<std::string> mergedIDs = {}) {
    return DocumentCheckpoint{id, "", Date{}, id + ".ostrel", std::move(source), std::move(mergedIDs)};
  };
  DocumentHistoryState state;
  auto& main = state.checkpointsByBranch["main"];
  auto& option = state.checkpointsByBranch["option"];
  main = {checkpoint("m1"), checkpoint("m2"), checkpoint("m3")};
  option = {checkpoint("o1", "m2"), checkpoint("o2")};
  const auto nearest = [&](const std::vector<std::string>& ours, const std::string& theirs) {
    return state.nearestCommonAncestor(ours, theirs).value_or("none");
  };
  EXPECT_EQ(nearest({"m3"}, "o2"), "m2");
  EXPECT_EQ(nearest({"m3"}, "m1"), "m1");
  EXPECT_EQ(nearest({"m1"}, "m3"), "m1");
  EXPECT_EQ(nearest({"m3", "o2"}, "o2"), "o2");  // merged, and not saved as a checkpoint yet
  main.push_back(checkpoint("m4", std::nullopt, {"o2"}));
  option.push_back(checkpoint("o3"));
  EXPECT_EQ(nearest({"m4"}, "o3"), "o2");
  EXPECT_EQ(nearest({"o3"}, "m4"), "o2");
  option.push_back(checkpoint("o4", std::nullopt, {"m4"}));
  EXPECT_EQ(nearest({"m4"}, "o4"), "m4");
  state.checkpointsByBranch["alone"] = {checkpoint("a1", "lost")};
  EXPECT_EQ(nearest({"m4"}, "a1"), "none");
  EXPECT_EQ(nearest({}, "m4"), "none");

  // The file holds merges where there are any, and else no word of them.
  const std::string text = encodeBranchTimeline({"main", main});
  EXPECT_EQ(decodeBranchTimeline(text).checkpoints, main);
  main.pop_back();
  EXPECT_EQ(encodeBranchTimeline({"main", main}).find("mergedCheckpointIDs"), std::string::npos);
}

TEST(Merge, OpeningsMergeByIdentifierAndShareTheFateOfTheirWalls) {
  Drawing base;
  const auto wall = [](double y) { return WallEntity{UUID::random(), {0, y}, {20, y}, {}}; };
  base.entities = {wall(0), wall(10)};
  const UUID first = entityID(base.entities[0]);
  const UUID second = entityID(base.entities[1]);
  const Opening door{UUID::random(), first, OpeningKind::door, 2, 3};
  const Opening window{UUID::random(), second, OpeningKind::window, 5, 4};
  base.plan = {{true, false, false}, {door, window}, {}};
  const auto with = [](Opening opening, double distance) {
    opening.distance = distance;
    return opening;
  };

  Drawing ours = base;
  Drawing theirs = base;
  ours.plan.look = {true, true, false};
  ours.plan.openings = {with(door, 9), window};
  theirs.plan.look = {false, false, false};
  const Opening added{UUID::random(), first, OpeningKind::opening, 15, 2};
  theirs.plan.openings = {door, with(window, 7), added};
  const Drawing both = merged(base, ours, theirs, MergeChoice::ours);
  EXPECT_EQ(both.plan, (Plan{{false, true, false}, {with(door, 9), with(window, 7), added}, {}}));
  EXPECT_THAT(mergeDrawings(&base, ours, theirs).conflicts, IsEmpty());
  EXPECT_THAT(
      differenceLines(compareDrawings(base, ours), base, ours),
      ElementsAre("Door in Wall 1: 7' farther from the start of its wall", "Plan look: filled walls on"));

  theirs.plan.openings = {with(door, 4)};
  const Merge torn = mergeDrawings(&base, ours, theirs);
  ASSERT_THAT(torn.conflicts, SizeIs(1));
  EXPECT_EQ(
      conflictText(torn.conflicts[0], ours, theirs),
      "Door in Wall 1: here 7' farther from the start of its wall, there 2' farther from the start of its "
      "wall");
  EXPECT_EQ(merged(base, ours, theirs, MergeChoice::theirs).plan.openings, theirs.plan.openings);

  // Gone here with its wall, which they have moved: with the wall it comes back.
  ours = base;
  ours.entities.remove(1);
  ours.plan.openings = {door};
  theirs = base;
  theirs.entities.replace(1, WallEntity{second, {0, 11}, {20, 11}, {}});
  EXPECT_EQ(merged(base, ours, theirs, MergeChoice::ours).plan.openings, ours.plan.openings);
  const Drawing back = merged(base, ours, theirs, MergeChoice::theirs);
  ASSERT_THAT(back.plan.openings, SizeIs(2));
  EXPECT_EQ(back.plan.openings[1].wallID, second);
}

TEST(Merge, TakesRoomsNotesAndTheSheetAndDimensionsFollowTheMergedWalls) {
  const UUID wall = UUID::random();
  const auto end = [&](SketchPoint point, AnchorKind anchor) {
    return DimensionEnd{point, anchor, wall, 0, false};
  };
  const auto dimension = [&](double y) {
    return Dimension{UUID::random(), end({0, y}, AnchorKind::start), end({20, y}, AnchorKind::end),
                     DimensionDirection::aligned, 2};
  };
  Drawing base;
  base.entities.append(WallEntity{wall, {0, 0}, {20, 0}, {}});
  base.plan.dimensions = {dimension(0)};
  base.plan.roomNames = {RoomName{UUID::random(), {5, 5}, "Bath", {}}};
  base.plan.notes = {Note{UUID::random(), {1, 1}, "Verify", {}}};

  Drawing ours = base;
  ours.entities.replace(0, WallEntity{wall, {0, 3}, {20, 3}, {}});
  Dimension followed = base.plan.dimensions[0];
  followed.from.point = {0, 3};
  followed.to.point = {20, 3};
  ours.plan.dimensions = {followed};
  ours.plan.sheet.project = "Lake House";
  Drawing theirs = base;
  RoomName kitchen = base.plan.roomNames[0];
  kitchen.name = "Kitchen";
  theirs.plan.roomNames = {kitchen};
  theirs.plan.notes = {};
  theirs.plan.dimensions = {base.plan.dimensions[0], dimension(0)};
  theirs.plan.sheet.client = "M. Weber";

  EXPECT_EQ(differenceCounts(compareDrawings(base, theirs)),
            "Rooms: 1 changed; dimensions: 1 added; notes: 1 removed; other sheet.");
  EXPECT_THAT(differenceLines(compareDrawings(base, ours), base, ours),
              ElementsAre("Wall 1: moved 3' up", "Sheet: project now Lake House"));
  EXPECT_THAT(mergeDrawings(&base, ours, theirs).conflicts, IsEmpty());
  const Plan plan = merged(base, ours, theirs, MergeChoice::ours).plan;
  EXPECT_EQ(plan.roomNames, theirs.plan.roomNames);
  EXPECT_TRUE(plan.notes.empty());
  EXPECT_EQ(plan.sheet.project + " " + plan.sheet.client, "Lake House M. Weber");
  ASSERT_THAT(plan.dimensions, SizeIs(2));
  for (const Dimension& one : plan.dimensions) EXPECT_EQ(one.to.point, (SketchPoint{20, 3}));

  RoomName hall = kitchen;
  hall.name = "Hall";
  ours.plan.roomNames = {hall};
  const Merge torn = mergeDrawings(&base, ours, theirs);
  ASSERT_THAT(torn.conflicts, SizeIs(1));
  EXPECT_EQ(conflictText(torn.conflicts[0], ours, theirs),
            "Room Hall: here renamed to Hall, there renamed to Kitchen");
  EXPECT_EQ(merged(base, ours, theirs, MergeChoice::theirs).plan.roomNames, theirs.plan.roomNames);
  EXPECT_THAT(merged(base, ours, theirs, MergeChoice::both).plan.roomNames, SizeIs(2));
}

}  // namespace
}  // namespace ostrelon
