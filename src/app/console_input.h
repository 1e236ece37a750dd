// What helps at the console's input line: recalling earlier lines, and completing words.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/command_context.h"

namespace ostrelon {

/// The lines that were run, to be recalled one by one. The line that was being typed when recalling began
/// comes back after the newest one.
class ConsoleRecall {
 public:
  /// A line has been run. Blank lines, and one equal to the line before it, are not kept.
  void record(std::string_view line);
  /// The line before the one shown; absent when there is none. `current`: the text in the field.
  std::optional<std::string> previous(std::string_view current);
  /// The line after the one shown, and in the end the line that was being typed; absent after that.
  std::optional<std::string> next();

 private:
  std::vector<std::string> lines_;
  std::size_t position_ = 0;  // lines_.size(): the line being typed
  std::string typed_;
};

struct ConsoleCompletion {
  std::string text;                     ///< the whole line with the word completed as far as it is certain
  std::size_t cursor = 0;               ///< byte offset after the completed word
  std::vector<std::string> candidates;  ///< all words that fit, sorted; empty when none does
};

/// Completes the word that ends at the cursor: the command word, a sub-command word, or the name of
/// a wall system where the command takes one. In a chain the command is the one that the cursor is
/// in. `cursor` is a byte offset into `line`. Words fit without regard to case; a single candidate
/// is followed by a blank.
ConsoleCompletion completeConsoleLine(std::string_view line, std::size_t cursor,
                                      const CommandContext& commands);

/// Completion key by key: where several words fit and nothing more is certain, the line stays once, so
/// that they can be listed, and each further time the next of them is put in, in turn.
class ConsoleCompleter {
 public:
  ConsoleCompletion complete(std::string_view line, std::size_t cursor, const CommandContext& commands);

 private:
  ConsoleCompletion last_;
  std::size_t wordStart_ = 0;
  std::optional<std::size_t> next_;  // the candidate to put in, while `last_` is left as it was given
};

}  // namespace ostrelon
