// Lengths as people on a building site write them: in feet and inches with fractions, to 1/16". One sketch
// unit is one foot. The texts of core/length_text.h, which differ, stay what they are; what is new reads and
// writes these.
#pragma once

#include <string>
#include <string_view>
#include <variant>

namespace ostrelon {

/// Why a text is not a length.
enum class LengthProblem {
  notALength,
  unmarkedFraction,  ///< `6-1/2`, which could be feet: a fraction ends in an inch mark, or stands behind feet
  divisionByZero,    ///< `1/0"`
  tooLarge,          ///< beyond the range of a double
};

/// In feet, or the reason why there is none.
using LengthReading = std::variant<double, LengthProblem>;

/// Reads the whole text, blanks at its ends aside. A number without a mark is feet.
///
///   12'6-1/2"   12'-6 1/2"   12' 6.5"   12'6     feet and inches; here the inch mark may be left out
///   6-1/2"   6 1/2"   6.5"   3/4"                inches
///   12'   12.5   1e3                             feet
///
/// A sign stands for the whole: `-3'6"` is -3.5. Inches of 12 and more are added all the same, and so are
/// fractions of 1 and more. Typographic marks (′ ″ ’ ”) are read as the plain ones.
LengthReading readLength(std::string_view text);

/// A sentence that says how a length is written instead.
std::string lengthProblemText(LengthProblem problem);

/// Whether the next word of a line belongs to the same length: `12'-6` and `1/2"`. The second is a fraction
/// that ends in an inch mark; the first ends in a foot mark, or in a whole number that can be inches.
bool continuesLength(std::string_view word, std::string_view next);

/// `12'-6 1/2"`, `12'-0"`, `6 1/2"`, `3/4"`, `0"`: rounded to 1/16", halves away from zero. What is not
/// finite gives `0"`.
std::string formatLength(double feet);
/// The same all in inches: `150 1/2"`.
std::string formatInches(double feet);

}  // namespace ostrelon
