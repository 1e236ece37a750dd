// Painting the entity layer: drawings of 1,000 and 100,000 entities on a canvas of 1920 by 1080, each
// entity some 20 view points across, by kind, through Qt and, as the window does it, into pixels.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <cmath>
#include <numbers>
#include <random>

#include "core/sketch_view_model.h"
#include "interaction/canvas_renderer.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/scheduler.h"
#include "shell/canvas_widget.h"
#include "shell/entity_picture.h"
#include "shell/pixel_canvas_painter.h"
#include "shell/qt_canvas_painter.h"

namespace ostrelon {
namespace {

constexpr SketchSize kCanvas{1920, 1080};

enum Kind { lines, walls, circles, rectangles, mixed };

EntityList drawing(Kind kind, std::int64_t count) {
  std::mt19937_64 random(1);
  std::uniform_real_distribution<double> x(-240, 240);
  std::uniform_real_distribution<double> y(-135, 135);
  std::uniform_real_distribution<double> size(-4, 4);
  const UUID system = defaultWallSystems().front().id;
  std::vector<SketchEntity> entities;
  for (std::int64_t i = 0; i < count; ++i) {
    const SketchPoint at{x(random), y(random)};
    const SketchPoint by{size(random), size(random)};
    switch (kind == mixed ? static_cast<Kind>(i % 4) : kind) {
      case lines:
        entities.push_back(LineEntity{UUID::random(), at, at + by});
        break;
      case walls:
        entities.push_back(WallEntity{UUID::random(), at, at + by, system});
        break;
      case circles:
        entities.push_back(CircleEntity{UUID::random(), at, std::abs(by.x)});
        break;
      case rectangles:
        entities.push_back(RectangleEntity{UUID::random(), at, {by.x, by.y}});
        break;
      case mixed:
        break;
    }
  }
  return EntityList(std::move(entities));
}

PictureView wholeView() {
  return {{{{kCanvas.width / 2, kCanvas.height / 2}, kDefaultViewportScale}, kCanvas}, lightPalette(), 1};
}

enum Way { throughQt, intoPixels };

// Arguments: the kind, the number of entities, and the way.
void paintAll(benchmark::State& state) {
  const EntityList entities = drawing(static_cast<Kind>(state.range(0)), state.range(1));
  QImage image(static_cast<int>(kCanvas.width), static_cast<int>(kCanvas.height),
               QImage::Format_ARGB32_Premultiplied);
  const CanvasFrame frame{wholeView().transform, lightPalette()};
  for (auto _ : state) {
    image.fill(Qt::transparent);
    if (state.range(2) == intoPixels) {
      PixelCanvasPainter canvas(image, 1);
      paintEntities(canvas, frame, entities, defaultWallSystems());
    } else {
      QPainter painter(&image);
      QtCanvasPainter canvas(painter);
      paintEntities(canvas, frame, entities, defaultWallSystems());
    }
  }
  state.SetItemsProcessed(state.iterations() * state.range(1));
}
BENCHMARK(paintAll)
    ->ArgNames({"kind", "count", "pixels"})
    ->ArgsProduct({{lines, walls, circles, rectangles, mixed}, {1000, 100'000}, {throughQt, intoPixels}})
    ->Unit(benchmark::kMillisecond);

void followPan(benchmark::State& state) {
  const EntityList entities = drawing(mixed, state.range(0));
  EntityIndex index;
  index.update(entities);
  EntityPicture picture(EntityPicture::Kind::entitiesWithout);
  PictureView view = wholeView();
  const PictureContent content{entities, defaultWallSystems(), nullptr};
  const auto never = EntityPicture::Deadline::max();
  picture.update(view, content, index, never);
  for (auto _ : state) {
    view.transform.viewport.pan.x += 3;
    view.transform.viewport.pan.y -= 2;
    picture.update(view, content, index, never);
  }
}
BENCHMARK(followPan)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void followEdit(benchmark::State& state) {
  EntityList entities = drawing(mixed, state.range(0));
  EntityIndex index;
  index.update(entities);
  EntityPicture picture(EntityPicture::Kind::entitiesWithout);
  const PictureView view = wholeView();
  const auto never = EntityPicture::Deadline::max();
  picture.update(view, {entities, defaultWallSystems(), nullptr}, index, never);
  const auto middle = static_cast<std::size_t>(state.range(0) / 2);
  const SketchEntity before = entities[middle];
  const SketchEntity after = LineEntity{entityID(before), {0, 0}, {4, 4}};
  bool flip = false;
  for (auto _ : state) {
    flip = !flip;
    entities.replace(middle, flip ? after : before);
    index.update(entities);
    picture.update(view, {entities, defaultWallSystems(), nullptr}, index, never);
  }
}
BENCHMARK(followEdit)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void paintGridLayer(benchmark::State& state) {
  QImage image(static_cast<int>(kCanvas.width), static_cast<int>(kCanvas.height), QImage::Format_RGB32);
  CanvasFrame frame{wholeView().transform, lightPalette()};
  frame.gridPixelRatio = 1;
  for (auto _ : state) {
    PixelCanvasPainter canvas(image, 1);
    paintBackground(canvas, frame);
    paintGrid(canvas, frame);
  }
}
BENCHMARK(paintGridLayer)->Unit(benchmark::kMillisecond);

/// A canvas on no display, showing a mixed drawing.
class CanvasBench {
 public:
  explicit CanvasBench(std::int64_t count) : sketch(Host{scheduler, dialogs, files}), canvas(sketch) {
    canvas.resize(static_cast<int>(kCanvas.width), static_cast<int>(kCanvas.height));
    sketch.restoreSnapshot(drawing(mixed, count));
    canvas.show();
    QApplication::processEvents();
    canvas.finishPainting();
  }

  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  DiskFileSystem files;
  SketchViewModel sketch;
  CanvasWidget canvas;
};

void startWithoutDisplay() {
  static int count = 1;
  static char name[] = "benchmark";
  static char* arguments[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Never taken down: the benchmarks end with the process.
  static const auto* application = new QApplication(count, arguments);
  benchmark::DoNotOptimize(application);
}

// One event of the pointer and the frame that shows it; the deadline is a frame of 16 ms.
void hoverAndPaint(benchmark::State& state) {
  startWithoutDisplay();
  CanvasBench bench(state.range(0));
  double x = 0;
  for (auto _ : state) {
    x = x > 1800 ? 100 : x + 7;
    const QPointF at(x, 500);
    QMouseEvent event(QEvent::MouseMove, at, at, Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(&bench.canvas, &event);
    bench.canvas.repaint();
  }
}
BENCHMARK(hoverAndPaint)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void dragAndPaint(benchmark::State& state) {
  startWithoutDisplay();
  CanvasBench bench(state.range(0));
  bench.sketch.addLine({-10, -5}, {10, 5});
  const auto send = [&bench](QEvent::Type type, QPointF at, Qt::MouseButton button) {
    QMouseEvent event(type, at, at, button, Qt::LeftButton, {});
    QApplication::sendEvent(&bench.canvas, &event);
  };
  send(QEvent::MouseButtonPress, {960, 540}, Qt::LeftButton);
  double x = 970;
  for (auto _ : state) {
    x = x > 1800 ? 100 : x + 7;
    send(QEvent::MouseMove, {x, 500}, Qt::NoButton);
    bench.canvas.repaint();
  }
}
BENCHMARK(dragAndPaint)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void panAndPaint(benchmark::State& state) {
  startWithoutDisplay();
  CanvasBench bench(state.range(0));
  int step = 0;
  for (auto _ : state) {
    ++step;
    bench.sketch.panViewport(step % 40 < 20 ? 6 : -6, step % 2 == 0 ? 2 : -2);
    bench.canvas.repaint();
  }
}
BENCHMARK(panAndPaint)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// A zoom shows the old picture, scaled, and paints the new one over several turns; this is one turn.
void zoomAndPaint(benchmark::State& state) {
  startWithoutDisplay();
  CanvasBench bench(state.range(0));
  int step = 0;
  for (auto _ : state) {
    bench.sketch.zoomViewport(++step % 2 == 0 ? kZoomInFactor : kZoomOutFactor, {700, 400});
    bench.canvas.repaint();
  }
}
BENCHMARK(zoomAndPaint)->Arg(10'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// The highlight of one polygon of very many vertices, painted live with every frame.
void hoverOverSelectedPolygon(benchmark::State& state) {
  startWithoutDisplay();
  CanvasBench bench(10);
  std::vector<SketchPoint> vertices;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(state.range(0));
    const double radius = i % 2 == 0 ? 110 : 90;
    vertices.push_back({radius * std::cos(angle), radius * std::sin(angle)});
  }
  bench.sketch.addPolygon(vertices);
  bench.sketch.selectSingleEntity(entityID(bench.sketch.entities->back()));
  for (auto _ : state) bench.canvas.repaint();
}
BENCHMARK(hoverOverSelectedPolygon)->Arg(100)->Arg(10'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ostrelon
