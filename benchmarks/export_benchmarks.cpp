// A drawing of lines to PDF, from the list of entities to the bytes, which are counted and dropped. The
// whole command, and another program's beside it, is measured by benchmarks/export-to-pdf.
#include <benchmark/benchmark.h>

#include <cmath>
#include <random>
#include <vector>

#include "core/wall_system.h"
#include "exchange/picture_page.h"

namespace ostrelon {
namespace {

EntityList strewnLines(std::int64_t count) {
  std::mt19937 random(1);
  const double side = 20 * std::sqrt(static_cast<double>(count));
  std::uniform_real_distribution<double> place(0, side);
  std::uniform_real_distribution<double> step(-20, 20);
  std::vector<SketchEntity> lines;
  for (std::int64_t i = 0; i < count; ++i) {
    const SketchPoint from{place(random), place(random)};
    lines.push_back(LineEntity{UUID::random(), from, {from.x + step(random), from.y + step(random)}});
  }
  return EntityList(std::move(lines));
}

void BM_ExportPdf(benchmark::State& state) {
  const EntityList lines = strewnLines(state.range(0));
  std::int64_t bytes = 0;
  for (auto _ : state) {
    const ExportOptions options;
    writePdf(picturePages(ExportFormat::pdf, lines, {}, options), lines, {}, options,
             [&](std::string_view piece) { bytes += static_cast<std::int64_t>(piece.size()); });
  }
  state.SetBytesProcessed(bytes);
  state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(BM_ExportPdf)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ostrelon
