// Every search through the index gives what a walk over the list gives, while the drawing is edited.
#include <gtest/gtest.h>

#include <cmath>

#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "geometry/entity_geometry.h"
#include "geometry/hit_testing.h"
#include "geometry/marquee.h"
#include "interaction/sketch_snapping.h"
#include "support/random_drawing.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

class EditedDrawing : public testing::TestWorkspace {
 public:
  explicit EditedDrawing(unsigned seed) : random(seed) {
    std::vector<SketchEntity> all;
    for (int i = 0; i < 400; ++i) all.push_back(entity());
    addEntities(sketch, std::move(all));
  }

  // Over some hundred units, so that most of a search lies elsewhere; in clumps, so that ties are common.
  SketchPoint place() { return {60.0 * random.below(7) + random.coordinate(), 60.0 * random.below(7)}; }
  SketchEntity entity() {
    const SketchPoint by = place();
    return translatedEntity(random.entity(), by.x, by.y);
  }
  std::int64_t anyPosition() { return random.below(static_cast<int>(sketch.entities().size())); }

  void edit() {
    switch (random.below(7)) {
      case 0:
        addEntities(sketch, {entity(), entity(), entity()});
        break;
      case 1:
        if (sketch.entities().size() > 200) deleteEntity(sketch, messages, idAt(anyPosition()));
        break;
      case 2:
        selectEntities(sketch, {anyPosition(), anyPosition(), anyPosition()});
        duplicateSelection(sketch, messages, random.coordinate(), random.coordinate());
        break;
      case 3:
        selectEntities(sketch, {anyPosition()});
        nudgeSelectedEntity(sketch, random.coordinate(), random.coordinate());
        break;
      case 4:
        selectEntities(sketch, {anyPosition(), anyPosition()});
        alignSelection(sketch, AlignmentAxis::vertical);
        break;
      case 5:
        board.undo();
        if (sketch.entities().empty()) board.redo();  // there is nothing to compare in an empty drawing
        break;
      case 6:
        board.redo();
        break;
    }
  }
  UUID idAt(std::int64_t position) const {
    return entityID(sketch.entities()[static_cast<std::size_t>(position)]);
  }

  /// Five comparisons at one place.
  void compare() {
    const EntityList& list = sketch.entities();
    const EntityIndex& index = sketch.index();
    const SketchPoint at = place() + random.point();
    const double scale = std::pow(4.0, random.number(-1, 3));
    const SketchPoint other = at + random.point();
    const SketchSnapping::EntityIDs excluded{idAt(anyPosition())};
    EXPECT_EQ(pickEntityAtPoint(index, at, scale), pickEntityAtPoint(list, at, scale));
    EXPECT_EQ(SketchSnapping::nearestEntityTarget(index, excluded, at, scale, other),
              SketchSnapping::nearestEntityTarget(list, excluded, at, scale, other));
    const SketchBox rect{std::min(at.x, other.x), std::min(at.y, other.y), std::max(at.x, other.x),
                         std::max(at.y, other.y)};
    const bool isCrossing = random.below(2) == 0;
    EXPECT_EQ(entitiesInMarquee(index, rect, isCrossing), entitiesInMarquee(list, rect, isCrossing));
    const SketchEntity& moved = list[static_cast<std::size_t>(anyPosition())];
    const SketchViewport viewport{{0, 0}, scale};
    const SketchPoint delta = random.point();
    EXPECT_EQ(SketchSnapping::snapEntityMove(delta, viewport, moved, index, excluded),
              SketchSnapping::snapEntityMove(delta, viewport, moved, list, excluded));
    EXPECT_EQ(sketch.positionOf(entityID(moved)), list.indexOf(entityID(moved)));
  }

  testing::RandomDrawing random;
};

TEST(FastSearch, GivesWhatAWalkGivesThroughEdits) {
  const unsigned seed = testing::seed();
  SCOPED_TRACE(::testing::Message() << "seed " << seed);
  EditedDrawing drawing(seed);
  for (int compared = 0; compared < testing::rounds(5000); compared += 5) {
    if (compared % 20 == 0) drawing.edit();
    drawing.compare();
    ASSERT_FALSE(::testing::Test::HasFailure()) << "after " << compared << " comparisons";
  }
}

}  // namespace
}  // namespace ostrelon
