#include "app/swallowed_letters.h"

#include <algorithm>
#include <utility>

#include "console/command_interpreter.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

// Somebody who types a command does not pause longer than this between its first characters.
constexpr double kLongestPause = 2.0;  // seconds

// True for the beginning of a command word, and for a whole one with something after it.
bool beginsCommand(const std::string& text) {
  const auto words = CommandInterpreter::commandWords();
  const auto blank = text.find(' ');
  if (blank != std::string::npos) {
    return std::find(words.begin(), words.end(), text.substr(0, blank)) != words.end();
  }
  return std::any_of(words.begin(), words.end(),
                     [&](const std::string& word) { return word.starts_with(text); });
}

void takeBack(const SwallowedLetters::Before& before, Workspace& workspace) {
  const auto change = workspace.change();
  workspace.sketch.setState(before.sketch);
  workspace.sketch.setUndoStack(before.undoStack);
  workspace.board.setState(before.board);
  workspace.board.setViewport(before.viewport);
}

}  // namespace

SwallowedLetters::Before SwallowedLetters::stateOf(const Workspace& workspace) {
  return {workspace.sketch.state(), workspace.sketch.undoStack, workspace.board.state(),
          workspace.board.viewport()};
}

void SwallowedLetters::swallowed(std::string_view characters, Date now, Before before) {
  if (secondsBetween(lastAt_, now) > kLongestPause) letters_.clear();
  lastAt_ = now;
  // A blank alone begins no command.
  if (letters_.empty() && characters == " ") return;
  letters_.push_back({std::string(characters), std::move(before)});
}

std::string SwallowedLetters::takeBeginning(std::string_view typed, Date now, Workspace& workspace) {
  const std::vector<Letter> letters = std::exchange(letters_, {});
  if (secondsBetween(lastAt_, now) > kLongestPause) return {};
  // The earlier ones may have been shortcuts: Z twice to zoom, and a third time to begin `zoom`.
  for (auto first = letters.begin(); first != letters.end(); ++first) {
    std::string beginning;
    for (auto letter = first; letter != letters.end(); ++letter) beginning += letter->characters;
    if (beginning.starts_with(' ') || !beginsCommand(lowerCased(beginning + std::string(typed)))) continue;
    takeBack(first->before, workspace);
    return beginning;
  }
  return {};
}

}  // namespace ostrelon
