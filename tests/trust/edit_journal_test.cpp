// What a program that dies between two saves leaves: cut at any byte, damaged at any byte, with any step of
// the disk failing, and with other programs about.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <mutex>

#include "documents/document_save.h"
#include "support/temporary_folder.h"
#include "trust/journaled_program.h"

namespace ostrelon {
namespace {

using ::testing::Contains;
using ::testing::Eq;
using ::testing::Field;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using Program = testing::JournaledProgram;
using testing::TemporaryFolder;

std::vector<FilePath> journalsIn(const FilePath& folder) {
  std::vector<FilePath> found;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
    if (entry.path().extension() == ".journal") found.push_back(entry.path());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::string bytesOf(const FilePath& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

// A folder that holds this journal alone, of a program that is gone.
void leave(const FilePath& folder, std::string_view bytes) {
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  std::ofstream(folder / (UUID::random().text() + "-1.journal"), std::ios::binary) << bytes;
}

TEST(EditJournal, ADeathAtAnyByteLeavesAPrefixOfTheEdits) {
  const auto seed = testing::seed();
  SCOPED_TRACE(seed);
  testing::RandomDrawing random(seed, testing::Spread::floats);
  for (const bool isSaved : {false, true}) {
    TemporaryFolder folder;
    Program program(folder / "a");
    if (isSaved) {
      for (int i = 0; i < 30; ++i) edit(program, random);
      program.workspace.document.save(folder / "Plan.ostrel");
      EXPECT_THAT(journalsIn(folder / "a"), IsEmpty()) << "everything is in the file";
    }
    struct Moment {
      std::size_t bytes;
      std::string text;
    };
    std::vector<Moment> moments;
    std::string journal;
    const auto note = [&] {
      const auto paths = journalsIn(folder / "a");
      if (paths.empty()) return;
      const std::string bytes = bytesOf(paths.back());
      if (!bytes.starts_with(journal)) moments.clear();  // it has folded itself
      if (bytes == journal && !moments.empty()) return;
      journal = bytes;
      moments.push_back({bytes.size(), program.text()});
    };
    {
      // An edit may be several operations, as a drag with a step of another is, and is recorded in as many.
      const Subscription each = program.workspace.observe(kAllFields, [&](FieldMask) { note(); });
      while (moments.size() < 25) {
        edit(program, random);
        note();
        if (moments.empty()) continue;
        ASSERT_EQ(moments.back().text, program.text()) << "all is recorded when it ends";
      }
    }
    for (int round = 0; round < testing::rounds(15); ++round) {
      const auto& last = moments[static_cast<std::size_t>(random.below(static_cast<int>(moments.size())))];
      std::size_t cut = last.bytes;
      // What is whole at the cut is there; what was being written is not.
      auto expected = std::find_if(moments.rbegin(), moments.rend(),
                                   [&](const Moment& moment) { return moment.bytes <= cut; });
      if (random.chance(2)) {
        cut += static_cast<std::size_t>(random.below(40));
        if (cut > journal.size()) continue;
        expected = std::find_if(moments.rbegin(), moments.rend(),
                                [&](const Moment& moment) { return moment.bytes <= cut; });
      }
      leave(folder / "b", std::string_view(journal).substr(0, cut));
      Program next(folder / "b");
      const auto offers = next.journal.recoverable();
      ASSERT_THAT(offers, SizeIs(1));
      next.journal.recover(offers[0].id);
      ASSERT_EQ(next.text(), expected->text) << "cut at " << cut;
      EXPECT_TRUE(next.workspace.document.isDirty());
      EXPECT_EQ(next.workspace.document.fileURL->has_value(), isSaved);
      EXPECT_FALSE(next.hears("damaged"));
      // What was recovered is safe from the next death at once.
      Program third(folder / "c");
      leave(folder / "c", bytesOf(journalsIn(folder / "b").back()));
      third.journal.recover(third.journal.recoverable().at(0).id);
      EXPECT_EQ(third.text(), expected->text);
    }
    for (int round = 0; round < testing::rounds(15); ++round) {
      std::string damaged = journal;
      const auto at = static_cast<std::size_t>(random.below(static_cast<int>(damaged.size())));
      damaged[at] = static_cast<char>(damaged[at] ^ (1 << random.below(8)));
      leave(folder / "b", damaged);
      Program next(folder / "b");
      const auto offers = next.journal.recoverable();
      if (offers.empty()) continue;  // the base itself
      next.journal.recover(offers[0].id);
      EXPECT_THAT(moments, Contains(Field(&Moment::text, Eq(next.text())))) << "damaged at " << at;
    }
  }
}

TEST(EditJournal, EveryStepOfTheDiskMayFailAndTheNextEditMakesItGood) {
  for (int failing = 0; failing < 6; ++failing) {
    for (const char* step : {"open", "write", "fsync", "mkdir"}) {
      SCOPED_TRACE(std::string(step) + " " + std::to_string(failing));
      TemporaryFolder folder;
      int countdown = failing;
      std::mutex mutex;
      const auto fails = [&](std::string_view name) {
        const std::lock_guard lock(mutex);
        if (name != step || countdown-- != 0) return false;
        errno = ENOSPC;
        return true;
      };
      FileSystemCalls calls = FileSystemCalls::ofTheSystem();
      const FileSystemCalls real = calls;
      calls.open = [&](const char* path, int flags, mode_t mode) {
        return fails("open") ? -1 : real.open(path, flags, mode);
      };
      calls.write = [&](int file, const void* bytes, std::size_t count) {
        return fails("write") ? -1 : real.write(file, bytes, count);
      };
      calls.fsync = [&](int file) { return fails("fsync") ? -1 : real.fsync(file); };
      calls.mkdir = [&](const char* path, mode_t mode) {
        return fails("mkdir") ? -1 : real.mkdir(path, mode);
      };
      std::string text;
      {
        Program program(folder / "a" / "b", calls);
        for (int i = 0; i < 8; ++i) {
          program.draw(i);
          try {
            program.journal.sync();
          } catch (const FileError&) {
          }
        }
        EXPECT_EQ(program.workspace.sketch.entities().size(), 8u);
        text = program.text();
      }
      Program next(folder / "a" / "b");
      const auto offers = next.journal.recoverable();
      ASSERT_THAT(offers, SizeIs(1));
      next.journal.recover(offers[0].id);
      EXPECT_EQ(next.text(), text);
    }
  }
}

TEST(EditJournal, OnlyTheJournalsOfTheDeadThatHoldMoreThanTheirFilesAreOffered) {
  TemporaryFolder folder;
  const FilePath state = folder / "state";
  const FilePath plan = folder / "Plan.ostrel";
  Program reader(state);
  {
    // The program dies between the moment that the file is in its place and the end of the journal.
    FileSystemCalls calls = FileSystemCalls::ofTheSystem();
    calls.renameNew = [&, real = calls.renameNew](const char* from, const char* to) {
      const int result = real(from, to);
      std::filesystem::copy(state, folder / "then");
      return result;
    };
    Program writer(state, calls);
    EXPECT_THAT(reader.journal.recoverable(), IsEmpty());
    writer.draw(1);
    EXPECT_THAT(reader.journal.recoverable(), IsEmpty()) << "its program lives";
    writer.workspace.document.save(plan);
    Program later(folder / "then");
    EXPECT_THAT(later.journal.recoverable(), IsEmpty()) << "the file holds it all";
    EXPECT_THAT(journalsIn(folder / "then"), IsEmpty());
    writer.draw(2);
    const auto mode = std::filesystem::status(journalsIn(state).at(0)).permissions();
    EXPECT_EQ(mode, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  }
  const auto offers = reader.journal.recoverable();
  ASSERT_THAT(offers, SizeIs(1));
  EXPECT_EQ(offers[0].documentName, "Plan");
  EXPECT_EQ(offers[0].path, plan);
  EXPECT_EQ(offers[0].changes, 1u);
  const std::string before = bytesOf(plan);
  std::filesystem::copy(state, folder / "gone");
  std::filesystem::copy(state, folder / "discarded");

  reader.journal.recover(offers[0].id);
  EXPECT_EQ(reader.workspace.sketch.entities().size(), 2u);
  EXPECT_EQ(bytesOf(plan), before);
  EXPECT_TRUE(reader.workspace.sketch.undo());
  EXPECT_EQ(reader.workspace.sketch.entities().size(), 1u);
  EXPECT_THAT(reader.journal.recoverable(), IsEmpty());

  std::filesystem::remove(plan);
  Program without(folder / "gone");
  without.journal.recover(offers[0].id);
  EXPECT_EQ(without.workspace.sketch.entities().size(), 1u) << "what the journal itself holds";
  EXPECT_FALSE(without.workspace.document.fileURL->has_value());
  EXPECT_TRUE(without.hears("is gone"));
  EXPECT_THROW(without.journal.recover("nothing"), UserError);

  Program discarding(folder / "discarded");
  discarding.journal.discard(offers[0].id);
  EXPECT_THAT(discarding.journal.recoverable(), IsEmpty());
  EXPECT_THAT(journalsIn(folder / "discarded"), IsEmpty());
}

// Drawn, given a door and a window, cleared and undone by the version that knew openings alone.
TEST(EditJournal, ReadsWhatAnEarlierVersionLeft) {
  TemporaryFolder folder;
  leave(folder / "a", bytesOf(FilePath(OSTRELON_SOURCE_DIR) / "tests/trust/left/openings_only.journal"));
  Program program(folder / "a");
  const auto offers = program.journal.recoverable();
  ASSERT_THAT(offers, SizeIs(1));
  program.journal.recover(offers[0].id);
  Sketch& sketch = program.workspace.sketch;
  EXPECT_EQ(sketch.entities().size(), 1u);
  EXPECT_TRUE(sketch.drawing->plan.look.cleanWalls);
  ASSERT_EQ(sketch.drawing->plan.openings.size(), 2u);
  EXPECT_EQ(sketch.drawing->plan.openings[1].kind, OpeningKind::window);
  EXPECT_TRUE(sketch.undo());
  EXPECT_EQ(sketch.drawing->plan.openings.size(), 1u);
}

TEST(EditJournal, HoldsWhatWasDrawnWhileASaveWasBeingWritten) {
  TemporaryFolder folder;
  {
    Program program(folder / "a");
    program.draw(1);
    DocumentSave save(folder / "Plan.ostrel", program.workspace.document.makeDocument(true));
    save.write(program.files);
    program.draw(2);
    program.workspace.document.finishSave(save);
    EXPECT_TRUE(program.workspace.document.isDirty());
  }
  Program next(folder / "a");
  next.journal.recover(next.journal.recoverable().at(0).id);
  EXPECT_EQ(next.workspace.sketch.entities().size(), 2u);
  EXPECT_EQ(next.workspace.document.fileURL.get(), folder / "Plan.ostrel");
}

TEST(EditJournal, RecordsMuchInATurnOfItsOwnAndMissesNothing) {
  TemporaryFolder folder;
  const auto drawMuch = [](Program& program) {
    std::vector<SketchEntity> lines;
    for (int i = 0; i < 25'000; ++i) {
      lines.emplace_back(LineEntity{UUID::random(), SketchPoint{double(i), 0}, SketchPoint{double(i), 1}});
    }
    program.workspace.sketch.edit([&](Drawing& drawing) { drawing.entities.append(std::move(lines)); });
  };
  int runs = 0;
  std::string text;
  {
    Program program(folder / "a");
    program.workspace.sketch.setWorkRunner([&](const std::function<void()>& work) {
      ++runs;
      work();
    });
    program.draw(1);
    const auto journal = journalsIn(folder / "a").at(0);
    const auto size = std::filesystem::file_size(journal);
    drawMuch(program);
    EXPECT_EQ(std::filesystem::file_size(journal), size) << "the window may paint first";
    program.draw(2);
    program.workspace.sketch.undo();
    program.scheduler.advance(Seconds(0));
    EXPECT_EQ(runs, 1);
    drawMuch(program);
    program.journal.sync();  // the session ends before the turn
    text = program.text();
  }
  Program next(folder / "a");
  next.journal.recover(next.journal.recoverable().at(0).id);
  EXPECT_EQ(next.text(), text);
}

}  // namespace
}  // namespace ostrelon
