// The texts by which numbers, lengths and angles are read and written. One sketch unit is one foot.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "core/sketch_point.h"

namespace ostrelon {

/// The whole text by the rule of `strtod` in the C locale: hexadecimal, infinity and "nan" included, overflow
/// to infinity, nothing before and nothing after.
std::optional<double> parseNumber(std::string_view text);
/// The whole text as a plain decimal number: a sign, digits, a point, an exponent; no white space,
/// no hexadecimal, nothing infinite.
std::optional<double> parsePlainDecimal(std::string_view text);
/// ASCII digits in base 10 with an optional sign, within 64 bits.
std::optional<std::int64_t> parseEntityNumber(std::string_view text);
std::optional<SketchPoint> parsePoint(std::string_view xText, std::string_view yText);

/// Feet, or feet and inches: `5`, `5'`, `5'6"`. Inches may exceed 12 and are always added.
std::optional<double> parseFeetInches(std::string_view text);
/// `3'6"`, rounded to the inch, halves away from zero; not finite gives `0'`.
std::string formatFeetInches(double value);
/// Always one decimal, and never "-0.0".
std::string formatOneDecimal(double value);
/// One decimal, or none when the rounded value is whole. `value` must be finite.
std::string formatShortNumber(double value);
/// The shortest text that reads back exactly, with at least one decimal: 4.5, 96.0, 1e+16. A value that
/// came through 32 bits reads back to the same 32 bits: 4.1, not 4.099999904632568.
std::string formatExactNumber(double value);
/// The same without the decimal of a whole number: 4.5, 96.
std::string plainDecimalText(double value);
/// A number in degrees with any degree signs at its ends taken off.
std::optional<double> parseDegrees(std::string_view text);

}  // namespace ostrelon
