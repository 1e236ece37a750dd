#include "app/console_input.h"

#include <algorithm>
#include <array>

#include "console/command_interpreter.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

/// What may stand at one place behind a command word.
struct ArgumentWords {
  std::string_view command;
  std::size_t position;  // 1: the first word behind the command
  std::vector<std::string_view> words;
  bool takesWallSystem = false;
  std::string_view onlyAfter;  // the word in front must be this one, if any is named
};

const std::vector<ArgumentWords>& argumentWords() {
  static const std::vector<ArgumentWords> rows{
      {"spec", 1, {"list", "show", "use"}, false, ""},
      {"spec", 2, {}, true, "use"},
      {"spec", 2, {}, true, "show"},
      {"branch", 1, {"create", "list", "switch"}, false, ""},
      {"zoom", 1, {"fit", "in", "out", "reset"}, false, ""},
      {"center", 1, {"h", "v"}, false, ""},
      {"convert", 1, {"line", "wall"}, false, ""},
      {"convert", 2, {}, true, "wall"},
      {"type", 1, {"line", "wall"}, false, ""},
      {"type", 2, {}, true, "wall"},
      {"assign", 1, {}, true, ""},
      {"wall", 5, {}, true, ""},
  };
  return rows;
}

std::vector<std::string> branchNames(const SketchViewModel& sketch) {
  std::vector<std::string> names;
  for (const DocumentHistoryBranch& branch : sketch.documentHistoryState->metadata.branches) {
    names.push_back(branch.name);
  }
  return names;
}

// `words` holds the words in front of the one to complete.
std::vector<std::string> possibleWords(const std::vector<std::string>& words, const SketchViewModel& sketch) {
  if (words.empty()) return CommandInterpreter::commandWords();
  const auto resolved = CommandInterpreter::resolveCommandLine(words);
  const std::string last = lowerCased(words.back());
  std::vector<std::string> possible;
  for (const ArgumentWords& row : argumentWords()) {
    if (row.command != resolved->command || row.position != words.size()) continue;
    if (!row.onlyAfter.empty() && row.onlyAfter != last) continue;
    possible.insert(possible.end(), row.words.begin(), row.words.end());
    if (row.takesWallSystem) {
      for (const WallSystemSpec& spec : *sketch.wallSystemSpecs) possible.push_back(spec.name);
    }
  }
  if (resolved->command == "branch" && words.size() == 2 && last == "switch") possible = branchNames(sketch);
  return possible;
}

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
                                      const SketchViewModel& sketch) {
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
  for (std::string& word : possibleWords(words, sketch)) {
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
                                             const SketchViewModel& sketch) {
  if (next_ && line == last_.text && cursor == last_.cursor) {
    const std::string& word = last_.candidates[*next_];
    last_.text = std::string(line.substr(0, wordStart_)) + word + std::string(line.substr(cursor));
    last_.cursor = wordStart_ + word.size();
    next_ = (*next_ + 1) % last_.candidates.size();
    return last_;
  }
  last_ = completeConsoleLine(line, cursor, sketch);
  next_.reset();
  if (last_.candidates.size() > 1 && last_.text == line) {
    next_ = 0;
    wordStart_ = cursor;
    while (wordStart_ > 0 && line[wordStart_ - 1] != ' ' && line[wordStart_ - 1] != ';') --wordStart_;
  }
  return last_;
}

}  // namespace ostrelon
