// A person at two branches of a drawing: both are edited, compared in the window, a conflict is settled, and
// what comes of the merge is a checkpoint that a switch there and back brings again.
#include "window/window_session.h"

namespace ostrelon {
namespace {

using testing::DiskWorkspace;
using testing::eventually;
using ::testing::HasSubstr;
using testing::readBytes;

struct TwoBranches : testing::WindowSession {
  // The rows of the File menu, separators left out.
  static constexpr int kCompareRow = 10;
  static constexpr int kMergeRow = 11;

  void chooseInFileMenu(int row) {
    screen->click(248, 21);
    for (int i = 0; i < row; ++i) screen->key("Down");
    screen->key("Return");
    ASSERT_TRUE(eventually([&] { return hasSheet(); })) << log();
  }
  void takeRowOfSheet(int row) {
    for (int i = 0; i < row; ++i) screen->key("Down");
    ASSERT_NO_FATAL_FAILURE(pressReturnUntil([&] { return isClear(); }));
  }
  std::string timeline(const std::string& branch) const {
    return readBytes(document.parent_path() / ".ostrel-history" / "branches" / branch / "timeline.json");
  }
  // By words, as the console has them; what the file holds tells when they have been done.
  void switchTo(const std::string& branch, std::size_t entities) {
    console("branch switch " + branch);
    ASSERT_TRUE(eventually([&] { return savedEntities() == entities; })) << savedEntities() << log();
  }
  void checkpoint(const std::string& message, const std::string& branch) {
    console("checkpoint " + message);
    ASSERT_TRUE(eventually([&] { return timeline(branch).find(message) != std::string::npos; })) << log();
  }
  double heightOfWall() const {
    DiskWorkspace reader;
    reader.document.open(document);
    return std::get<WallEntity>(reader.sketch.entities()[0]).from.y;
  }
};

TEST_F(TwoBranches, AreComparedMergedAndSwitchedBetween) {
  ASSERT_NO_FATAL_FAILURE(start({}, true));
  ASSERT_NO_FATAL_FAILURE(pressReturnUntil([&] { return isClear(); }));
  console("wall 0 0 40 0");
  console("circle 10 -20 6");
  screen->key("ctrl+s");
  ASSERT_TRUE(eventually([&] { return std::filesystem::exists(document); })) << log();
  ASSERT_NO_FATAL_FAILURE(checkpoint("start", "main"));
  console("branch create option");
  console("branch switch option");

  // There the wall goes up and a line is drawn; here it goes down, and there are two rectangles.
  for (const char* line : {"select 1", "nudge 0 6", "line 0 -30 40 -30"}) console(line);
  ASSERT_NO_FATAL_FAILURE(checkpoint("theirs", "option"));
  ASSERT_NO_FATAL_FAILURE(switchTo("main", 2));
  for (const char* line : {"select 1", "nudge 0 -6", "rect -20 10 8 8", "rect -20 30 8 8"}) console(line);
  ASSERT_NO_FATAL_FAILURE(checkpoint("ours", "main"));
  EXPECT_EQ(savedEntities(), 4U);
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project"; })) << title();

  // The branch stands below the last save and main. N goes to the first difference, the wall,
  // which Take This takes; undo brings ours back while the comparison goes on, and Escape ends it.
  ASSERT_NO_FATAL_FAILURE(chooseInFileMenu(kCompareRow));
  shoot("branches-1-compare-sheet");
  ASSERT_NO_FATAL_FAILURE(takeRowOfSheet(2));
  screen->key("n");
  shoot("branches-2-comparison");
  screen->click(980, 770);  // Take This
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project*"; })) << log();
  shoot("branches-3-taken");
  screen->key("ctrl+z");
  screen->key("Escape");
  screen->key("Escape");
  screen->key("ctrl+s");
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project"; })) << title();
  EXPECT_EQ(heightOfWall(), -6);
  shoot("branches-4-compared");

  // One conflict: theirs is chosen with the arrow keys, and Merge comes with Tab or the pointer.
  ASSERT_NO_FATAL_FAILURE(chooseInFileMenu(kMergeRow));
  ASSERT_NO_FATAL_FAILURE(takeRowOfSheet(0));
  for (const char* key : {"Down", "Right", "Right"}) screen->key(key);
  shoot("branches-5-merge");
  screen->click(1130, 770);  // Merge
  ASSERT_TRUE(eventually([&] { return title() == "Untitled Project*"; })) << log();
  shoot("branches-6-merged");
  ASSERT_NO_FATAL_FAILURE(checkpoint("merged", "main"));
  EXPECT_THAT(timeline("main"), HasSubstr("mergedCheckpointIDs"));
  EXPECT_EQ(savedEntities(), 5U);
  EXPECT_EQ(heightOfWall(), 6);

  ASSERT_NO_FATAL_FAILURE(switchTo("option", 3));
  ASSERT_NO_FATAL_FAILURE(switchTo("main", 5));
  EXPECT_EQ(heightOfWall(), 6);
  ASSERT_NO_FATAL_FAILURE(quit());
}

}  // namespace
}  // namespace ostrelon
