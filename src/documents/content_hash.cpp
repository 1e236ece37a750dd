#include "documents/content_hash.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace ostrelon {
namespace {

// One round of a multiply-and-rotate hash; the constants are odd numbers with evenly spread bits.
std::uint64_t mixed(std::uint64_t state, std::uint64_t word) {
  return std::rotl(state ^ (word * 0x87C37B91114253D5ULL), 29) * 0x4CF5AD432745937FULL + 0x52DCE729;
}

}  // namespace

void ContentHash::addBlock(const char* block) {
  std::array<std::uint64_t, kLanes> words{};
  std::memcpy(words.data(), block, kBlock);
  for (std::size_t lane = 0; lane < kLanes; ++lane) lanes_[lane] = mixed(lanes_[lane], words[lane]);
}

void ContentHash::add(std::string_view bytes) {
  if (bytes.empty()) return;
  const std::size_t held = length_ % kBlock;
  length_ += bytes.size();
  if (held > 0) {
    const std::size_t taken = std::min(kBlock - held, bytes.size());
    std::memcpy(waiting_.data() + held, bytes.data(), taken);
    bytes.remove_prefix(taken);
    if (held + taken < kBlock) return;
    addBlock(waiting_.data());
  }
  for (; bytes.size() >= kBlock; bytes.remove_prefix(kBlock)) addBlock(bytes.data());
  std::copy(bytes.begin(), bytes.end(), waiting_.begin());
}

std::uint64_t ContentHash::value() const {
  ContentHash ended = *this;
  const std::size_t held = length_ % kBlock;
  std::fill(ended.waiting_.begin() + static_cast<std::ptrdiff_t>(held), ended.waiting_.end(), '\0');
  ended.addBlock(ended.waiting_.data());
  std::uint64_t result = length_;
  for (const std::uint64_t lane : ended.lanes_) result = mixed(result, lane);
  result ^= result >> 32;
  return result * 0xD6E8FEB86659FD93ULL;
}

std::uint64_t contentHash(std::string_view bytes) {
  ContentHash hash;
  hash.add(bytes);
  return hash.value();
}

}  // namespace ostrelon
