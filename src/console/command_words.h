// Reading the words of a command.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

/// The words from `first` up to and not including `end` as numbers; absent when one does not read.
std::optional<std::vector<double>> readNumbers(const Words& words, std::size_t first, std::size_t end);
/// All words after the command as numbers; absent when there are not exactly so many.
std::optional<std::vector<double>> readNumbers(const Words& words, std::size_t count);
/// The entity numbers after the command as 0-based indices; absent when one is not a whole number of at least
/// 1.
std::optional<std::vector<std::int64_t>> readEntityIndices(const Words& words);
/// The word at this place in lower case; empty when there is none.
std::string lowerCasedWord(const Words& words, std::size_t place);
/// The words from `first` on, separated by single blanks.
std::string joinedWords(const Words& words, std::size_t first);

}  // namespace ostrelon::CommandInterpreter
