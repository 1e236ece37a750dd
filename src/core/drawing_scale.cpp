#include "core/drawing_scale.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <utility>

#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr std::array kCommonScales{
    DrawingScale{4},   DrawingScale{8},  DrawingScale{12},  DrawingScale{16},  DrawingScale{24},
    DrawingScale{32},  DrawingScale{48}, DrawingScale{64},  DrawingScale{96},  DrawingScale{120},
    DrawingScale{192}, DrawingScale{50}, DrawingScale{100}, DrawingScale{200}, DrawingScale{240},
};

constexpr double kSmallestRatio = 1e-3;
constexpr double kLargestRatio = 1e6;

// --- Reading scales

// Takes a word off the front of the text, blanks in front skipped.
bool take(std::string_view& text, std::string_view word) {
  std::string_view rest = trimmed(text);
  if (!rest.starts_with(word)) return false;
  text = rest.substr(word.size());
  return true;
}

bool takeInchMark(std::string_view& text) {
  for (const std::string_view mark : {"\"", "″", "”", "inches", "inch", "in"}) {
    if (take(text, mark)) return true;
  }
  return false;
}

bool takeFootMark(std::string_view& text) {
  for (const std::string_view mark : {"'", "′", "’", "feet", "foot", "ft"}) {
    if (take(text, mark)) return true;
  }
  return false;
}

// A plain decimal number: digits with at most one point.
std::optional<double> takeDecimal(std::string_view& text) {
  const std::string_view start = trimmed(text);
  double value = 0;
  double place = 0;
  std::size_t length = 0;
  std::size_t digits = 0;
  for (; length < start.size() && digits < 12; ++length) {
    const char c = start[length];
    if (c == '.' && place == 0) {
      place = 1;
    } else if (c >= '0' && c <= '9') {
      ++digits;
      value = value * 10 + (c - '0');
      place *= 10;
    } else {
      break;
    }
  }
  if (digits == 0) return std::nullopt;
  text = start.substr(length);
  return place > 1 ? value / place : value;
}

// A number of inches: 3, 0.5, 1/4, 1 1/2 or 1-1/2.
std::optional<double> takeMixedNumber(std::string_view& text) {
  const auto first = takeDecimal(text);
  if (!first) return std::nullopt;
  if (take(text, "/")) {
    const auto divisor = takeDecimal(text);
    return divisor ? std::optional(*first / *divisor) : std::nullopt;
  }
  std::string_view ahead = text;
  const bool isJoined = take(ahead, "-") || trimmed(ahead).size() != ahead.size();
  const auto part = isJoined ? takeDecimal(ahead) : std::nullopt;
  if (!part || !take(ahead, "/")) return first;
  const auto divisor = takeDecimal(ahead);
  if (!divisor) return std::nullopt;
  text = ahead;
  return *first + *part / *divisor;
}

// Feet, with inches or without: 1', 1'-0", 20 ft.
std::optional<double> takeFeet(std::string_view& text) {
  const auto feet = takeDecimal(text);
  if (!feet || !takeFootMark(text)) return std::nullopt;
  std::string_view ahead = text;
  take(ahead, "-");
  const auto more = takeMixedNumber(ahead);
  if (!more) return feet;
  if (!takeInchMark(ahead)) return std::nullopt;
  text = ahead;
  return *feet + *more / kInchesPerFoot;
}

std::optional<DrawingScale> scaleOf(std::optional<double> ratio) {
  // Written so that what is not a number is refused too.
  if (!ratio || !(*ratio >= kSmallestRatio && *ratio <= kLargestRatio)) return std::nullopt;
  return DrawingScale{*ratio};
}

std::optional<double> parsedRatio(std::string_view text) {
  const auto first = takeMixedNumber(text);
  if (!first) return std::nullopt;
  if (take(text, ":")) {
    const auto second = takeDecimal(text);
    return second && trimmed(text).empty() ? std::optional(*second / *first) : std::nullopt;
  }
  if (!takeInchMark(text)) return std::nullopt;
  double feet = 1;
  if (take(text, "=") || take(text, "to")) {
    take(text, "the");
    const bool isTheFoot = take(text, "foot");
    const auto told = isTheFoot ? std::optional(1.0) : takeFeet(text);
    if (!told) return std::nullopt;
    feet = *told;
  }
  return trimmed(text).empty() ? std::optional(feet * kInchesPerFoot / *first) : std::nullopt;
}

// --- Writing scales

/// Sixteenths of an inch as a rule shows them: 1/4, 1 1/2, 3. Absent for what is no whole number of
/// 32nds.
std::optional<std::string> inchText(double value) {
  constexpr int finest = 32;
  const double parts = value * finest;
  if (std::abs(parts - std::round(parts)) > 1e-9 || parts < 1) return std::nullopt;
  auto numerator = static_cast<long>(std::round(parts));
  long denominator = finest;
  while (denominator > 1 && numerator % 2 == 0) {
    numerator /= 2;
    denominator /= 2;
  }
  const long whole = numerator / denominator;
  const long rest = numerator % denominator;
  if (rest == 0) return std::to_string(whole);
  return whole == 0 ? fmt::format("{}/{}", rest, denominator)
                    : fmt::format("{} {}/{}", whole, rest, denominator);
}

}  // namespace

std::span<const DrawingScale> commonScales() { return kCommonScales; }

std::optional<DrawingScale> parseDrawingScale(std::string_view text) {
  const std::string lower = lowerCased(text);
  return scaleOf(parsedRatio(lower));
}

std::string drawingScaleText(DrawingScale scale) {
  // A part of an inch to the foot, an inch to some feet, or the plain ratio: metric scales are given by
  // theirs.
  const double inchesToTheFoot = kInchesPerFoot / scale.ratio;
  const double feetToTheInch = scale.ratio / kInchesPerFoot;
  if (inchesToTheFoot <= 3) {
    if (const auto inch = inchText(inchesToTheFoot)) return *inch + "\" = 1'-0\"";
  }
  if (feetToTheInch >= 10 && feetToTheInch == std::round(feetToTheInch)) {
    return fmt::format("1\" = {}'", feetToTheInch);
  }
  return fmt::format("1:{:.6g}", scale.ratio);
}

}  // namespace ostrelon
