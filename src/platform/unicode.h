// Text as Unicode sees it. All texts are UTF-8; bytes that are not are carried along unharmed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ostrelon {

/// Without the White_Space characters at both ends, line ends included.
std::string_view trimmed(std::string_view text);
/// The pieces between runs of White_Space, empty ones dropped.
std::vector<std::string> splitAtWhiteSpace(std::string_view text);
/// Unicode's full lower-case mapping, without a language.
std::string lowerCased(std::string_view text);
/// The number of characters as a reader counts them (extended grapheme clusters).
std::size_t characterCount(std::string_view text);
/// Order of file names for people: digits by their numeric value, without regard to case, then
/// exactly. Below 0, 0 or above 0.
int compareForPeople(std::string_view a, std::string_view b);

}  // namespace ostrelon
