// Reading the arguments of commands.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace ostrelon::CommandInterpreter {

/// The arguments from `first` up to and not including `end` as numbers; absent when one does not read.
std::optional<std::vector<double>> readNumbers(const std::vector<std::string>& arguments, std::size_t first,
                                               std::size_t end);
/// All arguments behind the command word as numbers.
std::optional<std::vector<double>> readNumbers(const std::vector<std::string>& arguments);

}  // namespace ostrelon::CommandInterpreter
