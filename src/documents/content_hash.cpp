#include "documents/content_hash.h"

#include <bit>
#include <cstring>

namespace ostrelon {
namespace {

// One round of a multiply-and-rotate hash; the constants are odd numbers with evenly spread bits.
std::uint64_t mixed(std::uint64_t state, std::uint64_t word) {
  return std::rotl(state ^ (word * 0x87C37B91114253D5ULL), 29) * 0x4CF5AD432745937FULL + 0x52DCE729;
}

}  // namespace

void ContentHash::add(std::string_view bytes) {
  std::size_t at = 0;
  while (at < bytes.size() && length_ % 8 != 0) {
    waiting_ |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[at++])) << (8 * (length_ % 8));
    if (++length_ % 8 == 0) {
      state_ = mixed(state_, waiting_);
      waiting_ = 0;
    }
  }
  for (; at + 8 <= bytes.size(); at += 8) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes.data() + at, 8);
    if constexpr (std::endian::native == std::endian::big) word = __builtin_bswap64(word);
    state_ = mixed(state_, word);
    length_ += 8;
  }
  for (; at < bytes.size(); ++at, ++length_) {
    waiting_ |= static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[at])) << (8 * (length_ % 8));
  }
}

std::uint64_t ContentHash::value() const {
  std::uint64_t result = mixed(mixed(state_, waiting_), length_);
  result ^= result >> 32;
  return result * 0xD6E8FEB86659FD93ULL;
}

std::uint64_t contentHash(std::string_view bytes) {
  ContentHash hash;
  hash.add(bytes);
  return hash.value();
}

}  // namespace ostrelon
