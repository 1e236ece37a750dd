// Numeric input while drawing: with a draft in progress, a console line that begins with a number
// ends the draft at exactly that size. "12" draws the line 12 units along its present direction,
// "12 90" straight up; a circle takes its radius, a rectangle its width and height.
#pragma once

#include <string>

namespace ostrelon {

/// The smallest number accepted, sketch units; the pointer may draw smaller rectangles than that.
inline constexpr double kMinimumTypedSize = 1.0;

/// What the console answers. An error leaves the draft as it was.
struct NumericDraftReply {
  std::string message;
  bool isError = false;
};

}  // namespace ostrelon
