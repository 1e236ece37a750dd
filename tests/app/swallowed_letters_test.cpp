#include "app/swallowed_letters.h"

#include <gtest/gtest.h>

namespace ostrelon {
namespace {

TEST(SwallowedLetters, ComeBackInFrontOfACommand) {
  SwallowedLetters letters;
  const Date start = dateFromSeconds(100);
  letters.swallowed("l", start);
  EXPECT_EQ(letters.takeBeginning("i", advanced(start, Seconds(0.2))), "l") << "line";
  EXPECT_EQ(letters.takeBeginning("n", advanced(start, Seconds(0.3))), "") << "once";
  letters.swallowed("S", start);
  EXPECT_EQ(letters.takeBeginning("E", start), "S") << "SELECT";
  letters.swallowed("s", start);
  letters.swallowed(" ", start);
  EXPECT_EQ(letters.takeBeginning("1", start), "s ") << "s 1";
}

TEST(SwallowedLetters, StayShortcutsWhenNoCommandFollows) {
  SwallowedLetters letters;
  const Date start = dateFromSeconds(100);
  letters.swallowed("l", start);
  EXPECT_EQ(letters.takeBeginning("w", start), "") << "wall";
  letters.swallowed("l", start);
  EXPECT_EQ(letters.takeBeginning("i", advanced(start, Seconds(5))), "") << "after a pause";
  letters.swallowed(" ", start);
  EXPECT_EQ(letters.takeBeginning("1", start), "");
  letters.swallowed("z", start);
  letters.swallowed("z", advanced(start, Seconds(3)));
  EXPECT_EQ(letters.takeBeginning("o", advanced(start, Seconds(3))), "z");
}

}  // namespace
}  // namespace ostrelon
