#include "console/command_arguments.h"

#include "core/length_text.h"

namespace ostrelon::CommandInterpreter {

std::optional<std::vector<double>> readNumbers(const std::vector<std::string>& arguments, std::size_t first,
                                               std::size_t end) {
  std::vector<double> numbers;
  numbers.reserve(end > first ? end - first : 0);
  for (std::size_t i = first; i < end; ++i) {
    const auto number = parseNumber(arguments[i]);
    if (!number) return std::nullopt;
    numbers.push_back(*number);
  }
  return numbers;
}

std::optional<std::vector<double>> readNumbers(const std::vector<std::string>& arguments) {
  return readNumbers(arguments, 1, arguments.size());
}

}  // namespace ostrelon::CommandInterpreter
