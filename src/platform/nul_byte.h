// A NUL ends JSON for the reader that most of the program uses: what follows it would go unread and
// unchecked. No valid JSON holds one, so every reader of a text from outside looks for it first.
#pragma once

#include <optional>
#include <string_view>

namespace ostrelon {

/// The position of the first NUL; absent when there is none.
inline std::optional<std::size_t> nulByteIn(std::string_view text) {
  const std::size_t at = text.find('\0');
  return at == std::string_view::npos ? std::nullopt : std::optional(at);
}

}  // namespace ostrelon
