// Auto-save on its timer, what it leaves alone, and recovery after an unclean end.
#include "documents/auto_save.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "core/adding.h"
#include "documents/document_store.h"
#include "support/disk_workspace.h"
#include "support/manual_background.h"

namespace ostrelon {
namespace {

using testing::DiskWorkspace;
using ::testing::HasSubstr;
using testing::readBytes;
using ::testing::StartsWith;
using testing::writeBytes;

struct AutoSaveTest : ::testing::Test, DiskWorkspace {
  AutoSaveController controller{document, settings};
  FilePath plan = home / "plan.ostrel";

  void draw() { addLine(sketch, {0, 0}, {1, 1}); }
  void minutes(double count) { scheduler.advance(Seconds(60 * count)); }
};

TEST_F(AutoSaveTest, SkipsWhatItMayNotWriteAndSaysWhy) {
  draw();
  const std::string noFolder = "Set a default projects folder in Ostrelon Settings before saving.";
  EXPECT_EQ(autoSaveTick(document, settings), noFolder);
  EXPECT_EQ(lastLine(), "S Auto-save skipped: " + noFolder);
  document.save(plan);
  draw();
  document.setSaveDialogActive(true);
  EXPECT_EQ(autoSaveTick(document, settings), std::nullopt);
  EXPECT_TRUE(document.isDirty());
  document.setSaveDialogActive(false);
  writeBytes(plan, "somebody else's");
  controller.rescheduleAutoSave();
  minutes(5);
  const std::string changed = "“plan.ostrel” has been changed by another program and was not overwritten.";
  EXPECT_EQ(lastLine(), "S Auto-save skipped: " + changed);
  EXPECT_EQ(autoSaveTick(document, settings), changed);
  EXPECT_EQ(readBytes(plan), "somebody else's");
  EXPECT_TRUE(dialogs.asked().empty());
  EXPECT_EQ(settings.lastAutoSave.get(), std::nullopt);
}

struct BackgroundAutoSaveTest : ::testing::Test {
  testing::TemporaryFolder home;
  DiskFileSystem files;
  testing::ManualBackground scheduler;
  QueuedDialogs dialogs;
  MemoryUserDefaults defaults;
  AppSettings settings{defaults, files, home / "Documents"};
  Workspace workspace{Host{scheduler, dialogs, files}};
  Sketch& sketch = workspace.sketch;
  DocumentSession& document = workspace.document;
  AutoSaveController controller{document, settings};
  FilePath plan = home / "plan.ostrel";

  void startAutoSave() {
    controller.rescheduleAutoSave();
    scheduler.clock.advance(Seconds(300));
  }
  std::size_t savedEntities() {
    DiskWorkspace reader;
    reader.document.open(plan);
    return reader.sketch.entities().size();
  }
};

TEST_F(BackgroundAutoSaveTest, KeepsADocumentDirtyThatChangesWhileItIsWritten) {
  document.save(plan);
  addLine(sketch, {0, 0}, {1, 1});
  startAutoSave();
  addLine(sketch, {0, 0}, {2, 2});
  scheduler.finishBackground();
  EXPECT_EQ(savedEntities(), 1U);
  EXPECT_TRUE(document.isDirty());
  scheduler.clock.advance(Seconds(300));
  scheduler.finishBackground();
  EXPECT_EQ(savedEntities(), 2U);
  EXPECT_FALSE(document.isDirty());
}

TEST_F(BackgroundAutoSaveTest, GivesWayToASaveOfTheUser) {
  document.save(plan);
  addLine(sketch, {0, 0}, {1, 1});
  startAutoSave();
  addLine(sketch, {0, 0}, {2, 2});
  document.save(plan);
  scheduler.finishBackground();
  EXPECT_EQ(savedEntities(), 2U);
  EXPECT_EQ(files.list(home.path()), std::vector<std::string>{"plan.ostrel"});
}

TEST_F(BackgroundAutoSaveTest, NeverPutsOneDocumentInThePlaceOfAnother) {
  settings.setCustomProjectsFolder(home.path());
  addLine(sketch, {0, 0}, {1, 1});
  startAutoSave();
  document.begin();
  scheduler.finishBackground();
  EXPECT_TRUE(files.list(home.path()).empty());
  EXPECT_FALSE(document.isDirty());
  // A new document that has changed meanwhile, and whose name has been taken, is saved all the same.
  addLine(sketch, {0, 0}, {1, 1});
  scheduler.clock.advance(Seconds(300));
  addLine(sketch, {0, 0}, {2, 2});
  writeBytes(home / "Untitled Project.ostrel", "taken");
  scheduler.finishBackground();
  EXPECT_EQ(document.fileURL.get(), home / "Untitled Project (1).ostrel");
  EXPECT_EQ(readBytes(home / "Untitled Project.ostrel"), "taken");
  EXPECT_FALSE(document.isDirty());
}

TEST_F(BackgroundAutoSaveTest, NeverWritesThroughALinkThatHasTakenTheName) {
  settings.setCustomProjectsFolder(home.path());
  addLine(sketch, {0, 0}, {1, 1});
  startAutoSave();
  std::filesystem::create_symlink("elsewhere", home / "Untitled Project.ostrel");
  scheduler.finishBackground();
  EXPECT_EQ(document.fileURL.get(), home / "Untitled Project (1).ostrel");
  EXPECT_FALSE(files.exists(home / "elsewhere"));
}

TEST_F(BackgroundAutoSaveTest, SkipsAFileThatSomebodyElseWritesMeanwhile) {
  document.save(plan);
  addLine(sketch, {0, 0}, {1, 1});
  startAutoSave();
  writeBytes(plan, "somebody else's");
  scheduler.finishBackground();
  EXPECT_EQ(readBytes(plan), "somebody else's");
  EXPECT_TRUE(document.isDirty());
  EXPECT_THAT(workspace.messages.lines->back().text, StartsWith("Auto-save skipped: "));
}

}  // namespace
}  // namespace ostrelon
