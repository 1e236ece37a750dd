// The numbers of a document file against the standard library's shortest text.
#include "documents/number_text.h"
#include "support/random_drawing.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>

namespace ostrelon {
namespace {

std::string written(double number) {
  std::array<char, kLongestNumberText> text{};
  return {text.data(), putNumber32(text.data(), number)};
}

std::string shortest(float number) {
  std::array<char, kLongestNumberText> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

TEST(NumberText, KeepsWholeNumbersPlainAndTheSignOfZero) {
  EXPECT_EQ(written(100000), "100000");
  EXPECT_EQ(written(-16777216), "-16777216");
  EXPECT_EQ(written(0), "0");
  EXPECT_EQ(written(-0.0), "-0");
  EXPECT_EQ(written(0.1), "0.1");
  EXPECT_EQ(written(1e30), "1e+30");
}

TEST(NumberText, IsTheShortestThatReadsBack) {
  const auto seed = testing::seed();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::uniform_int_distribution<std::uint32_t> anyBits;
  std::uniform_real_distribution<double> coordinate(-5000, 5000);
  for (int round = 0; round < 200'000; ++round) {
    const double tame = coordinate(random);
    for (const double number : {static_cast<double>(std::bit_cast<float>(anyBits(random))), tame,
                                std::round(tame * 8) / 8, std::round(tame * 1000) / 1000, tame / 5000}) {
      if (!std::isfinite(number)) continue;
      const auto value = static_cast<float>(number);
      if (std::abs(value) <= 16777216 && std::trunc(value) == value) continue;
      ASSERT_EQ(written(number), shortest(value));
    }
  }
}

}  // namespace
}  // namespace ostrelon
