// A 128-bit RFC 4122 identifier. In text it is the 36-character upper-case hexadecimal form.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ostrelon {

struct UUID {
  std::uint64_t high = 0;
  std::uint64_t low = 0;

  /// A fresh random identifier (version 4).
  static UUID random();
  /// Reads the 36-character form in either case; anything else gives nothing.
  static std::optional<UUID> parse(std::string_view text);
  /// The 36-character upper-case form. Sorting identifiers sorts their texts.
  std::string text() const;

  friend auto operator<=>(const UUID&, const UUID&) = default;
};

}  // namespace ostrelon

template <>
struct std::hash<ostrelon::UUID> {
  std::size_t operator()(const ostrelon::UUID& id) const noexcept {
    // The halves of a random identifier are random already; mixing guards against hand-made ones.
    std::uint64_t mixed = id.high ^ (id.low * 0x9E3779B97F4A7C15ULL);
    mixed ^= mixed >> 32;
    return static_cast<std::size_t>(mixed * 0xD6E8FEB86659FD93ULL);
  }
};
