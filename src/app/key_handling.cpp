#include "app/key_handling.h"

#include <array>

#include "app/application.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr std::array<ComparisonKey, 4> kComparisonKeys{{{"N", "The next difference"},
                                                        {"⇧N", "The previous difference"},
                                                        {"B", "Show the other drawing alone, while held"},
                                                        {"Escape", "End the comparison, last of all"}}};
constexpr std::string_view kNextKey = "n";
constexpr std::string_view kBeforeKey = "b";

// Of a key that is the comparison's own.
bool handleComparisonKey(const KeyEvent& event, Application& application) {
  Comparison& comparison = application.comparison();
  const Workspace& workspace = application.workspace();
  const KeyModifiers& held = event.modifiers;
  if (!comparison.isOn() || held.control || held.option || held.command || !event.documentWindow)
    return false;
  if (event.key == KeyName::escape) {
    const bool clearsLine = (event.textFocus || event.consoleFocus) && event.consoleHasText;
    if (held.shift || clearsLine || isEscapeAwaited(workspace.board)) return false;
    comparison.end();
    return true;
  }
  if (event.key != KeyName::character || workspace.board.lengthEditor->isOpen || !shortcutGateIsOpen(event)) {
    return false;
  }
  const std::string letter = lowerCased(event.characters);
  if (letter == kBeforeKey && !held.shift) {
    comparison.setBeforeHeld(true);
  } else if (letter == kNextKey) {
    held.shift ? comparison.previous() : comparison.next();
  } else {
    return false;
  }
  return true;
}

}  // namespace

std::span<const ComparisonKey> comparisonKeys() { return kComparisonKeys; }

KeyOutcome handleKey(KeyEvent event, Workspace& workspace) {
  event.consoleHasText = !workspace.console.input->empty();
  const KeyOutcome outcome = handleKey(event, workspace.board);
  if (outcome != KeyOutcome::clearsConsole) return outcome;
  workspace.console.setInput({});
  return KeyOutcome::consumed;
}

KeyOutcome handleKey(KeyEvent event, Application& application) {
  event.consoleHasText = !application.workspace().console.input->empty();
  if (handleComparisonKey(event, application)) return KeyOutcome::consumed;
  return handleKey(std::move(event), application.workspace());
}

void handleKeyReleased(const KeyEvent& event, Application& application) {
  if (lowerCased(event.characters) == kBeforeKey) application.comparison().setBeforeHeld(false);
}

}  // namespace ostrelon
