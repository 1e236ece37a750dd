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

// An Escape of the main window that neither the board nor the console's line has a use for.
bool isFreeEscape(const KeyEvent& event, const Application& application) {
  const KeyModifiers& held = event.modifiers;
  if (event.key != KeyName::escape || !event.documentWindow) return false;
  if (held.shift || held.control || held.option || held.command) return false;
  const bool clearsLine = (event.textFocus || event.consoleFocus) && event.consoleHasText;
  return !clearsLine && !isEscapeAwaited(application.workspace().board);
}

// Of a key that is the comparison's own.
bool handleComparisonKey(const KeyEvent& event, Application& application) {
  Comparison& comparison = application.comparison();
  if (!comparison.isOn()) return false;
  if (isFreeEscape(event, application)) {
    comparison.end();
    return true;
  }
  const KeyModifiers& held = event.modifiers;
  if (event.key != KeyName::character || held.control || held.option || held.command ||
      !event.documentWindow || application.workspace().board.lengthEditor->isOpen ||
      !shortcutGateIsOpen(event)) {
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
  if (application.mergeReview().isOpen() && isFreeEscape(event, application)) {
    application.mergeReview().cancel();
    return KeyOutcome::consumed;
  }
  return handleKey(std::move(event), application.workspace());
}

void handleKeyReleased(const KeyEvent& event, Application& application) {
  if (lowerCased(event.characters) == kBeforeKey) application.comparison().setBeforeHeld(false);
}

}  // namespace ostrelon
