// A workspace over a plan, without a window and without files.
#pragma once

#include <random>

#include "app/workspace.h"
#include "interaction/canvas_gestures.h"
#include "plan.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/scheduler.h"

namespace ostrelon {

struct SketchOnPlan {
  VirtualScheduler scheduler{dateFromSeconds(0)};
  QueuedDialogs dialogs;
  DiskFileSystem files;
  Workspace workspace{Host{scheduler, dialogs, files}};
  Sketch& sketch = workspace.sketch;
  Board& board = workspace.board;
  CanvasGestures gestures{board};
  std::size_t count;
  std::mt19937_64 random{4711};  // the same places for every run of a size

  explicit SketchOnPlan(std::size_t entityCount) : count(entityCount) {
    board.resizeCanvas({1600, 1000});
    board.restoreSnapshot(plan(count));
    sketch.index();
  }

  /// Anywhere on the canvas, view points.
  SketchPoint randomViewPoint() {
    std::uniform_real_distribution<double> x(0, 1600);
    std::uniform_real_distribution<double> y(0, 1000);
    return {x(random), y(random)};
  }
  /// Shows another part of the plan, so that a large drawing is met at many places and not at a few
  /// that the processor has at hand.
  void lookElsewhere() {
    const SketchPoint at = planPlace(random() % count, count);
    const double scale = board.viewport().scale;
    board.setViewport({{800 - at.x * scale, 500 + at.y * scale}, scale});
  }
  /// One step of somebody who works at one place for a while before going to another.
  void goOn() {
    if (steps_++ % 200 == 0) lookElsewhere();
  }
  /// The positions of a square block of so many entities in the middle of the plan.
  std::vector<std::int64_t> blockInTheMiddle(std::size_t size) const {
    const std::size_t columns = planColumns(count);
    const auto side = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(size))));
    const std::size_t first = columns > side ? (columns - side) / 2 : 0;
    std::vector<std::int64_t> positions;
    for (std::size_t row = first; row < first + side; ++row) {
      for (std::size_t column = first; column < first + side && positions.size() < size; ++column) {
        const std::size_t position = row * columns + column;
        if (position < count) positions.push_back(static_cast<std::int64_t>(position));
      }
    }
    return positions;
  }

 private:
  std::uint64_t steps_ = 0;
};

}  // namespace ostrelon
