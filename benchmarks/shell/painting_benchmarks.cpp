// Painting the entity layer: drawings of 1,000 and 100,000 entities on a canvas of 1920 by 1080, each
// entity some 20 view points across, by kind, through Qt and, as the window does it, into pixels.
#include <benchmark/benchmark.h>

#include <QImage>
#include <QPainter>
#include <cmath>
#include <numbers>
#include <random>

#include "app/workspace.h"
#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "interaction/canvas_renderer.h"
#include "interaction/drawing_bounds.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/scheduler.h"
#include "shell/drawing_picture.h"
#include "shell/entity_picture.h"
#include "shell/pixel_canvas_painter.h"
#include "shell/qt_canvas_painter.h"
#include "wall_plan.h"

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

// Until the picture shows the state.
void follow(EntityPicture& picture, const PictureView& view, const PictureContent& content,
            const EntityIndex& index) {
  while (!picture.update(view, content, index, EntityPicture::Deadline::max())) picture.wait();
}

enum Way { throughQt, intoPixels };

// Arguments: the kind, the number of entities, and the way.
void BM_PaintKind(benchmark::State& state) {
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
BENCHMARK(BM_PaintKind)
    ->ArgNames({"kind", "count", "pixels"})
    ->ArgsProduct({{lines, walls, circles, rectangles, mixed}, {1000, 100'000}, {throughQt, intoPixels}})
    ->Unit(benchmark::kMillisecond);

// The walls of a plan, joined and filled, as large as the canvas; pixels as above.
void BM_PaintJoinedWalls(benchmark::State& state) {
  const EntityList walls = wallPlan(static_cast<std::size_t>(state.range(0)));
  const DrawingLook look = drawingLook({true, true, false}, walls, defaultWallSystems());
  CanvasFrame frame{wholeView().transform, lightPalette()};
  frame.transform.viewport = wholeDrawingView(drawingBounds(walls), kCanvas, 0);
  QImage image(static_cast<int>(kCanvas.width), static_cast<int>(kCanvas.height),
               QImage::Format_ARGB32_Premultiplied);
  for (auto _ : state) {
    image.fill(Qt::transparent);
    PixelCanvasPainter canvas(image, 1);
    paintEntities(canvas, frame, walls, defaultWallSystems(), {}, look);
  }
  state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BM_PaintJoinedWalls)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void BM_FollowPan(benchmark::State& state) {
  const EntityList entities = drawing(mixed, state.range(0));
  EntityIndex index;
  index.update(entities);
  EntityPicture picture(EntityPicture::Kind::entitiesWithout, [] {});
  PictureView view = wholeView();
  const PictureContent content{entities, defaultWallSystems(), {}, {}};
  follow(picture, view, content, index);
  for (auto _ : state) {
    view.transform.viewport.pan.x += 3;
    view.transform.viewport.pan.y -= 2;
    follow(picture, view, content, index);
  }
}
BENCHMARK(BM_FollowPan)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void BM_FollowEdit(benchmark::State& state) {
  EntityList entities = drawing(mixed, state.range(0));
  EntityIndex index;
  index.update(entities);
  EntityPicture picture(EntityPicture::Kind::entitiesWithout, [] {});
  const PictureView view = wholeView();
  follow(picture, view, {entities, defaultWallSystems(), {}, {}}, index);
  const auto middle = static_cast<std::size_t>(state.range(0) / 2);
  const SketchEntity before = entities[middle];
  const SketchEntity after = LineEntity{entityID(before), {0, 0}, {4, 4}};
  bool flip = false;
  for (auto _ : state) {
    flip = !flip;
    entities.replace(middle, flip ? after : before);
    index.update(entities);
    follow(picture, view, {entities, defaultWallSystems(), {}, {}}, index);
  }
}
BENCHMARK(BM_FollowEdit)->Arg(1000)->Arg(100'000)->Unit(benchmark::kMillisecond);

void BM_PaintGrid(benchmark::State& state) {
  QImage image(static_cast<int>(kCanvas.width), static_cast<int>(kCanvas.height), QImage::Format_RGB32);
  CanvasFrame frame{wholeView().transform, lightPalette()};
  frame.gridPixelRatio = 1;
  for (auto _ : state) {
    PixelCanvasPainter canvas(image, 1);
    paintBackground(canvas, frame);
    paintGrid(canvas, frame);
  }
}
BENCHMARK(BM_PaintGrid)->Unit(benchmark::kMillisecond);

// The highlight of one polygon of very many vertices, which is painted live with every frame.
void BM_HighlightOfALargePolygon(benchmark::State& state) {
  VirtualScheduler scheduler;
  QueuedDialogs dialogs;
  DiskFileSystem files;
  Workspace workspace(Host{scheduler, dialogs, files});
  std::vector<SketchPoint> vertices;
  for (std::int64_t i = 0; i < state.range(0); ++i) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(state.range(0));
    const double radius = i % 2 == 0 ? 110 : 90;
    vertices.push_back({radius * std::cos(angle), radius * std::sin(angle)});
  }
  addPolygon(workspace.sketch, vertices);
  selectSingleEntity(workspace.sketch, entityID(workspace.sketch.entities().back()));
  QImage image(static_cast<int>(kCanvas.width), static_cast<int>(kCanvas.height), QImage::Format_RGB32);
  const CanvasFrame frame{wholeView().transform, lightPalette()};
  for (auto _ : state) {
    QPainter painter(&image);
    QtCanvasPainter canvas(painter);
    paintLayer(canvas, CanvasLayer::selection, workspace.board, frame);
  }
}
BENCHMARK(BM_HighlightOfALargePolygon)->Arg(100)->Arg(10'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ostrelon
