#include "app/comparison.h"

#include <gtest/gtest.h>

#include "app/key_handling.h"
#include "core/adding.h"
#include "documents/document_store.h"
#include "geometry/edit_operations.h"
#include "support/test_application.h"

namespace ostrelon {
namespace {

/// A saved drawing of three lines, of which one has been moved and one deleted, and a circle is new.
class ComparisonTest : public ::testing::Test, protected testing::TestApplication {
 protected:
  ComparisonTest() {
    board.resizeCanvas({800, 600});
    addLine(sketch, {0, 0}, {10, 0});
    addLine(sketch, {200, 0}, {210, 0});
    addLine(sketch, {0, 300}, {10, 300});
    document.save(home / "Plan.ostrel");
    saved = sketch.drawing;
    sketch.edit([](Drawing& drawing) {
      const auto& line = std::get<LineEntity>(drawing.entities[0]);
      drawing.entities.replace(0, LineEntity{line.id, {0, 5}, {10, 5}});
      drawing.entities.remove(1);
    });
    addCircle(sketch, {400, 0}, 5);
    comparison.beginWithLastSave();
  }

  const ComparisonState& state() { return comparison.state->value(); }
  const std::vector<ComparisonRow>& rows() { return state().compared->rows; }
  void showRow(DifferenceKind kind) {
    for (std::size_t i = 0; i < rows().size(); ++i) {
      if (rows()[i].told.kind == kind) comparison.show(i);
    }
  }
  KeyOutcome press(std::string letter, bool shift = false) {
    KeyEvent event{KeyName::character, std::move(letter)};
    event.modifiers.shift = shift;
    return handleKey(event, application);
  }

  Drawing saved;
  Comparison& comparison = application.comparison();
};

TEST_F(ComparisonTest, GoesThroughWhatDiffersByTheLettersAndEndsByEscapeLastOfAll) {
  ASSERT_EQ(rows().size(), 3u);
  EXPECT_EQ(rows()[0].told.text, "Line 1: moved 5' up");
  const SketchViewport before = board.viewport();
  EXPECT_EQ(press("n"), KeyOutcome::consumed);
  EXPECT_EQ(state().current, 0u);
  press("N", true);
  EXPECT_EQ(state().current, 2u);
  EXPECT_NE(board.viewport(), before) << "it is shown";
  console.setInput("n");
  KeyEvent typed{KeyName::character, "n"};
  typed.consoleFocus = typed.textFocus = true;
  EXPECT_EQ(handleKey(typed, application), KeyOutcome::passed);
  console.setInput({});

  press("b");
  EXPECT_EQ(state().shownBlend(), 0);
  handleKeyReleased({KeyName::character, "b"}, application);
  EXPECT_EQ(state().shownBlend(), kBothSides);

  selectAll(sketch);
  board.activateTool(SketchTool::line);
  const auto escape = [&] { handleKey({KeyName::escape}, application); };
  for (int i = 0; i < 3 && (*board.tool != SketchTool::select || !sketch.selection->empty()); ++i) {
    escape();
    EXPECT_TRUE(comparison.isOn());
  }
  escape();
  EXPECT_FALSE(comparison.isOn());
  EXPECT_EQ(press("n"), KeyOutcome::passed);
}

TEST_F(ComparisonTest, TakesSingleDifferencesEachAsOneUndoStep) {
  const auto steps = [&] { return sketch.undoStack->undoSnapshots().size(); };
  const std::size_t before = steps();
  const EntityList drawn = sketch.entities();
  for (const DifferenceKind kind :
       {DifferenceKind::added, DifferenceKind::removed, DifferenceKind::changed}) {
    showRow(kind);
    EXPECT_EQ(kind == DifferenceKind::removed ? comparison.takeBack() : false, false);
    EXPECT_EQ(kind == DifferenceKind::added ? comparison.takeThis() : false, false);
    ASSERT_TRUE(kind == DifferenceKind::removed ? comparison.takeThis() : comparison.takeBack());
    settle();
  }
  EXPECT_TRUE(rows().empty());
  EXPECT_EQ(steps(), before + 3);
  EXPECT_TRUE(compareDrawings(saved, sketch.drawing).empty());
  for (int i = 0; i < 3; ++i) board.undo();
  EXPECT_EQ(sketch.entities(), drawn);
  settle();
  EXPECT_EQ(rows().size(), 3u) << "the comparison follows undo";
}

TEST_F(ComparisonTest, TakesAWallWithItsSystem) {
  const WallSystemSpec own{UUID::random(), "OWN", 3, 90, ""};
  Drawing other = sketch.drawing;
  other.wallSystemSpecs.push_back(own);
  other.entities.append(WallEntity{UUID::random(), {0, 0}, {0, 20}, own.id});
  comparison.begin({"other", std::nullopt, false, [other] { return other; }});
  showRow(DifferenceKind::removed);
  ASSERT_TRUE(comparison.takeThis());
  EXPECT_EQ(sketch.drawing->wallSystemName(sketch.entities().back()), "OWN");
}

TEST_F(ComparisonTest, FollowsTheDrawingAndTheFilterAndTheLastSave) {
  addLine(sketch, {0, 600}, {10, 600});
  settle();
  EXPECT_EQ(rows().size(), 4u);
  ComparisonFilter filter;
  filter.changed = filter.removed = false;
  filter.entityKind = SketchEntity(CircleEntity()).index();
  comparison.setFilter(filter);
  ASSERT_EQ(rows().size(), 1u);
  EXPECT_EQ(state().compared->layers->items.size(), 1u) << "the canvas shows the same";
  comparison.setFilter({});
  document.save(home / "Plan.ostrel");
  settle();
  EXPECT_TRUE(rows().empty()) << "what was saved is the last save now";

  comparison.beginWithFile(home / "Missing.ostrel");
  EXPECT_TRUE(lastLine().isError);
  EXPECT_TRUE(comparison.isOn()) << "what was compared goes on";
  document.begin();
  settle();
  EXPECT_FALSE(comparison.isOn());
}

}  // namespace
}  // namespace ostrelon
