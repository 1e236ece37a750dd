// The document and its undo steps at 1,000 to 1,000,000 entities, and the console.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cmath>

#include "app/workspace.h"
#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"

namespace ostrelon {
namespace {

// `count` lines of 8 units on a square lattice of 10.
EntityList lattice(std::int64_t count) {
  std::vector<SketchEntity> entities;
  entities.reserve(static_cast<std::size_t>(count));
  const auto side = static_cast<std::int64_t>(std::ceil(std::sqrt(static_cast<double>(count))));
  for (std::int64_t i = 0; i < count; ++i) {
    const SketchPoint place{static_cast<double>(i % side) * 10, static_cast<double>(i / side) * 10};
    entities.push_back(LineEntity{UUID::random(), place, place + SketchPoint{8, 0}});
  }
  return EntityList(std::move(entities));
}

struct LargeSketch {
  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  DiskFileSystem files;
  Workspace workspace{Host{scheduler, dialogs, files}};

  explicit LargeSketch(std::int64_t count) { workspace.board.restoreSnapshot(lattice(count)); }

  // Moves one line, a different one each time, as one undo step.
  void edit() {
    const EntityList& entities = workspace.sketch.entities();
    place_ = (place_ + 7919) % entities.size();
    selectSingleEntity(workspace.sketch, entityID(entities[place_]));
    if (nudgeSelectedEntity(workspace.sketch, 1, 0) != EntityEditResult::applied) std::abort();
  }

 private:
  std::size_t place_ = 0;
};

// The bytes that the process has taken from the heap.
double heapInUse() {
  const struct mallinfo2 info = mallinfo2();
  return static_cast<double>(info.uordblks) + static_cast<double>(info.hblkhd);
}

void BM_Snapshot(benchmark::State& state) {
  const EntityList list = lattice(state.range(0));
  for (auto _ : state) {
    SketchUndoSnapshot snapshot{list};
    benchmark::DoNotOptimize(snapshot);
  }
}

void BM_EditWithCheckpoint(benchmark::State& state) {
  LargeSketch large(state.range(0));
  large.edit();
  for (auto _ : state) large.edit();
}

// One undo and one redo of a single edit.
void BM_UndoRedo(benchmark::State& state) {
  LargeSketch large(state.range(0));
  large.edit();
  for (auto _ : state) {
    large.workspace.board.undo();
    large.workspace.board.redo();
  }
}

void BM_AppendWithCheckpoint(benchmark::State& state) {
  LargeSketch large(state.range(0));
  for (auto _ : state) addLine(large.workspace.sketch, {0, 0}, {10, 10});
}

// The memory of a thousand undo steps, each of one edit, as a multiple of that of one list.
void BM_MemoryOfAThousandEdits(benchmark::State& state) {
  for (auto _ : state) {
    const double before = heapInUse();
    const EntityList list = lattice(state.range(0));
    const double oneList = heapInUse() - before;

    EntityList edited = list;
    std::vector<SketchUndoSnapshot> steps;
    for (std::size_t i = 0; i < 1000; ++i) {
      steps.push_back({edited});
      const std::size_t place = i * 7919 % edited.size();
      edited.replace(place, LineEntity{entityID(edited[place]), {0, 0}, {1, 1}});
    }
    const double all = heapInUse() - before;
    state.counters["MB_one_list"] = oneList / 1e6;
    state.counters["MB_with_1000_edits"] = all / 1e6;
    state.counters["times_one_list"] = all / oneList;
  }
}

void BM_ConsoleLines(benchmark::State& state) {
  LargeSketch large(0);
  for (auto _ : state) {
    large.workspace.console.setInput("line 0 0 12.5 40");
    large.workspace.console.submit();
  }
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK(BM_Snapshot)->Arg(1'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kNanosecond);
BENCHMARK(BM_EditWithCheckpoint)
    ->Arg(1'000)
    ->Arg(10'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_UndoRedo)->Arg(1'000)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_AppendWithCheckpoint)->Arg(1'000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_MemoryOfAThousandEdits)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ConsoleLines)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace ostrelon
