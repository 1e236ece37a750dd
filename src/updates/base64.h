// Base64 as RFC 4648 section 4 writes it: the standard alphabet, padded, and nothing else in between.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace ostrelon {

/// The bytes, or nothing when the text has white space, lacks its padding or leaves the alphabet.
std::optional<std::string> decodeBase64(std::string_view text);
std::string encodeBase64(std::string_view bytes);

}  // namespace ostrelon
