// Keys over the whole workspace: the board's keys, with what the console's input line has to do with them.
#pragma once

#include "app/workspace.h"
#include "interaction/key_routing.h"

namespace ostrelon {

/// Routes one key-down event. Fills in whether the console's line has text, and empties it where the key
/// asks for that. The outcome is `consumed` or `passed`.
KeyOutcome handleKey(KeyEvent event, Workspace& workspace);

}  // namespace ostrelon
