// The pointer over drawings of growing size, without a window: each iteration is one move, handled whole.
// The pointer works in one part of the drawing for some hundred moves and then goes on to another, anywhere.
#include <benchmark/benchmark.h>

#include "geometry/edit_operations.h"
#include "geometry/selection_handles.h"
#include "interaction/canvas_transform.h"
#include "interaction/sketch_snapping.h"
#include "sketch_on_plan.h"

namespace ostrelon {
namespace {

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t count : {10'000, 100'000, 1'000'000}) benchmark->Arg(count);
  benchmark->Unit(benchmark::kMicrosecond);
}

std::size_t sizeOf(const benchmark::State& state) { return static_cast<std::size_t>(state.range(0)); }

// A pointer that wanders about a point, some 40 view points away, as one that looks for its place.
class Wander {
 public:
  explicit Wander(SketchPoint middle) : middle_(middle) {}
  SketchPoint next() {
    turn_ += 0.37;
    return middle_ + SketchPoint{40 * std::cos(turn_), 30 * std::sin(turn_ * 1.7)};
  }

 private:
  SketchPoint middle_;
  double turn_ = 0;
};

// One hover of the select tool, anywhere in the drawing.
void BM_HoverPick(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  for (auto _ : state) {
    on.goOn();
    on.gestures.hover(on.randomViewPoint());
  }
}
BENCHMARK(BM_HoverPick)->Apply(sizes);

// One move of a line that is being drawn.
void BM_SnapDraftEnd(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  on.board.activateTool(SketchTool::line);
  on.gestures.press({800, 500});
  for (auto _ : state) {
    on.goOn();
    on.gestures.drag(on.randomViewPoint());
  }
}
BENCHMARK(BM_SnapDraftEnd)->Apply(sizes);

// Takes hold of what is drawn at this position; false when nothing came along.
bool takeHold(SketchOnPlan& on, std::size_t position, SketchPoint& press) {
  const SketchEntity& entity = on.sketch.entities()[position];
  const double scale = on.board.viewport().scale;
  const SketchPoint at = selectionHandles(entity).begin()->second;
  on.board.setViewport({{800 - at.x * scale, 500 + at.y * scale}, scale});
  press = {800, 500};
  on.gestures.press(press);
  on.gestures.drag(press + SketchPoint{20, 10});
  return on.board.selectDrag() != nullptr;
}

// The snap of a moved entity alone: its points against those of all others.
void BM_SnapEntityMove(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  const std::size_t position = on.count / 2 / 10 * 10;
  const SketchEntity moved = on.sketch.entities()[position];
  const SketchPoint home = planPlace(position, on.count);
  for (auto _ : state) {
    on.goOn();
    const SketchPoint to = viewPointToSketch(on.randomViewPoint(), on.board.viewport());
    benchmark::DoNotOptimize(
        SketchSnapping::snapEntityMove(to - home, on.board.viewport(), moved, on.sketch.index()));
  }
}
BENCHMARK(BM_SnapEntityMove)->Apply(sizes);

void drag(benchmark::State& state, SketchOnPlan& on, std::size_t position) {
  SketchPoint press;
  if (!takeHold(on, position, press)) state.SkipWithError("nothing was grabbed");
  Wander pointer(press + SketchPoint{50, 50});
  for (auto _ : state) on.gestures.drag(pointer.next());
}

// One move of a line that is dragged as a whole.
void BM_DragOne(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  drag(state, on, on.count / 2 / 10 * 10);
}
BENCHMARK(BM_DragOne)->Apply(sizes);

// One move of a thousand entities, a block in the middle of the plan.
void BM_DragThousand(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  const auto block = on.blockInTheMiddle(1000);
  selectEntities(on.sketch, block);
  drag(state, on, static_cast<std::size_t>(block.front()));
}
BENCHMARK(BM_DragThousand)->Apply(sizes);

}  // namespace
}  // namespace ostrelon
