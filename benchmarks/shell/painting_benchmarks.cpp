// Painting the entity layer: drawings of 1,000 and 100,000 entities on a canvas of 1920 by 1080, each
// entity some 20 view points across, by kind, through Qt and, as the window does it, into pixels.
#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <random>

#include "interaction/canvas_renderer.h"
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

}  // namespace
}  // namespace ostrelon
