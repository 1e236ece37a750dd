#include "exchange/dxf_groups.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

namespace ostrelon {
namespace {

constexpr std::string_view kBlanks = " \t\r\f\v";
// A value is quoted in a message only so far.
constexpr std::size_t kLongestQuote = 30;

std::string_view withoutBlanksInFront(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first == std::string_view::npos ? std::string_view() : text.substr(first);
}

std::string_view withoutBlanksBehind(std::string_view text) {
  return text.substr(0, text.find_last_not_of(kBlanks) + 1);
}

/// The value in quotation marks, cut short, with whatever a terminal or label could not show as "?".
std::string quoted(std::string_view text) {
  std::string shown;
  for (const char c : text.substr(0, kLongestQuote)) shown += c >= ' ' && c <= '~' ? c : '?';
  return "\"" + shown + (text.size() > kLongestQuote ? "…\"" : "\"");
}

// The whole text as a number, one plus sign in front allowed.
template <class Number>
std::optional<Number> parsed(std::string_view text) {
  text = withoutBlanksInFront(text);
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

}  // namespace

double DxfGroup::number() const {
  const auto value_ = parsed<double>(value);
  if (!value_) throw DxfError(fmt::format("Line {}: {} is not a number.", line, quoted(value)));
  if (!std::isfinite(*value_)) throw DxfError(fmt::format("Line {}: a number is not finite.", line));
  return *value_;
}

int DxfGroup::integer() const {
  const auto value_ = parsed<int>(value);
  if (!value_) throw DxfError(fmt::format("Line {}: {} is not a whole number.", line, quoted(value)));
  return *value_;
}

bool isDxfKind(std::string_view name) {
  constexpr std::size_t kLongestKind = 32;
  return !name.empty() && name.size() <= kLongestKind && std::all_of(name.begin(), name.end(), [](char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
  });
}

DxfGroupReader::DxfGroupReader(std::string_view text) : rest_(text) {
  if (withoutBlanksInFront(rest_).empty()) throw DxfError("The file is empty.");
  if (rest_.substr(0, 4096).find('\0') != std::string_view::npos) {
    throw DxfError("This is not a DXF file.");
  }
  if (rest_.find('\n') == std::string_view::npos) lineEnd_ = '\r';
}

std::optional<std::string_view> DxfGroupReader::nextLine() {
  if (rest_.empty()) return std::nullopt;
  const std::size_t end = rest_.find(lineEnd_);
  const std::string_view line = rest_.substr(0, end);
  rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
  ++line_;
  return withoutBlanksBehind(line);
}

std::optional<DxfGroup> DxfGroupReader::next() {
  const auto code = nextLine();
  if (!code) return std::nullopt;
  // Empty lines and editors' end-of-file marks after the last group are harmless.
  if ((code->empty() || *code == "\x1A") && withoutBlanksInFront(rest_).empty()) return std::nullopt;
  const auto number = parsed<int>(*code);
  if (!number) {
    if (line_ == 1) throw DxfError("This is not a DXF file.");
    throw DxfError(fmt::format("Line {}: {} stands where a group code should.", line_, quoted(*code)));
  }
  const auto value = nextLine();
  if (!value) throw DxfError(fmt::format("The file ends in the middle, at line {}.", line_));
  return DxfGroup{*number, *value, line_};
}

bool DxfGroupReader::skipToObject() {
  std::string_view before;
  std::string_view beforeRest = rest_;
  while (true) {
    const std::string_view here = rest_;
    const auto line = nextLine();
    if (!line) return false;
    // A coordinate of 0 in front of a code is no object.
    const bool hasLetter = line->find_first_not_of("0123456789") != std::string_view::npos;
    if (withoutBlanksInFront(before) == "0" && isDxfKind(*line) && hasLetter) {
      rest_ = beforeRest;
      line_ -= 2;
      return true;
    }
    before = *line;
    beforeRest = here;
  }
}

}  // namespace ostrelon
