// A hand gone wild: thousands of random events, keys and console lines. Whatever the order, the
// invariants hold, and undo leads back to the empty sheet.
#include <gmock/gmock.h>

#include <cmath>
#include <random>

#include "interaction/board.h"
#include "interaction/key_routing.h"

namespace ostrelon {
namespace {

using testing::Board;

struct Storm : Board {
  explicit Storm(std::uint32_t seed) : random(seed) {}

  int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); }
  // Few places, so that snaps, ties and clicks on the same point are common.
  SketchPoint anywhere() {
    const SketchPoint place{below(17) * 50.0, below(13) * 50.0};
    return below(3) == 0 ? place + SketchPoint{below(100) / 10.0, below(100) / 10.0} : place;
  }

  void pressKey() {
    static const std::vector<std::string> letters{"c", "l", "s", "z", "d"};
    KeyEvent event;
    event.key = static_cast<KeyName>(below(6));
    if (event.key == KeyName::deleteBackward && below(3) != 0) return;
    if (event.key == KeyName::character) event.characters = letters[static_cast<std::size_t>(below(5))];
    event.modifiers.shift = below(6) == 0;
    event.modifiers.command = below(4) == 0;
    handleKey(event, sketch);
  }

  void typeLine() {
    static const std::vector<std::string> lines{"12",   "7 90",       "zoom fit", "trim",  "line 0 0 30 30",
                                                "poly", "zoom reset", "select 1", "1e300", "-4"};
    reply(lines[static_cast<std::size_t>(below(static_cast<int>(lines.size())))]);
  }

  void step() {
    switch (below(14)) {
      case 0:
      case 1:
        return gestures.press(anywhere());
      case 2:
      case 3:
      case 4:
        return gestures.drag(anywhere());
      case 5:
      case 6:
        return gestures.release(anywhere(), below(4) == 0);
      case 7:
        return gestures.hover(anywhere());
      case 8:
        return below(4) == 0 ? gestures.leave() : gestures.doubleClick();
      case 9:
        return below(2) == 0 ? gestures.scroll(below(41) - 20, below(41) - 20)
                             : gestures.magnify(anywhere(), below(5) * 0.25 - 0.5);
      case 10:
        return sketch.activateTool(kAllSketchTools[static_cast<std::size_t>(below(8))]);
      case 11:
        return pressKey();
      case 12:
        return below(5) == 0 ? sketch.undo() : scheduler.advance(Seconds(below(30) / 20.0));
      default:
        if (below(6) == 0) gestures.contextMenu(anywhere());
        return below(3) == 0 ? typeLine() : sketch.recordPointer(anywhere());
    }
  }

  void check() const {
    EXPECT_FALSE(*sketch.selectDrag && *sketch.selectMarquee);
    EXPECT_EQ(sketch.selectDragUndoBaseline->has_value(), sketch.selectDrag->has_value());
    EXPECT_TRUE(std::isfinite(sketch.viewport->pan.x) && std::isfinite(sketch.viewport->pan.y));
    EXPECT_TRUE(sketch.viewport->scale >= 0.05 && sketch.viewport->scale <= 200);
    EXPECT_TRUE(sketch.trackingAcquireProgress >= 0 && sketch.trackingAcquireProgress <= 1);
    for (const UUID& id : *sketch.selectedEntityIDs) EXPECT_TRUE(sketch.entity(id));
    const auto& primary = *sketch.primarySelectedEntityID;
    EXPECT_TRUE(!primary || sketch.selectedEntityIDs->empty() ||
                sketch.selectedEntityIDs->contains(*primary));
    EXPECT_FALSE(*sketch.polygonDraft && sketch.selectedTool != SketchTool::polygon);
  }

  std::mt19937 random;
};

TEST(GestureStorm, KeepsTheInvariantsAndUndoesToTheEmptySheet) {
  for (int round = 0; round < 8; ++round) {
    const std::uint32_t seed = std::random_device{}();
    SCOPED_TRACE(::testing::Message() << "seed " << seed);
    Storm storm(seed);
    for (int i = 0; i < 400; ++i) {
      storm.step();
      storm.check();
      ASSERT_FALSE(::testing::Test::HasFailure()) << "after event " << i;
    }
    while (storm.undoSteps() > 0) storm.sketch.undo();
    EXPECT_TRUE(storm.entities().empty());
  }
}

}  // namespace
}  // namespace ostrelon
