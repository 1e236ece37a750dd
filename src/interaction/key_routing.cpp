#include "interaction/key_routing.h"

#include <array>

#include "geometry/edit_operations.h"
#include "geometry/plan_item_operations.h"
#include "interaction/board.h"
#include "interaction/canvas_transform.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr KeyModifiers kNoModifiers{};
constexpr KeyModifiers kShift{.shift = true, .control = false, .option = false, .command = false};
constexpr KeyModifiers kCommand{.shift = false, .control = false, .option = false, .command = true};

SketchPoint canvasMiddle(const Board& board) {
  return {board.view->canvasSize.width * 0.5, board.view->canvasSize.height * 0.5};
}

bool isPolygonGrowing(const Board& board) {
  return board.tool == SketchTool::polygon && board.polygonDraft() != nullptr;
}

bool isAnythingInProgress(const Board& board) {
  return board.lengthEditor->isOpen || board.draft() != nullptr || board.polygonDraft() != nullptr ||
         board.selectDrag() != nullptr || board.isPlacing() || *board.trimCuttingEdge ||
         board.tool != SketchTool::select;
}

bool hasTextFocus(const KeyEvent& event) { return event.textFocus || event.consoleFocus; }

// --- One function a row

KeyOutcome duplicate(const KeyEvent& event, Board& board) {
  if (textControlClaimsKey(event)) return KeyOutcome::passed;
  duplicateSelection(board.sketch(), board.messages(), kDuplicateOffset.x, kDuplicateOffset.y);
  duplicateSelectedPlanItem(board.sketch(), board.messages());
  return KeyOutcome::consumed;
}

KeyOutcome closeLengthEditor(const KeyEvent& /*event*/, Board& board) {
  board.closeLengthEditor();
  return KeyOutcome::consumed;
}

KeyOutcome escape(const KeyEvent& event, Board& board) {
  if (!event.documentWindow) return KeyOutcome::passed;
  if (!isAnythingInProgress(board) && hasTextFocus(event) && event.consoleHasText) {
    return KeyOutcome::clearsConsole;
  }
  board.handleEscape();
  return KeyOutcome::consumed;
}

KeyOutcome selectToolBySpace(const KeyEvent& event, Board& board) {
  if (textControlClaimsKey(event)) return KeyOutcome::passed;
  board.activateSelectTool();
  return KeyOutcome::consumed;
}

KeyOutcome deleteSelected(const KeyEvent& event, Board& board) {
  if (!event.documentWindow || textControlClaimsKey(event)) return KeyOutcome::passed;
  deleteSelection(board.sketch(), board.messages());
  return KeyOutcome::consumed;
}

KeyOutcome closePolygonByReturn(const KeyEvent& event, Board& board) {
  if (!isPolygonGrowing(board) || textControlClaimsKey(event)) return KeyOutcome::passed;
  board.closePolygon();
  return KeyOutcome::consumed;
}

KeyOutcome closePolygonByLetter(const KeyEvent& /*event*/, Board& board) {
  if (!isPolygonGrowing(board)) return KeyOutcome::passed;
  board.closePolygon();
  return KeyOutcome::consumed;
}

KeyOutcome lineTool(const KeyEvent& /*event*/, Board& board) {
  board.activateTool(SketchTool::line);
  return KeyOutcome::consumed;
}

KeyOutcome selectTool(const KeyEvent& /*event*/, Board& board) {
  board.activateSelectTool();
  return KeyOutcome::consumed;
}

KeyOutcome zoomIn(const KeyEvent& /*event*/, Board& board) {
  board.zoom(kZoomInFactor, canvasMiddle(board));
  return KeyOutcome::consumed;
}

KeyOutcome zoomOut(const KeyEvent& /*event*/, Board& board) {
  board.zoom(kZoomOutFactor, canvasMiddle(board));
  return KeyOutcome::consumed;
}

constexpr std::array kKeyBindings{
    KeyBinding{KeyTest::commandLetter, KeyName::character, 'd', kCommand, "⌘D", "Duplicate the selection", "",
               duplicate},
    KeyBinding{KeyTest::lengthEditor, KeyName::escape, 0, kNoModifiers, "Escape", "Close the length editor",
               "while a length is edited", closeLengthEditor},
    KeyBinding{KeyTest::plainKey, KeyName::escape, 0, kNoModifiers, "Escape",
               "Step back: end what is under way, then the tool, then the selection", "", escape},
    KeyBinding{KeyTest::plainKey, KeyName::space, 0, kNoModifiers, "Space", "Select tool", "",
               selectToolBySpace, SketchTool::select},
    KeyBinding{KeyTest::plainKey, KeyName::deleteBackward, 0, kNoModifiers, "Backspace",
               "Delete the selection", "", deleteSelected},
    KeyBinding{KeyTest::plainKey, KeyName::forwardDelete, 0, kNoModifiers, "Delete", "Delete the selection",
               "", deleteSelected},
    KeyBinding{KeyTest::plainKey, KeyName::returnKey, 0, kNoModifiers, "Return", "Close the polygon",
               "while a polygon is drawn", closePolygonByReturn},
    KeyBinding{KeyTest::gatedLetter, KeyName::character, 'c', kNoModifiers, "C", "Close the polygon",
               "while a polygon is drawn", closePolygonByLetter},
    KeyBinding{KeyTest::gatedLetter, KeyName::character, 'l', kNoModifiers, "L", "Line tool", "", lineTool,
               SketchTool::line},
    KeyBinding{KeyTest::gatedLetter, KeyName::character, 's', kNoModifiers, "S", "Select tool", "",
               selectTool, SketchTool::select},
    KeyBinding{KeyTest::gatedLetter, KeyName::character, 'z', kNoModifiers, "Z", "Zoom in", "", zoomIn},
    KeyBinding{KeyTest::gatedLetter, KeyName::character, 'z', kShift, "⇧Z", "Zoom out", "", zoomOut},
};

bool isKeyOf(const KeyBinding& binding, const KeyEvent& event) {
  if (binding.key != event.key) return false;
  if (binding.key != KeyName::character) return true;
  return lowerCased(event.characters) == std::string_view(&binding.letter, 1);
}

// The first row of this test that has the event's key and modifiers decides.
KeyOutcome actOnRows(KeyTest test, const KeyModifiers& modifiers, const KeyEvent& event, Board& board) {
  for (const KeyBinding& binding : kKeyBindings) {
    if (binding.test == test && binding.modifiers == modifiers && isKeyOf(binding, event)) {
      return binding.act(event, board);
    }
  }
  return KeyOutcome::passed;
}

constexpr std::array kPlanItemKeys{
    PlanItemKey{KeyName::space, "Space", "Flip the door: the next of four ways to hang and swing"},
    PlanItemKey{KeyName::deleteBackward, "Backspace", "Delete the selected item"},
    PlanItemKey{KeyName::forwardDelete, "Delete", "Delete the selected item"},
    PlanItemKey{KeyName::escape, "Escape", "Stop adding, or select nothing"},
};

// Of a key that belongs to the selected item, or to the mode that adds openings. Escape needs no more than
// its row of the table, which steps back from both.
bool handlePlanItemKey(const KeyEvent& event, Board& board) {
  const bool isSelected = board.sketch().selection->planItem && board.tool == SketchTool::select;
  if (!isSelected && board.openingPlacing() == nullptr) return false;
  if (event.modifiers != kNoModifiers || board.lengthEditor->isOpen || !event.documentWindow ||
      textControlClaimsKey(event)) {
    return false;
  }
  if (event.key == KeyName::space) {
    board.flipOpeningPlacing();
    board.flipSelectedItem();
    return true;
  }
  if (event.key == KeyName::deleteBackward || event.key == KeyName::forwardDelete) {
    board.cancelSelectDrag();
    deleteSelectedPlanItem(board.sketch(), board.messages());
    return true;
  }
  return false;
}

}  // namespace

std::span<const PlanItemKey> planItemKeys() { return kPlanItemKeys; }

std::span<const KeyBinding> keyBindings() { return kKeyBindings; }

KeyOutcome handleKey(const KeyEvent& event, Board& board) {
  if (handlePlanItemKey(event, board)) return KeyOutcome::consumed;
  const KeyModifiers& held = event.modifiers;
  if (held.control || held.option || held.command) {
    return actOnRows(KeyTest::commandLetter, held, event, board);
  }
  if (board.lengthEditor->isOpen) {
    return actOnRows(KeyTest::lengthEditor, kNoModifiers, event, board);
  }
  if (event.key != KeyName::character) return actOnRows(KeyTest::plainKey, held, event, board);
  if (!shortcutGateIsOpen(event)) return KeyOutcome::passed;
  return actOnRows(KeyTest::gatedLetter, held, event, board);
}

bool isEscapeAwaited(const Board& board) {
  return isAnythingInProgress(board) || board.tracking->pending || board.tracking->locked ||
         board.marquee() != nullptr || !board.sketch().selection->isNothing();
}

bool textControlClaimsKey(const KeyEvent& event) {
  return hasTextFocus(event) && !(event.consoleFocus && !event.consoleHasText);
}

bool shortcutGateIsOpen(const KeyEvent& event) {
  return event.documentWindow && !textControlClaimsKey(event);
}

}  // namespace ostrelon
