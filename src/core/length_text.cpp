#include "core/length_text.h"

#include <fmt/format.h>
#include <clocale>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <system_error>
#include <type_traits>

#include "platform/unicode.h"

namespace ostrelon {
namespace {

// strtod reads by the process's locale unless it is given another; a German desktop must not turn the decimal
// point into a comma.
locale_t cLocale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

// The white space within a line: space, tab, and the wide, narrow and no-break spaces of typesetting.
constexpr std::array<std::string_view, 18> kBlanks{
    " ",      "\t",     "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004",
    "\u2005", "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u202F", "\u205F", "\u3000"};

std::string_view withoutBlanks(std::string_view text) {
  const auto startsWith = [&](std::string_view blank) { return text.starts_with(blank); };
  const auto endsWith = [&](std::string_view blank) { return text.ends_with(blank); };
  for (auto blank = kBlanks.begin(); blank != kBlanks.end();) {
    blank = std::find_if(kBlanks.begin(), kBlanks.end(), startsWith);
    if (blank != kBlanks.end()) text.remove_prefix(blank->size());
  }
  for (auto blank = kBlanks.begin(); blank != kBlanks.end();) {
    blank = std::find_if(kBlanks.begin(), kBlanks.end(), endsWith);
    if (blank != kBlanks.end()) text.remove_suffix(blank->size());
  }
  return text;
}

// The shortest text that reads back to the value, or to its 32-bit self where it is no more than that.
// Whole numbers are written out in full either way.
template <class... Format>
std::string shortestText(double value, Format... format) {
  std::array<char, 64> buffer{};
  char* const begin = buffer.data();
  char* const end = begin + buffer.size();
  const bool isNarrow = std::fabs(value) <= std::numeric_limits<float>::max() &&
                        static_cast<double>(static_cast<float>(value)) == value && std::trunc(value) != value;
  const auto written = isNarrow ? std::to_chars(begin, end, static_cast<float>(value), format...)
                                : std::to_chars(begin, end, value == 0 ? 0.0 : value, format...);
  return {begin, written.ptr};
}

}  // namespace

std::optional<double> parseNumber(std::string_view text) {
  if (text.empty()) return std::nullopt;
  const auto first = static_cast<unsigned char>(text.front());
  if (first == ' ' || (first >= '\t' && first <= '\r')) return std::nullopt;
  const std::string terminated(text);
  if (terminated.find('\0') != std::string::npos) return std::nullopt;
  char* end = nullptr;
  const double value = strtod_l(terminated.c_str(), &end, cLocale());
  if (end != terminated.c_str() + terminated.size()) return std::nullopt;
  return value;
}

std::optional<double> parsePlainDecimal(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  // The reader knows the words "inf" and "nan" too; a plain number begins with a digit or a point.
  const std::string_view digits = text.starts_with('-') ? text.substr(1) : text;
  if (digits.empty() || (digits.front() != '.' && (digits.front() < '0' || digits.front() > '9'))) {
    return std::nullopt;
  }
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<std::int64_t> parseEntityNumber(std::string_view text) {
  if (!text.empty() && text.front() == '+') {
    text.remove_prefix(1);
    if (!text.empty() && text.front() == '-') return std::nullopt;
  }
  std::int64_t value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

std::optional<SketchPoint> parsePoint(std::string_view xText, std::string_view yText) {
  const auto x = parseNumber(xText);
  const auto y = parseNumber(yText);
  if (!x || !y) return std::nullopt;
  return SketchPoint{*x, *y};
}

std::optional<double> parseFeetInches(std::string_view text) {
  const std::string_view whole = trimmed(text);
  if (whole.empty()) return std::nullopt;
  std::string plain(whole);
  std::erase(plain, '"');
  const std::string_view rest = plain;
  const auto mark = rest.find('\'');
  if (mark == std::string_view::npos) return parseNumber(rest);
  if (rest.find('\'', mark + 1) != std::string_view::npos) return std::nullopt;
  const auto feet = parseNumber(withoutBlanks(rest.substr(0, mark)));
  if (!feet) return std::nullopt;
  const std::string_view inchesText = withoutBlanks(rest.substr(mark + 1));
  if (inchesText.empty()) return feet;
  const auto inches = parseNumber(inchesText);
  if (!inches) return std::nullopt;
  return *feet + *inches / 12;
}

std::string formatFeetInches(double value) {
  if (!std::isfinite(value)) return "0'";
  const std::string_view sign = value < 0 ? "-" : "";
  const double totalInches = std::round(std::fabs(value) * 12);
  if (!std::isfinite(totalInches)) return fmt::format("{}{:.0f}'", sign, std::fabs(value));
  const double feet = std::floor(totalInches / 12);
  const double inches = std::fmod(totalInches, 12);
  if (inches < 1) return fmt::format("{}{:.0f}'", sign, feet);
  return fmt::format("{}{:.0f}'{:.0f}\"", sign, feet, inches);
}

std::string formatOneDecimal(double value) {
  std::string text = fmt::format("{:.1f}", value);
  return text == "-0.0" ? "0.0" : text;
}

std::string formatShortNumber(double value) {
  const double scaled = std::round(value * 10) / 10;
  // Beyond this size a double has no decimals left, and times ten it may overflow.
  const double rounded = std::fabs(value) < 1e15 ? scaled : value;
  const double whole = std::round(rounded);
  if (std::fabs(rounded - whole) <= 0.0001) return fmt::format("{:.0f}", whole == 0 ? 0.0 : whole);
  return fmt::format("{:.1f}", rounded);
}

std::string formatExactNumber(double value) {
  if (!std::isfinite(value)) return std::isnan(value) ? "nan" : value < 0 ? "-inf" : "inf";
  // Plain decimals between 1e-4 and 1e16, as people expect sizes; powers of ten beyond.
  const double magnitude = std::fabs(value);
  const bool plain = magnitude == 0 || (magnitude >= 1e-4 && magnitude < 1e16);
  std::string text = shortestText(value, plain ? std::chars_format::fixed : std::chars_format::scientific);
  if (plain && text.find('.') == std::string::npos) text += ".0";
  return text;
}

std::string plainDecimalText(double value) { return shortestText(value); }

std::optional<double> parseDegrees(std::string_view text) {
  constexpr std::string_view kDegreeSign = "\u00B0";
  while (text.starts_with(kDegreeSign)) text.remove_prefix(kDegreeSign.size());
  while (text.ends_with(kDegreeSign)) text.remove_suffix(kDegreeSign.size());
  return parseNumber(text);
}

}  // namespace ostrelon
