// Clean walls: joining all walls of a plan, and following the drag of one.
#include <benchmark/benchmark.h>

#include <random>

#include "geometry/joined_walls.h"
#include "wall_plan.h"

namespace ostrelon {
namespace {

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t count : {1'000, 100'000}) benchmark->Arg(count);
  benchmark->Unit(benchmark::kMicrosecond)->UseRealTime();
}

// Two threads, as in the window.
void BM_JoinWalls(benchmark::State& state) {
  const EntityList walls = wallPlan(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    benchmark::DoNotOptimize(JoinedWalls::of(walls, defaultWallSystems(), 2));
  }
}
BENCHMARK(BM_JoinWalls)->Apply(sizes);

// Each step moves one wall somewhat; the index follows outside of the measured time, since hovering and
// picking ask it at every move of the pointer anyway.
void BM_FollowADraggedWall(benchmark::State& state) {
  EntityList walls = wallPlan(static_cast<std::size_t>(state.range(0)));
  EntityIndex index;
  index.update(walls);
  JoinedWalls joined = JoinedWalls::of(walls, defaultWallSystems());
  std::mt19937_64 random(4711);
  std::size_t position = 0;
  std::uniform_real_distribution<double> by(-1, 1);
  int step = 0;
  for (auto _ : state) {
    state.PauseTiming();
    if (step++ % 50 == 0) position = random() % walls.size();
    auto wall = std::get<WallEntity>(walls[position]);
    const SketchPoint moved{by(random), by(random)};
    wall.from = wall.from + moved;
    wall.to = wall.to + moved;
    walls.replace(position, wall);
    index.update(walls);
    state.ResumeTiming();
    if (!joined.follow(walls, defaultWallSystems(), index)) state.SkipWithError("not followed");
  }
}
BENCHMARK(BM_FollowADraggedWall)->Apply(sizes);

}  // namespace
}  // namespace ostrelon
