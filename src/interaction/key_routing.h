// The keys of the drawing board. A key-down event is shown to `handleKey` before the focused control
// sees it; the event is either consumed or passed on.
//
// The order of the tests:
//   0. Space, Delete and Forward Delete, while an item of the plan is selected or openings are being added.
//   1. Command alone with D.
//   2. With Control, Option or Command held, everything else passes on.
//   3. While a segment's length is being edited only Escape counts: it closes the editor.
//   4. Escape, Space, Delete, Forward Delete and Return, with no modifier.
//   5. The letters C, L, S and Z, through the shortcut gate.
//
// Text being typed wins: a key that a text control claims passes on, so that Backspace in a filled
// command line edits the text and Return runs the command. The console field claims nothing while it
// is empty, so that the keys work right after a command.
//
// The tables below are complete: `handleKey` walks them, and the page of keyboard help prints them.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "interaction/sketch_tool.h"

namespace ostrelon {

class Board;

enum class KeyName { escape, space, deleteBackward, forwardDelete, returnKey, character };

/// The keys held with another. Command is Ctrl and Control is Meta on desktops other than the Mac.
struct KeyModifiers {
  bool shift = false;
  bool control = false;
  bool option = false;
  bool command = false;
  friend bool operator==(const KeyModifiers&, const KeyModifiers&) = default;
};

struct KeyEvent {
  KeyName key = KeyName::character;
  /// The characters of a `character` key, ignoring the modifiers.
  std::string characters;
  KeyModifiers modifiers;
  bool textFocus = false;       ///< a text control has the focus
  bool consoleFocus = false;    ///< … and it is the console field
  bool consoleHasText = false;  ///< the console field is not empty
  bool documentWindow = true;   ///< the key belongs to the main document window
};

enum class KeyOutcome {
  consumed,
  passed,
  clearsConsole,  ///< consumed, and the text of the console field goes
};

/// The test at which a row of the table is looked at.
enum class KeyTest { commandLetter, lengthEditor, plainKey, gatedLetter };

struct KeyBinding {
  KeyTest test;
  KeyName key;
  char letter;             ///< of a `character` key, lower case; else 0
  KeyModifiers modifiers;  ///< exactly these, but for the length editor's row, which takes Shift too
  std::string_view keys;   ///< as the user reads them: "⇧Z"
  std::string_view title;  ///< what the key does: "Zoom out"
  std::string_view when;   ///< when it does it, empty for always: "while a polygon is drawn"
  KeyOutcome (*act)(const KeyEvent& event, Board& board);
  std::optional<SketchTool> tool = std::nullopt;  ///< the tool that it chooses
};

/// All keys, in the order of the tests.
std::span<const KeyBinding> keyBindings();

/// What an item of the plan, or the mode that adds openings, takes before all of these, for the page of
/// keyboard help.
struct PlanItemKey {
  KeyName key;
  std::string_view keys;
  std::string_view title;
};
std::span<const PlanItemKey> planItemKeys();

/// Routes one key-down event.
KeyOutcome handleKey(const KeyEvent& event, Board& board);

/// True while Escape has something to do on the board: to end what is under way, the tool or the selection.
bool isEscapeAwaited(const Board& board);

/// True when the focused control takes the key as text: a text control has the focus, and it is not
/// the console field while that is empty.
bool textControlClaimsKey(const KeyEvent& event);

/// True when a letter alone may work as a shortcut: in the document window, unclaimed.
bool shortcutGateIsOpen(const KeyEvent& event);

}  // namespace ostrelon
