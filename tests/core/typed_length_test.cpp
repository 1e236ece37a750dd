#include "core/typed_length.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/random_drawing.h"

namespace ostrelon {
namespace {

TEST(TypedLength, ReadsWhatIsWrittenOnBuildingSites) {
  for (const char* text : {"12'6-1/2\"", "12'-6 1/2\"", "12' 6 1/2\"", " 12'-6-1/2 ", "12'6.5\"", "150 1/2\"",
                           "12\u2032-6 1/2\u2033", "12'5-3/2"}) {
    EXPECT_EQ(readLength(text), LengthReading(12 + 6.5 / 12)) << text;
  }
  EXPECT_EQ(readLength("3/4\""), LengthReading(0.0625));
  EXPECT_EQ(readLength("12.5"), LengthReading(12.5)) << "feet";
  EXPECT_EQ(readLength("1e3"), LengthReading(1000.0));
  EXPECT_EQ(readLength("-3'6\""), LengthReading(-3.5)) << "the sign is of the whole";
}

TEST(TypedLength, SaysWhyATextIsNoLength) {
  for (const char* text : {"", "-", "'", "\"", "'6\"", "5'6'7", "5'-", "6\"\"", "1/\"", "6-1\"", "6.5-1/2\"",
                           "5'x", "0x10", "nan", "--5'", "5'-6\"1/2\"", "1,5"}) {
    EXPECT_EQ(readLength(text), LengthReading(LengthProblem::notALength)) << text;
  }
  EXPECT_EQ(readLength("6-1/2"), LengthReading(LengthProblem::unmarkedFraction));
  EXPECT_EQ(readLength("1/0\""), LengthReading(LengthProblem::divisionByZero));
  EXPECT_EQ(readLength("1e999"), LengthReading(LengthProblem::notALength)) << "as everywhere";
  EXPECT_EQ(readLength(std::string(400, '9') + "'"), LengthReading(LengthProblem::tooLarge));
}

TEST(TypedLength, WritesToASixteenthOfAnInch) {
  EXPECT_EQ(formatLength(12 + 6.5 / 12), "12'-6 1/2\"");
  EXPECT_EQ(formatLength(12), "12'-0\"");
  EXPECT_EQ(formatLength(12 + 0.75 / 12), "12'-0 3/4\"");
  EXPECT_EQ(formatLength(-0.5), "-6\"");
  EXPECT_EQ(formatLength(0.999), "1'-0\"");
  EXPECT_EQ(formatLength(-0.001), "0\"");
  EXPECT_EQ(formatLength(std::nan("")), "0\"");
  EXPECT_EQ(formatLength(-1e308).back(), '"');
  EXPECT_EQ(formatInches(5.5 / 12), "5 1/2\"");
  EXPECT_EQ(formatInches(4.5), "54\"");
}

TEST(TypedLength, WhatIsWrittenReadsBackAndNoTextBreaksTheReader) {
  testing::RandomDrawing random(testing::seed());
  for (int round = 0; round < testing::rounds(2000); ++round) {
    const double feet = (random.below(2'000'000) - 1'000'000) / 192.0;
    for (const std::string& text : {formatLength(feet), formatInches(feet)}) {
      const LengthReading read = readLength(text);
      ASSERT_TRUE(std::holds_alternative<double>(read)) << text << ", seed " << testing::seed();
      EXPECT_NEAR(std::get<double>(read), feet, 1e-9) << text << ", seed " << testing::seed();
    }
    std::string typed;
    for (int length = random.below(12); length > 0; --length) typed += "0123456789'\"-/. e"[random.below(17)];
    const LengthReading read = readLength(typed);
    if (const auto* value = std::get_if<double>(&read); value != nullptr && std::fabs(*value) < 1e6) {
      EXPECT_NEAR(std::get<double>(readLength(formatLength(*value))), *value, 1 / 384.0 + 1e-9)
          << typed << ", seed " << testing::seed();
    }
  }
}

}  // namespace
}  // namespace ostrelon
