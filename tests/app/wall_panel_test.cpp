#include "app/wall_panel.h"

#include <gmock/gmock.h>

#include "support/test_sketch.h"

namespace ostrelon {
namespace {

struct WallPanelTest : ::testing::Test {
  testing::TestSketch test;
  SketchViewModel& sketch = test.sketch;

  const WallSystemSpec& spec(std::size_t row) { return sketch.wallSystemSpecs.get()[row]; }
  UUID addWall(std::size_t row) {
    sketch.addWall(spec(row).id, {0, 0}, {10, 0});
    return entityID(sketch.entities->back());
  }
};

TEST_F(WallPanelTest, ANumberThatIsNoneOrNotPositiveIsDroppedInSilence) {
  const WallSystemSpec before = spec(0);
  const std::size_t lines = sketch.consoleLines->size();
  for (const char* text :
       {"-1", "0", "abc", "", " 5", "5 ", "0x10", "inf", "nan", "1e999", "4,5", "+-3", "5'"}) {
    EXPECT_FALSE(commitWallSystemField(sketch, before.id, WallSystemField::thickness, text)) << text;
  }
  EXPECT_EQ(spec(0), before);
  EXPECT_FALSE(sketch.isDocumentDirty);
  EXPECT_EQ(sketch.consoleLines->size(), lines);
}

TEST_F(WallPanelTest, AnEditMarksTheDocumentAndTakesNoUndoStep) {
  addWall(0);
  const std::size_t steps = sketch.undoStack().undoSnapshots().size();
  EXPECT_TRUE(commitWallSystemField(sketch, spec(0).id, WallSystemField::height, "+1.2e2"));
  EXPECT_EQ(spec(0).height, 120);
  EXPECT_EQ(wallSystemMeasures(spec(0)), "4.5 thick · 120 high");
  EXPECT_TRUE(commitWallSystemField(sketch, spec(0).id, WallSystemField::assemblyNotes, "anything  "));
  EXPECT_EQ(spec(0).assemblyNotes, "anything  ");
  EXPECT_EQ(sketch.undoStack().undoSnapshots().size(), steps);
  sketch.undo();
  EXPECT_EQ(spec(0).height, 120);
}

TEST_F(WallPanelTest, TheSameValueChangesNothing) {
  EXPECT_TRUE(commitWallSystemField(sketch, spec(0).id, WallSystemField::thickness, "4.50"));
  EXPECT_FALSE(sketch.isDocumentDirty);
  EXPECT_FALSE(commitWallSystemField(sketch, UUID::random(), WallSystemField::thickness, "3"));
}

}  // namespace
}  // namespace ostrelon
