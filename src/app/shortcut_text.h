// Keys as the user reads them. The program writes them with the signs of the command, option and
// shift keys ("⌘N"); each desktop shows them in its own notation ("Ctrl+N").
#pragma once

#include <string>
#include <string_view>

namespace ostrelon {

/// Rewrites every key in a text for this desktop: "press ⌘I" reads "press Ctrl+I". A build for a
/// desktop that uses the signs itself shows the text as given. What it gives for a key alone is also
/// the portable text of a key sequence.
std::string desktopNotation(std::string_view text);

}  // namespace ostrelon
