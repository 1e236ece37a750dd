// The program killed at random moments while it saves, auto-saves, makes checkpoints, switches branches
// and writes settings: afterwards every file is whole and holds the old state or the new one, and the
// next start offers the last auto-save.
//
// OSTRELON_KILLS sets the number of kills; tests/kills N runs N of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <random>
#include <set>
#include <thread>

#include "documents/auto_save.h"
#include "support/temporary_folder.h"
#include "trust/program_session.h"
#include "trust/saved_world.h"

namespace ostrelon {
namespace {

using testing::ProgramSession;
using testing::SavedWorld;
using testing::TemporaryFolder;

constexpr int kKills = 60;
constexpr int kKillsInAFolder = 25;   // then a new one, so that stores stay small
constexpr int kLongestLife = 40'000;  // microseconds until a kill, of the program at work

enum class Work : int { save, autoSave, checkpoint, createBranch, switchBranch, setting };
constexpr int kWorks = 6;

// What the program tells before a piece of work and after it, over a pipe.
struct Notice {
  Work work;
  int number;  // the state that is drawn, the branch, or the minutes
  bool isDone;
};

std::string branchID(int number) { return number == 0 ? "main" : "b" + std::to_string(number); }

// Works until it is killed.
[[noreturn]] void workOn(const FilePath& home, unsigned seed, int firstState, int firstBranch, int pipe) {
  std::mt19937 random(seed);
  ProgramSession on(home);
  on.application.mainViewAppeared();
  on.settings.useDefaultProjectsFolder();
  if (on.files.exists(on.plan())) on.sketch.openDocumentFile(on.plan());
  int state = firstState;
  int branches = firstBranch;
  while (true) {
    auto work = static_cast<Work>(std::uniform_int_distribution(0, kWorks - 1)(random));
    if (!on.sketch.documentFileURL->has_value()) work = Work::save;
    int number = 0;
    switch (work) {
      case Work::save:
      case Work::autoSave:
      case Work::checkpoint:
        number = ++state;
        on.draw(number);
        break;
      case Work::createBranch:
        number = ++branches;
        break;
      case Work::switchBranch:
        number = branches == 0 ? 0 : std::uniform_int_distribution(0, branches)(random);
        break;
      case Work::setting:
        number = std::uniform_int_distribution(1, 120)(random);
        break;
    }
    const auto tell = [&](bool isDone) {
      const Notice notice{work, number, isDone};
      if (::write(pipe, &notice, sizeof notice) != sizeof notice) ::_exit(1);
    };
    try {
      tell(false);
      switch (work) {
        case Work::save:
          saveToURL(on.sketch, on.settings, on.plan(), false);
          break;
        case Work::autoSave:
          autoSaveTick(on.sketch, on.settings);
          break;
        case Work::checkpoint:
          on.sketch.saveCheckpoint("state " + std::to_string(number));
          break;
        case Work::createBranch:
          on.sketch.createHistoryBranch(branchID(number));
          break;
        case Work::switchBranch:
          on.sketch.switchBranch(branchID(number));
          break;
        case Work::setting:
          on.settings.setAutoSaveIntervalMinutes(number);
          break;
      }
      tell(true);
    } catch (const UserError&) {
      // No checkpoint to go out from yet, or no such branch after all.
      if (work == Work::createBranch) --branches;
    }
  }
}

std::vector<Notice> noticesIn(int pipe) {
  std::vector<Notice> notices;
  Notice notice{};
  while (::read(pipe, &notice, sizeof notice) == sizeof notice) notices.push_back(notice);
  return notices;
}

// What may lie on the disk, from what lay there before and what the program has told since.
struct Expected {
  explicit Expected(const SavedWorld& before) : before_(before), branch_(before.currentBranch) {
    plans = {before.plan};
    intervals = {before.interval};
    for (const auto& [id, head] : before.heads) heads[id] = {head};
    mayHaveAutoSave = mustHaveAutoSave = before.hasAutoSave;
  }

  void follow(const Notice& notice) {
    if (!notice.isDone) {
      // Begun: the old state or the new one, whether it then fails, is killed or ends.
      switch (notice.work) {
        case Work::autoSave:
          mayHaveAutoSave = true;
          plans.insert(notice.number);
          break;
        case Work::save:
          plans.insert(notice.number);
          break;
        case Work::checkpoint:
          plans.insert(notice.number);
          heads[branch_].insert(notice.number);
          break;
        case Work::createBranch:
          heads[branchID(notice.number)] = heads[branch_];
          maybeMissing.insert(branchID(notice.number));
          break;
        case Work::switchBranch:
          for (const int head : heads[branchID(notice.number)]) plans.insert(head);
          break;
        case Work::setting:
          intervals.insert(notice.number);
          break;
      }
      return;
    }
    switch (notice.work) {
      case Work::autoSave:
        mustHaveAutoSave = true;
        plans = {notice.number};
        break;
      case Work::save:
        plans = {notice.number};
        break;
      case Work::checkpoint:
        plans = {notice.number};
        heads[branch_] = {notice.number};
        break;
      case Work::createBranch:
        maybeMissing.erase(branchID(notice.number));
        break;
      case Work::switchBranch:
        // To the current branch is no switch: nothing is read or written then.
        if (branchID(notice.number) != branch_) {
          plans.clear();
          for (const int head : heads[branchID(notice.number)]) plans.insert(head);
        }
        branch_ = branchID(notice.number);
        break;
      case Work::setting:
        intervals = {notice.number};
        break;
    }
  }

  std::set<std::optional<int>> plans;
  std::set<std::optional<int>> intervals;
  std::map<std::string, std::set<int>> heads;
  std::set<std::string> maybeMissing;  // branches of which nothing tells that they were finished
  bool mayHaveAutoSave = false;
  bool mustHaveAutoSave = false;

 private:
  SavedWorld before_;
  std::string branch_;
};

void expectAsExpected(const SavedWorld& left, const Expected& expected) {
  EXPECT_EQ(left.damage, "");
  EXPECT_TRUE(expected.plans.contains(left.plan)) << "the document holds state " << left.plan.value_or(-2);
  EXPECT_TRUE(expected.intervals.contains(left.interval)) << left.interval.value_or(-1) << " minutes";
  for (const auto& [id, head] : left.heads) {
    const auto known = expected.heads.find(id);
    ASSERT_NE(known, expected.heads.end()) << "an unknown branch " << id;
    EXPECT_TRUE(known->second.contains(head)) << id << " holds state " << head;
  }
  for (const auto& [id, heads] : expected.heads) {
    if (heads.empty() || expected.maybeMissing.contains(id) || left.heads.contains(id)) continue;
    // The first checkpoint of all may have been the one that was killed.
    EXPECT_TRUE(id == "main" && !left.heads.contains("main")) << "the branch " << id << " is lost";
  }
  EXPECT_LE(left.hasAutoSave, expected.mayHaveAutoSave);
  EXPECT_GE(left.hasAutoSave, expected.mustHaveAutoSave);
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
  EXPECT_EQ(on.sketch.consoleLines->back().text, "Restored last autosave.");
  EXPECT_EQ(ProgramSession::stateOf(on.sketch.entities), left.plan);
  EXPECT_FALSE(*on.sketch.isDocumentDirty);
}

TEST(Kills, LeaveEveryFileWholeOldOrNew) {
  const char* asked = std::getenv("OSTRELON_KILLS");  // NOLINT(concurrency-mt-unsafe)
  const int kills = asked != nullptr ? std::atoi(asked) : kKills;
  ASSERT_GT(kills, 0);
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::map<Work, int> killedWithin;
  std::unique_ptr<TemporaryFolder> home;
  int state = 0;
  int branch = 0;
  int kill = 0;
  for (; kill < kills && !::testing::Test::HasFailure(); ++kill) {
    if (kill % kKillsInAFolder == 0) {
      home = std::make_unique<TemporaryFolder>();
      branch = 0;
    }
    SCOPED_TRACE("kill " + std::to_string(kill));
    const SavedWorld before = testing::readSavedWorld(home->path());
    ASSERT_EQ(before.damage, "");
    int ends[2];
    ASSERT_EQ(::pipe(ends), 0);
    const unsigned childSeed = static_cast<unsigned>(random());
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      ::close(ends[0]);
      // On a thread of its own, which has its own identifiers: those of the main thread would come again
      // in every child.
      std::thread([&] { workOn(home->path(), childSeed, state, branch, ends[1]); }).join();
    }
    ::close(ends[1]);
    ::usleep(static_cast<useconds_t>(std::uniform_int_distribution(500, kLongestLife)(random)));
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status)) << "the program ended by itself";
    const std::vector<Notice> notices = noticesIn(ends[0]);
    ::close(ends[0]);

    Expected expected(before);
    for (const Notice& notice : notices) {
      expected.follow(notice);
      if (notice.work == Work::createBranch) branch = std::max(branch, notice.number);
      if (notice.work < Work::createBranch) state = std::max(state, notice.number);
    }
    if (!notices.empty() && !notices.back().isDone) ++killedWithin[notices.back().work];
    const SavedWorld left = testing::readSavedWorld(home->path());
    expectAsExpected(left, expected);
    expectRecovery(home->path(), left);
  }
  std::string told;
  for (const auto& [work, count] : killedWithin) {
    constexpr const char* kNames[] = {"save", "auto-save", "checkpoint", "branch", "switch", "setting"};
    told +=
        std::string(told.empty() ? "" : ", ") + kNames[static_cast<int>(work)] + " " + std::to_string(count);
  }
  RecordProperty("killedWithin", told);
  if (asked != nullptr) std::printf("%d kills; within: %s\n", kill, told.c_str());
}

}  // namespace
}  // namespace ostrelon
