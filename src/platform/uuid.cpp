#include "platform/uuid.h"

#include <array>
#include <random>

namespace ostrelon {
namespace {

// Where the hyphens of the 36-character form stand.
constexpr bool isHyphenPosition(std::size_t position) {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

int hexadecimalValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
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
  std::array<std::uint64_t, 2> halves{};
  std::size_t digits = 0;
  for (std::size_t position = 0; position < text.size(); ++position) {
    if (isHyphenPosition(position)) {
      if (text[position] != '-') return std::nullopt;
      continue;
    }
    const int value = hexadecimalValue(text[position]);
    if (value < 0) return std::nullopt;
    auto& half = halves[digits / 16];
    half = (half << 4) | static_cast<std::uint64_t>(value);
    ++digits;
  }
  return UUID{halves[0], halves[1]};
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
