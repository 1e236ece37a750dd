// The program is killed, or the power fails, at any moment of a session of random edits and saves: what the
// next start brings back is the drawing as it was.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>

#include "documents/content_hash.h"
#include "support/temporary_folder.h"
#include "trust/journaled_program.h"
#include "trust/recorded_disk.h"

namespace ostrelon {
namespace {

using testing::JournaledProgram;
using testing::RandomDrawing;
using testing::RecordedDisk;
using testing::Survival;
using testing::TemporaryFolder;

FilePath stateFolder(const FilePath& home) { return home / "state"; }
FilePath planFile(const FilePath& home) { return home / "Plan.ostrel"; }

// What the program shows. The name is another one once the document has a file, and what has changed undo
// steps alone is nothing to recover.
std::uint64_t shown(const JournaledProgram& on) {
  SketchDocumentV2 document = on.workspace.document.makeDocument(false);
  document.name.clear();
  return contentHash(SketchDocumentIO::encodeDocument(document));
}

// What the next start brings back: what it recovers, else what is in the file.
std::uint64_t broughtBack(const FilePath& home) {
  FileSystemCalls calls = FileSystemCalls::ofTheSystem();
  calls.fsync = [](int) { return 0; };  // the disk itself need not be waited for
  JournaledProgram next(stateFolder(home), calls);
  const auto offers = next.journal.recoverable();
  EXPECT_LE(offers.size(), 1U);
  if (!offers.empty()) {
    next.journal.recover(offers[0].id);
    EXPECT_FALSE(next.hears("damaged"));
  } else if (next.files.exists(planFile(home))) {
    next.workspace.document.open(planFile(home));
  }
  return shown(next);
}

// In memory that the killed program and its judge share.
struct Diary {
  static constexpr std::size_t kMost = 4096;
  std::array<std::atomic<std::uint64_t>, kMost>
      states;                      // in their order, each put down before it is journaled
  std::atomic<std::size_t> begun;  // so many states
  std::atomic<std::size_t> done;   // so many when the last whole operation had ended
};

[[noreturn]] void editUntilKilled(const FilePath& home, unsigned seed, Diary& diary) {
  RandomDrawing random(seed, testing::Spread::floats);
  JournaledProgram* self = nullptr;
  const auto note = [&] {
    if (self == nullptr || diary.begun == Diary::kMost) return;
    diary.states[diary.begun] = shown(*self);
    ++diary.begun;
  };
  JournaledProgram program(stateFolder(home), FileSystemCalls::ofTheSystem(), note);
  self = &program;
  note();
  while (diary.begun + 16 < Diary::kMost) {
    diary.done = diary.begun.load();
    if (random.chance(12)) {
      program.workspace.document.save(planFile(home));
    } else {
      edit(program, random);
    }
  }
  while (true) ::pause();
}

TEST(SuddenEnd, AKilledProgramLosesAtMostTheEditInProgress) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  RandomDrawing random(seed);
  void* const shared =
      ::mmap(nullptr, sizeof(Diary), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(shared, MAP_FAILED);
  std::size_t operations = 0;
  const int kills = testing::rounds(500);
  for (int kill = 0; kill < kills; ++kill) {
    const TemporaryFolder home;
    auto* const diary = new (shared) Diary{};
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) editUntilKilled(home.path(), seed + static_cast<unsigned>(kill), *diary);
    while (diary->done == 0) ::usleep(50);
    ::usleep(static_cast<useconds_t>(random.below(random.chance(10) ? 40'000 : 5'000)));
    ASSERT_EQ(::kill(child, SIGKILL), 0);
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    operations += diary->done;
    // A fork has the generator of its parent, and with it the same next identifiers.
    static_cast<void>(UUID::random());
    const std::uint64_t state = broughtBack(home.path());
    const auto last = diary->states.begin() + static_cast<std::ptrdiff_t>(diary->begun.load());
    const auto firstAllowed = diary->states.begin() + static_cast<std::ptrdiff_t>(diary->done.load()) - 1;
    ASSERT_NE(std::find(firstAllowed, last, state), last)
        << "kill " << kill << ", at state "
        << std::find(diary->states.begin(), last, state) - diary->states.begin() << ", behind " << diary->done
        << " of " << diary->begun << " states";
  }
  EXPECT_GT(operations, static_cast<std::size_t>(kills)) << "there was something to lose";
  ::munmap(shared, sizeof(Diary));
}

TEST(SuddenEnd, OfThreeWindowsTheDeadOneAloneIsOfferedAndToOneOfTheOthers) {
  const TemporaryFolder home;
  JournaledProgram first(stateFolder(home.path()));
  JournaledProgram second(stateFolder(home.path()));
  first.draw(1);
  auto third = std::make_unique<JournaledProgram>(stateFolder(home.path()));
  third->draw(2);
  third->draw(3);
  EXPECT_TRUE(first.journal.recoverable().empty());
  third.reset();  // as a killed one, it leaves its journal
  const auto offers = first.journal.recoverable();
  ASSERT_EQ(offers.size(), 1U);
  EXPECT_EQ(second.journal.recoverable(), offers);
  second.journal.recover(offers[0].id);
  EXPECT_EQ(second.workspace.sketch.entities().size(), 2U);
  EXPECT_TRUE(first.journal.recoverable().empty());
  EXPECT_THROW(first.journal.recover(offers[0].id), UserError);
  second.journal.remove();  // a clean end takes nothing from the others
  EXPECT_TRUE(first.journal.isOpen());
}

TEST(SuddenEnd, APowerLossTakesNothingThatHasReachedTheDisk) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  RandomDrawing random(seed, testing::Spread::floats);
  const TemporaryFolder folder;
  const FilePath home = folder / "home";
  std::filesystem::create_directory(home);
  RecordedDisk disk(home);
  std::vector<std::uint64_t> states;
  struct Durable {
    std::size_t step;
    std::size_t states;
  };
  std::vector<Durable> durable{{0, 1}};  // from this step on, at least so many of the states
  std::size_t ownStep = 0;
  {
    JournaledProgram program(stateFolder(home), disk.calls());
    states.push_back(shown(program));
    // An edit may be several operations, as a drag is, and the journal holds each of them.
    const Subscription each =
        program.workspace.observe(kAllFields, [&](FieldMask) { states.push_back(shown(program)); });
    for (int i = 0; i < 40; ++i) {
      edit(program, random);
      // Large enough for the journal to fold itself with the next edit.
      if (i == 9)
        program.workspace.sketch.edit([&](Drawing& on) { on.entities.append(random.entities(4500)); });
      states.push_back(shown(program));
      if (i % 25 == 24) {
        program.workspace.document.save(planFile(home));
      } else if (i % 7 == 3) {
        program.journal.sync();
      } else {
        continue;
      }
      durable.push_back({disk.steps(), states.size()});
    }
    // Nobody asks for the last ones: the journal's own thread brings them to the disk.
    program.draw(1);
    states.push_back(shown(program));
    const std::size_t before = disk.steps();
    for (int i = 0; i < 400 && disk.steps() == before; ++i) ::usleep(25'000);
    ownStep = disk.steps();
    EXPECT_GT(ownStep, before);
    durable.push_back({ownStep, states.size()});
  }
  const std::size_t stride = testing::rounds(1) > 1 ? 1 : 4;
  for (std::size_t step = durable[1].step + testing::seed() % stride; step <= ownStep; step += stride) {
    for (int round = 0; round < std::min(testing::rounds(1), 3); ++round) {
      const auto survival = static_cast<Survival>((step / stride + static_cast<std::size_t>(round)) % 3);
      std::filesystem::remove_all(home);
      std::filesystem::create_directory(home);
      disk.survivors(step, survival, home);
      std::size_t least = 0;
      for (const Durable& one : durable) {
        if (one.step <= step) least = one.states;
      }
      const std::uint64_t state = broughtBack(home);
      EXPECT_NE(std::find(states.begin() + static_cast<std::ptrdiff_t>(least) - 1, states.end(), state),
                states.end())
          << "behind step " << step << ", survival " << static_cast<int>(survival);
    }
  }
}

}  // namespace
}  // namespace ostrelon
