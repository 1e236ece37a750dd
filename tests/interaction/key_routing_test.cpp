// The keys of the drawing board: which are consumed, and what they do.
#include "interaction/key_routing.h"

#include <gmock/gmock.h>

#include <algorithm>

#include "interaction/board.h"

namespace ostrelon {
namespace {

using testing::Board;

constexpr auto kConsumed = KeyOutcome::consumed;
constexpr auto kPassed = KeyOutcome::passed;

struct KeyBoard : Board {
  KeyEvent event(KeyName key, std::string characters = {}) const {
    KeyEvent made;
    made.key = key;
    made.characters = std::move(characters);
    made.documentWindow = documentWindow;
    made.textFocus = focus != Focus::canvas;
    made.consoleFocus = focus == Focus::console;
    return made;
  }
  KeyOutcome key(KeyName name, KeyModifiers modifiers = {}) {
    KeyEvent made = event(name);
    made.modifiers = modifiers;
    return handleKey(made, sketch);
  }
  KeyOutcome letter(std::string characters, KeyModifiers modifiers = {}) {
    KeyEvent made = event(KeyName::character, std::move(characters));
    made.modifiers = modifiers;
    return handleKey(made, sketch);
  }

  enum class Focus { canvas, console, otherField };
  Focus focus = Focus::canvas;
  bool documentWindow = true;
};

KeyModifiers with(bool shift, bool control, bool option, bool command) {
  return {shift, control, option, command};
}
const KeyModifiers kShift = with(true, false, false, false);
const KeyModifiers kCommand = with(false, false, false, true);

TEST(Keys, LettersChooseToolsAndZoom) {
  KeyBoard board;
  EXPECT_EQ(board.letter("l"), kConsumed);
  EXPECT_EQ(board.sketch.selectedTool, SketchTool::line);
  EXPECT_EQ(board.letter("S"), kConsumed) << "with caps lock";
  EXPECT_EQ(board.sketch.selectedTool, SketchTool::select);
  EXPECT_EQ(board.letter("z"), kConsumed);
  EXPECT_EQ(board.sketch.viewport->scale, 5);
  EXPECT_EQ(board.letter("Z", kShift), kConsumed);
  EXPECT_EQ(*board.sketch.viewport, (SketchViewport{{400, 300}, 4})) << "about the middle of the canvas";

  EXPECT_EQ(board.letter("L", kShift), kPassed);
  EXPECT_EQ(board.letter("l", kCommand), kPassed);
  EXPECT_EQ(board.letter("x"), kPassed);
  EXPECT_EQ(board.letter("c"), kPassed) << "no polygon is drawn";
  board.documentWindow = false;
  EXPECT_EQ(board.letter("l"), kPassed);
  EXPECT_EQ(board.sketch.selectedTool, SketchTool::select);
}

TEST(Keys, TheGateIsClosedWhileTextIsTyped) {
  KeyBoard board;
  board.focus = KeyBoard::Focus::console;
  EXPECT_EQ(board.letter("z"), kConsumed) << "the empty console field lets the key through";
  board.sketch.setCommandInput("circle 0 0 ");
  EXPECT_EQ(board.letter("z"), kPassed);
  EXPECT_EQ(board.sketch.viewport->scale, 5);
  board.focus = KeyBoard::Focus::otherField;
  board.sketch.setCommandInput("");
  EXPECT_EQ(board.letter("l"), kPassed) << "another field claims its letters always";
}

TEST(Keys, SpaceDeleteReturnAndDuplicatePassOnWhenTextClaimsThem) {
  KeyBoard board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.click({20, 0});
  const testing::DocumentState before(board.sketch);
  const auto expectAllPass = [&] {
    EXPECT_EQ(board.key(KeyName::space), kPassed);
    EXPECT_EQ(board.key(KeyName::deleteBackward), kPassed);
    EXPECT_EQ(board.key(KeyName::forwardDelete), kPassed);
    EXPECT_EQ(board.key(KeyName::returnKey), kPassed);
    EXPECT_EQ(board.letter("d", kCommand), kPassed);
    EXPECT_EQ(testing::DocumentState(board.sketch), before);
  };
  board.focus = KeyBoard::Focus::otherField;
  expectAllPass();
  board.focus = KeyBoard::Focus::console;
  board.sketch.setCommandInput("12 9");
  expectAllPass();

  board.sketch.setCommandInput("");
  EXPECT_EQ(board.letter("d", kCommand), kConsumed);
  EXPECT_EQ(board.entities().size(), 2U);
  EXPECT_EQ(board.line(1).from, (SketchPoint{24, 24}));
  EXPECT_EQ(board.key(KeyName::deleteBackward), kConsumed);
  EXPECT_EQ(board.entities().size(), 1U);
}

TEST(Keys, DeleteIsConsumedWithNothingSelectedButOnlyInTheDocumentWindow) {
  KeyBoard board;
  board.sketch.addLine({0, 0}, {40, 0});
  EXPECT_EQ(board.key(KeyName::forwardDelete), kConsumed);
  board.click({20, 0});
  board.documentWindow = false;
  EXPECT_EQ(board.key(KeyName::deleteBackward), kPassed);
  EXPECT_EQ(board.entities().size(), 1U);
  EXPECT_EQ(board.key(KeyName::space), kConsumed) << "Space does not ask for the window";
  EXPECT_EQ(board.key(KeyName::escape), kPassed);
}

TEST(Keys, ModifiersPassOn) {
  KeyBoard board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.click({20, 0});
  for (const KeyModifiers held : {kShift, with(false, true, false, false), with(false, false, true, false)}) {
    for (const KeyName name : {KeyName::escape, KeyName::space, KeyName::deleteBackward}) {
      EXPECT_EQ(board.key(name, held), kPassed);
    }
  }
  EXPECT_EQ(board.letter("d", with(true, false, false, true)), kPassed);
  EXPECT_EQ(board.entities().size(), 1U);
  EXPECT_EQ(board.sketch.selectedEntityIDs->size(), 1U);
}

TEST(Keys, WhileALengthIsEditedOnlyEscapeCounts) {
  KeyBoard board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.click({20, 0});
  board.sketch.beginSegmentLengthEdit();
  board.focus = KeyBoard::Focus::otherField;
  EXPECT_EQ(board.letter("l"), kPassed);
  EXPECT_EQ(board.key(KeyName::deleteBackward), kPassed);
  EXPECT_EQ(board.key(KeyName::returnKey), kPassed);
  EXPECT_EQ(board.key(KeyName::escape), kConsumed);
  EXPECT_FALSE(*board.sketch.isSegmentLengthEditing);
  EXPECT_TRUE(board.sketch.segmentLengthEditText->empty());
  EXPECT_EQ(board.sketch.selectedEntityIDs->size(), 1U);
}

TEST(Keys, EscapeEmptiesTheCommandLineWhenNothingIsUnderWay) {
  KeyBoard board;
  board.sketch.addLine({0, 0}, {40, 0});
  board.click({20, 0});
  board.focus = KeyBoard::Focus::console;
  board.sketch.setCommandInput("line 0 0");
  EXPECT_EQ(board.key(KeyName::escape), kConsumed);
  EXPECT_TRUE(board.sketch.commandInput->empty());
  EXPECT_EQ(board.sketch.selectedEntityIDs->size(), 1U) << "the text first";
  EXPECT_EQ(board.key(KeyName::escape), kConsumed);
  EXPECT_TRUE(board.sketch.selectedEntityIDs->empty());

  board.sketch.activateTool(SketchTool::wall);
  board.sketch.setCommandInput("12");
  EXPECT_EQ(board.key(KeyName::escape), kConsumed);
  EXPECT_EQ(*board.sketch.commandInput, "12") << "a tool is under way";
  EXPECT_EQ(board.sketch.selectedTool, SketchTool::select);
}

TEST(Keys, ReturnAndCCloseThePolygon) {
  KeyBoard board;
  board.sketch.activateTool(SketchTool::polygon);
  EXPECT_EQ(board.key(KeyName::returnKey), kPassed);
  board.click({0, 0});
  board.click({40, 0});
  EXPECT_EQ(board.key(KeyName::returnKey), kConsumed) << "two vertices: consumed, and nothing happens";
  EXPECT_TRUE(*board.sketch.polygonDraft);
  board.click({40, 40});
  EXPECT_EQ(board.letter("c"), kConsumed);
  EXPECT_EQ(board.entities().size(), 1U);
}

}  // namespace
}  // namespace ostrelon
