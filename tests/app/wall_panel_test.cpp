#include "app/wall_panel.h"

#include <gmock/gmock.h>

#include "core/adding.h"
#include "geometry/edit_operations.h"
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

TEST_F(WallPanelTest, ASizeThatIsNoneOrNotPositiveIsRefusedInTheFieldAlone) {
  const WallSystemSpec before = spec(0);
  const std::size_t told = lines().size();
  for (const char* text : {"-1", "0", "abc", "", "0x10", "inf", "nan", "1e999", "4,5", "+-3", "5-1/2"}) {
    EXPECT_TRUE(commitWallSystemField(workspace, before.id, WallSystemField::thickness, text)) << text;
  }
  EXPECT_EQ(spec(0), before);
  EXPECT_FALSE(document.isDirty());
  EXPECT_EQ(lines().size(), told);
}

TEST_F(WallPanelTest, AnEditMarksTheDocumentAndTakesNoUndoStep) {
  addWall(0);
  const std::size_t steps = undoSteps();
  EXPECT_EQ(commitWallSystemField(workspace, spec(0).id, WallSystemField::height, "+1.2e2"), std::nullopt);
  EXPECT_EQ(spec(0).height, 120);
  EXPECT_EQ(wallSystemMeasures(spec(0)), "4.5 thick · 120 high");
  commitWallSystemField(workspace, spec(0).id, WallSystemField::assemblyNotes, "anything  ");
  EXPECT_EQ(spec(0).assemblyNotes, "anything  ");
  EXPECT_EQ(undoSteps(), steps);
  board.undo();
  EXPECT_EQ(spec(0).height, 120);
}

TEST_F(WallPanelTest, TheSameValueChangesNothing) {
  EXPECT_EQ(commitWallSystemField(workspace, spec(0).id, WallSystemField::thickness, "4.50"), std::nullopt);
  EXPECT_FALSE(document.isDirty());
}

TEST_F(WallPanelTest, SizesAreReadAndShownInFeetAndInches) {
  commitWallSystemField(workspace, spec(0).id, WallSystemField::thickness, "5-1/2\"");
  commitWallSystemField(workspace, spec(0).id, WallSystemField::height, "8'");
  EXPECT_EQ(spec(0).thickness, 5.5 / 12);
  EXPECT_EQ(wallSystemFieldText(spec(0), WallSystemField::thickness), "5 1/2\"");
  EXPECT_EQ(wallSystemFieldText(spec(0), WallSystemField::height), "8");
  EXPECT_EQ(wallSystemMeasures(spec(0)), "5 1/2\" thick · 8'-0\" high");
  EXPECT_EQ(wallSizeInInches(static_cast<double>(5.5F / 12.0F)), "= 5 1/2\"") << "as a file gives it back";
  EXPECT_EQ(wallSizeInInches(0.4), "≈ 4 13/16\"");
  const WallSystemSpec thin = spec(0);
  EXPECT_EQ(commitWallSystemField(workspace, thin.id, WallSystemField::thickness, "5 1/2\""), std::nullopt);
  EXPECT_EQ(spec(0), thin);
}

TEST_F(WallPanelTest, UndoTakesBackWhatTheButtonsDidAndNothingElse) {
  const auto names = [&] {
    std::string text;
    for (const WallSystemSpec& system : sketch.drawing->wallSystemSpecs) text += system.name + " ";
    return text;
  };
  addWall(0);
  duplicatePanelSystem(workspace);
  EXPECT_EQ(names(), "W2-INT W2-EXT CMU-8 W2-INT-2 ");
  EXPECT_EQ(panelContextTitle(workspace), "ACTIVE SYSTEM · W2-INT-2");
  EXPECT_EQ(commitWallSystemField(workspace, spec(3).id, WallSystemField::name, " w2-ext "),
            "This name is taken.");
  EXPECT_EQ(commitWallSystemField(workspace, spec(3).id, WallSystemField::name, "Bath wall"), std::nullopt);
  commitWallSystemField(workspace, spec(0).id, WallSystemField::thickness, "5");
  selectSingleEntity(sketch, entityID(sketch.entities()[0]));
  dialogs.queue("bath WALL");
  deletePanelSystem(workspace);
  EXPECT_EQ(names(), "W2-EXT CMU-8 Bath wall ");
  EXPECT_EQ(panelContextTitle(workspace), "SELECTED WALL · Bath wall");
  for (int i = 0; i < 3; ++i) board.undo();
  EXPECT_EQ(names(), "W2-INT W2-EXT CMU-8 ");
  EXPECT_EQ(spec(0).thickness, 5) << "an edit of a field stays";
  EXPECT_NE(sketch.drawing->wallSystem(sketch.drawing->activeWallSystemSpecID), nullptr);
  EXPECT_EQ(selectedWallSystem(workspace), &spec(0));
  for (int i = 0; i < 3; ++i) board.redo();
  EXPECT_EQ(names(), "W2-EXT CMU-8 Bath wall ");
}

}  // namespace
}  // namespace ostrelon
