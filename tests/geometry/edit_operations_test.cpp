#include <gtest/gtest.h>

#include "geometry/edit_operations.h"
#include "geometry/entity_edits.h"
#include "geometry/entity_geometry.h"
#include "support/random_drawing.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

using testing::TestWorkspace;

TEST(Edits, TheLengthThatASegmentHasIsNoChange) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  testing::RandomDrawing drawing(seed);
  for (int i = 0; i < 200; ++i) {
    const LineEntity line{UUID::random(), drawing.point(), drawing.point()};
    const double length = distanceBetween(line.from, line.to);
    if (!(length > 0)) continue;
    EXPECT_EQ(resizedEntity(line, length), std::optional<SketchEntity>(line));
  }
}

TEST(Edits, EntitiesOfOneIdentifierAreDeletedTogether) {
  TestWorkspace t;
  const UUID shared = UUID::random();
  const UUID other = UUID::random();
  EntityList list;
  for (int i = 0; i < 3000; ++i) list.append(LineEntity{i % 3 == 0 ? other : shared, {0, 0}, {1, 1}});
  t.board.restoreSnapshot(list);
  selectEntities(t.sketch, {1});
  deleteSelection(t.sketch, t.messages);
  EXPECT_EQ(t.sketch.entities().size(), 1000u);
  deleteEntity(t.sketch, t.messages, other);
  EXPECT_TRUE(t.sketch.entities().empty());
}

}  // namespace
}  // namespace ostrelon
