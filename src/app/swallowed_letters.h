// The letters of the drawing board also work while the console has the focus and its line is empty: L is
// the line tool, S the select tool, Z zooms. A user who begins to type `line 0 0 10 10` there has the
// first letter taken as a shortcut. This remembers it for a moment, so that it can be put back in front
// once the next character shows that a command was meant.
#pragma once

#include <string>
#include <string_view>

#include "platform/date.h"

namespace ostrelon {

class SwallowedLetters {
 public:
  /// The drawing board took these characters from the empty command line.
  void swallowed(std::string_view characters, Date now);
  /// A character is about to be typed into the empty command line. Gives what belongs in front of it to
  /// make the beginning of a command; empty when nothing does. What was remembered is then forgotten.
  std::string takeBeginning(std::string_view typed, Date now);

 private:
  std::string letters_;
  Date lastAt_;
};

}  // namespace ostrelon
