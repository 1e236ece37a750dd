// The numbers of entities and wall systems as a document file writes them.
#pragma once

namespace ostrelon {

/// The longest text of a number, in characters.
inline constexpr int kLongestNumberText = 32;

/// Writes the shortest text that reads back to the 32-bit value nearest to `wide`, which must be
/// finite, and returns the end of it. Whole numbers stay plain digits where the shortest text would be
/// a power of ten: 100000, not 1e+05.
char* putNumber32(char* at, double wide);

}  // namespace ostrelon
