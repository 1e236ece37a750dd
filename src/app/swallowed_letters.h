// The letters of the drawing board also work while the console has the focus and its line is empty: L is
// the line tool, S the select tool, Z zooms. A user who begins to type `line 0 0 10 10` there has the
// first letter taken as a shortcut. This remembers it for a moment: once the next character shows that a
// command was meant, the letter is put back in front of it, and the drawing board is as it was before.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/workspace.h"
#include "platform/date.h"

namespace ostrelon {

class SwallowedLetters {
 public:
  /// All that a letter may change.
  struct Before {
    SketchState sketch;
    SketchUndoStack undoStack;
    BoardState board;
    SketchViewport viewport;
  };
  static Before stateOf(const Workspace& workspace);

  /// The drawing board took these characters from the empty command line. `before`: how it was then.
  void swallowed(std::string_view characters, Date now, Before before);
  /// A character is about to be typed into the empty command line. Gives what belongs in front of it to
  /// make the beginning of a command, and takes back what that did; empty when nothing does. What was
  /// remembered is then forgotten.
  std::string takeBeginning(std::string_view typed, Date now, Workspace& workspace);
  /// Something else was done meanwhile: the letters were shortcuts.
  void forget() { letters_.clear(); }

 private:
  struct Letter {
    std::string characters;
    Before before;
  };
  std::vector<Letter> letters_;
  Date lastAt_;
};

}  // namespace ostrelon
