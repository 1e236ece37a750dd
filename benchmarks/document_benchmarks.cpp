// Opening and saving documents of 10,000 to 1,000,000 entities, alone (`Document`) and with 20 undo steps
// of single edits (`WithUndo`). Bytes a second count the file; opening reads it from the system's cache,
// and saving is measured both up to the disk (`BM_Encode...`) and onto it (`BM_Save...`).
//
// `heldMB`: memory in use by the open document. `undoPercent`: what the undo steps add to it.
// `peakMB`: the largest resident size of the process while it worked.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <fstream>
#include <random>
#include <string>
#include <utility>

#include "app/workspace.h"
#include "core/adding.h"
#include "documents/app_settings.h"
#include "documents/auto_save.h"
#include "documents/sketch_document.h"
#include "documents/sketch_document_io.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/json_user_defaults.h"
#include "platform/scheduler.h"

namespace ostrelon {
namespace {

constexpr double kMegabyte = 1e6;
constexpr int kUndoSteps = 20;

// A drawing like those of the program: mostly walls and lines on a fine grid, some of everything else.
SketchEntity randomEntity(std::mt19937& random, const UUID& system) {
  std::uniform_int_distribution<int> grid(-200'000, 200'000);
  const auto number = [&] { return grid(random) / 64.0; };
  const auto point = [&] {
    const double x = number();
    return SketchPoint{x, number()};
  };
  const SketchPoint at = point();
  const UUID id = UUID::random();
  switch (grid(random) & 15) {
    case 0:
      return CircleEntity{id, at, 1 + std::abs(number())};
    case 1:
      return ArcEntity{id, at, 1 + std::abs(number()), 0.1, 2.3};
    case 2:
      return RectangleEntity{id, at, {12.25, 8}};
    case 3:
      return PolygonEntity{id, {at, point(), point(), point(), point()}};
    case 4:
    case 5:
    case 6:
    case 7:
      return WallEntity{id, at, point(), system};
    default:
      return LineEntity{id, at, point()};
  }
}

struct BenchmarkDocument {
  DiskFileSystem files;
  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  Workspace workspace{Host{scheduler, dialogs, files}};
};

SketchDocumentV2 documentOf(std::int64_t size, bool hasUndo) {
  std::mt19937 random(42);
  BenchmarkDocument on;
  SketchDocumentV2 document = on.workspace.document.makeDocument(false);
  const UUID system = document.ws.items.front().id;
  std::vector<SketchEntity> entities;
  entities.reserve(static_cast<std::size_t>(size));
  for (std::int64_t count = 0; count < size; ++count) entities.push_back(randomEntity(random, system));
  document.e = EntityList(std::move(entities));
  if (!hasUndo) return document;
  document.undo.emplace();
  std::uniform_int_distribution<std::size_t> anywhere(0, document.e.size() - 1);
  for (int step = 0; step < kUndoSteps; ++step) {
    document.undo->push_back(document.e);
    document.e.replace(anywhere(random), randomEntity(random, system));
  }
  return document;
}

double heldMegabytes() { return static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd) / kMegabyte; }

void resetPeak() { std::ofstream("/proc/self/clear_refs") << "5"; }

double peakMegabytes() {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmHWM:")) return std::stod(line.substr(6)) * 1024 / kMegabyte;
  }
  return 0;
}

double heldAfterOpening(const std::string& bytes) {
  BenchmarkDocument on;
  const double before = heldMegabytes();
  on.workspace.document.adopt(SketchDocumentIO::decodeDocument(bytes));
  return heldMegabytes() - before;
}

void openDocument(benchmark::State& state, bool hasUndo) {
  const FilePath path = std::filesystem::temp_directory_path() / "ostrelon-benchmark.ostrel";
  BenchmarkDocument on;
  std::size_t size = 0;
  double held = 0;
  double heldWithoutUndo = 0;
  {
    SketchDocumentV2 document = documentOf(state.range(0), hasUndo);
    const std::string bytes = SketchDocumentIO::encodeDocument(document);
    size = bytes.size();
    on.files.writeFile(path, bytes);
    held = heldAfterOpening(bytes);
    document.undo.reset();
    heldWithoutUndo = heldAfterOpening(SketchDocumentIO::encodeDocument(document));
  }
  malloc_trim(0);
  resetPeak();
  for (auto _ : state) on.workspace.document.open(path);
  state.counters["peakMB"] = peakMegabytes();
  state.counters["fileMB"] = static_cast<double>(size) / kMegabyte;
  state.counters["heldMB"] = held;
  if (hasUndo) state.counters["undoPercent"] = (held / heldWithoutUndo - 1) * 100;
  state.SetBytesProcessed(static_cast<std::int64_t>(size) * state.iterations());
  std::filesystem::remove(path);
}

void encodeDocument(benchmark::State& state, bool hasUndo) {
  const SketchDocumentV2 document = documentOf(state.range(0), hasUndo);
  std::size_t bytes = 0;
  malloc_trim(0);
  resetPeak();
  for (auto _ : state) {
    SketchDocumentIO::encodeDocument(document, [&](std::string_view piece) { bytes += piece.size(); });
  }
  state.counters["peakMB"] = peakMegabytes();
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void saveDocument(benchmark::State& state, bool hasUndo) {
  const FilePath path = std::filesystem::temp_directory_path() / "ostrelon-benchmark.ostrel";
  BenchmarkDocument on;
  on.workspace.document.adopt({documentOf(state.range(0), hasUndo)});
  for (auto _ : state) on.workspace.document.save(path);
  state.SetBytesProcessed(static_cast<std::int64_t>(std::filesystem::file_size(path)) * state.iterations());
  std::filesystem::remove(path);
}

// How long an auto-save of 100,000 entities holds the main thread: all but the background's work.
class SplitScheduler final : public Scheduler {
 public:
  Date now() const override { return clock.now(); }
  ScheduledTask after(Seconds delay, std::function<void()> work) override {
    return clock.after(delay, std::move(work));
  }
  ScheduledTask every(Seconds period, std::function<void()> work) override {
    return clock.every(period, std::move(work));
  }
  ScheduledTask inBackground(std::function<void()> work, std::function<void()> finish) override {
    background = std::move(work);
    finishing = std::move(finish);
    return ScheduledTask();
  }
  VirtualScheduler clock;
  std::function<void()> background;
  std::function<void()> finishing;
};

void BM_AutoSaveHoldsTheMainThread(benchmark::State& state) {
  const FilePath path = std::filesystem::temp_directory_path() / "ostrelon-benchmark.ostrel";
  DiskFileSystem files;
  SplitScheduler scheduler;
  QueuedDialogs dialogs;
  const FilePath settingsFile = path.parent_path() / "ostrelon-benchmark-settings.json";
  JsonUserDefaults defaults(files, settingsFile);
  AppSettings settings(defaults, files, path.parent_path() / "none");
  Workspace workspace(Host{scheduler, dialogs, files});
  workspace.document.adopt({documentOf(state.range(0), true)});
  workspace.document.save(path);
  AutoSaveController controller(workspace.document, settings);
  controller.rescheduleAutoSave();
  for (auto _ : state) {
    addLine(workspace.sketch, {0, 0}, {1, 1});
    scheduler.clock.advance(Seconds(300));
    state.PauseTiming();
    std::exchange(scheduler.background, nullptr)();
    state.ResumeTiming();
    std::exchange(scheduler.finishing, nullptr)();
  }
  std::filesystem::remove(path);
  std::filesystem::remove(settingsFile);
}

void BM_OpenDocument(benchmark::State& state) { openDocument(state, false); }
void BM_OpenWithUndo(benchmark::State& state) { openDocument(state, true); }
void BM_EncodeDocument(benchmark::State& state) { encodeDocument(state, false); }
void BM_EncodeWithUndo(benchmark::State& state) { encodeDocument(state, true); }
void BM_SaveDocument(benchmark::State& state) { saveDocument(state, false); }
void BM_SaveWithUndo(benchmark::State& state) { saveDocument(state, true); }

void sizes(benchmark::internal::Benchmark* benchmark) {
  benchmark->Unit(benchmark::kMillisecond)->Arg(10'000)->Arg(100'000)->Arg(1'000'000);
}

BENCHMARK(BM_OpenDocument)->Apply(sizes);
BENCHMARK(BM_OpenWithUndo)->Apply(sizes);
BENCHMARK(BM_EncodeDocument)->Apply(sizes);
BENCHMARK(BM_EncodeWithUndo)->Apply(sizes);
BENCHMARK(BM_SaveDocument)->Apply(sizes);
BENCHMARK(BM_SaveWithUndo)->Apply(sizes);
BENCHMARK(BM_AutoSaveHoldsTheMainThread)->Arg(100'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ostrelon
