// Reading the words of a command.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "console/command.h"
#include "core/typed_length.h"

namespace ostrelon::CommandInterpreter {

/// The words from `first` up to and not including `end` as numbers; absent when one does not read.
std::optional<std::vector<double>> readNumbers(const Words& words, std::size_t first, std::size_t end);
/// All words after the command as numbers; absent when there are not exactly so many.
std::optional<std::vector<double>> readNumbers(const Words& words, std::size_t count);
/// The entity numbers after the command as 0-based indices; absent when one is not a whole number of at least
/// 1.
std::optional<std::vector<std::int64_t>> readEntityIndices(const Words& words);
/// A length, and the place of the first word behind it.
struct LengthInWords {
  double value = 0;  ///< in feet
  std::size_t next = 0;
};
/// The length at this place, which there must be, by core/typed_length.h: of one word, or of two as in
/// `12'-6 1/2"`. Else the reply that says what is wrong with it.
std::variant<LengthInWords, Reply> readLengthAt(const Words& words, std::size_t place);
/// Two lengths, x and y, at this place; `WrongUse` where there are none.
struct PointInWords {
  SketchPoint point;
  std::size_t next = 0;
};
std::variant<PointInWords, ParseResult> readPointAt(const Words& words, std::size_t place);
/// The reply to a text that is not a length.
Reply notALength(std::string_view text, LengthProblem problem);
/// The word at this place in lower case; empty when there is none.
std::string lowerCasedWord(const Words& words, std::size_t place);
/// The words from `first` on, separated by single blanks.
std::string joinedWords(const Words& words, std::size_t first);

}  // namespace ostrelon::CommandInterpreter
