// The pointer over large drawings: hovering, drawing with snaps, and dragging. Each iteration is one
// move of the pointer, handled whole.
#include <benchmark/benchmark.h>

#include <cmath>

#include "core/sketch_view_model.h"
#include "geometry/selection_handles.h"
#include "interaction/canvas_gestures.h"
#include "interaction/canvas_transform.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"

namespace ostrelon {
namespace {

// Lines, circles and rectangles on a square lattice of 20 units, and a hand in the middle of it.
struct PointerSketch {
  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  DiskFileSystem files;
  SketchViewModel sketch{Host{scheduler, dialogs, files}};
  CanvasGestures gestures{sketch};

  explicit PointerSketch(std::int64_t count) {
    sketch.updateCanvasSize({1600, 1000});
    std::vector<SketchEntity> entities;
    const auto side = static_cast<std::int64_t>(std::ceil(std::sqrt(static_cast<double>(count))));
    for (std::int64_t i = 0; i < count; ++i) {
      const SketchPoint place{static_cast<double>(i % side - side / 2) * 20,
                              static_cast<double>(i / side - side / 2) * 20};
      if (i % 3 == 0) entities.push_back(LineEntity{UUID::random(), place, place + SketchPoint{17, 9}});
      if (i % 3 == 1) entities.push_back(CircleEntity{UUID::random(), place, 7});
      if (i % 3 == 2) entities.push_back(RectangleEntity{UUID::random(), place, {12, 8}});
    }
    sketch.restoreSnapshot(EntityList(std::move(entities)));
    gestures.hover({800, 500});
  }

  // A pointer that wanders over the canvas, view points.
  SketchPoint step() {
    turn_ += 0.37;
    return {800 + 600 * std::cos(turn_), 500 + 400 * std::sin(turn_ * 1.7)};
  }

 private:
  double turn_ = 0;
};

void hoverOver(benchmark::State& state, SketchTool tool) {
  PointerSketch pointer(state.range(0));
  pointer.sketch.activateTool(tool);
  for (auto _ : state) pointer.gestures.hover(pointer.step());
}

void BM_HoverSelect(benchmark::State& state) { hoverOver(state, SketchTool::select); }
void BM_HoverLine(benchmark::State& state) { hoverOver(state, SketchTool::line); }

void BM_DrawLine(benchmark::State& state) {
  PointerSketch pointer(state.range(0));
  pointer.sketch.activateTool(SketchTool::line);
  pointer.gestures.press({800, 500});
  for (auto _ : state) pointer.gestures.drag(pointer.step());
}

void dragFromTheMiddle(benchmark::State& state, PointerSketch& pointer) {
  const SketchEntity& grabbed = pointer.sketch.entities.get()[pointer.sketch.entities->size() / 2];
  const SketchPoint press =
      sketchPointToView(selectionHandles(grabbed).rbegin()->second, pointer.sketch.viewport);
  pointer.gestures.press(press);
  for (auto _ : state) pointer.gestures.drag(pointer.step());
  if (!*pointer.sketch.selectDrag) state.SkipWithError("nothing was grabbed");
}

void BM_DragEntity(benchmark::State& state) {
  PointerSketch pointer(state.range(0));
  dragFromTheMiddle(state, pointer);
}

void BM_DragSelection(benchmark::State& state) {
  PointerSketch pointer(state.range(0));
  pointer.sketch.selectAll();
  dragFromTheMiddle(state, pointer);
}

BENCHMARK(BM_HoverSelect)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_HoverLine)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DrawLine)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DragEntity)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_DragSelection)->Arg(10'000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace ostrelon
