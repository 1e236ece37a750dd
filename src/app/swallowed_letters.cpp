#include "app/swallowed_letters.h"

#include <algorithm>
#include <utility>

#include "console/command_interpreter.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

// Somebody who types a command does not pause longer than this between its first characters.
constexpr double kLongestPause = 2.0;  // seconds

// True for the beginning of a command word, and for a whole one with something behind it.
bool beginsCommand(const std::string& text) {
  const auto words = CommandInterpreter::commandWords();
  const auto blank = text.find(' ');
  if (blank != std::string::npos) {
    return std::find(words.begin(), words.end(), text.substr(0, blank)) != words.end();
  }
  return std::any_of(words.begin(), words.end(),
                     [&](const std::string& word) { return word.starts_with(text); });
}

}  // namespace

SwallowedLetters::Board SwallowedLetters::boardOf(const SketchViewModel& sketch) {
  return {sketch.captureCommandMutationState(), *sketch.polygonDraft, *sketch.isEntityInspectorVisible,
          *sketch.viewport};
}

void SwallowedLetters::swallowed(std::string_view characters, Date now, Board before) {
  if (secondsBetween(lastAt_, now) > kLongestPause) letters_.clear();
  lastAt_ = now;
  // A blank alone begins no command.
  if (letters_.empty() && characters == " ") return;
  letters_.push_back({std::string(characters), std::move(before)});
}

std::string SwallowedLetters::takeBeginning(std::string_view typed, Date now, SketchViewModel& sketch) {
  const std::vector<Letter> letters = std::exchange(letters_, {});
  if (secondsBetween(lastAt_, now) > kLongestPause) return {};
  // The earlier ones may have been shortcuts: Z twice to zoom, and a third time to begin `zoom`.
  for (auto first = letters.begin(); first != letters.end(); ++first) {
    std::string beginning;
    for (auto letter = first; letter != letters.end(); ++letter) beginning += letter->characters;
    if (beginning.starts_with(' ') || !beginsCommand(lowerCased(beginning + std::string(typed)))) continue;
    sketch.performAsOneChange([&sketch, &before = first->before] {
      // A polygon that was closed is not left behind as a step to undo.
      if (!(before.drawing.undoSnapshot.entities == sketch.entities.get())) sketch.undo();
      sketch.restoreAfterFailedChain(before.drawing, before.polygon, before.isInspectorVisible);
      sketch.setViewport(before.viewport.pan.x, before.viewport.pan.y, before.viewport.scale);
    });
    return beginning;
  }
  return {};
}

}  // namespace ostrelon
