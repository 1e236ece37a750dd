#include "updates/app_version.h"

#include <gtest/gtest.h>

namespace ostrelon {
namespace {

TEST(AppVersion, ReadsNumbersAndFillsInWhatIsLeftOut) {
  const auto version = parseVersion(" v1.2.3-rc-1.7+build.9\n");
  ASSERT_TRUE(version);
  EXPECT_EQ(version->major, 1);
  EXPECT_EQ(version->minor, 2);
  EXPECT_EQ(version->patch, 3);
  EXPECT_EQ(version->prerelease, "rc-1.7");  // only the first "-" splits
  EXPECT_EQ(version->buildMetadata, "build.9");
  const std::vector<PreReleaseIdentifier> identifiers{std::string("rc-1"), std::int64_t{7}};
  EXPECT_EQ(version->prereleaseIdentifiers, identifiers);

  EXPECT_EQ(parseVersion("1"), parseVersion("1.0.0"));
  EXPECT_EQ(parseVersion("V01.2"), parseVersion("1.2.0"));
  EXPECT_EQ(parseVersion("1+a-b")->prerelease, std::nullopt);  // "+" splits before "-" does
  EXPECT_EQ(parseVersion("9223372036854775807")->major, 9223372036854775807);
}

TEST(AppVersion, RefusesWhatIsNoVersion) {
  for (const char* text : {"",
                           "v",
                           "vv1",
                           "1..2",
                           "1.2.3.4",
                           "1.x",
                           "1.2.",
                           "-1",
                           "1.-2",
                           "+1",
                           "1.2.3-",
                           "1.2.3+",
                           "1.2.3-+5",
                           "1.2.3-a..b",
                           "1.2.3-.a",
                           "1 .2",
                           "v 1",
                           "1.2.3-a+",
                           "9223372036854775808",
                           "1.\u0662",
                           "0x1",
                           "1e3"}) {
    EXPECT_FALSE(parseVersion(text)) << text;
  }
}

TEST(AppVersion, OrdersEveryPairOfARisingListTheSameWay) {
  const std::vector<const char*> rising{"0.9.9",
                                        "1.0.0--5",
                                        "1.0.0-1",
                                        "1.0.0-2",
                                        "1.0.0-11",
                                        "1.0.0-99999999999999999999",
                                        "1.0.0-Beta",
                                        "1.0.0-alpha",
                                        "1.0.0-alpha.1",
                                        "1.0.0-alpha.beta",
                                        "1.0.0-beta",
                                        "1.0.0-beta.2",
                                        "1.0.0-beta.11",
                                        "1.0.0-rc.1",
                                        "1.0.0-\u00e9",
                                        "1.0.0-\uffee",
                                        "1.0.0-\U0001F600",
                                        "1.0.0",
                                        "1.0.1-a",
                                        "1.2.0",
                                        "1.10.0"};
  for (std::size_t i = 0; i < rising.size(); ++i) {
    for (std::size_t j = 0; j < rising.size(); ++j) {
      const auto a = parseVersion(rising[i]);
      const auto b = parseVersion(rising[j]);
      ASSERT_TRUE(a && b);
      EXPECT_EQ(*a < *b, i < j) << rising[i] << " " << rising[j];
      EXPECT_EQ(*a >= *b, i >= j) << rising[i] << " " << rising[j];
    }
  }
}

TEST(AppVersion, BuildMetadataPlaysNoPartInTheOrder) {
  const auto a = *parseVersion("1.2.3+a");
  const auto b = *parseVersion("1.2.3+b");
  EXPECT_FALSE(a < b);
  EXPECT_FALSE(b < a);
  EXPECT_TRUE(a <= b && a >= b);
}

}  // namespace
}  // namespace ostrelon
