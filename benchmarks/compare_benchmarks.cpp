// The difference of two drawings of up to 1,000,000 entities, a thousand of which were edited: in lists that
// share their storage, as a drawing and its checkpoint of the same session do, and in lists that do not, as
// two files, in the same order or in any.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <random>

#include "documents/compare.h"
#include "plan.h"

namespace ostrelon {
namespace {

constexpr std::size_t kChanges = 1000;

struct Pair {
  Drawing before;
  Drawing after;

  explicit Pair(std::size_t count) {
    before.entities = plan(count);
    after.entities = before.entities;
    std::mt19937 random(42);
    for (std::size_t i = 0; i < kChanges; ++i) {
      const auto at = std::uniform_int_distribution<std::size_t>(0, after.entities.size() - 1)(random);
      const UUID id = entityID(after.entities[at]);
      switch (i % 4) {
        case 0:
          after.entities.remove(at);
          break;
        case 1:
          after.entities.append(LineEntity{UUID::random(), {0, 0}, {1, 1}});
          break;
        default:
          after.entities.replace(at, LineEntity{id, {0, 0}, {1, static_cast<double>(i)}});
      }
    }
  }
};

void compare(benchmark::State& state, const Drawing& before, const Drawing& after) {
  for (auto _ : state) {
    const DrawingDifference difference = compareDrawings(before, after);
    if (difference.changed.size() + difference.removed.size() < kChanges / 2) std::abort();
  }
}

void BM_CompareSharedStorage(benchmark::State& state) {
  const Pair pair(static_cast<std::size_t>(state.range(0)));
  compare(state, pair.before, pair.after);
}

void BM_CompareSeparateLists(benchmark::State& state) {
  Pair pair(static_cast<std::size_t>(state.range(0)));
  const EntityList& list = pair.after.entities;
  pair.after.entities = EntityList(std::vector<SketchEntity>(list.begin(), list.end()));
  compare(state, pair.before, pair.after);
}

void BM_CompareShuffledLists(benchmark::State& state) {
  Pair pair(static_cast<std::size_t>(state.range(0)));
  std::vector<SketchEntity> all(pair.after.entities.begin(), pair.after.entities.end());
  std::shuffle(all.begin(), all.end(), std::mt19937(7));
  pair.after.entities = EntityList(std::move(all));
  compare(state, pair.before, pair.after);
}

BENCHMARK(BM_CompareSharedStorage)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CompareSeparateLists)->Arg(10'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_CompareShuffledLists)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ostrelon
