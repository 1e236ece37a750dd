// Numeric input while drawing: with a draft in progress, a console line that begins with a number
// ends the draft at exactly that size. "12" draws the line 12 units along its present direction,
// "12 90" straight up; a circle takes its radius, a rectangle its width and height.
#pragma once

#include <optional>
#include <string_view>

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

/// The smallest number accepted, sketch units; the pointer may draw smaller rectangles than that.
inline constexpr double kMinimumTypedSize = 1.0;

/// Absent where the line is no typed size and goes on to the interpreter. An error leaves the draft as it
/// was.
std::optional<Reply> applyNumericDraftInput(std::string_view text, Board& board);

}  // namespace ostrelon::CommandInterpreter
