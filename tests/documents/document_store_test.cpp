// Saving, opening, names and recent documents, on real files.
#include "documents/document_store.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <limits>

#include "core/adding.h"
#include "documents/document_history.h"
#include "documents/document_paths.h"
#include "documents/sketch_document_io.h"
#include "geometry/edit_operations.h"
#include "support/disk_workspace.h"

namespace ostrelon {
namespace {

using testing::DiskWorkspace;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::readBytes;
using ::testing::StartsWith;
using testing::writeBytes;

std::string messageOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const UserError& error) {
    return error.what();
  }
  return "(no failure)";
}

struct DocumentStoreTest : ::testing::Test, DiskWorkspace {
  FilePath plan = home / "plan.ostrel";

  void draw() { addLine(sketch, {0, 0}, {120.5, 0}); }
  /// Another program writes the file.
  void changeOnDisk(const FilePath& url) {
    DiskWorkspace other;
    other.document.open(url);
    addCircle(other.sketch, {1, 2}, 3);
    other.document.save(url);
  }
};

TEST_F(DocumentStoreTest, SavesAndOpensWithTheUndoSteps) {
  for (int step = 0; step < 25; ++step) addLine(sketch, {0, 0}, {step + 1.0, 0.1});
  setShowGrid(sketch, false);
  board.setViewport({10, 20, 2.5});
  document.save(home / "a/../plan.OSTREL");
  EXPECT_EQ(document.fileURL.get(), home / "plan.OSTREL");
  EXPECT_EQ(document.name.get(), "plan");
  EXPECT_FALSE(document.isDirty());
  EXPECT_EQ(document.lastSavedAt.get(), scheduler.now());

  DiskWorkspace other;
  addLine(other.sketch, {0, 0}, {1, 1});
  copySelection(other.sketch);
  other.document.open(home / "plan.OSTREL");
  EXPECT_EQ(other.sketch.entities().size(), 25U);
  EXPECT_EQ(std::get<LineEntity>(other.sketch.entities().back()).to, (SketchPoint{25, double{0.1F}}));
  EXPECT_EQ(other.sketch.drawing->wallSystemSpecs, sketch.drawing->wallSystemSpecs);
  EXPECT_EQ(other.sketch.drawing->activeWallSystemSpecID, sketch.drawing->activeWallSystemSpecID);
  EXPECT_EQ(other.board.viewport(), board.viewport());
  EXPECT_FALSE(other.sketch.drawing->showGrid);
  EXPECT_FALSE(other.board.view->isInitialized);
  EXPECT_TRUE(other.sketch.clipboard->empty());
  EXPECT_EQ(other.sketch.undoStack->undoSnapshots().size(), 20U);
  EXPECT_EQ(other.sketch.undoStack->redoSnapshots().size(), 0U);
  for (int step = 0; step < 30; ++step) other.board.undo();
  EXPECT_EQ(other.sketch.entities().size(), 5U);
}

TEST_F(DocumentStoreTest, OpensFormat1AndSavesFormat2) {
  writeBytes(plan, R"({"formatVersion":1,"documentName":"Old","entities":[{"circle":{"id":
      "5D7A1C3E-0B1F-4E6A-9C55-0F1E2D3C4B5A","center":{"x":0.1,"y":0},"radius":5}}],"wallSystemSpecs":[],
      "activeWallSystemSpecID":"5D7A1C3E-0B1F-4E6A-9C55-0F1E2D3C4B5A","viewport":{"panX":1,"panY":2,"scale":3},
      "showGrid":true})");
  const UUID activeBefore = sketch.drawing->activeWallSystemSpecID;
  document.open(plan);
  EXPECT_EQ(std::get<CircleEntity>(sketch.entities().front()).center.x, 0.1);
  EXPECT_EQ(sketch.drawing->activeWallSystemSpecID, activeBefore) << "a file without wall systems";
  EXPECT_EQ(document.name.get(), "plan") << "the name inside gives way to that of the file";
  // With no wall system at all, walls and commands cope.
  EXPECT_EQ(sketch.drawing->activeWallSystem(), nullptr);
  reply("wall 0 0 10 10");
  reply("spec list");
  reply("spec show");
  reply("undo");
  document.save(plan);
  EXPECT_THAT(readBytes(plan), StartsWith(R"({"v":2,"name":"plan")"));
}

TEST_F(DocumentStoreTest, RefusesWithoutTouchingAnything) {
  draw();
  const std::string wrong = "Ostrelon documents must use the .ostrel extension.";
  EXPECT_EQ(messageOf([&] { document.save(home / "plan.json"); }), wrong);
  EXPECT_EQ(messageOf([&] { document.open(home / ".ostrel"); }), wrong);
  EXPECT_EQ(messageOf([&] { document.save(home / "none/plan.ostrel"); }),
            "The folder “none” does not exist.");
  EXPECT_EQ(messageOf([&] { document.open(plan); }), "The file “plan.ostrel” does not exist.");
  files.createFolders(home / "dir.ostrel");
  ::mkfifo((home / "pipe.ostrel").c_str(), 0600);
  for (const std::string name : {"dir.ostrel", "pipe.ostrel"}) {
    EXPECT_THAT(messageOf([&] { document.open(home / name); }), HasSubstr("Could not read"));
    EXPECT_THAT(messageOf([&] { document.save(home / name); }), HasSubstr("Could not write"));
  }
  writeBytes(plan, "{\"v\":2}");
  EXPECT_THAT(messageOf([&] { document.open(plan); }), HasSubstr("\"name\" is missing"));
  EXPECT_TRUE(document.isDirty());
  EXPECT_EQ(document.lastSavedAt.get(), std::nullopt);
  EXPECT_EQ(document.fileURL.get(), std::nullopt);
  EXPECT_EQ(sketch.entities().size(), 1U);
  EXPECT_EQ(files.list(home.path()).size(), 3U) << "no file is left behind";
}

TEST_F(DocumentStoreTest, KeepsTheFileWhenWhatIsDrawnCannotBeWritten) {
  draw();
  document.save(plan);
  const std::string before = readBytes(plan);
  addCircle(sketch, {0, 0}, 1e300);
  EXPECT_THAT(messageOf([&] { document.save(plan); }), HasSubstr("Circle 2"));
  EXPECT_EQ(readBytes(plan), before);
  EXPECT_TRUE(document.isDirty());
  // Once it is gone the document can be saved again, though an undo step still holds it.
  deleteEntity(sketch, messages, entityID(sketch.entities().back()));
  document.save(plan);
  EXPECT_FALSE(document.isDirty());
}

TEST_F(DocumentStoreTest, RemovesWhatAKilledSaveHasLeftADayAgo) {
  const std::string abandoned = ".ostrelon-5D7A1C3E-0B1F-4E6A-9C55-0F1E2D3C4B5A.tmp";
  const std::string recent = ".ostrelon-5D7A1C3E-0B1F-4E6A-9C55-0F1E2D3C4B5B.tmp";
  for (const std::string& name : {abandoned, recent, std::string(".ostrelon-mine.tmp")}) {
    writeBytes(home / name, "");
    if (name == recent) continue;
    std::filesystem::last_write_time(home / name,
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(25));
  }
  document.save(plan);
  EXPECT_THAT(files.list(home.path()),
              ::testing::UnorderedElementsAre(recent, ".ostrelon-mine.tmp", "plan.ostrel"));
}

TEST_F(DocumentStoreTest, SavesUnderANameAloneInTheWorkingFolder) {
  const FilePath before = std::filesystem::current_path();
  std::filesystem::current_path(home.path());
  files.writeFile("settings.json", "{}");
  document.save("plan.ostrel");
  std::filesystem::current_path(before);
  EXPECT_EQ(document.fileURL.get(), home / "plan.ostrel");
  EXPECT_THAT(files.list(home.path()), ::testing::UnorderedElementsAre("plan.ostrel", "settings.json"));
}

TEST_F(DocumentStoreTest, FollowsLinksAndKeepsPermissions) {
  draw();
  document.save(plan);
  ::chmod(plan.c_str(), 0640);
  std::filesystem::create_symlink("plan.ostrel", home / "link.ostrel");
  document.save(home / "link.ostrel");
  EXPECT_TRUE(std::filesystem::is_symlink(home / "link.ostrel"));
  EXPECT_THAT(readBytes(plan), HasSubstr("\"name\":\"plan\""));
  struct stat status {};
  ::stat(plan.c_str(), &status);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
  std::filesystem::create_symlink("new.ostrel", home / "dangling.ostrel");
  document.save(home / "dangling.ostrel");
  EXPECT_TRUE(std::filesystem::is_regular_file(home / "new.ostrel"));
  std::filesystem::create_symlink("circle.ostrel", home / "circle.ostrel");
  EXPECT_THAT(messageOf([&] { document.save(home / "circle.ostrel"); }), HasSubstr("circle"));
}

TEST(DocumentStoreFailures, TellsEveryStepThatFailsAndLeavesTheOldFile) {
  struct Row {
    std::function<void(testing::FailingCalls&)> fail;
    int error;
    std::string text;
  };
  const std::vector<Row> rows{
      {[](auto& calls) { calls.fail(&FileSystemCalls::open); }, EACCES,
       "You do not have permission to write"},
      {[](auto& calls) { calls.fail(&FileSystemCalls::open); }, EROFS, "the disk can only be read"},
      {[](auto& calls) { calls.fail(&FileSystemCalls::write); }, ENOSPC, "the disk is full"},
      {[](auto& calls) { calls.fail(&FileSystemCalls::write); }, EDQUOT, "your share of the disk is used up"},
      {[](auto& calls) { calls.fail(&FileSystemCalls::write); }, EFBIG, "the file would be too large"},
      {[](auto& calls) { calls.fail(&FileSystemCalls::fchmod); }, EPERM, "You do not have permission"},
      {[](auto& calls) { calls.fail(&FileSystemCalls::fsync); }, EIO, "the disk reported an error"},
      {[](auto& calls) { calls.fail(&FileSystemCalls::close); }, EIO, "the disk reported an error"},
      {[](auto& calls) { calls.fail(&FileSystemCalls::rename); }, ENOSPC, "the disk is full"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.text);
    testing::FailingCalls failing;
    row.fail(failing);
    DiskWorkspace on(failing.calls);
    const FilePath url = on.home / "plan.ostrel";
    addLine(on.sketch, {0, 0}, {1, 1});
    on.document.save(url);
    const std::string before = readBytes(url);
    addLine(on.sketch, {0, 0}, {2, 2});
    on.scheduler.advance(Seconds(10));
    *failing.error = row.error;
    EXPECT_THAT(saveToURL(on.document, on.settings, url, true), ::testing::Optional(HasSubstr(row.text)));
    EXPECT_THAT(on.lastLine(), StartsWith("E Save failed: "));
    EXPECT_EQ(on.toast(), on.messages.lines->back().text);
    EXPECT_EQ(readBytes(url), before);
    EXPECT_TRUE(on.document.isDirty());
    EXPECT_EQ(secondsBetween(**on.document.lastSavedAt, on.scheduler.now()), 10);
    *failing.error = 0;
    EXPECT_THAT(on.files.list(on.home.path()), ElementsAre("plan.ostrel"));
    EXPECT_EQ(saveToURL(on.document, on.settings, url, true), std::nullopt);
  }
}

TEST(DocumentStoreFailures, KnowsItsOwnFileWhenOnlyTheFolderCouldNotBeMadeToLast) {
  testing::FailingCalls failing;
  int syncs = 0;
  failing.calls.fsync = [&](int file) {
    if (++syncs != 4) return ::fsync(file);  // of the second save, the folder's
    errno = EIO;
    return -1;
  };
  DiskWorkspace on(failing.calls);
  addLine(on.sketch, {0, 0}, {1, 1});
  on.document.save(on.home / "plan.ostrel");
  addLine(on.sketch, {0, 0}, {2, 2});
  EXPECT_NE(saveToURL(on.document, on.settings, on.home / "plan.ostrel", false), std::nullopt);
  EXPECT_TRUE(on.document.isDirty());
  saveCurrentDocument(on.document, on.settings, false);
  EXPECT_EQ(on.lastLine(), "S Saved plan.") << "without a question: nobody else has written the file";
}

TEST(DocumentStoreFailures, TakesTheNextNameWhenAnotherWindowIsQuicker) {
  testing::InterruptedCalls interrupted;
  DiskWorkspace on(interrupted.calls);
  on.settings.useDefaultProjectsFolder();
  const FilePath folder = on.home / "Documents/Ostrelon";
  const FilePath first = folder / "Untitled Project.ostrel";
  std::filesystem::create_symlink(folder / "nothing", folder / "Untitled Project (1).ostrel");
  addLine(on.sketch, {0, 0}, {1, 1});
  *interrupted.work = [&] { writeBytes(first, "theirs"); };
  saveCurrentDocument(on.document, on.settings, false);
  EXPECT_EQ(on.document.fileURL.get(), folder / "Untitled Project (2).ostrel")
      << "one that leads nowhere is no free name either";
  EXPECT_EQ(readBytes(first), "theirs");
  EXPECT_EQ(on.files.list(folder).size(), 3U) << "nothing is written through the link, and none left behind";
}

TEST(DocumentStoreFailures, NoticesWhatAnotherProgramWritesWhileItSaves) {
  testing::InterruptedCalls interrupted;
  DiskWorkspace on(interrupted.calls);
  const FilePath plan = on.home / "plan.ostrel";
  addLine(on.sketch, {0, 0}, {1, 1});
  on.document.save(plan);
  on.document.saveCheckpoint("one");
  on.document.createBranch("b");
  const auto expectRefused = [&](const std::string& prefix, const std::function<void()>& command) {
    *interrupted.work = [&] { writeBytes(plan, "theirs"); };
    const bool wasDirty = on.document.isDirty();
    command();
    EXPECT_EQ(on.messages.lines->back().text,
              prefix + "“plan.ostrel” has been changed by another program and was not overwritten.");
    EXPECT_EQ(readBytes(plan), "theirs");
    EXPECT_EQ(on.document.isDirty(), wasDirty);
    on.dialogs.queue("Overwrite");
    saveCurrentDocument(on.document, on.settings, false);
    EXPECT_EQ(on.lastLine(), "S Saved plan.");
  };
  expectRefused("Switch branch failed: ", [&] { on.reply("branch switch b"); });
  EXPECT_EQ(loadDocumentHistory(on.files, plan).metadata.currentBranchID, "main");
  addLine(on.sketch, {0, 0}, {2, 2});
  expectRefused("Checkpoint failed: ", [&] { on.reply("checkpoint two"); });
  addLine(on.sketch, {0, 0}, {3, 3});
  expectRefused("Save failed: ", [&] { saveCurrentDocument(on.document, on.settings, false); });
}

// Runs `work` in a process of its own; gives the status that it exits with.
int inChild(const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work());
  int status = 0;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(DocumentStoreTest, KeepsTheGroupOfAFileWhereItMay) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs to become another user";
  constexpr gid_t team = 4711;
  constexpr uid_t user = 65534;
  document.save(plan);
  ASSERT_EQ(::chown(plan.c_str(), 0, team), 0);
  ::chmod(plan.c_str(), 0660);
  ::chmod(home.path().c_str(), 0777);
  const int status = inChild([&] {
    if (::setgroups(1, &team) != 0 || ::setgid(user) != 0 || ::setuid(user) != 0) return 1;
    return saveToURL(document, settings, plan, false) ? 2 : 7;
  });
  EXPECT_EQ(status, 7);
  struct stat saved {};
  ::stat(plan.c_str(), &saved);
  EXPECT_EQ(saved.st_uid, user);
  EXPECT_EQ(saved.st_gid, team);
  EXPECT_EQ(saved.st_mode & 07777U, 0660U);
}

// --- The commands

TEST_F(DocumentStoreTest, AsksWhereWithoutAProjectsFolder) {
  draw();
  std::vector<SaveOutcome> outcomes;
  const auto done = [&](SaveOutcome outcome) { outcomes.push_back(outcome); };
  saveCurrentDocument(document, settings, true, done);
  scheduler.advance(Seconds(0));
  EXPECT_EQ(toast(), "") << "nothing is being saved while the panel is up";
  EXPECT_FALSE(document.isSaveDialogActive);
  dialogs.queue((home / "house.").string());
  saveDocumentAs(document, settings, false, done);
  EXPECT_EQ(document.fileURL.get(), home / "house.ostrel");
  EXPECT_EQ(defaults.map(SettingsKey::documentBookmarks),
            (DefaultsMap{{(home / "house.ostrel").string(), (home / "house.ostrel").string()}}));
  dialogs.queue((home / "house.json").string());
  saveDocumentAs(document, settings, false, done);
  EXPECT_EQ(lastLine(), "E Save failed: Ostrelon documents must use the .ostrel extension.");
  EXPECT_THAT(outcomes, ElementsAre(SaveOutcome::cancelled, SaveOutcome::saved, SaveOutcome::failed));
  const auto& panel = std::get<SavePanel>(dialogs.asked().back());
  EXPECT_EQ(panel.startingFolder, home.path());
  EXPECT_EQ(panel.suggestedName, "house.ostrel");
}

TEST_F(DocumentStoreTest, AsksBeforeItReplacesWhatTheSavePanelKnewNothingOf) {
  draw();
  writeBytes(plan, "theirs");
  const auto saveAs = [&](const std::string& name) {
    dialogs.queue((home / name).string());
    saveDocumentAs(document, settings, false);
  };
  dialogs.setConfirmsReplacing(true);
  for (const std::string name : {"plan", "plan."}) {
    saveAs(name);
    EXPECT_EQ(std::get<Alert>(dialogs.asked().back()).message,
              "“plan.ostrel” already exists. Do you want to replace it?");
    EXPECT_EQ(readBytes(plan), "theirs");
    EXPECT_FALSE(document.isSaveDialogActive);
  }
  saveAs("new");
  saveAs("new.ostrel");
  EXPECT_EQ(dialogs.asked().size(), 6U)
      << "no question about a free name, or one that the panel has asked about";
  dialogs.queue((home / "plan").string());
  dialogs.queue("Replace");
  saveDocumentAs(document, settings, false);
  EXPECT_EQ(document.fileURL.get(), plan);
  dialogs.setConfirmsReplacing(false);
  saveAs("new");
  EXPECT_EQ(document.fileURL.get(), home / "new.ostrel") << "a script means the paths that it gives";
}

TEST_F(DocumentStoreTest, AsksBeforeItOverwritesWhatAnotherProgramHasWritten) {
  draw();
  document.save(plan);
  saveCurrentDocument(document, settings, false);
  EXPECT_THAT(dialogs.asked(), IsEmpty());
  changeOnDisk(plan);
  const std::string theirs = readBytes(plan);
  draw();
  saveCurrentDocument(document, settings, true);
  scheduler.advance(Seconds(0));
  EXPECT_EQ(lastLine(),
            "E Save failed: “plan.ostrel” has been changed by another program and was not overwritten.");
  EXPECT_EQ(toast(), messages.lines->back().text);
  EXPECT_EQ(readBytes(plan), theirs);
  EXPECT_TRUE(document.isDirty());
  EXPECT_EQ(std::get<Alert>(dialogs.asked().back()).message,
            "“plan.ostrel” has been changed by another program.");
  dialogs.queue("Overwrite");
  saveCurrentDocument(document, settings, false);
  EXPECT_EQ(lastLine(), "S Saved plan.");
  // The same bytes written anew are no change, and a file that is gone is no loss.
  const std::string same = readBytes(plan);
  std::filesystem::remove(plan);
  writeBytes(plan, same);
  saveCurrentDocument(document, settings, false);
  std::filesystem::remove(plan);
  saveCurrentDocument(document, settings, false);
  EXPECT_EQ(lastLine(), "S Saved plan.");
  EXPECT_EQ(dialogs.asked().size(), 2U);
}

TEST_F(DocumentStoreTest, ListsTheLatestDocumentsOfTheProjectsFolder) {
  EXPECT_EQ(messageOf([&] { recentDocuments(settings, 0); }),
            "Set a default projects folder in Ostrelon Settings before saving.");
  settings.setCustomProjectsFolder(home.path());
  const auto put = [&](const std::string& name, int age) {
    writeBytes(home / name, "");
    std::filesystem::last_write_time(home / name,
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(age));
  };
  put("b10.ostrel", 2);
  put("b2.ostrel", 2);
  put("B2.ostrel", 2);
  put("newest.OSTREL", 1);
  put("other.txt", 0);
  put(".hidden.ostrel", 0);
  const auto same = std::filesystem::last_write_time(home / "b10.ostrel");
  std::filesystem::last_write_time(home / "b2.ostrel", same);
  std::filesystem::last_write_time(home / "B2.ostrel", same);
  files.createFolders(home / "x.ostrel");
  ::mkfifo((home / "pipe.ostrel").c_str(), 0600);
  EXPECT_THAT(recentDocuments(settings, 10), ElementsAre(home / "newest.OSTREL", home / "B2.ostrel",
                                                         home / "b2.ostrel", home / "b10.ostrel"));
  EXPECT_THAT(recentDocuments(settings, 2), ElementsAre(home / "newest.OSTREL", home / "B2.ostrel"));
  EXPECT_THAT(recentDocuments(settings, 0), IsEmpty());
  std::filesystem::remove_all(home.path());
  EXPECT_THAT(recentDocuments(settings, -1), IsEmpty()) << "no limit, no look at the disk";
  EXPECT_THAT(messageOf([&] { recentDocuments(settings, 1); }), EndsWith("does not exist."));
}

}  // namespace
}  // namespace ostrelon
