#include "app/wall_panel.h"

#include <gmock/gmock.h>

#include "core/adding.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

struct WallPanelTest : ::testing::Test, testing::TestWorkspace {
  const WallSystemSpec& spec(std::size_t row) { return sketch.drawing->wallSystemSpecs[row]; }
  UUID addWall(std::size_t row) {
    ostrelon::addWall(sketch, spec(row).id, {0, 0}, {10, 0});
    return entityID(sketch.entities().back());
  }
};

TEST_F(WallPanelTest, ANumberThatIsNoneOrNotPositiveIsDroppedInSilence) {
  const WallSystemSpec before = spec(0);
  const std::size_t told = lines().size();
  for (const char* text :
       {"-1", "0", "abc", "", " 5", "5 ", "0x10", "inf", "nan", "1e999", "4,5", "+-3", "5'"}) {
    EXPECT_FALSE(commitWallSystemField(workspace, before.id, WallSystemField::thickness, text)) << text;
  }
  EXPECT_EQ(spec(0), before);
  EXPECT_FALSE(document.isDirty());
  EXPECT_EQ(lines().size(), told);
}

TEST_F(WallPanelTest, AnEditMarksTheDocumentAndTakesNoUndoStep) {
  addWall(0);
  const std::size_t steps = undoSteps();
  EXPECT_TRUE(commitWallSystemField(workspace, spec(0).id, WallSystemField::height, "+1.2e2"));
  EXPECT_EQ(spec(0).height, 120);
  EXPECT_EQ(wallSystemMeasures(spec(0)), "4.5 thick · 120 high");
  EXPECT_TRUE(commitWallSystemField(workspace, spec(0).id, WallSystemField::assemblyNotes, "anything  "));
  EXPECT_EQ(spec(0).assemblyNotes, "anything  ");
  EXPECT_EQ(undoSteps(), steps);
  board.undo();
  EXPECT_EQ(spec(0).height, 120);
}

TEST_F(WallPanelTest, TheSameValueChangesNothing) {
  EXPECT_TRUE(commitWallSystemField(workspace, spec(0).id, WallSystemField::thickness, "4.50"));
  EXPECT_FALSE(document.isDirty());
  EXPECT_FALSE(commitWallSystemField(workspace, UUID::random(), WallSystemField::thickness, "3"));
}

}  // namespace
}  // namespace ostrelon
