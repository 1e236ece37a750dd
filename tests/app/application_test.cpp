#include "app/application.h"

#include <gmock/gmock.h>

#include "app/inspector.h"
#include "app/settings_notes.h"
#include "app/update_summary.h"
#include "geometry/edit_operations.h"
#include "support/test_application.h"

namespace ostrelon {
namespace {

using testing::TestApplication;

std::optional<bool> endedCleanly(const UserDefaults& defaults) {
  return defaults.boolean(SettingsKey::lastSessionEndedCleanly);
}

TEST(ApplicationLife, ASessionCountsAsUncleanUntilItEnds) {
  TestApplication test;
  EXPECT_EQ(endedCleanly(test.defaults), std::nullopt);
  test.application.mainViewAppeared();
  EXPECT_EQ(endedCleanly(test.defaults), false);
  test.application.willTerminate();
  EXPECT_EQ(endedCleanly(test.defaults), true);
}

TEST(SettingsNotes, WhatTheSettingsFileHasToSayComesIntoTheConsole) {
  TestApplication test;
  const FilePath settings = test.home / "settings.json";
  testing::writeBytes(settings, "damaged");
  JsonUserDefaults defaults(test.files, settings);
  keepTellingSettingsNotes(defaults, test.workspace);
  EXPECT_THAT(test.lastLine().text, ::testing::HasSubstr("The settings file was damaged."));
  EXPECT_TRUE(test.lastLine().isSystem);
  std::filesystem::create_directory(settings);
  defaults.set("later", true);
  test.settle();
  EXPECT_THAT(test.lastLine().text, ::testing::StartsWith("The settings could not be read."));
}

TEST(ApplicationLife, TheFirstRunAsksForAProjectsFolder) {
  TestApplication test;
  test.application.mainViewAppeared();
  EXPECT_TRUE(*test.application.showProjectsFolderSetup);
  EXPECT_FALSE(*test.application.showAutoSaveRecoveryOffer);
  int chosen = 0;
  test.application.chooseProjectsFolder([&](const FilePath&) { ++chosen; });
  EXPECT_EQ(chosen, 0) << "a cancelled panel chooses nothing";
  EXPECT_EQ(std::get<FolderPanel>(test.dialogs.asked().back()).message,
            "Choose the folder where Ostrelon saves new projects.");
  test.application.settings().useDefaultProjectsFolder();
  test.application.completeProjectsFolderSetup();
  EXPECT_FALSE(*test.application.showProjectsFolderSetup);

  Application again(test.services(), test.options());
  again.mainViewAppeared();
  EXPECT_FALSE(*again.showProjectsFolderSetup);
}

TEST(ApplicationLife, ATestRunResetsTheFolderAndShowsNoSheets) {
  TestApplication test;
  test.defaults.set(SettingsKey::lastSessionEndedCleanly, false);
  Application testing(test.services(), test.options(true));
  testing.mainViewAppeared();
  EXPECT_FALSE(*testing.showProjectsFolderSetup);
  EXPECT_FALSE(*testing.showAutoSaveRecoveryOffer);
  EXPECT_EQ(testing.settings().projectsFolderURL.get(), testing.settings().defaultProjectsFolder());
}

TEST(ApplicationLife, AnEmptySelectionTakesTheInspectorWithIt) {
  TestApplication test;
  test.submit("wall 0 0 10 0");
  const UUID id = entityID(test.sketch.entities().front());
  showEntityInspector(test.sketch);
  toggleEntitySelection(test.sketch, id);
  test.settle();
  EXPECT_FALSE(test.sketch.selection->isInspected);
}

TEST(UpdateSummary, ShowsTheNewestVersionsFirstInTheLinesThereAre) {
  AppUpdateAvailability available;
  AppUpdateRelease older;
  older.version = "1.4.3";
  older.changes = {"d", "e", "f"};
  AppUpdateRelease latest;
  latest.version = "1.5.0";
  latest.changes = {"a", "b", "c"};
  latest.releaseNotesURL = "https://example.org/notes";
  available.interveningReleases = {older, latest};
  available.latestRelease = latest;

  const UpdateSummary six = updateSummary(available, 6);
  ASSERT_EQ(six.groups.size(), 2U);
  EXPECT_EQ(six.groups[0].version, "1.5.0");
  EXPECT_EQ(six.groups[1].changes, (std::vector<std::string>{"d"}));
  EXPECT_EQ(six.omittedChanges, 2U);
  EXPECT_EQ(six.fullNotesURL, "https://example.org/notes");
  const UpdateSummary five = updateSummary(available, 5);
  EXPECT_EQ(five.groups.size(), 1U) << "a version is not shown without one of its changes";
  EXPECT_EQ(five.omittedChanges, 3U);
  EXPECT_EQ(updateSummary(available, 100).omittedChanges, 0U);
}

}  // namespace
}  // namespace ostrelon
