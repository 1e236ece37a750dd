#include "app/key_handling.h"

namespace ostrelon {

KeyOutcome handleKey(KeyEvent event, Workspace& workspace) {
  event.consoleHasText = !workspace.console.input->empty();
  const KeyOutcome outcome = handleKey(event, workspace.board);
  if (outcome != KeyOutcome::clearsConsole) return outcome;
  workspace.console.setInput({});
  return KeyOutcome::consumed;
}

}  // namespace ostrelon
