#include "console/command_words.h"

#include "core/length_text.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {

std::optional<std::vector<double>> readNumbers(const Words& words, std::size_t first, std::size_t end) {
  std::vector<double> numbers;
  numbers.reserve(end > first ? end - first : 0);
  for (std::size_t i = first; i < end; ++i) {
    const auto number = parseNumber(words[i]);
    if (!number) return std::nullopt;
    numbers.push_back(*number);
  }
  return numbers;
}

std::optional<std::vector<double>> readNumbers(const Words& words, std::size_t count) {
  return words.size() == count + 1 ? readNumbers(words, 1, words.size()) : std::nullopt;
}

std::optional<std::vector<std::int64_t>> readEntityIndices(const Words& words) {
  std::vector<std::int64_t> indices;
  indices.reserve(words.size());
  for (std::size_t i = 1; i < words.size(); ++i) {
    const auto number = parseEntityNumber(words[i]);
    if (!number || *number < 1) return std::nullopt;
    indices.push_back(*number - 1);
  }
  return indices;
}

std::variant<LengthInWords, Reply> readLengthAt(const Words& words, std::size_t place) {
  std::string text = words[place];
  std::size_t next = place + 1;
  if (next < words.size() && continuesLength(text, words[next])) text += ' ' + words[next++];
  const LengthReading read = readLength(text);
  if (const auto* problem = std::get_if<LengthProblem>(&read)) return notALength(text, *problem);
  return LengthInWords{std::get<double>(read), next};
}

Reply notALength(std::string_view text, LengthProblem problem) {
  return Reply::error("Unknown length \"" + std::string(text) + "\". " + lengthProblemText(problem));
}

std::string lowerCasedWord(const Words& words, std::size_t place) {
  return place < words.size() ? lowerCased(words[place]) : std::string();
}

std::string joinedWords(const Words& words, std::size_t first) {
  std::string text;
  for (std::size_t i = first; i < words.size(); ++i) {
    if (i > first) text += ' ';
    text += words[i];
  }
  return text;
}

std::variant<PointInWords, ParseResult> readPointAt(const Words& words, std::size_t place) {
  PointInWords read{{}, place};
  for (double* coordinate : {&read.point.x, &read.point.y}) {
    if (read.next >= words.size()) return WrongUse{};
    const auto length = readLengthAt(words, read.next);
    if (const auto* reply = std::get_if<Reply>(&length)) return *reply;
    *coordinate = std::get<LengthInWords>(length).value;
    read.next = std::get<LengthInWords>(length).next;
  }
  return read;
}

}  // namespace ostrelon::CommandInterpreter
