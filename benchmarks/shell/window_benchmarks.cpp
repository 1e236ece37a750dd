// The main window over large plans: real events, and the frames that they cause. The whole plan is on
// the screen, so that every entity of it is to be seen; at a million each is about a pixel.
//
// A frame is everything from an event until the window has nothing more to do at once, its repaint
// included. Beside the mean the counters tell the 50th, 95th and 99th percentile and the worst, in
// milliseconds of the clock, and the 95th and 99th in milliseconds that the main thread was at work, which
// other programs do not touch. `exact_ms` is the longest time from the last event of a movement until the
// picture is exact.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>
#include <vector>

#include "app/application.h"
#include "core/adding.h"
#include "interaction/canvas_renderer.h"
#include "plan.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/scheduler.h"
#include "platform/user_defaults.h"
#include "shell/main_window.h"
#include "shell/pixel_canvas_painter.h"
#include "updates/served_update_client.h"
#include "window_on_plan.h"

namespace ostrelon {
namespace {

struct FrameTime {
  double elapsed = 0;  // milliseconds
  double atWork = 0;
};

class FrameTimes {
 public:
  void add(FrameTime frame) {
    elapsed_.push_back(frame.elapsed);
    atWork_.push_back(frame.atWork);
  }
  void report(benchmark::State& state) {
    if (elapsed_.empty()) return;
    state.counters["p50_ms"] = percentile(elapsed_, 50);
    state.counters["p95_ms"] = percentile(elapsed_, 95);
    state.counters["p99_ms"] = percentile(elapsed_, 99);
    state.counters["worst_ms"] = percentile(elapsed_, 100);
    state.counters["cpu_p95_ms"] = percentile(atWork_, 95);
    state.counters["cpu_p99_ms"] = percentile(atWork_, 99);
  }

 private:
  static double percentile(std::vector<double>& times, double percent) {
    std::sort(times.begin(), times.end());
    return times[static_cast<std::size_t>(percent / 100 * static_cast<double>(times.size() - 1))];
  }

  std::vector<double> elapsed_;
  std::vector<double> atWork_;
};

/// The main window, 1920 by 1080, on no display, with a plan zoomed to fit.
class WindowOnPlan {
 public:
  explicit WindowOnPlan(std::int64_t count) {
    window.resize(1920, 1080);
    window.show();
    settle();
    workspace.board.restoreSnapshot(plan(static_cast<std::size_t>(count)));
    workspace.board.zoomToFit(workspace.board.view->canvasSize);
    settle();
  }

  QPointF middle() { return QRectF(window.canvas().rect()).center(); }

  /// One event and everything that it causes at once.
  template <class Event>
  FrameTime frame(Event& event) {
    const auto start = Clock::now();
    const double startTime = threadTime();
    QApplication::sendEvent(&window.canvas(), &event);
    // Once for what the event asks for, once more for the repaints of the badges that changed with it.
    QApplication::processEvents();
    QApplication::processEvents();
    return {millisecondsSince(start), threadTime() - startTime};
  }
  FrameTime move(QPointF at, Qt::MouseButtons buttons) {
    QMouseEvent event(QEvent::MouseMove, at, window.canvas().mapToGlobal(at), Qt::NoButton, buttons, {});
    return frame(event);
  }
  FrameTime press(QPointF at) {
    QMouseEvent event(QEvent::MouseButtonPress, at, window.canvas().mapToGlobal(at), Qt::LeftButton,
                      Qt::LeftButton, {});
    return frame(event);
  }
  FrameTime wheel(QPoint pixels, QPoint angle, Qt::KeyboardModifiers modifiers) {
    QWheelEvent event(middle(), window.canvas().mapToGlobal(middle()), pixels, angle, Qt::NoButton, modifiers,
                      Qt::NoScrollPhase, false);
    return frame(event);
  }
  /// Until the picture is exact. In milliseconds.
  double settle() {
    const auto start = Clock::now();
    while (true) {
      scheduler.advance(Seconds(0));
      QApplication::processEvents();
      if (window.canvas().isExact()) break;
      // The program sleeps while it waits, and leaves the processor to the painting threads.
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return millisecondsSince(start);
  }

  VirtualScheduler scheduler{dateFromSeconds(0)};
  QueuedDialogs dialogs;
  DiskFileSystem files;
  MemoryUserDefaults defaults;
  FilePath home = std::filesystem::temp_directory_path() / "ostrelon-benchmark";
  ServedUpdateClient client{scheduler, home / "tmp"};
  Application application{{.host = {scheduler, dialogs, files},
                           .defaults = defaults,
                           .updateClient = client,
                           .openInstaller = [](const FilePath&) { return true; }},
                          {.documentsFolder = home / "Documents",
                           .updates = updateConfiguration("1.0.0", "1", "", ""),
                           .isUITesting = true}};
  Workspace& workspace = application.workspace();
  MainWindow window{application, theme()};
};

/// A path that wanders over the whole canvas.
class Wander {
 public:
  explicit Wander(QPointF middle) : middle_(middle) {}
  QPointF next() {
    turn_ += 0.037;
    return middle_ + QPointF(middle_.x() * 0.9 * std::cos(turn_), middle_.y() * 0.9 * std::sin(turn_ * 1.7));
  }

 private:
  QPointF middle_;
  double turn_ = 0;
};

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t count : {10'000, 100'000, 1'000'000}) benchmark->Arg(count);
  benchmark->Unit(benchmark::kMillisecond);
}

// One mouse event while a line is drawn, with grid and snapping on.
void BM_PointerMoveWindow(benchmark::State& state) {
  startWithoutDisplay();
  WindowOnPlan on(state.range(0));
  on.workspace.board.activateTool(SketchTool::line);
  on.press(on.middle());
  on.settle();
  Wander pointer(on.middle());
  FrameTimes times;
  for (auto _ : state) times.add(on.move(pointer.next(), Qt::LeftButton));
  times.report(state);
}
BENCHMARK(BM_PointerMoveWindow)->Apply(sizes);

// One mouse event of the select tool, which highlights what is under the pointer.
void BM_HoverWindow(benchmark::State& state) {
  startWithoutDisplay();
  WindowOnPlan on(state.range(0));
  Wander pointer(on.middle());
  FrameTimes times;
  for (auto _ : state) times.add(on.move(pointer.next(), Qt::NoButton));
  times.report(state);
}
BENCHMARK(BM_HoverWindow)->Apply(sizes);

// One mouse event while an entity is dragged.
void BM_DragWindow(benchmark::State& state) {
  startWithoutDisplay();
  WindowOnPlan on(state.range(0));
  addLine(on.workspace.sketch, {-30, -10}, {30, 10});
  on.settle();
  on.press(on.middle());
  FrameTimes times;
  Wander pointer(on.middle());
  on.move(pointer.next(), Qt::LeftButton);
  if (on.workspace.board.selectDrag() == nullptr) state.SkipWithError("nothing was grabbed");
  on.settle();
  for (auto _ : state) times.add(on.move(pointer.next(), Qt::LeftButton));
  times.report(state);
}
BENCHMARK(BM_DragWindow)->Apply(sizes);

// Steps of a wheel, `turn` of them one way and as many back, each turn with a rest until the picture is
// exact.
template <class Wheel>
void wheelFrames(benchmark::State& state, int turn, const Wheel& wheel) {
  startWithoutDisplay();
  WindowOnPlan on(state.range(0));
  FrameTimes times;
  double exact = 0;
  int step = 0;
  for (auto _ : state) {
    times.add(wheel(on, step / turn % 2 == 0 ? 1 : -1));
    if (++step % turn == 0) {
      state.PauseTiming();
      exact = std::max(exact, on.settle());
      state.ResumeTiming();
    }
  }
  times.report(state);
  state.counters["exact_ms"] = exact;
}

// One step of a wheel that scrolls.
void BM_PanFrame(benchmark::State& state) {
  wheelFrames(state, 20, [](WindowOnPlan& on, int way) { return on.wheel({20 * way, 60 * way}, {}, {}); });
}
BENCHMARK(BM_PanFrame)->Apply(sizes);

// One step of a wheel that zooms.
void BM_ZoomFrame(benchmark::State& state) {
  wheelFrames(state, 10, [](WindowOnPlan& on, int way) {
    return on.wheel({}, {0, 120 * way}, Qt::ControlModifier);
  });
}
BENCHMARK(BM_ZoomFrame)->Apply(sizes);

// Grid and entities of the whole plan into pixels, from nothing and on one thread.
void BM_PaintFull(benchmark::State& state) {
  startWithoutDisplay();
  WindowOnPlan on(state.range(0));
  QImage image(on.window.canvas().size(), QImage::Format_RGB32);
  CanvasFrame frame{{on.workspace.board.viewport(), on.workspace.board.view->canvasSize}, lightPalette()};
  frame.gridPixelRatio = 1;
  for (auto _ : state) {
    PixelCanvasPainter painter(image, 1);
    paintBackground(painter, frame);
    paintLayer(painter, CanvasLayer::grid, on.workspace.board, frame);
    paintLayer(painter, CanvasLayer::entities, on.workspace.board, frame);
  }
}
BENCHMARK(BM_PaintFull)->Apply(sizes);

// The canvas again, with a line being drawn, when nothing but what lies over the drawing has changed.
void BM_PaintOverlay(benchmark::State& state) {
  startWithoutDisplay();
  WindowOnPlan on(state.range(0));
  on.workspace.board.activateTool(SketchTool::line);
  on.press(on.middle());
  on.move(on.middle() + QPointF(200, 3), Qt::LeftButton);
  on.settle();
  for (auto _ : state) on.window.canvas().repaint();
}
BENCHMARK(BM_PaintOverlay)->Apply(sizes);

}  // namespace
}  // namespace ostrelon
