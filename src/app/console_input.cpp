#include "app/console_input.h"

#include <algorithm>

#include "console/command_interpreter.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

// A name with a blank cannot be typed at the console.
bool canBeTyped(std::string_view word) { return splitAtWhiteSpace(word).size() == 1; }

std::string commonStart(const std::vector<std::string>& words) {
  std::string common = words.front();
  for (const std::string& word : words) {
    const auto differing = std::mismatch(common.begin(), common.end(), word.begin(), word.end()).first;
    common.erase(differing, common.end());
  }
  // Never half a character.
  while (!common.empty() && common.size() < words.front().size() &&
         (static_cast<unsigned char>(words.front()[common.size()]) & 0xC0) == 0x80) {
    common.pop_back();
  }
  return common;
}

}  // namespace

void ConsoleRecall::record(std::string_view line) {
  if (!trimmed(line).empty() && (lines_.empty() || lines_.back() != line)) lines_.emplace_back(line);
  position_ = lines_.size();
  typed_.clear();
}

std::optional<std::string> ConsoleRecall::previous(std::string_view current) {
  if (position_ == 0) return std::nullopt;
  if (position_ == lines_.size()) typed_ = current;
  return lines_[--position_];
}

std::optional<std::string> ConsoleRecall::next() {
  if (position_ == lines_.size()) return std::nullopt;
  return ++position_ == lines_.size() ? typed_ : lines_[position_];
}

ConsoleCompletion completeConsoleLine(std::string_view line, std::size_t cursor,
                                      const CommandContext& commands) {
  cursor = std::min(cursor, line.size());
  const std::string_view before = line.substr(0, cursor);
  const std::size_t chain = before.rfind(';');
  const std::string_view command = chain == std::string_view::npos ? before : before.substr(chain + 1);

  std::vector<std::string> words = splitAtWhiteSpace(command);
  const bool insideWord = !words.empty() && command.ends_with(words.back());
  std::string typed;
  if (insideWord) {
    typed = words.back();
    words.pop_back();
  }

  ConsoleCompletion completion{std::string(line), cursor, {}};
  const std::string wanted = lowerCased(typed);
  for (std::string& word : CommandInterpreter::wordsAfter(words, commands)) {
    if (canBeTyped(word) && lowerCased(word).starts_with(wanted)) {
      completion.candidates.push_back(std::move(word));
    }
  }
  if (completion.candidates.empty()) return completion;
  std::sort(completion.candidates.begin(), completion.candidates.end());

  std::string replacement = commonStart(completion.candidates);
  // Candidates that differ in case alone may have less in common than was typed.
  if (replacement.size() < typed.size()) replacement = typed;
  const std::string_view behind = line.substr(cursor);
  if (completion.candidates.size() == 1 && !behind.starts_with(' ')) replacement += ' ';
  completion.text = std::string(before.substr(0, cursor - typed.size())) + replacement + std::string(behind);
  completion.cursor = cursor - typed.size() + replacement.size();
  return completion;
}

ConsoleCompletion ConsoleCompleter::complete(std::string_view line, std::size_t cursor,
                                             const CommandContext& commands) {
  if (next_ && line == last_.text && cursor == last_.cursor) {
    const std::string& word = last_.candidates[*next_];
    last_.text = std::string(line.substr(0, wordStart_)) + word + std::string(line.substr(cursor));
    last_.cursor = wordStart_ + word.size();
    next_ = (*next_ + 1) % last_.candidates.size();
    return last_;
  }
  last_ = completeConsoleLine(line, cursor, commands);
  next_.reset();
  if (last_.candidates.size() > 1 && last_.text == line) {
    next_ = 0;
    wordStart_ = cursor;
    while (wordStart_ > 0 && line[wordStart_ - 1] != ' ' && line[wordStart_ - 1] != ';') --wordStart_;
  }
  return last_;
}

}  // namespace ostrelon
