// The numbers of entities and wall systems, and the texts, as a document file writes them.
#pragma once

#include <string>

namespace ostrelon {

/// The longest text of a number, in characters.
inline constexpr int kLongestNumberText = 32;

/// Writes the shortest text that reads back to the 32-bit value nearest to `wide`, which must be
/// finite, and returns the end of it. Whole numbers stay plain digits where the shortest text would be
/// a power of ten: 100000, not 1e+05.
char* putNumber32(char* at, double wide);
std::string number32Text(double wide);
/// The shortest text that reads back to the very value, which must be finite.
std::string number64Text(double value);

/// A JSON string, in its quotation marks and on one line. Bytes that are not UTF-8, as file names may hold
/// them, become U+FFFD: a document must be readable again.
std::string quotedText(const std::string& text);

}  // namespace ostrelon
