#include "documents/kept_drawings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "documents/auto_save.h"
#include "documents/document_store.h"
#include "support/disk_workspace.h"

namespace ostrelon {
namespace {

using testing::DiskWorkspace;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr double kDay = 24.0 * 60 * 60;

KeptDrawing keepBytes(const KeptDrawings& store, std::string name, Date at, std::size_t size) {
  return store.keep({{}, std::move(name), FilePath("/a/b.ostrel"), at, "New document", 7},
                    [&](const auto& write) { write(std::string(size, 'x')); });
}

std::vector<std::string> namesOf(const std::vector<KeptDrawing>& kept) {
  std::vector<std::string> names;
  for (const KeptDrawing& one : kept) names.push_back(one.name);
  return names;
}

TEST(KeptDrawings, ListsTheNewestFirstAndDropsWhatIsBeyondTheLimits) {
  testing::TemporaryFolder home;
  DiskFileSystem files;
  const FilePath folder = home / "state/kept";
  const KeptDrawings store(files, folder, {.count = 2, .age = Seconds(3 * kDay), .bytes = 1000});
  EXPECT_THAT(store.list(), IsEmpty());
  const Date start = dateFromSeconds(1'767'225'600);
  const KeptDrawing first = keepBytes(store, "first", start, 100);
  EXPECT_THAT(store.list(), ElementsAre(first));
  EXPECT_EQ(store.read(first.id), std::string(100, 'x'));
  using std::filesystem::perms;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    EXPECT_EQ(entry.status().permissions(), perms::owner_read | perms::owner_write) << entry.path();
  }

  keepBytes(store, "same moment", start, 5000);
  keepBytes(store, "later", start, 100);
  EXPECT_THAT(namesOf(store.list()), ElementsAre("later", "same moment")) << "5,000 bytes are too many";
  const Date later = advanced(start, Seconds(2 * kDay));
  for (const char* name : {"x", "y", "z"}) keepBytes(store, name, later, 100);
  EXPECT_THAT(namesOf(store.list()), ElementsAre("z", "y", "x", "later")) << "young, and small enough";
  keepBytes(store, "much later", advanced(start, Seconds(9 * kDay)), 100);
  EXPECT_THAT(namesOf(store.list()), ElementsAre("much later", "z"));

  // Damage hides one drawing alone, and no identifier leads out of the folder.
  files.writeFile(folder / (store.list()[0].id + ".json"), "{");
  EXPECT_THAT(namesOf(store.list()), ElementsAre("z"));
  files.writeFile(home / "state/secret.ostrel", "");
  files.writeFile(home / "state/secret.json", "{}");
  EXPECT_THROW(store.read("../secret"), UserError);
  store.remove(store.list()[0].id);
  EXPECT_THAT(store.list(), IsEmpty());
}

// --- What the commands keep

struct KeepingWorkspace : DiskWorkspace {
  explicit KeepingWorkspace(FileSystemCalls calls = FileSystemCalls::ofTheSystem())
      : DiskWorkspace(std::move(calls)) {
    settings.useDefaultProjectsFolder();
    document.keepDrawingsIn(KeptDrawings(files, home / "kept"), [] {});
  }
  FilePath file(const std::string& name) const { return home / "Documents/Ostrelon" / (name + ".ostrel"); }
  void draw(const std::string& line) { EXPECT_EQ(reply(line), "Line added."); }
  /// "NAME, REASON, number of entities", the newest first.
  std::vector<std::string> kept() const {
    std::vector<std::string> texts;
    for (const KeptDrawing& one : document.keptDrawings()) {
      texts.push_back(one.name + ", " + one.reason + ", " + std::to_string(one.entities));
    }
    return texts;
  }
};

TEST(KeptDrawings, KeepWhatASwitchOfBranchWouldDestroy) {
  KeepingWorkspace t;
  t.draw("line 0 0 1 1");
  t.document.save(t.file("A"));
  t.reply("checkpoint one");
  t.reply("branch create other");
  t.reply("branch switch other");
  EXPECT_THAT(t.kept(), IsEmpty()) << "the checkpoint of main holds it";
  t.draw("line 0 0 2 2");
  t.document.save(t.file("A"));
  EXPECT_EQ(t.reply("branch switch main"), "Switched to branch main.");
  EXPECT_THAT(t.kept(), ElementsAre("A, Switched to branch main, 2"));

  // A document of the same folder shares the branches, and has never been in one of them.
  t.document.begin();
  for (int i = 0; i < 5; ++i) t.draw("line 0 0 1 " + std::to_string(i));
  t.document.save(t.file("B"));
  t.reply("branch switch other");
  EXPECT_EQ(t.sketch.entities().size(), 1U);
  EXPECT_EQ(t.kept()[0], "B, Switched to branch other, 5");

  // It comes back as an edit, and undo takes it away.
  t.document.restoreKeptDrawing(t.document.keptDrawings()[0].id);
  EXPECT_EQ(t.sketch.entities().size(), 5U);
  t.sketch.undo();
  EXPECT_EQ(t.sketch.entities().size(), 1U);
}

TEST(KeptDrawings, KeepUnsavedChangesAndWhatFilesHeld) {
  KeepingWorkspace t;
  t.document.begin();
  EXPECT_THAT(t.kept(), IsEmpty()) << "nothing was drawn";
  t.draw("line 0 0 1 1");
  t.document.begin();
  EXPECT_THAT(t.kept(), ElementsAre("Untitled Project, New document, 1"));

  t.draw("line 0 0 2 2");
  t.draw("line 0 0 3 3");
  t.document.save(t.file("A"));
  t.document.begin();
  EXPECT_THAT(t.kept(), SizeIs(1)) << "the file holds it";
  t.draw("line 0 0 4 4");
  t.document.save(t.file("A"));
  EXPECT_EQ(t.kept()[0], "A, Saved over A, 2");

  t.draw("line 0 0 5 5");
  t.sketch.undo();
  openDocument(t.document, t.settings, t.file("A"));
  EXPECT_THAT(t.kept(), SizeIs(2)) << "dirty, but as it was";
  t.draw("line 0 0 5 5");
  t.settings.recordLastAutoSave(t.file("A"), "A", std::nullopt);
  revertToLastAutoSave(t.document, t.settings);
  EXPECT_EQ(t.kept()[0], "A, Reverted to last autosave, 2");

  // A file that is gone, and one that another program has changed into no drawing at all.
  t.files.removeFile(t.file("A"));
  t.document.begin();
  EXPECT_EQ(t.kept()[0], "A, New document, 1");
  t.draw("line 0 0 6 6");
  t.document.save(t.file("C"));
  t.files.writeFile(t.file("C"), "no drawing");
  t.document.save(t.file("C"));
  EXPECT_EQ(t.kept()[0], "C, Saved over C, 0");
  EXPECT_THROW(t.document.openKeptDrawing(t.document.keptDrawings()[0].id), UserError);
  t.document.openKeptDrawing(t.document.keptDrawings()[1].id);
  EXPECT_TRUE(t.document.isDirty());
  EXPECT_FALSE(t.document.fileURL->has_value());
  EXPECT_EQ(*t.document.name, "A");
  t.document.begin();
  EXPECT_THAT(t.kept(), SizeIs(6)) << "by its new name";
  t.document.openKeptDrawing(t.document.keptDrawings()[0].id);
  t.document.begin();
  EXPECT_THAT(t.kept(), SizeIs(6)) << "there already";
}

TEST(KeptDrawings, WhatCannotBeKeptIsAskedAbout) {
  testing::FailingCalls failing;
  failing.fail(&FileSystemCalls::mkdir);
  KeepingWorkspace t(failing.calls);
  t.document.save(t.file("A"));
  t.draw("line 0 0 1 1");
  t.settings.recordLastAutoSave(t.file("A"), "A", std::nullopt);
  *failing.error = ENOSPC;
  EXPECT_FALSE(revertToLastAutoSave(t.document, t.settings));
  EXPECT_THAT(t.lastLine(), HasSubstr("could not be kept"));
  EXPECT_THROW(t.document.begin(), DrawingNotKeptError) << "nobody is asked";
  EXPECT_EQ(t.sketch.entities().size(), 1U);
  t.dialogs.queue("Continue Without Keeping");
  EXPECT_TRUE(revertToLastAutoSave(t.document, t.settings));
  EXPECT_EQ(t.sketch.entities().size(), 0U);
}

TEST(KeptDrawings, EveryStepOfTheDiskMayFailAndNothingIsReplacedThen) {
  int failures = 0;
  bool reachesEnd = false;
  for (int step = 0; !reachesEnd; ++step) {
    SCOPED_TRACE(step);
    const auto countdown = std::make_shared<int>(-1);
    FileSystemCalls calls = FileSystemCalls::ofTheSystem();
    const auto mayFail = [&]<class... Arguments, class Result>(std::function<Result(Arguments...)>& call) {
      call = [countdown, real = call](Arguments... arguments) -> Result {
        if (*countdown < 0 || (*countdown)-- > 0) return real(arguments...);
        errno = ENOSPC;
        return -1;
      };
    };
    mayFail(calls.open);
    mayFail(calls.write);
    mayFail(calls.fsync);
    mayFail(calls.close);
    mayFail(calls.renameNew);
    mayFail(calls.mkdir);
    KeepingWorkspace t(calls);
    t.draw("line 0 0 1 1");
    *countdown = step;
    bool hasFailed = false;
    try {
      t.document.begin();
    } catch (const DrawingNotKeptError&) {
      hasFailed = true;
    }
    reachesEnd = *countdown >= 0;
    *countdown = -1;
    EXPECT_EQ(t.sketch.entities().size(), hasFailed ? 1U : 0U);
    EXPECT_EQ(t.kept().size(), hasFailed ? 0U : 1U);
    failures += hasFailed ? 1 : 0;
    if (hasFailed) t.document.begin();
    ASSERT_THAT(t.kept(), SizeIs(1));
    EXPECT_EQ(t.document.keptDrawing(t.document.keptDrawings()[0].id).entities.size(), 1U);
  }
  EXPECT_GT(failures, 10);
}

}  // namespace
}  // namespace ostrelon
