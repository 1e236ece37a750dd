#include "interaction/key_routing.h"

#include <array>

#include "core/sketch_view_model.h"
#include "interaction/canvas_transform.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr KeyModifiers kNoModifiers{};
constexpr KeyModifiers kShift{.shift = true, .control = false, .option = false, .command = false};
constexpr KeyModifiers kCommand{.shift = false, .control = false, .option = false, .command = true};

SketchPoint canvasMiddle(const SketchViewModel& sketch) {
  return {sketch.canvasSize->width * 0.5, sketch.canvasSize->height * 0.5};
}

bool isPolygonGrowing(const SketchViewModel& sketch) {
  return sketch.selectedTool == SketchTool::polygon && *sketch.polygonDraft;
}

bool isAnythingInProgress(const SketchViewModel& sketch) {
  return sketch.isSegmentLengthEditing || *sketch.draft || *sketch.polygonDraft || *sketch.selectDrag ||
         *sketch.trimCuttingEdgeEntityID || *sketch.selectedTool != SketchTool::select;
}

bool hasTextFocus(const KeyEvent& event) { return event.textFocus || event.consoleFocus; }

// --- One function a row

KeyOutcome duplicate(const KeyEvent& event, SketchViewModel& sketch) {
  if (textControlClaimsKey(event, sketch)) return KeyOutcome::passed;
  sketch.duplicateSelection(kDuplicateOffset.x, kDuplicateOffset.y);
  return KeyOutcome::consumed;
}

KeyOutcome closeLengthEditor(const KeyEvent& /*event*/, SketchViewModel& sketch) {
  sketch.closeSegmentLengthEdit();
  return KeyOutcome::consumed;
}

KeyOutcome escape(const KeyEvent& event, SketchViewModel& sketch) {
  if (!event.documentWindow) return KeyOutcome::passed;
  if (!isAnythingInProgress(sketch) && hasTextFocus(event) && !sketch.commandInput->empty()) {
    sketch.setCommandInput({});
  } else {
    sketch.handleEscape();
  }
  return KeyOutcome::consumed;
}

KeyOutcome selectToolBySpace(const KeyEvent& event, SketchViewModel& sketch) {
  if (textControlClaimsKey(event, sketch)) return KeyOutcome::passed;
  sketch.activateSelectTool();
  return KeyOutcome::consumed;
}

KeyOutcome deleteSelection(const KeyEvent& event, SketchViewModel& sketch) {
  if (!event.documentWindow || textControlClaimsKey(event, sketch)) return KeyOutcome::passed;
  sketch.deleteSelection();
  return KeyOutcome::consumed;
}

KeyOutcome closePolygonByReturn(const KeyEvent& event, SketchViewModel& sketch) {
  if (!isPolygonGrowing(sketch) || textControlClaimsKey(event, sketch)) return KeyOutcome::passed;
  sketch.closePolygon();
  return KeyOutcome::consumed;
}

KeyOutcome closePolygonByLetter(const KeyEvent& /*event*/, SketchViewModel& sketch) {
  if (!isPolygonGrowing(sketch)) return KeyOutcome::passed;
  sketch.closePolygon();
  return KeyOutcome::consumed;
}

KeyOutcome lineTool(const KeyEvent& /*event*/, SketchViewModel& sketch) {
  sketch.activateTool(SketchTool::line);
  return KeyOutcome::consumed;
}

KeyOutcome selectTool(const KeyEvent& /*event*/, SketchViewModel& sketch) {
  sketch.activateSelectTool();
  return KeyOutcome::consumed;
}

KeyOutcome zoomIn(const KeyEvent& /*event*/, SketchViewModel& sketch) {
  sketch.zoomViewport(kZoomInFactor, canvasMiddle(sketch));
  return KeyOutcome::consumed;
}

KeyOutcome zoomOut(const KeyEvent& /*event*/, SketchViewModel& sketch) {
  sketch.zoomViewport(kZoomOutFactor, canvasMiddle(sketch));
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
               selectToolBySpace},
    KeyBinding{KeyTest::plainKey, KeyName::deleteBackward, 0, kNoModifiers, "Backspace",
               "Delete the selection", "", deleteSelection},
    KeyBinding{KeyTest::plainKey, KeyName::forwardDelete, 0, kNoModifiers, "Delete", "Delete the selection",
               "", deleteSelection},
    KeyBinding{KeyTest::plainKey, KeyName::returnKey, 0, kNoModifiers, "Return", "Close the polygon",
               "while a polygon is drawn", closePolygonByReturn},
    KeyBinding{KeyTest::gatedLetter, KeyName::character, 'c', kNoModifiers, "C", "Close the polygon",
               "while a polygon is drawn", closePolygonByLetter},
    KeyBinding{KeyTest::gatedLetter, KeyName::character, 'l', kNoModifiers, "L", "Line tool", "", lineTool},
    KeyBinding{KeyTest::gatedLetter, KeyName::character, 's', kNoModifiers, "S", "Select tool", "",
               selectTool},
    KeyBinding{KeyTest::gatedLetter, KeyName::character, 'z', kNoModifiers, "Z", "Zoom in", "", zoomIn},
    KeyBinding{KeyTest::gatedLetter, KeyName::character, 'z', kShift, "⇧Z", "Zoom out", "", zoomOut},
};

bool isKeyOf(const KeyBinding& binding, const KeyEvent& event) {
  if (binding.key != event.key) return false;
  if (binding.key != KeyName::character) return true;
  return lowerCased(event.characters) == std::string_view(&binding.letter, 1);
}

// The first row of this test that has the event's key and modifiers decides.
KeyOutcome actOnRows(KeyTest test, const KeyModifiers& modifiers, const KeyEvent& event,
                     SketchViewModel& sketch) {
  for (const KeyBinding& binding : kKeyBindings) {
    if (binding.test == test && binding.modifiers == modifiers && isKeyOf(binding, event)) {
      return binding.act(event, sketch);
    }
  }
  return KeyOutcome::passed;
}

}  // namespace

std::span<const KeyBinding> keyBindings() { return kKeyBindings; }

KeyOutcome handleKey(const KeyEvent& event, SketchViewModel& sketch) {
  const KeyModifiers& held = event.modifiers;
  if (held.control || held.option || held.command) {
    return actOnRows(KeyTest::commandLetter, held, event, sketch);
  }
  if (sketch.isSegmentLengthEditing) {
    return actOnRows(KeyTest::lengthEditor, kNoModifiers, event, sketch);
  }
  if (event.key != KeyName::character) return actOnRows(KeyTest::plainKey, held, event, sketch);
  if (!shortcutGateIsOpen(event, sketch)) return KeyOutcome::passed;
  return actOnRows(KeyTest::gatedLetter, held, event, sketch);
}

bool textControlClaimsKey(const KeyEvent& event, const SketchViewModel& sketch) {
  return hasTextFocus(event) && !(event.consoleFocus && sketch.commandInput->empty());
}

bool shortcutGateIsOpen(const KeyEvent& event, const SketchViewModel& sketch) {
  return event.documentWindow && !textControlClaimsKey(event, sketch);
}

}  // namespace ostrelon
