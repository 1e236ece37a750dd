#include "documents/number_text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>

namespace ostrelon {
namespace {

constexpr double kLargestPlainInteger = 16'777'216;  // all integers up to here are exact in 32 bits
constexpr double kSmallestPlainFraction = 1e-3;      // below it an exponent may be shorter
constexpr std::array<double, 10> kPowersOfTen{1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
constexpr std::uint32_t kMantissaBits = 0x7FFFFF;
constexpr std::uint32_t kExponentBits = 0x7F800000;
constexpr double kFractionsEnd = 0x1p52;  // adding it rounds to whole numbers, a half to an even one
constexpr double kHalfUnit = 0x1p-24;     // of the last place, as a part of the value's power of two

// Writes `digits` with a point before the last `decimals` of them, and a zero before the point if need be.
char* putFixed(char* at, std::uint64_t digits, std::size_t decimals) {
  char* const first = at + 1;  // leaves space to move the whole part past the point
  char* const end = std::to_chars(first, at + kLongestNumberText, digits).ptr;
  const auto count = static_cast<std::size_t>(end - first);
  if (count > decimals) {
    char* const point = end - decimals - 1;
    std::copy(first, point + 1, at);
    *point = '.';
    return end;
  }
  // Less than one: what is missing are zeros after the point.
  const std::size_t zeros = decimals - count;
  std::copy_backward(first, end, end + 1 + zeros);
  *at++ = '0';
  *at++ = '.';
  std::fill_n(at, zeros, '0');
  return at + decimals;
}

}  // namespace

// Nearly all coordinates have a few decimals. Those are found faster than by an algorithm for every
// number: d decimals are enough when the value times ten to the d-th, which 64 bits hold exactly here,
// lies nearer to a whole number than half of what the last bit of the value is worth.
char* putNumber32(char* at, double wide) {
  const auto value = static_cast<float>(wide);
  const double size = std::abs(static_cast<double>(value));
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const bool isNegative = std::signbit(value);
  if (size <= kLargestPlainInteger && (size != 0 || !isNegative)) {
    const auto whole = static_cast<std::uint64_t>(size);
    if (static_cast<double>(whole) == size) {
      if (isNegative) *at++ = '-';
      return std::to_chars(at, at + kLongestNumberText, whole).ptr;
    }
    // A power of two is nearer to its neighbour below than to the one above.
    if (size >= kSmallestPlainFraction && (bits & kMantissaBits) != 0) {
      const double half = static_cast<double>(std::bit_cast<float>(bits & kExponentBits)) * kHalfUnit;
      for (std::size_t decimals = 1; decimals < kPowersOfTen.size(); ++decimals) {
        const double power = kPowersOfTen[decimals];
        const double scaled = size * power;
        const double nearest = (scaled + kFractionsEnd) - kFractionsEnd;
        if (std::abs(nearest - scaled) >= half * power) continue;
        if (isNegative) *at++ = '-';
        return putFixed(at, static_cast<std::uint64_t>(nearest), decimals);
      }
    }
  }
  return std::to_chars(at, at + kLongestNumberText, value).ptr;
}

std::string number32Text(double wide) {
  std::array<char, kLongestNumberText> text{};
  return {text.data(), putNumber32(text.data(), wide)};
}

std::string number64Text(double value) {
  std::array<char, kLongestNumberText> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

std::string quotedText(const std::string& text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace ostrelon
