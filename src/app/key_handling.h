// Keys over the whole program: the board's keys, with what the console's input line has to do with them, and
// those of a comparison that is under way, and Escape where it gives up a merge.
#pragma once

#include <span>

#include "app/workspace.h"
#include "interaction/key_routing.h"

namespace ostrelon {

class Application;

/// Routes one key-down event. Fills in whether the console's line has text, and empties it where the key
/// asks for that. The outcome is `consumed` or `passed`.
KeyOutcome handleKey(KeyEvent event, Workspace& workspace);

/// The same, and while drawings are compared the letters of `comparisonKeys`, by the gate of the board's
/// letters, and Escape once it has nothing else to do: it ends the comparison, and cancels a merge under
/// review.
KeyOutcome handleKey(KeyEvent event, Application& application);
/// A key has been let go.
void handleKeyReleased(const KeyEvent& event, Application& application);

struct ComparisonKey {
  std::string_view keys;  ///< as the user reads them: "⇧N"
  std::string_view title;
};
/// For the page of keyboard help.
std::span<const ComparisonKey> comparisonKeys();

}  // namespace ostrelon
