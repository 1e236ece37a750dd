// What differs between two drawings, against a comparison of everything with everything, and in words.
#include "documents/compare.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>

#include "documents/opened_document.h"
#include "documents/sketch_document_io.h"
#include "support/random_edits.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::RandomDrawing;
using testing::randomDrawing;
using testing::randomlyEdited;

// The same by squares: the first entity of each identifier, and nothing clever.
struct Plain {
  std::map<UUID, SketchEntity> removed;
  std::map<UUID, SketchEntity> added;
  std::map<UUID, std::pair<SketchEntity, SketchEntity>> changed;
  friend bool operator==(const Plain&, const Plain&) = default;
};

Plain plainDifference(const EntityList& before, const EntityList& after) {
  Plain plain;
  for (const SketchEntity& entity : before) {
    const SketchEntity* other = after.find(entityID(entity));
    if (other == nullptr) {
      plain.removed.emplace(entityID(entity), entity);
    } else if (!(*other == entity)) {
      plain.changed.emplace(entityID(entity), std::pair(entity, *other));
    }
  }
  for (const SketchEntity& entity : after) {
    if (before.find(entityID(entity)) == nullptr) plain.added.emplace(entityID(entity), entity);
  }
  return plain;
}

Plain plainOf(const DrawingDifference& difference) {
  Plain plain;
  for (const auto& entity : difference.removed) plain.removed.emplace(entityID(entity), entity);
  for (const auto& entity : difference.added) plain.added.emplace(entityID(entity), entity);
  for (const auto& pair : difference.changed) plain.changed.emplace(entityID(pair.first), pair);
  return plain;
}

// A drawing with the same entities that shares no storage with it.
Drawing unshared(Drawing drawing) {
  drawing.entities = EntityList(std::vector<SketchEntity>(drawing.entities.begin(), drawing.entities.end()));
  return drawing;
}

Drawing fromFile(const Drawing& drawing) {
  return openedDocument(SketchDocumentIO::decodeDocument(
                            SketchDocumentIO::encodeDocument(documentOf("Plan", drawing, {}))),
                        drawing)
      .drawing;
}

Drawing drawingOf(std::vector<SketchEntity> entities) {
  Drawing drawing;
  drawing.entities = EntityList(std::move(entities));
  return drawing;
}

TEST(Compare, RandomEditsAreFoundAsByComparingEverythingWithEverything) {
  const unsigned seed = testing::seed();
  RandomDrawing random(seed);
  for (int round = 0; round < testing::rounds(20); ++round) {
    const Drawing before = randomDrawing(random, random.below(700));
    // Few edits leave most storage shared; half of the identifiers stay common.
    const int most = static_cast<int>(before.entities.size()) / 3 + 1;
    const Drawing after = randomlyEdited(random, before, random.below(random.chance(2) ? 5 : most));
    const Plain plain = plainDifference(before.entities, after.entities);
    ASSERT_EQ(plainOf(compareDrawings(before, after)), plain) << "seed " << seed << " round " << round;
    Drawing other = unshared(after);
    ASSERT_EQ(plainOf(compareDrawings(before, other)), plain) << "seed " << seed << " round " << round;
    // In any order.
    std::vector<SketchEntity> shuffled(other.entities.begin(), other.entities.end());
    std::shuffle(shuffled.begin(), shuffled.end(), random.random);
    other.entities = EntityList(std::move(shuffled));
    ASSERT_EQ(plainOf(compareDrawings(before, other)), plain) << "seed " << seed << " round " << round;
  }
}

TEST(Compare, AFileDiffersFromTheDrawingByNothingThatItCannotHold) {
  const Drawing drawing = drawingOf({LineEntity{UUID::random(), {0.1, 1.0 / 3}, {std::sqrt(2), 5}},
                                     ArcEntity{UUID::random(), {0, 0}, 1.1, 0.2, 0.3},
                                     PolygonEntity{UUID::random(), {{0.7, 0}, {9.9, 0.1}, {5, 7.3}}}});
  const Drawing file = fromFile(drawing);
  EXPECT_EQ(compareDrawings(drawing, file).changed.size(), 3U);
  EXPECT_TRUE(compareDrawings(drawing, file, NumberPrecision::asInFiles).empty());
}

// A plan drawn or imported twice has other identifiers, of its wall systems as well.
TEST(Compare, DrawingsOfOtherIdentifiersAreMatchedByGeometry) {
  const WallSystemSpec exterior{UUID::random(), "EXT", 6, 96, ""};
  Drawing first;
  first.wallSystemSpecs = {exterior};
  first.entities = {WallEntity{UUID::random(), {0, 0}, {10, 0}, exterior.id},
                    LineEntity{UUID::random(), {0, 0}, {5, 5}}, CircleEntity{UUID::random(), {1, 1}, 2},
                    LineEntity{UUID::random(), {7, 7}, {8, 8}}};
  Drawing second;
  second.wallSystemSpecs = {{UUID::random(), "ext", 8, 96, ""}};
  const UUID system = second.wallSystemSpecs.front().id;
  const SketchEntity added = LineEntity{UUID::random(), {3, 3}, {4, 4}};
  second.entities = {CircleEntity{UUID::random(), {1, 1}, 2}, added,
                     WallEntity{UUID::random(), {0, 0}, {10, 0}, system},
                     LineEntity{UUID::random(), {0, 0}, {5, 5}}};
  const DrawingDifference difference = compareDrawings(first, second);
  EXPECT_THAT(difference.added, ElementsAre(added));
  EXPECT_THAT(difference.removed, ElementsAre(first.entities[3]));
  EXPECT_THAT(difference.changed, IsEmpty());
  EXPECT_EQ(difference.renamed.size(), 3U);
  EXPECT_THAT(differenceLines(difference, first, second),
              ElementsAre("Wall system ext: renamed from EXT, thickness 8 instead of 6",
                          "Line 4: removed, line from (7.0, 7.0) to (8.0, 8.0) · L=1.4",
                          "Line 2: added, line from (3.0, 3.0) to (4.0, 4.0) · L=1.4"));
  EXPECT_EQ(differenceCounts(difference), "1 added, 1 removed; wall systems: 1 changed.");
  EXPECT_EQ(differenceLines(difference, first, second, 2).size(), 2U);
}

TEST(Compare, ADifferenceIsToldInWords) {
  const UUID id = UUID::random();
  const Drawing drawing;
  const UUID exterior = drawing.wallSystemSpecs.at(0).id;
  const UUID interior = drawing.wallSystemSpecs.at(1).id;
  const std::string names =
      drawing.wallSystemSpecs.at(1).name + " instead of " + drawing.wallSystemSpecs.at(0).name;
  const auto line = [&](SketchPoint from, SketchPoint to) { return LineEntity{id, from, to}; };
  const auto wall = [&](SketchPoint from, SketchPoint to, const UUID& system) {
    return WallEntity{id, from, to, system};
  };
  using Kind = ChangeKind;
  struct Case {
    SketchEntity before;
    SketchEntity after;
    std::vector<ChangePhrase> told;
  };
  const std::vector<Case> cases{
      {line({0, 0}, {10, 0}), line({2, 0}, {12, 0}), {{Kind::moved, "moved 2' right"}}},
      {line({0, 0}, {10, 0}), line({-0.5, 1}, {9.5, 1}), {{Kind::moved, "moved 0'6\" left and 1' up"}}},
      {line({0, 0}, {10, 0}), line({0, 0}, {10.01, 0}), {{Kind::resized, "0.01' longer"}}},
      {line({0, 0}, {10, 0}), line({3, 0}, {10, 0}), {{Kind::resized, "3' shorter"}}},
      {line({0, 0}, {10, 0}), line({5, -5}, {5, 5}), {{Kind::reshaped, "turned 90°"}}},
      {wall({0, 0}, {10, 0}, exterior),
       wall({2, 0}, {13, 0}, exterior),
       {{Kind::moved, "moved 2' right"}, {Kind::resized, "1' longer"}}},
      {wall({0, 0}, {10, 0}, exterior), wall({0, 0}, {10, 0}, interior), {{Kind::otherWallSystem, names}}},
      {wall({0, 0}, {10, 0}, exterior),
       line({0, 1}, {10, 1}),
       {{Kind::converted, "converted from wall to line"}, {Kind::moved, "moved 1' up"}}},
      {CircleEntity{id, {0, 0}, 2},
       CircleEntity{id, {0, -3}, 1.5},
       {{Kind::moved, "moved 3' down"}, {Kind::resized, "0'6\" smaller in radius"}}},
      {ArcEntity{id, {0, 0}, 2, 0, 1},
       ArcEntity{id, {0, 0}, 2, 0, std::numbers::pi},
       {{Kind::reshaped, "from 0° to 180° instead of 0° to 57.3°"}}},
      {RectangleEntity{id, {0, 0}, {4, 4}},
       RectangleEntity{id, {-1, 2}, {5, 1}},
       {{Kind::moved, "moved 2' up"}, {Kind::resized, "1' wider"}, {Kind::resized, "3' lower"}}},
      {PolygonEntity{id, {{0, 0}, {1, 0}, {1, 1}}},
       PolygonEntity{id, {{0, 0}, {1, 0}, {1, 2}}},
       {{Kind::reshaped, "1 of 3 vertices moved"}}},
      {PolygonEntity{id, {{0, 0}, {1, 0}, {1, 1}}},
       PolygonEntity{id, {{0, 0}, {1, 0}}},
       {{Kind::reshaped, "2 vertices instead of 3"}}},
      {line({0, 0}, {10, 0}), line({0, 0}, {10 + 1e-12, 0}), {}},
  };
  for (const Case& one : cases) {
    EXPECT_EQ(changePhrases(one.before, one.after, drawing, drawing), one.told)
        << entityDescription(one.before) << " -> " << entityDescription(one.after);
  }
  // The number is the one that the list shows.
  const Drawing before = drawingOf({CircleEntity{UUID::random(), {0, 0}, 1}, line({0, 0}, {10, 0})});
  Drawing after = before;
  after.entities.replace(1, line({2, 0}, {13, 0}));
  EXPECT_THAT(differenceLines(compareDrawings(before, after), before, after),
              ElementsAre("Line 2: moved 2' right, 1' longer"));
}

}  // namespace
}  // namespace ostrelon
