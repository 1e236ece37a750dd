// Every step of the system that writing takes fails in turn, and the program or the power ends behind every
// one of them: what is told, what is left on the disk, and what the program holds.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <functional>
#include <random>

#include "documents/auto_save.h"
#include "documents/document_history.h"
#include "support/random_drawing.h"
#include "support/temporary_folder.h"
#include "trust/program_session.h"
#include "trust/recorded_disk.h"
#include "trust/saved_world.h"

namespace ostrelon {
namespace {

using ::testing::AnyOf;
using ::testing::Eq;
using ::testing::HasSubstr;
using testing::ProgramSession;
using testing::RecordedDisk;
using testing::SavedWorld;
using ::testing::StartsWith;
using testing::Survival;
using testing::TemporaryFolder;

// One operation that writes, in the order in which a session runs them. Each goes out from what those
// before it have left.
struct Operation {
  std::string name;
  std::function<void(ProgramSession&)> prepare;  // writes nothing
  /// The failure's text, if it failed.
  std::function<std::optional<std::string>(ProgramSession&)> run;
  std::string failureStart;
};

// What the console answers, where that tells of a failure.
std::optional<std::string> submit(ProgramSession& on, std::string line) {
  on.workspace.console.setInput(std::move(line));
  on.workspace.console.submit();
  std::string reply = on.workspace.messages.lines->back().text;
  return reply.find("failed: ") == std::string::npos ? std::nullopt : std::optional(std::move(reply));
}

constexpr const char* kSettingsFailure = "The settings could not be saved. ";

std::optional<std::string> noteOfSettings(ProgramSession& on) {
  const auto notes = on.defaults.takeNotes();
  return notes.empty() ? std::nullopt : std::optional(notes.front());
}

const std::vector<Operation>& operations() {
  const auto nothing = [](ProgramSession&) {};
  const auto draws = [](int number) { return [number](ProgramSession& on) { on.draw(number); }; };
  static const std::vector<Operation> all{
      {"first save", draws(1),
       [](ProgramSession& on) { return saveToURL(on.workspace.document, on.settings, on.plan(), false); },
       "Save failed: "},
      {"save over", draws(2),
       [](ProgramSession& on) { return saveToURL(on.workspace.document, on.settings, on.plan(), false); },
       "Save failed: "},
      {"first checkpoint", draws(3), [](ProgramSession& on) { return submit(on, "checkpoint one"); },
       "Checkpoint failed: "},
      {"branch", nothing, [](ProgramSession& on) { return submit(on, "branch create other"); },
       "Branch failed: "},
      {"checkpoint", draws(4), [](ProgramSession& on) { return submit(on, "checkpoint two"); },
       "Checkpoint failed: "},
      {"switch", nothing, [](ProgramSession& on) { return submit(on, "branch switch other"); },
       "Switch branch failed: "},
      {"auto-save", draws(5),
       [](ProgramSession& on) {
         const auto failure = autoSaveTick(on.workspace.document, on.settings);
         return failure ? failure : noteOfSettings(on);
       },
       "Save failed: "},
      {"checkpoint on the other branch", draws(6),
       [](ProgramSession& on) { return submit(on, "checkpoint three"); }, "Checkpoint failed: "},
      {"switch back", nothing, [](ProgramSession& on) { return submit(on, "branch switch main"); },
       "Switch branch failed: "},
      {"setting", nothing,
       [](ProgramSession& on) -> std::optional<std::string> {
         on.settings.setAutoSaveIntervalMinutes(7);
         return noteOfSettings(on);
       },
       kSettingsFailure},
  };
  return all;
}

void begin(ProgramSession& on) {
  on.application.mainViewAppeared();
  on.settings.useDefaultProjectsFolder();
}

// What the program holds of the document.
struct Held {
  EntityList entities;
  bool isDirty;
  std::optional<FilePath> url;
  std::optional<Date> savedAt;
  friend bool operator==(const Held&, const Held&) = default;
};

Held heldBy(const Workspace& workspace) {
  return {workspace.sketch.entities(), workspace.document.isDirty(), workspace.document.fileURL,
          workspace.document.lastSavedAt};
}

TEST(FailingDisk, TellsOfEveryStepThatFailsAndLosesNothing) {
  // The texts of the failures that are let happen.
  const std::array<std::pair<int, std::string>, 2> texts{
      {{EIO, "the disk reported an error."}, {ENOSPC, "the disk is full."}}};
  const std::size_t firstText = testing::seed() % texts.size();
  int failures = 0;
  for (std::size_t operation = 0; operation < operations().size(); ++operation) {
    const Operation& failing = operations()[operation];
    bool reachesEnd = false;
    for (int step = 0; !reachesEnd; ++step) {
      // The one or the other, and both at every step of some run.
      const auto& [error, text] = texts[(static_cast<std::size_t>(step) + firstText) % texts.size()];
      {
        SCOPED_TRACE(failing.name + ", step " + std::to_string(step) + ", " + text);
        int countdown = -1;  // steps until one fails
        bool hasFailed = false;
        const auto fails = [&, failsWith = error] {
          if (countdown < 0 || countdown-- > 0) return false;
          hasFailed = true;
          errno = failsWith;
          return true;
        };
        const FileSystemCalls real = FileSystemCalls::ofTheSystem();
        FileSystemCalls calls = real;
        calls.open = [&](const char* path, int flags, mode_t mode) {
          return fails() ? -1 : real.open(path, flags, mode);
        };
        calls.write = [&](int file, const void* bytes, std::size_t count) {
          return fails() ? ssize_t{-1} : real.write(file, bytes, count);
        };
        calls.fchmod = [&](int file, mode_t mode) { return fails() ? -1 : real.fchmod(file, mode); };
        calls.fsync = [&](int) { return fails() ? -1 : 0; };  // the disk itself need not be waited for
        calls.close = [&](int file) {
          real.close(file);
          return fails() ? -1 : 0;
        };
        calls.rename = [&](const char* from, const char* to) { return fails() ? -1 : real.rename(from, to); };
        calls.mkdir = [&](const char* path, mode_t mode) { return fails() ? -1 : real.mkdir(path, mode); };

        const TemporaryFolder home;
        ProgramSession on(home.path(), calls);
        begin(on);
        for (std::size_t before = 0; before < operation; ++before) {
          operations()[before].prepare(on);
          ASSERT_EQ(operations()[before].run(on), std::nullopt);
        }
        failing.prepare(on);
        on.scheduler.advance(Seconds(10));
        const SavedWorld worldBefore = testing::readSavedWorld(home.path());
        const Held heldBefore = heldBy(on.workspace);
        countdown = step;
        const auto failure = failing.run(on);
        countdown = -1;
        if (!hasFailed) {
          reachesEnd = true;
          ASSERT_EQ(failure, std::nullopt);
          continue;
        }
        ++failures;
        ASSERT_NE(failure, std::nullopt);
        // An auto-save is put down in the settings once it has been done.
        EXPECT_THAT(*failure, AnyOf(StartsWith(failing.failureStart), StartsWith(kSettingsFailure)));
        EXPECT_THAT(*failure, HasSubstr(text));
        const SavedWorld world = testing::readSavedWorld(home.path());
        EXPECT_EQ(world.damage, "");
        const Held held = heldBy(on.workspace);
        const bool isWritten = world.plan != worldBefore.plan;
        // A switch that could not be put down in the history has taken the document over all the same.
        const bool hasSwitched = failing.name.starts_with("switch") && isWritten && !held.isDirty;
        EXPECT_TRUE(hasSwitched || held.entities == heldBefore.entities);
        EXPECT_EQ(held.url, worldBefore.plan ? heldBefore.url : held.url);
        EXPECT_TRUE(isWritten || held == heldBefore) << "nothing was written, so nothing is called saved";

        // The disk is well again: the same once more does what it should have done, where it was not done.
        if (failing.name == "branch" && world.heads.contains("other")) continue;
        if (failing.name.starts_with("switch") && held.isDirty)
          continue;  // the user decides what becomes of the file
        EXPECT_EQ(failing.run(on), std::nullopt);
        const SavedWorld after = testing::readSavedWorld(home.path());
        EXPECT_EQ(after.damage, "");
        EXPECT_EQ(after.plan, ProgramSession::stateOf(on.workspace.sketch.entities()));
      }
    }
  }
  EXPECT_GT(failures, 50);
}

// The next start: what it offers, and what comes of taking the offer.
void expectRecovery(const FilePath& home, const SavedWorld& left) {
  ProgramSession on(home);
  on.application.mainViewAppeared();
  const bool isOffered = left.hasAutoSave && left.plan.has_value();
  EXPECT_EQ(*on.application.showAutoSaveRecoveryOffer, isOffered);
  if (!isOffered) return;
  EXPECT_EQ(on.settings.autoSaveRecoveryCandidate->value().url, on.plan());
  on.application.restoreAutoSaveFromOffer();
  EXPECT_EQ(on.workspace.messages.lines->back().text, "Restored last autosave.");
  EXPECT_EQ(ProgramSession::stateOf(on.workspace.sketch.entities()), left.plan);
  EXPECT_FALSE(on.workspace.document.isDirty());
}

TEST(Crash, LeavesEveryFileWholeOldOrNewBehindEveryStep) {
  const TemporaryFolder folder;
  const FilePath home = folder / "home";
  std::filesystem::create_directory(home);
  RecordedDisk disk(home);
  ProgramSession on(home, disk.calls());
  begin(on);
  SavedWorld old = testing::readSavedWorld(home);
  std::size_t done = disk.steps();
  for (const Operation& operation : operations()) {
    operation.prepare(on);
    ASSERT_EQ(operation.run(on), std::nullopt);
    const SavedWorld now = testing::readSavedWorld(home);
    // What survives takes the place of the live folder, since the settings hold whole paths.
    std::filesystem::rename(home, folder / "live");
    for (std::size_t step = done; step <= disk.steps(); ++step) {
      for (const Survival survival : {Survival::everything, Survival::nothingUnsynced, Survival::namesOnly}) {
        SCOPED_TRACE(operation.name + ", behind step " + std::to_string(step) + ", survival " +
                     std::to_string(static_cast<int>(survival)));
        std::filesystem::remove_all(home);
        std::filesystem::create_directory(home);
        disk.survivors(step, survival, home);
        const SavedWorld left = testing::readSavedWorld(home);
        ASSERT_EQ(left.damage, "");
        EXPECT_THAT(left.plan, AnyOf(Eq(old.plan), Eq(now.plan)));
        EXPECT_THAT(left.interval, AnyOf(Eq(old.interval), Eq(now.interval)));
        EXPECT_THAT(left.heads, AnyOf(Eq(old.heads), Eq(now.heads)));
        EXPECT_THAT(left.hasAutoSave, AnyOf(Eq(old.hasAutoSave), Eq(now.hasAutoSave)));
        if (survival == Survival::everything) expectRecovery(home, left);
        if (step < disk.steps()) continue;
        // Once the program has said that it is done, it lasts.
        EXPECT_EQ(left.plan, now.plan);
        EXPECT_EQ(left.heads, now.heads);
        EXPECT_EQ(left.interval, now.interval);
        EXPECT_EQ(left.currentBranch, now.currentBranch);
        EXPECT_EQ(left.hasAutoSave, now.hasAutoSave);
      }
    }
    std::filesystem::remove_all(home);
    std::filesystem::rename(folder / "live", home);
    old = now;
    done = disk.steps();
  }
}

}  // namespace
}  // namespace ostrelon
