// What the journal costs the main thread: an edit with a journal that follows it, and one without.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "app/edit_journal.h"
#include "documents/sketch_document.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/scheduler.h"

namespace ostrelon {
namespace {

struct JournaledPlan {
  explicit JournaledPlan(std::size_t entities, bool isJournaled) {
    std::vector<SketchEntity> lines;
    for (std::size_t i = 0; i < entities; ++i) {
      const auto x = static_cast<double>(i);
      lines.push_back(LineEntity{UUID::random(), {x, 0}, {x, 1}});
    }
    SketchDocumentV2 plan;
    plan.name = "Plan";
    plan.ws.items = defaultWallSystems();
    plan.e = EntityList(std::move(lines));
    workspace.document.adopt(LoadedSketchDocument{std::move(plan)});
    if (!isJournaled) return;
    // The first edit of a document that no file holds writes a snapshot of it.
    workspace.document.save(folder / "Plan.ostrel");
    journal.emplace(workspace, folder / "journals");
  }
  JournaledPlan(const JournaledPlan&) = delete;
  JournaledPlan& operator=(const JournaledPlan&) = delete;
  ~JournaledPlan() {
    if (journal) journal->remove();
    journal.reset();
    std::filesystem::remove_all(folder);
  }

  void edit(std::size_t count) {
    Sketch& sketch = workspace.sketch;
    const std::size_t stride = sketch.entities().size() / count;
    sketch.edit([&](Drawing& drawing) {
      for (std::size_t i = 0; i < count; ++i) {
        const std::size_t at = i * stride + next % stride;
        const auto x = static_cast<double>(next);
        drawing.entities.replace(at, LineEntity{entityID(drawing.entities[at]), {x, 2}, {x, 3}});
      }
    });
    ++next;
  }

  FilePath folder = std::filesystem::temp_directory_path() / ("ostrelon-" + UUID::random().text());
  bool isMade = std::filesystem::create_directories(folder);
  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  DiskFileSystem files;
  Workspace workspace{Host{scheduler, dialogs, files}};
  std::optional<EditJournal> journal;
  std::size_t next = 0;
};

void BM_EditWithJournal(benchmark::State& state) {
  JournaledPlan plan(1'000'000, state.range(1) != 0);
  plan.edit(1);
  for ([[maybe_unused]] auto _ : state) plan.edit(static_cast<std::size_t>(state.range(0)));
}
BENCHMARK(BM_EditWithJournal)
    ->ArgNames({"edited", "journal"})
    ->ArgsProduct({{1, 1000}, {0, 1}})
    ->Iterations(200)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace ostrelon
