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

TEST_F(WallPanelTest, aRowChangesTheSelectedWallAndElseTheActiveSystem) {
  addWall(0);
  const UUID active = sketch.activeWallSystemSpecID;
  const std::size_t lines = sketch.consoleLines->size();
  selectWallSystemRow(sketch, spec(2).id);
  EXPECT_EQ(std::get<WallEntity>(sketch.entities->back()).systemSpecID, spec(2).id);
  EXPECT_EQ(sketch.activeWallSystemSpecID.get(), active);
  EXPECT_EQ(sketch.consoleLines->size(), lines) << "a row assigns without a word";

  sketch.clearSelection();
  selectWallSystemRow(sketch, spec(1).id);
  EXPECT_EQ(sketch.activeWallSystemSpecID.get(), spec(1).id);
  EXPECT_EQ(std::get<WallEntity>(sketch.entities->back()).systemSpecID, spec(2).id);
  EXPECT_EQ(sketch.consoleLines->back().text, "Active wall system: W2-EXT");
}

TEST_F(WallPanelTest, onlyTheOneSelectedWallIsChanged) {
  addWall(0);
  addWall(0);
  const EntityList before = sketch.entities;
  const auto expectNoWall = [&] {
    EXPECT_EQ(selectedWallEntity(sketch), nullptr);
    EXPECT_EQ(panelContextTitle(sketch).substr(0, 6), "ACTIVE");
    selectWallSystemRow(sketch, spec(1).id);
    assignPanelSystemToSelection(sketch);
    EXPECT_EQ(*sketch.entities, before);
  };
  sketch.selectAll();
  expectNoWall();
  sketch.updateCanvasSize({800, 600});
  sketch.beginMarquee({0, 0}, {5, 5});
  sketch.finishMarquee(false);
  ASSERT_TRUE(*sketch.primarySelectedEntityID) << "a marquee without hits leaves it";
  expectNoWall();
}

TEST_F(WallPanelTest, aValueThatCameThroughThirtyTwoBitsShowsAsShortAsItWasTyped) {
  WallSystemSpec narrow = spec(0);
  narrow.thickness = static_cast<double>(4.1F);
  sketch.updateWallSystemSpec(narrow);
  EXPECT_EQ(wallSystemFieldText(spec(0), WallSystemField::thickness), "4.1");
  EXPECT_EQ(wallSystemMeasures(spec(0)), "4.1 thick · 96 high");
  test.reply("spec list");
  EXPECT_TRUE(sketch.consoleLines->back().text.starts_with("  W2-INT *  t=4.1  h=96.0\n"));
  EXPECT_EQ(test.reply("spec show").substr(0, 24), "W2-INT\n  thickness: 4.1\n");
  EXPECT_TRUE(commitWallSystemField(sketch, narrow.id, WallSystemField::thickness, "4.1"));
  EXPECT_EQ(spec(0).thickness, narrow.thickness) << "the text as it was shown changes nothing";
}

TEST_F(WallPanelTest, theTitleTellsWhoseSystemIsShown) {
  EXPECT_EQ(panelContextTitle(sketch), "ACTIVE SYSTEM · W2-INT");
  addWall(1);
  EXPECT_EQ(panelContextTitle(sketch), "SELECTED WALL · W2-EXT");
  EXPECT_EQ(panelSystem(sketch)->id, spec(1).id);
  sketch.addWall(UUID::random(), {0, 0}, {5, 0});
  EXPECT_EQ(panelContextTitle(sketch), "ACTIVE SYSTEM · W2-INT") << "the wall's system is gone";
  const auto rows = wallSystemRows(sketch);
  EXPECT_TRUE(rows[0].isActive && rows[0].isShown);
  EXPECT_FALSE(rows[1].isAssignedToSelection);
}

TEST_F(WallPanelTest, theAssignButtonSaysWhatItDid) {
  assignPanelSystemToSelection(sketch);
  EXPECT_FALSE(sketch.isDocumentDirty) << "without a selected wall it does nothing";
  addWall(1);
  assignPanelSystemToSelection(sketch);
  EXPECT_EQ(sketch.consoleLines->back().text, "Wall assigned to W2-EXT.");
  EXPECT_TRUE(sketch.consoleLines->back().isSystem);
}

TEST_F(WallPanelTest, aNumberThatIsNoneOrNotPositiveIsDroppedInSilence) {
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

TEST_F(WallPanelTest, anEditMarksTheDocumentAndTakesNoUndoStep) {
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

TEST_F(WallPanelTest, theSameValueChangesNothing) {
  EXPECT_TRUE(commitWallSystemField(sketch, spec(0).id, WallSystemField::thickness, "4.50"));
  EXPECT_FALSE(sketch.isDocumentDirty);
  EXPECT_FALSE(commitWallSystemField(sketch, UUID::random(), WallSystemField::thickness, "3"));
}

}  // namespace
}  // namespace ostrelon
