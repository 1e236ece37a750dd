#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/date.h"
#include "platform/scheduler.h"
#include "platform/unicode.h"
#include "platform/user_defaults.h"
#include "platform/uuid.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;

TEST(UUIDs, ReadInEitherCaseAndPrintInUpperCase) {
  const auto id = UUID::parse("0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8f9");
  ASSERT_TRUE(id);
  EXPECT_EQ(id->text(), "0A1B2C3D-4E5F-6071-8293-A4B5C6D7E8F9");
  EXPECT_EQ(UUID::parse("0a1b2c3d4e5f60718293a4b5c6d7e8f9"), std::nullopt);
  EXPECT_EQ(UUID::parse("0a1b2c3d-4e5f-6071-8293-a4b5c6d7e8fg"), std::nullopt);
  const UUID random = UUID::random();
  EXPECT_EQ(UUID::parse(random.text()), random);
  EXPECT_EQ(random.text()[14], '4') << "version 4";
}

TEST(Unicode, SplitsAndTrimsAtEveryWhiteSpace) {
  EXPECT_EQ(trimmed(" \t\u00A0\u3000x y\u2028\n"), "x y");
  EXPECT_EQ(trimmed(" \n "), "");
  EXPECT_THAT(splitAtWhiteSpace("\u2003line\t0\u00A00 \r\n1"), ElementsAre("line", "0", "0", "1"));
  EXPECT_THAT(splitAtWhiteSpace("a\u200Bb"), ElementsAre("a\u200Bb"))
      << "a zero-width space is no white space";
  EXPECT_THAT(splitAtWhiteSpace("\xFF \x80"), ElementsAre("\xFF", "\x80"));
}

TEST(Unicode, LowerCasesWithTheFullMapping) {
  EXPECT_EQ(lowerCased("\u212A"), "k") << "the Kelvin sign";
  EXPECT_EQ(lowerCased("HELP"), "help");
  EXPECT_EQ(lowerCased("\u0130"), "i\u0307");
}

TEST(Unicode, OrdersNamesForPeople) {
  EXPECT_LT(compareForPeople("b2.ostrel", "b10.ostrel"), 0);
  EXPECT_LT(compareForPeople("A", "b"), 0);
  EXPECT_NE(compareForPeople("a", "A"), 0);
  EXPECT_EQ(characterCount("e\u0301"), 1u);
}

TEST(Dates, ReadAndWriteISO8601) {
  const auto date = parseISO8601("2026-03-01T12:00:00Z");
  ASSERT_TRUE(date);
  EXPECT_EQ(iso8601Text(*date), "2026-03-01T12:00:00Z");
  EXPECT_EQ(parseISO8601("2026-03-01T14:30:00.250+02:30"), *date + std::chrono::milliseconds(250));
  for (const char* text : {"", "2026-03-01", "2026-02-30T00:00:00Z", "2026-03-01T12:00:00",
                           "2026-03-01T25:00:00Z", "2026-03-01T12:00:00Zx", "2026-03-01T12:00:00.Z"}) {
    EXPECT_EQ(parseISO8601(text), std::nullopt) << text;
  }
  EXPECT_EQ(secondsSince1970(dateFromSeconds(0.1)), 0.1);
}

TEST(VirtualScheduler, RunsWorkInOrderOfTimeAndStopsWhatIsCancelled) {
  VirtualScheduler scheduler;
  std::vector<std::string> ran;
  auto late = scheduler.after(Seconds(2), [&] { ran.push_back("late"); });
  auto early = scheduler.after(Seconds(1), [&] {
    ran.push_back("early");
    scheduler.soon([&] { ran.push_back("soon"); });
  });
  auto gone = scheduler.after(Seconds(1), [&] { ran.push_back("gone"); });
  gone.cancel();
  int ticks = 0;
  auto timer = scheduler.every(Seconds(0.05), [&] { ++ticks; });
  scheduler.advance(Seconds(1));
  EXPECT_EQ(ticks, 20) << "twenty polls make one second";
  EXPECT_THAT(ran, ElementsAre("early", "soon"));
  timer = {};
  scheduler.advance(Seconds(1));
  EXPECT_EQ(ticks, 20);
  EXPECT_EQ(ran.back(), "late");
  EXPECT_EQ(secondsSince1970(scheduler.now()), 2);
}

TEST(UserDefaults, AKeyOfAnotherTypeCountsAsMissing) {
  MemoryUserDefaults defaults;
  defaults.set("a", true);
  defaults.set("b", std::int64_t{5});
  EXPECT_EQ(defaults.integer("a"), std::nullopt);
  EXPECT_EQ(defaults.boolean("a"), true);
  EXPECT_EQ(defaults.date("b"), dateFromSeconds(5));
  EXPECT_FALSE(defaults.has("c"));
}

}  // namespace
}  // namespace ostrelon
