#include "updates/app_update_manager.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

#include "documents/app_settings.h"
#include "platform/disk_file_system.h"
#include "platform/user_defaults.h"
#include "updates/app_update_error.h"
#include "updates/update_test_support.h"

namespace ostrelon {
namespace {

using ::testing::ElementsAre;
using testing::Publisher;
using testing::TemporaryFolder;
using Case = AppUpdateStatus::Case;

constexpr const char* kFeed = "https://updates.example/feed.json";
const Date kStart = dateFromSeconds(1'767'225'600);

/// Records what it is asked and answers when the test says so.
class FakeClient final : public AppUpdateClient {
 public:
  void fetchManifest(const std::string& url, ManifestHandler completion) override {
    fetched.push_back(url);
    manifestHandler = std::move(completion);
  }
  void downloadInstaller(const std::string& url, ProgressHandler progress,
                         InstallerHandler completion) override {
    downloaded.push_back(url);
    progressHandler = std::move(progress);
    installerHandler = std::move(completion);
  }

  std::vector<std::string> fetched;
  std::vector<std::string> downloaded;
  ManifestHandler manifestHandler;
  ProgressHandler progressHandler;
  InstallerHandler installerHandler;
};

class AppUpdateManagerTest : public ::testing::Test {
 protected:
  static UpdateConfiguration configured() {
    return updateConfiguration("1.2.0", "57", kFeed, publisher().publicKey());
  }
  static const Publisher& publisher() {
    static const Publisher publisher;
    return publisher;
  }

  /// Starts the manager anew over the same stored settings, as a restart of the program does.
  void start(const UpdateConfiguration& configuration = configured()) {
    manager.reset();
    settings.emplace(defaults, files, folder / "Documents");
    manager.emplace(scheduler, *settings, client, configuration, [this](const FilePath& path) {
      opened.push_back(path);
      return opens;
    });
  }

  void serve(const std::vector<std::string>& versions) {
    AppUpdateManifest manifest;
    for (const std::string& version : versions)
      manifest.releases.push_back(publisher().release(version, installer));
    client.manifestHandler(manifest);
  }
  void failManifest() {
    client.manifestHandler(std::make_exception_ptr(AppUpdateError::networkFailure("Host not found")));
  }
  void check(bool userInitiated, const std::vector<std::string>& versions) {
    manager->checkForUpdates(userInitiated);
    serve(versions);
  }

  DownloadedInstaller download(std::string_view bytes) const {
    HeldFile file = HeldFile::createPrivate(folder.path(), "Ostrelon.deb");
    file.append(bytes);
    file.seal();
    return std::make_shared<const HeldFile>(std::move(file));
  }

  TemporaryFolder folder;
  std::string installer = "the installer";
  VirtualScheduler scheduler{kStart};
  MemoryUserDefaults defaults;
  DiskFileSystem files;
  FakeClient client;
  std::optional<AppSettings> settings;
  std::optional<AppUpdateManager> manager;
  bool opens = true;
  std::vector<FilePath> opened;
};

TEST_F(AppUpdateManagerTest, ReadsWhatTheBuildSays) {
  const UpdateConfiguration full = updateConfiguration("1.2.0", "57", "\n HTTPS://h.example/f ", " a2V5 ");
  EXPECT_EQ(full.currentDisplayVersion, "1.2.0 (57)");
  EXPECT_EQ(full.feedURL, "HTTPS://h.example/f");
  EXPECT_EQ(full.signingPublicKey, "a2V5");
  const UpdateConfiguration bare = updateConfiguration("1.2.0", "1.2.0", "http://h.example/f", "  ");
  EXPECT_EQ(bare.currentDisplayVersion, "1.2.0");
  EXPECT_EQ(bare.feedURL, std::nullopt);
  EXPECT_EQ(bare.signingPublicKey, std::nullopt);
  EXPECT_EQ(updateConfiguration("1.2.0", "", "", "").currentDisplayVersion, "1.2.0");
}

TEST_F(AppUpdateManagerTest, TheFirstStartChecksAtOnceAndThenEveryTwelveHours) {
  start();
  manager->startAutomaticChecks();
  EXPECT_EQ(manager->status->value, Case::notChecked);  // started as a task
  scheduler.advance(Seconds(0));
  EXPECT_EQ(manager->statusText(), "Checking for updates...");
  EXPECT_THAT(client.fetched, ElementsAre(kFeed));
  serve({});
  EXPECT_EQ(manager->status->value, Case::upToDate);
  EXPECT_EQ(manager->lastCheckedAt, kStart);
  EXPECT_EQ(settings->lastUpdateCheckAt, kStart);

  scheduler.advance(Seconds(43199));
  EXPECT_EQ(client.fetched.size(), 1U);
  scheduler.advance(Seconds(1));  // 43,200 seconds exactly
  EXPECT_EQ(client.fetched.size(), 2U);
}

TEST_F(AppUpdateManagerTest, AStartWithinTwelveHoursWaitsForTheTimer) {
  defaults.setDate("ostrel.lastUpdateCheckAt", kStart - std::chrono::hours(11));
  start();
  EXPECT_EQ(manager->lastCheckedAt, kStart - std::chrono::hours(11));
  manager->startAutomaticChecks();
  scheduler.advance(Seconds(3599));
  EXPECT_TRUE(client.fetched.empty());
  scheduler.advance(Seconds(1));
  EXPECT_EQ(client.fetched.size(), 1U);
}

TEST_F(AppUpdateManagerTest, ACheckPutDownForTheFutureCountsAsNone) {
  defaults.setDate("ostrel.lastUpdateCheckAt", kStart + std::chrono::hours(24 * 365));
  start();
  manager->startAutomaticChecks();
  scheduler.advance(Seconds(0));
  EXPECT_EQ(client.fetched.size(), 1U);
}

TEST_F(AppUpdateManagerTest, AFailedCheckSaysWhyAndCountsForTheTwelveHours) {
  start();
  manager->startAutomaticChecks();
  scheduler.advance(Seconds(5));
  failManifest();
  EXPECT_EQ(manager->status->value, Case::failed);
  EXPECT_EQ(manager->statusText(), "Could not reach the update server: Host not found");
  EXPECT_EQ(manager->lastCheckedAt, kStart + std::chrono::seconds(5));
  scheduler.advance(Seconds(11 * 3600));
  EXPECT_EQ(client.fetched.size(), 1U);

  start(updateConfiguration("dev", "", kFeed, ""));
  check(true, {"1.0.0"});
  EXPECT_EQ(manager->statusText(), "Installed version dev cannot be compared.");
}

TEST_F(AppUpdateManagerTest, ABuildWithoutAFeedSaysSo) {
  start(updateConfiguration("1.2.0", "", "http://updates.example/feed.json", ""));
  manager->checkForUpdates(true);
  EXPECT_EQ(manager->statusText(),
            "Update feed is not configured. Set OstrelonUpdateFeedURL in the Release build settings before "
            "distributing Ostrelon.");
  EXPECT_EQ(settings->lastUpdateCheckAt, kStart);
  EXPECT_TRUE(client.fetched.empty());
}

TEST_F(AppUpdateManagerTest, OffersTheLatestRelease) {
  start();
  check(true, {"1.10.0", "1.3.0", "1.2.0"});
  EXPECT_EQ(manager->status->value, Case::updateAvailable);
  EXPECT_EQ(manager->latestVersion, "1.10.0");
  EXPECT_EQ(manager->availableUpdate.get()->interveningReleases.size(), 2U);

  check(true, {"1.2.0", "1.1.0"});
  EXPECT_EQ(manager->status->value, Case::upToDate);
  EXPECT_EQ(manager->latestVersion, "1.2.0");
  EXPECT_EQ(manager->availableUpdate, std::nullopt);

  check(true, {});
  EXPECT_EQ(manager->latestVersion, "1.2.0");  // the running one, for want of another
}

TEST_F(AppUpdateManagerTest, APostponementLastsAcrossRestartsUntilANewerVersion) {
  start();
  manager->postponeUpdate();
  EXPECT_EQ(manager->status->value, Case::notChecked);
  check(false, {"1.3.0"});
  EXPECT_EQ(manager->status->value, Case::updateAvailable);
  manager->postponeUpdate();
  EXPECT_EQ(manager->status->value, Case::postponed);
  EXPECT_EQ(defaults.text("ostrel.postponedUpdateVersion"), "1.3.0");

  start();
  check(false, {"1.3.0"});
  EXPECT_EQ(manager->status->value, Case::postponed);
  EXPECT_TRUE(manager->availableUpdate->has_value());
  check(false, {"1.3.0", "1.4.0"});
  EXPECT_EQ(manager->status->value, Case::updateAvailable);
  EXPECT_EQ(settings->postponedUpdateVersion, "1.3.0");
}

TEST_F(AppUpdateManagerTest, AManualCheckAndAnUpToDateOneForgetThePostponement) {
  start();
  check(false, {"1.3.0"});
  manager->postponeUpdate();
  check(true, {"1.3.0"});
  EXPECT_EQ(manager->status->value, Case::updateAvailable);
  EXPECT_EQ(settings->postponedUpdateVersion, std::nullopt);

  manager->postponeUpdate();
  check(false, {});
  EXPECT_FALSE(defaults.has("ostrel.postponedUpdateVersion"));
}

TEST_F(AppUpdateManagerTest, DownloadsVerifiesAndOpensTheInstaller) {
  start();
  manager->downloadAndInstall();  // nothing is available
  EXPECT_EQ(manager->status->value, Case::notChecked);

  check(false, {"1.3.0", "1.4.0"});
  manager->postponeUpdate();
  manager->downloadAndInstall();
  EXPECT_EQ(manager->statusText(), "Downloading update 0%...");
  EXPECT_THAT(client.downloaded, ElementsAre("https://updates.example/Ostrelon-1.4.0.deb"));
  EXPECT_TRUE(manager->isBusy());
  client.progressHandler(0.5);
  EXPECT_EQ(manager->statusText(), "Downloading update 50%...");

  const DownloadedInstaller downloaded = download(installer);
  client.installerHandler(downloaded);
  EXPECT_EQ(manager->status->value, Case::verifying);
  EXPECT_TRUE(opened.empty());
  scheduler.advance(Seconds(0));
  EXPECT_EQ(manager->status->value, Case::installerOpened);
  EXPECT_THAT(opened, ElementsAre(downloaded->path()));
  EXPECT_EQ(manager->downloadProgress, std::nullopt);
  EXPECT_FALSE(manager->isBusy());
}

TEST_F(AppUpdateManagerTest, AFailedInstallationKeepsTheUpdateForAnotherTry) {
  start();
  check(true, {"1.3.0"});
  const auto install = [&](Outcome<DownloadedInstaller> outcome) {
    manager->downloadAndInstall();
    client.progressHandler(1.0);
    scheduler.advance(Seconds(60));
    client.installerHandler(std::move(outcome));
    scheduler.advance(Seconds(0));
    EXPECT_EQ(manager->status->value == Case::failed, opened.empty() || !opens);
    EXPECT_EQ(manager->downloadProgress, std::nullopt);
    EXPECT_EQ(manager->lastCheckedAt, settings->lastUpdateCheckAt.get());
    EXPECT_TRUE(manager->availableUpdate->has_value());
    return manager->statusText();
  };
  EXPECT_EQ(install(std::make_exception_ptr(AppUpdateError::invalidManifestResponse())),
            "Update metadata could not be read.");
  EXPECT_EQ(manager->lastCheckedAt, kStart + std::chrono::seconds(60));
  EXPECT_EQ(install(download("something else")), "Downloaded update failed checksum verification.");

  // Verified, and then another file lies at its path.
  const DownloadedInstaller replaced = download(installer);
  testing::writeBytes(folder / "evil", installer);
  std::filesystem::rename(folder / "evil", replaced->path());
  EXPECT_EQ(install(replaced), "The verified installer could not be opened.");
  EXPECT_TRUE(opened.empty());

  opens = false;
  EXPECT_EQ(install(download(installer)), "The verified installer could not be opened.");
  opens = true;
  EXPECT_THAT(install(download(installer)), ::testing::StartsWith("Verified installer opened."));
}

TEST_F(AppUpdateManagerTest, AForgedReleaseIsNotOpened) {
  start();
  manager->checkForUpdates(true);
  AppUpdateRelease forged = publisher().release("1.3.0", installer);
  forged.signature = Publisher().sign(signedPayload(forged));
  client.manifestHandler(AppUpdateManifest{{forged}});
  manager->downloadAndInstall();
  client.installerHandler(download(installer));
  scheduler.advance(Seconds(0));
  EXPECT_EQ(manager->statusText(), "Downloaded update failed signature verification.");
  EXPECT_TRUE(opened.empty());
}

TEST_F(AppUpdateManagerTest, ABuildWithoutAKeyDownloadsNothing) {
  start(updateConfiguration("1.2.0", "", kFeed, " "));
  check(true, {"1.3.0"});
  manager->downloadAndInstall();
  EXPECT_EQ(
      manager->statusText(),
      "Update signing key is not configured. Set OSTRELON_UPDATE_SIGNING_PUBLIC_KEY_X963 in the Release "
      "build settings before distributing Ostrelon.");
  EXPECT_TRUE(client.downloaded.empty());
}

TEST_F(AppUpdateManagerTest, EachStepIsOneNotification) {
  start();
  std::vector<FieldMask> told;
  const Subscription subscription =
      manager->observe(kAllFields, [&](FieldMask fields) { told.push_back(fields); });
  manager->checkForUpdates(true);
  serve({"1.3.0"});
  manager->downloadAndInstall();
  EXPECT_THAT(told, ElementsAre(fieldsOf(manager->status),
                                fieldsOf(manager->status, manager->lastCheckedAt, manager->latestVersion,
                                         manager->availableUpdate),
                                fieldsOf(manager->status, manager->downloadProgress)));
}

TEST_F(AppUpdateManagerTest, AnswersAfterItsEndAreDropped) {
  start();
  check(true, {"1.3.0"});
  manager->startAutomaticChecks();
  manager->downloadAndInstall();
  client.installerHandler(download(installer));
  manager->checkForUpdates(true);
  manager.reset();
  serve({});
  client.progressHandler(1.0);
  client.installerHandler(download(installer));
  scheduler.advance(Seconds(100'000));
  EXPECT_TRUE(opened.empty());
}

}  // namespace
}  // namespace ostrelon
