// Selecting and editing in drawings of growing size. What grows or shrinks a drawing is taken back
// outside the measured time.
#include <benchmark/benchmark.h>

#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "geometry/hit_testing.h"
#include "geometry/marquee.h"
#include "geometry/trim.h"
#include "sketch_on_plan.h"

namespace ostrelon {
namespace {

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t count : {10'000, 100'000, 1'000'000}) benchmark->Arg(count);
  benchmark->Unit(benchmark::kMicrosecond);
}

std::size_t sizeOf(const benchmark::State& state) { return static_cast<std::size_t>(state.range(0)); }

// --- Finding

// A pick without the index, to compare with.
void BM_PickByWalking(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  const EntityList& entities = on.sketch.entities();
  for (auto _ : state) {
    const SketchPoint at = planPlace(on.random() % on.count, on.count);
    benchmark::DoNotOptimize(pickEntityAtPoint(entities, at, kDefaultViewportScale));
  }
}
BENCHMARK(BM_PickByWalking)->Apply(sizes);

// A marquee over a hundred entities, drawn and let go.
void BM_MarqueeWindow(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  for (auto _ : state) {
    on.lookElsewhere();
    on.board.beginMarquee({600, 300}, {1000, 700});
    on.board.finishMarquee(false);
  }
}
BENCHMARK(BM_MarqueeWindow)->Apply(sizes);

void BM_MarqueeOverAll(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  const double reach = kPlanPitch * static_cast<double>(planColumns(on.count) + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(entitiesInMarquee(on.sketch.index(), {-reach, -reach, reach, reach}, true));
  }
}
BENCHMARK(BM_MarqueeOverAll)->Apply(sizes);

void BM_SelectAll(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  for (auto _ : state) {
    selectAll(on.sketch);
    state.PauseTiming();
    on.sketch.clearSelection();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_SelectAll)->Apply(sizes);

// --- Editing

void takeBack(benchmark::State& state, SketchOnPlan& on) {
  state.PauseTiming();
  on.board.undo();
  on.sketch.index();
  state.ResumeTiming();
}

void BM_DeleteOne(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  for (auto _ : state) {
    const std::size_t position = on.random() % on.count;
    deleteEntity(on.sketch, on.workspace.messages, UUID(entityID(on.sketch.entities()[position])));
    on.sketch.index();
    takeBack(state, on);
  }
}
BENCHMARK(BM_DeleteOne)->Apply(sizes);

void BM_PasteThousand(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  selectEntities(on.sketch, on.blockInTheMiddle(1000));
  copySelection(on.sketch);
  for (auto _ : state) {
    pasteClipboard(on.sketch);
    on.sketch.index();
    takeBack(state, on);
  }
}
BENCHMARK(BM_PasteThousand)->Apply(sizes);

// One undo and one redo of a single edit, each at another place; the index follows both.
void BM_UndoOne(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  for (auto _ : state) {
    state.PauseTiming();
    selectSingleEntity(on.sketch, entityID(on.sketch.entities()[on.random() % on.count]));
    nudgeSelectedEntity(on.sketch, 1, 0);
    on.sketch.index();
    state.ResumeTiming();
    on.board.undo();
    on.sketch.index();
    on.board.redo();
    on.sketch.index();
  }
}
BENCHMARK(BM_UndoOne)->Apply(sizes);

// Trims a line against the one beside it and undoes it.
void BM_TrimAndUndo(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  addLine(on.sketch, {-1, -20}, {1, 20});
  addLine(on.sketch, {-20, 0}, {20, 1});
  const auto cutter = static_cast<std::int64_t>(on.sketch.entities().size()) - 2;
  for (auto _ : state) {
    const TrimResult result = applyTrim(on.sketch, cutter + 1, cutter, {10, 0});
    if (result.code != TrimResult::Code::success) state.SkipWithError("the trim was refused");
    on.board.undo();
  }
}
BENCHMARK(BM_TrimAndUndo)->Apply(sizes);

// A tenth of the drawing at once.
void selectATenth(SketchOnPlan& on) {
  std::vector<std::int64_t> positions;
  for (std::size_t i = 0; i < on.count; i += 10) positions.push_back(static_cast<std::int64_t>(i));
  selectEntities(on.sketch, positions);
}

void BM_DeleteATenth(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  for (auto _ : state) {
    state.PauseTiming();
    selectATenth(on);
    state.ResumeTiming();
    deleteSelection(on.sketch, on.workspace.messages);
    takeBack(state, on);
  }
}
BENCHMARK(BM_DeleteATenth)->Apply(sizes);

void BM_AlignATenth(benchmark::State& state) {
  SketchOnPlan on(sizeOf(state));
  for (auto _ : state) {
    state.PauseTiming();
    selectATenth(on);
    state.ResumeTiming();
    alignSelection(on.sketch, AlignmentAxis::horizontal);
    takeBack(state, on);
  }
}
BENCHMARK(BM_AlignATenth)->Apply(sizes);

}  // namespace
}  // namespace ostrelon
