#include "app/swallowed_letters.h"

#include <gtest/gtest.h>

#include "interaction/key_routing.h"
#include "support/test_workspace.h"

namespace ostrelon {
namespace {

struct SwallowedLettersTest : ::testing::Test, testing::TestWorkspace {
  SwallowedLetters letters;
  double now = 100;

  void press(const char* letter) {
    const auto before = SwallowedLetters::stateOf(workspace);
    KeyEvent event{.key = std::string_view(letter) == " " ? KeyName::space : KeyName::character,
                   .characters = letter};
    event.textFocus = event.consoleFocus = true;
    ASSERT_EQ(handleKey(event, board), KeyOutcome::consumed) << letter;
    letters.swallowed(letter, dateFromSeconds(now), before);
  }
  std::string type(const char* letter) {
    return letters.takeBeginning(letter, dateFromSeconds(now), workspace);
  }
};

TEST_F(SwallowedLettersTest, comeBackInFrontOfACommandAndLeaveNoTrace) {
  board.activateTool(SketchTool::wall);
  board.beginDraft({0, 0});
  const SketchViewport view = board.viewport();
  press("l");
  EXPECT_EQ(type("i"), "l") << "line";
  EXPECT_EQ(board.tool.get(), SketchTool::wall);
  EXPECT_TRUE(board.draft() != nullptr);
  EXPECT_EQ(type("n"), "") << "once";
  press("s");
  press(" ");
  EXPECT_EQ(type("1"), "s ") << "s 1";
  EXPECT_EQ(board.tool.get(), SketchTool::wall);
  press("z");
  EXPECT_EQ(type("O"), "z");
  EXPECT_EQ(board.viewport(), view);

  board.activateTool(SketchTool::polygon);
  for (const SketchPoint corner : {SketchPoint{0, 0}, {9, 0}, {9, 9}}) board.addPolygonVertex(corner);
  press("c");
  ASSERT_EQ(sketch.entities().size(), 1U);
  EXPECT_EQ(type("i"), "c") << "circle";
  EXPECT_TRUE(sketch.entities().empty());
  EXPECT_TRUE(board.polygonDraft() != nullptr);
  EXPECT_TRUE(sketch.undoStack->undoSnapshots().empty());
}

TEST_F(SwallowedLettersTest, stayShortcutsWhenNoCommandFollows) {
  press("l");
  EXPECT_EQ(type("w"), "") << "wall";
  EXPECT_EQ(board.tool.get(), SketchTool::line);
  press("l");
  now += 5;
  EXPECT_EQ(type("i"), "") << "after a pause";
  letters.swallowed(" ", dateFromSeconds(now), {});
  EXPECT_EQ(type("1"), "");
  press("z");
  const SketchViewport once = board.viewport();
  press("z");
  EXPECT_EQ(type("o"), "z") << "the first one zoomed";
  EXPECT_EQ(board.viewport(), once);
  press("l");
  letters.forget();
  EXPECT_EQ(type("i"), "");
}

}  // namespace
}  // namespace ostrelon
