// Doors by hand in a real window: one is added with two actions, selected, dragged, flipped, deleted and
// brought back.
#include "window/window_session.h"

namespace ostrelon {
namespace {

using testing::DiskWorkspace;
using testing::eventually;

// Where things are in a window of 1200 by 800 whose view has been fit to a wall of 40' along the x axis.
constexpr int kSketchMenu = 345;
constexpr int kMenuBar = 21;
constexpr int kAddDoorRow = 220;
constexpr int kWallY = 332;
constexpr int kBefore = 540;
constexpr int kAfter = 610;

struct OpeningsByHand : testing::WindowSession {
  /// Saves, and gives the doors of the file.
  std::vector<Opening> saved() {
    screen->key("ctrl+s");
    eventually([&] { return title() == "Untitled Project" && std::filesystem::exists(document); });
    DiskWorkspace reader;
    reader.document.open(document);
    return reader.sketch.drawing->plan.openings.list();
  }
  bool isChanged() {
    return eventually([&] { return title() == "Untitled Project*"; });
  }
};

TEST_F(OpeningsByHand, ADoorIsAddedWithTwoActionsMovedFlippedDeletedAndBroughtBack) {
  ASSERT_NO_FATAL_FAILURE(start({}, true));
  ASSERT_NO_FATAL_FAILURE(pressReturnUntil([&] { return isClear(); }));
  console("system W2-INT 6\"");
  console("wall 0 0 40 0");
  screen->key("ctrl+0");  // zoom to fit: the wall lies across the middle of the canvas
  ASSERT_TRUE(isChanged());
  ASSERT_TRUE(saved().empty());

  // A row of the menu, and a click.
  screen->click(kSketchMenu, kMenuBar);
  screen->click(kSketchMenu, kAddDoorRow);
  screen->click(kBefore, kWallY);
  ASSERT_TRUE(isChanged());
  screen->key("Escape");
  const std::vector<Opening> added = saved();
  ASSERT_EQ(added.size(), 1U);
  EXPECT_EQ(added[0].kind, OpeningKind::door);
  EXPECT_EQ(added[0].width, 3);

  screen->drag(kBefore, kWallY, kAfter, kWallY);
  ASSERT_TRUE(isChanged());
  shoot("8-door-selected");
  const std::vector<Opening> moved = saved();
  ASSERT_EQ(moved.size(), 1U);
  EXPECT_GT(moved[0].distance, added[0].distance + 2);

  screen->click(kAfter, kWallY);
  screen->key("space");
  ASSERT_TRUE(isChanged());
  EXPECT_EQ(saved().at(0).hinge, DoorHinge::right);

  screen->key("Delete");
  ASSERT_TRUE(isChanged());
  EXPECT_TRUE(saved().empty());

  screen->key("ctrl+z");
  ASSERT_TRUE(isChanged());
  const std::vector<Opening> restored = saved();
  ASSERT_EQ(restored.size(), 1U);
  EXPECT_EQ(restored[0].distance, moved[0].distance);
  EXPECT_EQ(restored[0].hinge, DoorHinge::right);
  ASSERT_NO_FATAL_FAILURE(quit());
}

}  // namespace
}  // namespace ostrelon
