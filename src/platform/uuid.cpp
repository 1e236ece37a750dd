#include "platform/uuid.h"

#include <array>
#include <random>

namespace ostrelon {
namespace {

// The positions of the hyphens in the 36-character form.
constexpr bool isHyphenPosition(std::size_t position) {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

constexpr std::uint8_t kNoDigit = 0x80;

constexpr std::array<std::uint8_t, 256> kHexadecimalValues = [] {
  std::array<std::uint8_t, 256> values{};
  values.fill(kNoDigit);
  for (unsigned digit = 0; digit < 10; ++digit) values['0' + digit] = static_cast<std::uint8_t>(digit);
  for (unsigned digit = 0; digit < 6; ++digit) {
    values['a' + digit] = values['A' + digit] = static_cast<std::uint8_t>(10 + digit);
  }
  return values;
}();

// The value of some hexadecimal digits. What is none of them shows in `seen`, which gathers the values
// of all digits, so that one test at the end does for a whole identifier: a file holds a million.
std::uint64_t hexadecimal(std::string_view digits, std::uint8_t& seen) {
  std::uint64_t result = 0;
  for (const char digit : digits) {
    const std::uint8_t value = kHexadecimalValues[static_cast<unsigned char>(digit)];
    seen |= value;
    result = (result << 4) | value;
  }
  return result;
}

std::mt19937_64 seededGenerator() {
  std::random_device device;
  std::seed_seq seed{device(), device(), device(), device(), device(), device(), device(), device()};
  return std::mt19937_64(seed);
}

}  // namespace

UUID UUID::random() {
  // One generator a thread: a paste of a million entities asks for two million numbers.
  thread_local std::mt19937_64 generator = seededGenerator();
  UUID id{generator(), generator()};
  id.high = (id.high & ~0xF000ULL) | 0x4000ULL;
  id.low = (id.low & ~(0x3ULL << 62)) | (0x2ULL << 62);
  return id;
}

std::optional<UUID> UUID::parse(std::string_view text) {
  if (text.size() != 36) return std::nullopt;
  if (text[8] != '-' || text[13] != '-' || text[18] != '-' || text[23] != '-') return std::nullopt;
  std::uint8_t seen = 0;
  UUID id;
  id.high = hexadecimal(text.substr(0, 8), seen) << 32 | hexadecimal(text.substr(9, 4), seen) << 16 |
            hexadecimal(text.substr(14, 4), seen);
  id.low = hexadecimal(text.substr(19, 4), seen) << 48 | hexadecimal(text.substr(24, 12), seen);
  if ((seen & kNoDigit) != 0) return std::nullopt;
  return id;
}

std::string UUID::text() const {
  static constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string result(36, '-');
  std::size_t digit = 0;
  for (std::size_t position = 0; position < result.size(); ++position) {
    if (isHyphenPosition(position)) continue;
    const std::uint64_t half = digit < 16 ? high : low;
    result[position] = kDigits[(half >> (60 - 4 * (digit % 16))) & 0xF];
    ++digit;
  }
  return result;
}

}  // namespace ostrelon
