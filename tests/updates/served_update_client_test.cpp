#include "updates/served_update_client.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "updates/app_update_error.h"
#include "updates/installer_writer.h"
#include "updates/update_test_support.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using testing::readBytes;
using testing::TemporaryFolder;

/// The progress reported for pieces of these sizes, the end included.
std::vector<double> progressOf(const std::vector<std::size_t>& pieces, std::uint64_t expected) {
  const TemporaryFolder folder;
  std::vector<double> reported;
  InstallerWriter writer("https://h.example/a", folder.path(), expected,
                         [&](double value) { reported.push_back(value); });
  for (const std::size_t size : pieces) writer.append(std::string(size, 'x'));
  writer.finish();
  return reported;
}

TEST(InstallerWriter, ReportsProgressAtEachStepOfReceivedBytes) {
  EXPECT_THAT(progressOf({65535, 1, 65536, 10}, 131082),
              ElementsAre(65536 / 131082.0, 131072 / 131082.0, 1.0));
  EXPECT_THAT(progressOf({200'000}, 196608), ElementsAre(1 / 3.0, 2 / 3.0, 1.0, 1.0));
  EXPECT_THAT(progressOf({200'000}, 100'000), ElementsAre(0.65536, 1.0, 1.0, 1.0));  // more than was said
  EXPECT_THAT(progressOf({200'000}, 0), ElementsAre(1.0));                           // unknown length
  EXPECT_THAT(progressOf({}, 10), ElementsAre(1.0));
}

TEST(InstallerWriter, HoldsTheSizeDownAndLeavesNothingBehind) {
  const TemporaryFolder folder;
  EXPECT_THROW(InstallerWriter("https://h.example/a", folder.path(), kLargestInstaller + 1, [](double) {}),
               UserError);
  {
    InstallerWriter writer(
        "https://h.example/a", folder.path(), 0, [](double) {}, 100);
    writer.append(std::string(100, 'x'));
    EXPECT_THROW(writer.append("x"), UserError);
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
}

class ServedUpdateClientTest : public ::testing::Test {
 protected:
  std::string fetch() {
    std::string text = "no answer";
    client_.fetchManifest("https://h.example/feed", [&](Outcome<AppUpdateManifest> outcome) {
      try {
        text = std::to_string(std::move(outcome).take().releases.size()) + " releases";
      } catch (const UserError& error) {
        text = error.what();
      }
    });
    EXPECT_EQ(text, "no answer");
    scheduler_.advance(Seconds(0));
    return text;
  }

  TemporaryFolder folder_;
  VirtualScheduler scheduler_;
  ServedUpdateClient client_{scheduler_, folder_ / "tmp"};
};

TEST_F(ServedUpdateClientTest, AnswersFromWhatItServes) {
  EXPECT_EQ(fetch(), "Could not reach the update server: There is no connection.");
  client_.serve(R"({"releases":[]})", std::nullopt);
  EXPECT_EQ(fetch(), "0 releases");
  client_.serve("nonsense", std::nullopt);
  EXPECT_EQ(fetch(), "Update metadata is invalid: It is not JSON (at byte 2).");
}

TEST(ServedUpdateClient, RequestsDoNotOutliveIt) {
  VirtualScheduler scheduler;
  bool isAnswered = false;
  {
    ServedUpdateClient client(scheduler, "unused");
    client.fetchManifest("https://h.example/feed", [&](const auto&) { isAnswered = true; });
  }
  scheduler.advance(Seconds(0));
  EXPECT_FALSE(isAnswered);
}

TEST_F(ServedUpdateClientTest, WritesTheInstaller) {
  DownloadedInstaller installer;
  std::string failure;
  std::vector<double> progress;
  const auto download = [&] {
    client_.downloadInstaller(
        "https://h.example/d/Ostrelon.deb", [&](double value) { progress.push_back(value); },
        [&](Outcome<DownloadedInstaller> outcome) {
          try {
            installer = std::move(outcome).take();
          } catch (const AppUpdateError& error) {
            failure = error.what();
          }
        });
    scheduler_.advance(Seconds(0));
  };
  download();
  EXPECT_EQ(failure, "Could not reach the update server: There is no connection.");
  client_.serve(std::nullopt, std::string(70'000, 'i'));
  download();
  ASSERT_TRUE(installer);
  EXPECT_EQ(installer->path().filename(), "Ostrelon.deb");
  EXPECT_EQ(readBytes(installer->path()), std::string(70'000, 'i'));
  EXPECT_THAT(progress, ElementsAre(65536 / 70'000.0, 1.0));
}

}  // namespace
}  // namespace ostrelon
