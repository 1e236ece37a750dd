// Auto-save on its timer, what it leaves alone, and recovery after an unclean end.
#include "documents/auto_save.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "documents/document_store.h"
#include "support/disk_sketch.h"
#include "support/manual_background.h"

namespace ostrelon {
namespace {

using testing::DiskSketch;
using ::testing::HasSubstr;
using testing::readBytes;
using ::testing::StartsWith;
using testing::writeBytes;

struct AutoSaveTest : ::testing::Test, DiskSketch {
  AutoSaveController controller{sketch, settings};
  FilePath plan = home / "plan.ostrel";

  void draw() { sketch.addLine({0, 0}, {1, 1}); }
  void minutes(double count) { scheduler.advance(Seconds(60 * count)); }
};

TEST_F(AutoSaveTest, SavesADirtyDocumentEachTimeItsTimerFires) {
  settings.useDefaultProjectsFolder();
  controller.rescheduleAutoSave();
  minutes(10);
  EXPECT_EQ(sketch.documentFileURL.get(), std::nullopt) << "a clean document is left alone";
  draw();
  minutes(5);
  const FilePath url = home / "Documents/Ostrelon/Untitled Project.ostrel";
  EXPECT_EQ(sketch.documentFileURL.get(), url);
  EXPECT_FALSE(sketch.isDocumentDirty);
  EXPECT_EQ(lastLine(), "S Saved Untitled Project.");
  EXPECT_EQ(toast(), "");
  EXPECT_EQ(settings.lastAutoSave.get(),
            (AutoSaveRecoveryCandidate{url, "Untitled Project", sketch.lastSavedAt.get()}));
  draw();
  minutes(5);
  EXPECT_EQ(sketch.documentFileURL.get(), url) << "the same file again";
  EXPECT_EQ(files.list(url.parent_path()).size(), 1U);
}

TEST_F(AutoSaveTest, FollowsItsSettingsAtOnce) {
  sketch.saveDocumentFile(plan);
  controller.rescheduleAutoSave();
  minutes(4);
  settings.setAutoSaveIntervalMinutes(1);
  draw();
  scheduler.advance(Seconds(59));
  EXPECT_TRUE(sketch.isDocumentDirty);
  settings.setAutoSaveIntervalMinutes(1);  // no change: the timer's phase stays
  scheduler.advance(Seconds(1));
  EXPECT_FALSE(sketch.isDocumentDirty);
  settings.setAutoSaveEnabled(false);
  EXPECT_FALSE(controller.hasTimer());
  draw();
  minutes(10);
  EXPECT_TRUE(sketch.isDocumentDirty);
  settings.setAutoSaveIntervalMinutes(-3);  // at least a minute
  settings.setAutoSaveEnabled(true);
  minutes(1);
  EXPECT_FALSE(sketch.isDocumentDirty);
}

TEST_F(AutoSaveTest, SkipsWhatItMayNotWriteAndSaysWhy) {
  draw();
  const std::string noFolder = "Set a default projects folder in Ostrelon Settings before saving.";
  EXPECT_EQ(autoSaveTick(sketch, settings), noFolder);
  EXPECT_EQ(lastLine(), "S Auto-save skipped: " + noFolder);
  sketch.saveDocumentFile(plan);
  draw();
  sketch.setSaveDialogActive(true);
  EXPECT_EQ(autoSaveTick(sketch, settings), std::nullopt);
  EXPECT_TRUE(sketch.isDocumentDirty);
  sketch.setSaveDialogActive(false);
  writeBytes(plan, "somebody else's");
  controller.rescheduleAutoSave();
  minutes(5);
  const std::string changed = "“plan.ostrel” has been changed by another program and was not overwritten.";
  EXPECT_EQ(lastLine(), "S Auto-save skipped: " + changed);
  EXPECT_EQ(autoSaveTick(sketch, settings), changed);
  EXPECT_EQ(readBytes(plan), "somebody else's");
  EXPECT_TRUE(dialogs.asked().empty());
  EXPECT_EQ(settings.lastAutoSave.get(), std::nullopt);
}

TEST_F(AutoSaveTest, TellsAFailureAndTriesAgain) {
  draw();
  sketch.saveDocumentFile(plan);
  sketch.addCircle({0, 0}, 1e300);
  controller.rescheduleAutoSave();
  minutes(5);
  EXPECT_THAT(lastLine(), StartsWith("E Save failed: Circle 2"));
  EXPECT_THAT(autoSaveTick(sketch, settings), ::testing::Optional(StartsWith("Save failed: Circle 2")));
  EXPECT_EQ(settings.lastAutoSave.get(), std::nullopt);
  sketch.undo();
  minutes(5);
  EXPECT_EQ(lastLine(), "S Saved plan.");
}

struct BackgroundAutoSaveTest : ::testing::Test {
  testing::TemporaryFolder home;
  DiskFileSystem files;
  testing::ManualBackground scheduler;
  QueuedDialogs dialogs;
  MemoryUserDefaults defaults;
  AppSettings settings{defaults, files, home / "Documents"};
  SketchViewModel sketch{Host{scheduler, dialogs, files}};
  AutoSaveController controller{sketch, settings};
  FilePath plan = home / "plan.ostrel";

  void startAutoSave() {
    controller.rescheduleAutoSave();
    scheduler.clock.advance(Seconds(300));
  }
  std::size_t savedEntities() {
    DiskSketch reader;
    reader.sketch.openDocumentFile(plan);
    return reader.sketch.entities->size();
  }
};

TEST_F(BackgroundAutoSaveTest, KeepsADocumentDirtyThatChangesWhileItIsWritten) {
  sketch.saveDocumentFile(plan);
  sketch.addLine({0, 0}, {1, 1});
  startAutoSave();
  sketch.addLine({0, 0}, {2, 2});
  scheduler.finishBackground();
  EXPECT_EQ(savedEntities(), 1U);
  EXPECT_TRUE(sketch.isDocumentDirty);
  scheduler.clock.advance(Seconds(300));
  scheduler.finishBackground();
  EXPECT_EQ(savedEntities(), 2U);
  EXPECT_FALSE(sketch.isDocumentDirty);
}

TEST_F(BackgroundAutoSaveTest, GivesWayToASaveOfTheUser) {
  sketch.saveDocumentFile(plan);
  sketch.addLine({0, 0}, {1, 1});
  startAutoSave();
  sketch.addLine({0, 0}, {2, 2});
  sketch.saveDocumentFile(plan);
  scheduler.finishBackground();
  EXPECT_EQ(savedEntities(), 2U);
  EXPECT_EQ(files.list(home.path()), std::vector<std::string>{"plan.ostrel"});
}

TEST_F(BackgroundAutoSaveTest, NeverPutsOneDocumentInThePlaceOfAnother) {
  settings.setCustomProjectsFolder(home.path());
  sketch.addLine({0, 0}, {1, 1});
  startAutoSave();
  sketch.newDocument();
  scheduler.finishBackground();
  EXPECT_TRUE(files.list(home.path()).empty());
  EXPECT_FALSE(sketch.isDocumentDirty);
  // A new document that has changed meanwhile, and whose name has been taken, is saved all the same.
  sketch.addLine({0, 0}, {1, 1});
  scheduler.clock.advance(Seconds(300));
  sketch.addLine({0, 0}, {2, 2});
  writeBytes(home / "Untitled Project.ostrel", "taken");
  scheduler.finishBackground();
  EXPECT_EQ(sketch.documentFileURL.get(), home / "Untitled Project (1).ostrel");
  EXPECT_EQ(readBytes(home / "Untitled Project.ostrel"), "taken");
  EXPECT_FALSE(sketch.isDocumentDirty);
}

TEST_F(BackgroundAutoSaveTest, NeverWritesThroughALinkThatHasTakenTheName) {
  settings.setCustomProjectsFolder(home.path());
  sketch.addLine({0, 0}, {1, 1});
  startAutoSave();
  std::filesystem::create_symlink("elsewhere", home / "Untitled Project.ostrel");
  scheduler.finishBackground();
  EXPECT_EQ(sketch.documentFileURL.get(), home / "Untitled Project (1).ostrel");
  EXPECT_FALSE(files.exists(home / "elsewhere"));
}

TEST_F(BackgroundAutoSaveTest, SkipsAFileThatSomebodyElseWritesMeanwhile) {
  sketch.saveDocumentFile(plan);
  sketch.addLine({0, 0}, {1, 1});
  startAutoSave();
  writeBytes(plan, "somebody else's");
  scheduler.finishBackground();
  EXPECT_EQ(readBytes(plan), "somebody else's");
  EXPECT_TRUE(sketch.isDocumentDirty);
  EXPECT_THAT(sketch.consoleLines->back().text, StartsWith("Auto-save skipped: "));
}

// --- Recovery

TEST_F(AutoSaveTest, OffersTheLastAutoSaveAfterAnUncleanEnd) {
  draw();
  sketch.saveDocumentFile(plan);
  draw();
  ASSERT_EQ(autoSaveTick(sketch, settings), std::nullopt);
  const auto nextStart = [&] {
    return AppSettings(defaults, files, home / "Documents").autoSaveRecoveryCandidate.get();
  };
  EXPECT_EQ(nextStart(), std::nullopt) << "a first run counts as clean";
  defaults.set(SettingsKey::lastSessionEndedCleanly, true);
  EXPECT_EQ(nextStart(), std::nullopt);
  defaults.set(SettingsKey::lastSessionEndedCleanly, false);
  ASSERT_EQ(nextStart(), settings.lastAutoSave.get());
  ASSERT_TRUE(nextStart()->savedAt.has_value());

  AppSettings next(defaults, files, home / "Documents");
  DiskSketch other;
  EXPECT_TRUE(restoreAutoSave(other.sketch, next));
  EXPECT_EQ(other.lastLine(), "S Restored last autosave.");
  EXPECT_EQ(other.sketch.entities->size(), 2U);
  EXPECT_EQ(next.autoSaveRecoveryCandidate.get(), std::nullopt);
  EXPECT_FALSE(restoreAutoSave(other.sketch, next));
  EXPECT_EQ(other.lastLine(), "E No autosave recovery is available.");

  other.sketch.clearSketch();
  EXPECT_TRUE(revertToLastAutoSave(other.sketch, next));
  EXPECT_EQ(other.lastLine(), "S Reverted to last autosave.");
  EXPECT_EQ(other.sketch.entities->size(), 2U);
  std::filesystem::remove(plan);
  EXPECT_FALSE(revertToLastAutoSave(other.sketch, next));
  EXPECT_EQ(other.lastLine(), "E Autosave restore failed: The file “plan.ostrel” does not exist.");
  EXPECT_EQ(nextStart(), std::nullopt) << "a file that is gone is not offered";
  EXPECT_FALSE(revertToLastAutoSave(sketch, other.settings));
  EXPECT_EQ(lastLine(), "E No last autosave is available.");
}

}  // namespace
}  // namespace ostrelon
