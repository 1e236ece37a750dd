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

void SwallowedLetters::swallowed(std::string_view characters, Date now) {
  if (secondsBetween(lastAt_, now) > kLongestPause) letters_.clear();
  lastAt_ = now;
  // A blank alone begins no command.
  if (!letters_.empty() || characters != " ") letters_ += characters;
}

std::string SwallowedLetters::takeBeginning(std::string_view typed, Date now) {
  std::string letters = std::exchange(letters_, {});
  if (letters.empty() || secondsBetween(lastAt_, now) > kLongestPause) return {};
  return beginsCommand(lowerCased(letters + std::string(typed))) ? letters : std::string();
}

}  // namespace ostrelon
