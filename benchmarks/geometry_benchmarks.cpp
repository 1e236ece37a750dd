// Picking and editing in drawings of growing size.
//
// The drawings are plans of separate short segments, rectangles and circles on a grid, so that a
// larger drawing covers more ground at the same density. Edits that grow or shrink a drawing are
// undone outside the measured time.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>

#include "core/sketch_view_model.h"
#include "geometry/hit_testing.h"
#include "geometry/marquee.h"
#include "geometry/trim.h"
#include "platform/dialogs.h"
#include "platform/file_system.h"
#include "platform/scheduler.h"

namespace ostrelon {
namespace {

constexpr double kCell = 10;
// The share of a drawing that the edits of many entities take.
constexpr std::size_t kSelectedShare = 10;

class NoFiles final : public FileSystem {
 public:
  std::string readFile(const FilePath&) override { throw FileError("There is no file."); }
  std::unique_ptr<PendingFile> prepareFile(const FilePath&, const Producer&) override {
    throw FileError("Nothing can be written.");
  }
  std::optional<FileInfo> info(const FilePath&) override { return std::nullopt; }
  std::vector<std::string> list(const FilePath&) override { return {}; }
  void createFolders(const FilePath&) override {}
  void copyFile(const FilePath&, const FilePath&) override {}
  void removeFile(const FilePath&) override {}
};

std::size_t columnsOf(std::size_t count) {
  return static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(count))));
}

SketchPoint cellOf(std::size_t position, std::size_t columns) {
  return {kCell * static_cast<double>(position % columns), kCell * static_cast<double>(position / columns)};
}

// Every other entity is a line along its cell, crossed by the line that follows it in the list.
EntityList plan(std::size_t count) {
  std::vector<SketchEntity> entities;
  entities.reserve(count);
  const std::size_t columns = columnsOf(count);
  for (std::size_t i = 0; i < count; ++i) {
    const SketchPoint at = cellOf(i / 2 * 2, columns);
    const UUID id = UUID::random();
    if (i % 2 == 0) {
      entities.emplace_back(LineEntity{id, at, {at.x + 8, at.y}});
    } else if (i % 8 == 7) {
      entities.emplace_back(RectangleEntity{id, {at.x + 2, at.y + 2}, {6, 5}});
    } else if (i % 8 == 5) {
      entities.emplace_back(CircleEntity{id, {at.x + 14, at.y + 4}, 3});
    } else {
      entities.emplace_back(LineEntity{id, {at.x + 4, at.y - 4}, {at.x + 4, at.y + 4}});
    }
  }
  return EntityList(std::move(entities));
}

struct Drawing {
  VirtualScheduler scheduler{dateFromSeconds(0)};
  QueuedDialogs dialogs;
  NoFiles files;
  SketchViewModel sketch{Host{scheduler, dialogs, files}};
  std::size_t columns;

  explicit Drawing(std::size_t count) : columns(columnsOf(count)) {
    sketch.restoreSnapshot(plan(count));
    sketch.index();
  }
  // The same places for every run of a size.
  SketchPoint randomPlace() {
    const auto limit = kCell * static_cast<double>(columns);
    std::uniform_real_distribution<double> along(0, limit);
    return {along(random), along(random)};
  }
  void selectShare() {
    std::vector<std::int64_t> indices;
    for (std::size_t i = 0; i < sketch.entities->size(); i += kSelectedShare) {
      indices.push_back(static_cast<std::int64_t>(i));
    }
    sketch.selectEntities(indices);
  }

  std::mt19937_64 random{4711};
};

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t count : {1'000, 10'000, 100'000, 1'000'000}) benchmark->Arg(count);
}

std::size_t sizeOf(const benchmark::State& state) { return static_cast<std::size_t>(state.range(0)); }

// --- Finding

void pickByWalking(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  const EntityList& entities = drawing.sketch.entities;
  for (auto _ : state) {
    benchmark::DoNotOptimize(pickEntityAtPoint(entities, drawing.randomPlace(), kDefaultViewportScale));
  }
}
BENCHMARK(pickByWalking)->Apply(sizes)->Unit(benchmark::kMicrosecond);

void pickByIndex(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  const EntityIndex& index = drawing.sketch.index();
  for (auto _ : state) {
    benchmark::DoNotOptimize(pickEntityAtPoint(index, drawing.randomPlace(), kDefaultViewportScale));
  }
}
BENCHMARK(pickByIndex)->Apply(sizes)->Unit(benchmark::kMicrosecond);

void clickSelects(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  for (auto _ : state) drawing.sketch.selectAtPoint(drawing.randomPlace(), false);
}
BENCHMARK(clickSelects)->Apply(sizes)->Unit(benchmark::kMicrosecond);

// A crossing marquee over a hundred entities.
void smallMarquee(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  const EntityIndex& index = drawing.sketch.index();
  for (auto _ : state) {
    const SketchPoint at = drawing.randomPlace();
    benchmark::DoNotOptimize(
        entitiesInMarquee(index, {at.x, at.y, at.x + 10 * kCell, at.y + 10 * kCell}, true));
  }
}
BENCHMARK(smallMarquee)->Apply(sizes)->Unit(benchmark::kMicrosecond);

void wholeMarquee(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  const double reach = kCell * static_cast<double>(drawing.columns + 1);
  for (auto _ : state) {
    benchmark::DoNotOptimize(entitiesInMarquee(drawing.sketch.index(), {-kCell, -kCell, reach, reach}, true));
  }
}
BENCHMARK(wholeMarquee)->Apply(sizes)->Unit(benchmark::kMillisecond);

void selectAll(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  for (auto _ : state) {
    drawing.sketch.selectAll();
    drawing.sketch.clearSelection();
  }
}
BENCHMARK(selectAll)->Apply(sizes)->Unit(benchmark::kMillisecond);

// --- Editing

// Trims a line in the middle of the drawing and undoes it; both are measured.
void trimAndUndo(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  const std::size_t target = sizeOf(state) / 2 / 8 * 8;
  const SketchPoint at = cellOf(target, drawing.columns);
  for (auto _ : state) {
    const TrimResult result = drawing.sketch.applyTrim(
        static_cast<std::int64_t>(target), static_cast<std::int64_t>(target) + 1, {at.x + 7, at.y});
    if (result.code != TrimResult::Code::success) state.SkipWithError("the trim was refused");
    drawing.sketch.undo();
  }
}
BENCHMARK(trimAndUndo)->Apply(sizes)->Unit(benchmark::kMicrosecond);

void deleteOne(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  for (auto _ : state) {
    const std::size_t position = drawing.random() % drawing.sketch.entities->size();
    const UUID id = entityID(drawing.sketch.entities.get()[position]);
    drawing.sketch.deleteEntity(id);
    state.PauseTiming();
    drawing.sketch.undo();
    drawing.sketch.index();
    state.ResumeTiming();
  }
}
BENCHMARK(deleteOne)->Apply(sizes)->Unit(benchmark::kMicrosecond)->Iterations(200);

void deleteATenth(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  for (auto _ : state) {
    state.PauseTiming();
    drawing.selectShare();
    state.ResumeTiming();
    drawing.sketch.deleteSelection();
    state.PauseTiming();
    drawing.sketch.undo();
    drawing.sketch.index();
    state.ResumeTiming();
  }
}
BENCHMARK(deleteATenth)->Apply(sizes)->Unit(benchmark::kMillisecond)->Iterations(5);

void pasteATenth(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  drawing.selectShare();
  drawing.sketch.copySelection();
  for (auto _ : state) {
    drawing.sketch.pasteClipboard();
    state.PauseTiming();
    drawing.sketch.undo();
    drawing.sketch.index();
    state.ResumeTiming();
  }
}
BENCHMARK(pasteATenth)->Apply(sizes)->Unit(benchmark::kMillisecond)->Iterations(5);

void alignATenth(benchmark::State& state) {
  Drawing drawing(sizeOf(state));
  for (auto _ : state) {
    state.PauseTiming();
    drawing.selectShare();
    state.ResumeTiming();
    drawing.sketch.alignSelection(AlignmentAxis::horizontal);
    state.PauseTiming();
    drawing.sketch.undo();
    drawing.sketch.index();
    state.ResumeTiming();
  }
}
BENCHMARK(alignATenth)->Apply(sizes)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace
}  // namespace ostrelon
