#include "app/console_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "app/workspace.h"
#include "core/length_text.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// A number of the line that a file cannot hold; numbers are kept there in 32 bits. Words such as "inf" count
// where nothing but numbers stands behind the command.
std::optional<std::string> unwritableNumber(std::string_view line) {
  const auto isUnwritable = [](const std::string& word) {
    const auto number = parseNumber(word);
    return number && !(std::abs(*number) <= std::numeric_limits<float>::max());
  };
  const auto isInDigits = [](const std::string& word) {
    return word.find_first_of("0123456789") != std::string::npos;
  };
  std::vector<std::string> words = splitAtWhiteSpace(line);
  if (!words.empty()) words.erase(words.begin());
  const bool areNumbers = std::all_of(words.begin(), words.end(),
                                      [](const std::string& word) { return parseNumber(word).has_value(); });
  for (const std::string& word : words) {
    if (isUnwritable(word) && (areNumbers || isInDigits(word))) return word;
  }
  return std::nullopt;
}

}  // namespace

void TranscriptPrinter::printNewLines() {
  const auto& lines = *workspace_.messages.lines;
  // The transcript only grows, but a command may empty it.
  if (printed_ > lines.size()) printed_ = 0;
  for (; printed_ < lines.size(); ++printed_) {
    hasSeenError_ |= lines[printed_].isError;
    print_(lines[printed_].text);
  }
}

std::optional<std::string> ConsoleScript::refusalOf(std::string_view line) {
  if (rigor_ == Rigor::strict) {
    if (const auto number = unwritableNumber(line)) {
      return fmt::format("{} cannot be written into a file.", *number);
    }
  }
  const auto& lines = *workspace_.messages.lines;
  const std::size_t before = lines.size();
  workspace_.console.setInput(std::string(line));
  const auto kind = workspace_.console.runInput();
  const auto begin = lines.begin() + static_cast<std::ptrdiff_t>(before <= lines.size() ? before : 0);
  const auto error = std::find_if(begin, lines.end(), [](const ConsoleLine& shown) { return shown.isError; });
  if (error != lines.end()) return error->text;
  if (kind == CommandInterpreter::ReplyKind::done) return std::nullopt;
  return lines.empty() ? std::string("Refused.") : lines.back().text;
}

bool ConsoleScript::run(std::string_view lines) {
  if (ending_) return false;
  if (line_ == 0 && lines.starts_with(kByteOrderMark)) lines.remove_prefix(kByteOrderMark.size());
  while (!lines.empty()) {
    const std::size_t end = lines.find('\n');
    std::string_view line = lines.substr(0, end);
    lines = end == std::string_view::npos ? std::string_view() : lines.substr(end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    ++line_;
    if (trimmed(line).starts_with('#')) continue;
    const auto refusal = refusalOf(line);
    afterLine_();
    if (!refusal) continue;
    hasRefusal_ = true;
    if (rigor_ == Rigor::strict) {
      ending_ = fmt::format("{}:{}: {}", name_, line_, *refusal);
      return false;
    }
  }
  return true;
}

}  // namespace ostrelon
