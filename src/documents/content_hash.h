// A 64-bit fingerprint of bytes that come in pieces. It tells contents apart that differ by accident;
// it is no protection against one who wants to deceive.
#pragma once

#include <cstdint>
#include <string_view>

namespace ostrelon {

class ContentHash {
 public:
  /// The division into pieces makes no difference.
  void add(std::string_view bytes);
  std::uint64_t value() const;

 private:
  std::uint64_t state_ = 0x9E3779B97F4A7C15ULL;
  std::uint64_t waiting_ = 0;  // bytes that do not make a whole word yet, the first one lowest
  std::uint64_t length_ = 0;
};

std::uint64_t contentHash(std::string_view bytes);

}  // namespace ostrelon
