#include "core/length_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace ostrelon {
namespace {

TEST(LengthText, NumbersFollowStrtodWithNothingInFrontOrBehind) {
  EXPECT_EQ(parseNumber("1e3"), 1000);
  EXPECT_EQ(parseNumber("+4"), 4);
  EXPECT_EQ(parseNumber(".5"), 0.5);
  EXPECT_EQ(parseNumber("0x10"), 16);
  EXPECT_EQ(parseNumber("1e999"), std::numeric_limits<double>::infinity());
  EXPECT_TRUE(std::isnan(parseNumber("nan").value()));
  for (const char* text : {"", " 1", "1 ", "1,5", "3'", "2x", "\t1", "1e", "--1", "."}) {
    EXPECT_EQ(parseNumber(text), std::nullopt) << text;
  }
  EXPECT_EQ(parseNumber(std::string_view("1\0", 2)), std::nullopt);
}

TEST(LengthText, EntityNumbersAreWholeAndFitSixtyFourBits) {
  EXPECT_EQ(parseEntityNumber("+12"), 12);
  EXPECT_EQ(parseEntityNumber("-3"), -3);
  EXPECT_EQ(parseEntityNumber("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
  for (const char* text : {"", "+", "-", "+-1", "1.0", "0x1", " 1", "9223372036854775808", "١"}) {
    EXPECT_EQ(parseEntityNumber(text), std::nullopt) << text;
  }
}

TEST(LengthText, ReadsFeetAndInches) {
  EXPECT_EQ(parseFeetInches("5"), 5);
  EXPECT_EQ(parseFeetInches("6\""), 6);
  EXPECT_EQ(parseFeetInches(" 5' 6\" "), 5.5);
  EXPECT_EQ(parseFeetInches("5'\u00A06\""), 5.5) << "a no-break space";
  EXPECT_EQ(parseFeetInches("5\u202F' \u20096\""), 5.5);
  EXPECT_EQ(parseFeetInches("5'6"), 5.5);
  EXPECT_EQ(parseFeetInches("-3'6"), -2.5);
  EXPECT_EQ(parseFeetInches("1.5'3"), 1.75);
  EXPECT_EQ(parseFeetInches("1'18"), 2.5);
  for (const char* text : {"", "'6", "5'6'7", "5 \"", "abc", "5'x"}) {
    EXPECT_EQ(parseFeetInches(text), std::nullopt) << text;
  }
}

TEST(LengthText, WritesFeetAndInchesRoundedToTheInch) {
  EXPECT_EQ(formatFeetInches(3.5), "3'6\"");
  EXPECT_EQ(formatFeetInches(4), "4'");
  EXPECT_EQ(formatFeetInches(2.99), "3'");
  EXPECT_EQ(formatFeetInches(0.04), "0'");
  EXPECT_EQ(formatFeetInches(-0.04), "-0'");
  EXPECT_EQ(formatFeetInches(-2.5), "-2'6\"");
  EXPECT_EQ(formatFeetInches(std::nan("")), "0'");
  EXPECT_EQ(formatFeetInches(-std::numeric_limits<double>::infinity()), "0'");
  EXPECT_EQ(formatFeetInches(1e300).substr(0, 3), "100");
}

TEST(LengthText, WritesShortAndExactNumbers) {
  EXPECT_EQ(formatShortNumber(2.25), "2.3");
  EXPECT_EQ(formatShortNumber(7.96), "8");
  EXPECT_EQ(formatShortNumber(-0.04), "0");
  EXPECT_EQ(formatShortNumber(-3.14), "-3.1");
  EXPECT_EQ(formatShortNumber(1e300).size(), 301u);
  EXPECT_EQ(formatExactNumber(4.5), "4.5");
  EXPECT_EQ(formatExactNumber(96), "96.0");
  EXPECT_EQ(formatExactNumber(0.001), "0.001");
  EXPECT_EQ(formatExactNumber(1e16), "1e+16");
  EXPECT_EQ(formatExactNumber(-0.0), "0.0");
  EXPECT_EQ(formatOneDecimal(-0.04), "0.0");
  EXPECT_EQ(plainDecimalText(static_cast<double>(4.1F)), "4.1") << "the shortest of its 32-bit self";
  EXPECT_EQ(plainDecimalText(4.1), "4.1");
  EXPECT_EQ(plainDecimalText(4.09999990463), "4.09999990463");
  EXPECT_EQ(plainDecimalText(16777217), "16777217");
  EXPECT_EQ(formatExactNumber(static_cast<double>(123456789.0F)), "123456792.0") << "whole numbers in full";
}

TEST(LengthText, ReadsDegreesWithTheirSign) {
  EXPECT_EQ(parseDegrees("45°"), 45);
  EXPECT_EQ(parseDegrees("-90"), -90);
  EXPECT_EQ(parseDegrees("45 °"), std::nullopt);
  EXPECT_EQ(parseDegrees("°"), std::nullopt);
}

}  // namespace
}  // namespace ostrelon
