#include "documents/app_settings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/disk_workspace.h"

namespace ostrelon {
namespace {

struct AppSettingsTest : ::testing::Test {
  testing::TemporaryFolder home;
  DiskFileSystem files;
  MemoryUserDefaults defaults;

  AppSettings start() { return AppSettings(defaults, files, home / "Documents"); }
};

TEST_F(AppSettingsTest, ReadsItsKeysOnceWithTheirDefaultsAndLimits) {
  const AppSettings fresh(defaults, files, home / "Documents");
  EXPECT_EQ(*fresh.appearanceMode, AppearanceMode::system);
  EXPECT_TRUE(fresh.autoSaveEnabled);
  EXPECT_EQ(*fresh.autoSaveIntervalMinutes, 5);
  EXPECT_FALSE(fresh.isProjectsFolderConfigured());
  const std::vector<std::pair<std::int64_t, int>> intervals{
      {500, 120}, {120, 120}, {1, 1}, {0, 5}, {-3, 5}, {std::int64_t{1} << 40, 120}};
  for (const auto& [stored, read] : intervals) {
    defaults.set(SettingsKey::autoSaveIntervalMinutes, stored);
    EXPECT_EQ(*AppSettings(defaults, files, home.path()).autoSaveIntervalMinutes, read) << stored;
  }
  defaults.set(SettingsKey::appearanceMode, std::string("sepia"));
  defaults.set(SettingsKey::autoSaveEnabled, false);
  defaults.set(SettingsKey::lastUpdateCheckAt, std::string("yesterday"));
  defaults.set(SettingsKey::postponedUpdateVersion, std::string("1.2"));
  const AppSettings odd(defaults, files, home / "Documents");
  EXPECT_EQ(*odd.appearanceMode, AppearanceMode::system);
  EXPECT_FALSE(odd.autoSaveEnabled);
  EXPECT_EQ(*odd.lastUpdateCheckAt, std::nullopt);
  EXPECT_EQ(*odd.postponedUpdateVersion, "1.2");
}

TEST_F(AppSettingsTest, WritesThroughAndTellsItsObserversOfWhatDiffers) {
  AppSettings settings(defaults, files, home / "Documents");
  std::vector<FieldMask> told;
  const auto observation = settings.observe(kAllFields, [&](FieldMask fields) { told.push_back(fields); });
  settings.setAutoSaveIntervalMinutes(0);
  EXPECT_EQ(defaults.integer(SettingsKey::autoSaveIntervalMinutes), 1);
  EXPECT_EQ(*settings.autoSaveIntervalMinutes, 0) << "the property keeps what it was set to";
  settings.setAutoSaveIntervalMinutes(500);
  EXPECT_EQ(defaults.integer(SettingsKey::autoSaveIntervalMinutes), 120);
  settings.setAppearanceMode(AppearanceMode::light);  // the palette is the light one already
  settings.setAppearanceMode(AppearanceMode::tansy);
  settings.updateColorScheme(ColorScheme::dark);
  settings.updateColorScheme(std::nullopt);
  settings.setAppearanceMode(AppearanceMode::system);
  EXPECT_EQ(*settings.activePalette, darkPalette());
  EXPECT_EQ(told, (std::vector<FieldMask>{
                      fieldsOf(settings.autoSaveIntervalMinutes),
                      fieldsOf(settings.autoSaveIntervalMinutes),
                      fieldsOf(settings.appearanceMode),
                      fieldsOf(settings.appearanceMode, settings.activePalette),
                      fieldsOf(settings.lastKnownColorScheme),
                      fieldsOf(settings.appearanceMode, settings.activePalette),
                  }));
  settings.setLastUpdateCheckAt(dateFromSeconds(7));
  EXPECT_EQ(defaults.date(SettingsKey::lastUpdateCheckAt), dateFromSeconds(7));
  settings.setLastUpdateCheckAt(std::nullopt);
  EXPECT_FALSE(defaults.has(SettingsKey::lastUpdateCheckAt));
}

TEST_F(AppSettingsTest, TellsWhatIsInsideTheProjectsFolder) {
  AppSettings settings(defaults, files, home / "Documents");
  EXPECT_FALSE(settings.isInsideProjectsFolder(home.path()));
  settings.setCustomProjectsFolder(home.path().string() + "/x/../");
  EXPECT_EQ(settings.projectsFolderURL->value(), home.path());
  EXPECT_TRUE(settings.isInsideProjectsFolder(home.path()));
  EXPECT_TRUE(settings.isInsideProjectsFolder(home / "deep/er.ostrel"));
  EXPECT_FALSE(settings.isInsideProjectsFolder(home.path().string() + "2/a.ostrel"));
  EXPECT_FALSE(settings.isInsideProjectsFolder(home / "../a.ostrel"));
}

TEST_F(AppSettingsTest, KeepsTheProjectsFolderByItsKind) {
  const FilePath standard = home / "Documents/Ostrelon";
  const auto storage = [&] { return defaults.text(SettingsKey::projectsFolderStorage).value_or("-"); };
  const auto bookmark = [&] { return defaults.text(SettingsKey::projectsFolderBookmark).value_or("-"); };
  const auto folderAtStart = [&] {
    return AppSettings(defaults, files, home / "Documents").projectsFolderURL.get();
  };
  AppSettings settings(defaults, files, home / "Documents");
  EXPECT_THROW(settings.setCustomProjectsFolder(home / "none"), FileError);
  EXPECT_EQ(storage(), "-");
  // The default folder chosen by hand is the default folder.
  settings.setCustomProjectsFolder(standard);
  EXPECT_TRUE(std::filesystem::is_directory(standard));
  EXPECT_EQ(storage() + bookmark(), "default-");
  std::filesystem::remove(standard);
  EXPECT_EQ(folderAtStart(), standard);
  EXPECT_TRUE(std::filesystem::is_directory(standard)) << "made at the start if need be";

  settings.setCustomProjectsFolder(home.path());
  EXPECT_EQ(storage() + bookmark(), "custom" + home.path().string());
  EXPECT_EQ(folderAtStart(), home.path());
  defaults.remove(SettingsKey::projectsFolderStorage);
  EXPECT_EQ(folderAtStart(), home.path());
  EXPECT_EQ(storage(), "custom") << "put in order";
  defaults.set(SettingsKey::projectsFolderStorage, std::string("odd"));
  defaults.set(SettingsKey::projectsFolderBookmark, standard.string());
  EXPECT_EQ(folderAtStart(), standard);
  EXPECT_EQ(storage() + bookmark(), "default-");
  defaults.set(SettingsKey::projectsFolderStorage, std::string("custom"));
  EXPECT_EQ(folderAtStart(), std::nullopt);
  const std::string gone = home / "unplugged";
  defaults.set(SettingsKey::projectsFolderBookmark, gone);
  EXPECT_EQ(folderAtStart(), std::nullopt);
  EXPECT_EQ(storage() + bookmark(), "custom" + gone) << "it may come back";
  std::filesystem::create_directory(gone);
  EXPECT_EQ(folderAtStart(), gone);
  settings.clearProjectsFolder();
  EXPECT_EQ(storage() + bookmark(), "--");
  settings.resetProjectsFolderForUITesting();
  EXPECT_EQ(settings.projectsFolderURL->value(), standard);
}

TEST_F(AppSettingsTest, TellsAStartForATestOfTheInterface) {
  EXPECT_TRUE(isUITestingStart({"ostrelon", "-uiTestingResetProjectsFolder"}, std::nullopt));
  EXPECT_TRUE(isUITestingStart({}, "1"));
  EXPECT_FALSE(isUITestingStart({"--uiTestingResetProjectsFolder"}, "true"));
}

}  // namespace
}  // namespace ostrelon
