// A 64-bit fingerprint of bytes that come in pieces. It tells contents apart that differ by accident;
// it is no protection against one who wants to deceive. It lives as long as the process: its value is
// never stored.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace ostrelon {

class ContentHash {
 public:
  /// The division into pieces makes no difference.
  void add(std::string_view bytes);
  std::uint64_t value() const;

 private:
  // Words go to the lanes in turn, so that the processor mixes several at once.
  static constexpr std::size_t kLanes = 4;
  static constexpr std::size_t kBlock = 8 * kLanes;  // bytes

  void addBlock(const char* block);

  std::array<std::uint64_t, kLanes> lanes_{0x9E3779B97F4A7C15ULL, 0xC2B2AE3D27D4EB4FULL,
                                           0x165667B19E3779F9ULL, 0x27D4EB2F165667C5ULL};
  std::array<char, kBlock> waiting_{};  // bytes that do not make a whole block yet
  std::uint64_t length_ = 0;
};

std::uint64_t contentHash(std::string_view bytes);

}  // namespace ostrelon
