// The longest time for which an operation holds the event loop of the main window, with the journal, the
// history and the panels that the program has. The whole plan is on the screen.
//
// A pause is the time between two turns of the loop, waiting not counted: `pause_ms` by the clock, and
// `cpu_pause_ms` in milliseconds that the main thread was at work, which other programs do not touch.
// `whole_ms` goes from the command until it is done and the picture is exact.
#include <benchmark/benchmark.h>

#include <QAbstractEventDispatcher>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <atomic>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "app/application.h"
#include "app/drawing_exchange.h"
#include "core/adding.h"
#include "documents/document_save.h"
#include "documents/document_store.h"
#include "documents/named_drawing.h"
#include "geometry/edit_operations.h"
#include "plan.h"
#include "platform/dialogs.h"
#include "platform/disk_file_system.h"
#include "platform/user_defaults.h"
#include "shell/comparison_panel.h"
#include "shell/drawing_export.h"
#include "shell/history_list.h"
#include "shell/history_window.h"
#include "shell/main_window.h"
#include "shell/merge_panel.h"
#include "shell/print_window.h"
#include "shell/qt_scheduler.h"
#include "updates/served_update_client.h"
#include "window_on_plan.h"

namespace ostrelon {
namespace {

constexpr Seconds kLongestMinute(0.2);  // the auto-save's timer counts minutes
constexpr double kWorkedFor = 2;        // milliseconds, from which on a turn of the loop was not idle

/// Follows the turns of this thread's event loop.
class Pauses {
 public:
  Pauses() {
    auto* dispatcher = QAbstractEventDispatcher::instance();
    QObject::connect(dispatcher, &QAbstractEventDispatcher::awake, &context_, [this] { turn(); });
    QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, &context_, [this] { rest(); });
  }
  void turn() {
    rest();
    isResting_ = false;
    at_ = Clock::now();
    workedAt_ = threadTime();
  }
  /// The thread waits from now on.
  void rest() {
    if (!isResting_) {
      longest_ = std::max(longest_, millisecondsSince(at_));
      longestWork_ = std::max(longestWork_, threadTime() - workedAt_);
    }
    isResting_ = true;
  }
  void forget() { longest_ = longestWork_ = 0; }
  double longest() const { return longest_; }
  double longestWork() const { return longestWork_; }

 private:
  QObject context_;
  bool isResting_ = true;
  Clock::time_point at_;
  double workedAt_ = 0;
  double longest_ = 0;
  double longestWork_ = 0;
};

/// The window's own scheduler with short minutes.
class HurriedScheduler final : public Scheduler {
 public:
  Date now() const override { return scheduler_.now(); }
  ScheduledTask after(Seconds delay, std::function<void()> work) override {
    return scheduler_.after(delay, std::move(work));
  }
  ScheduledTask every(Seconds period, std::function<void()> work) override {
    return scheduler_.every(std::min(period, kLongestMinute), std::move(work));
  }
  ScheduledTask inBackground(std::function<void()> work, std::function<void()> finish) override {
    ++underWay;
    auto counted = [this, work = std::move(work)] {
      work();
      --underWay;
    };
    return scheduler_.inBackground(std::move(counted), std::move(finish));
  }

  void run(const std::function<void()>& work) { scheduler_.run(work); }

  std::atomic<int> underWay = 0;

 private:
  QtScheduler scheduler_;
};

FilePath freshHome() {
  const FilePath home = std::filesystem::temp_directory_path() / "ostrelon-longest-pause";
  std::filesystem::remove_all(home);
  std::filesystem::create_directories(home / "Documents");
  return home;
}

/// The program with its main window, 1920 by 1080, on no display, as it runs on a desktop.
class LiveWindow {
 public:
  LiveWindow() {
    workspace.sketch.setWorkRunner([this](const std::function<void()>& work) { scheduler.run(work); });
    application.settings().setCustomProjectsFolder(home / "Documents");
    application.settings().setAutoSaveEnabled(false);
    window.resize(1920, 1080);
    window.show();
    settle();
  }
  ~LiveWindow() { application.willTerminate(); }

  void show(EntityList entities) {
    sketch().edit([&](Drawing& drawing) { drawing.entities = std::move(entities); });
    settle();
    workspace.board.zoomToFit(workspace.board.view->canvasSize);
    settle();
  }
  void saveAs(const char* name) {
    saveToURL(workspace.document, application.settings(), file(name), false);
    settle();
  }
  void console(const char* line) {
    workspace.console.setInput(line);
    workspace.console.submit();
  }
  FilePath file(const char* name) const { return home / "Documents" / name; }
  Sketch& sketch() { return workspace.sketch; }
  SketchPoint middle() { return {window.canvas().width() / 2.0, window.canvas().height() / 2.0}; }
  void mouse(QEvent::Type type, SketchPoint place) {
    const QPointF at(place.x, place.y);
    const bool isMove = type == QEvent::MouseMove;
    QMouseEvent event(type, at, window.canvas().mapToGlobal(at), isMove ? Qt::NoButton : Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, {});
    QApplication::sendEvent(&window.canvas(), &event);
  }

  /// Turns the loop until nothing is under way.
  void settle() {
    for (int quiet = 0; quiet < 20;) {
      const auto start = Clock::now();
      QApplication::processEvents();
      pauses.rest();
      const bool isBusy = !window.canvas().isExact() || scheduler.underWay > 0 || isUnderWay() ||
                          millisecondsSince(start) > kWorkedFor;
      quiet = isBusy ? 0 : quiet + 1;
      if (isBusy) lastBusy_ = Clock::now();
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
  /// Runs `act` as one event, and what it causes.
  void run(const std::function<void()>& act) {
    QTimer::singleShot(0, act);
    settle();
  }

  FilePath home = freshHome();
  Pauses pauses;
  HurriedScheduler scheduler;
  QueuedDialogs dialogs;
  DiskFileSystem files;
  MemoryUserDefaults defaults;
  ServedUpdateClient client{scheduler, home / "tmp"};
  Application application{{.host = {scheduler, dialogs, files},
                           .defaults = defaults,
                           .updateClient = client,
                           .openInstaller = [](const FilePath&) { return true; },
                           .makePicture = drawingPictureBytes},
                          {.documentsFolder = home / "Documents",
                           .updates = updateConfiguration("1.0.0", "1", "", ""),
                           .isUITesting = true,
                           .opensInBackground = true,
                           .stateFolder = home / "state"}};
  Workspace& workspace = application.workspace();
  MainWindow window{application, theme()};
  ComparisonPresenter comparisons{application, theme(), window};
  MergePresenter merges{application, theme(), window};
  std::function<bool()> isUnderWay = [] { return false; };

  Clock::time_point lastBusy() const { return lastBusy_; }

 private:
  Clock::time_point lastBusy_;
};

using Step = void (*)(LiveWindow&);

void measure(benchmark::State& state, Step prepare, Step act) {
  startWithoutDisplay();
  LiveWindow on;
  on.show(plan(static_cast<std::size_t>(state.range(0))));
  prepare(on);
  on.settle();
  on.pauses.forget();
  double whole = 0;
  for (auto _ : state) {
    const auto start = Clock::now();
    on.run([&] { act(on); });
    whole = std::chrono::duration<double, std::milli>(on.lastBusy() - start).count();
  }
  state.counters["pause_ms"] = on.pauses.longest();
  state.counters["cpu_pause_ms"] = on.pauses.longestWork();
  state.counters["whole_ms"] = whole;
}

void nothing(LiveWindow& /*on*/) {}
void selectEverything(LiveWindow& on) {
  selectAll(on.sketch());
  on.settle();
}
void deleteAll(LiveWindow& on) { deleteSelection(on.sketch(), on.workspace.messages); }
void duplicateAll(LiveWindow& on) { duplicateSelection(on.sketch(), on.workspace.messages, 1, 1); }
void align(LiveWindow& on) { on.console("center h"); }
void undo(LiveWindow& on) { on.workspace.board.undo(); }
void redo(LiveWindow& on) { on.workspace.board.redo(); }
void paste(LiveWindow& on) { on.console("paste"); }
void clear(LiveWindow& on) { on.workspace.board.clearSketch(); }

/// A drag over the whole width of the canvas, with turns of the loop in between.
void marquee(LiveWindow& on) {
  const SketchPoint corner = on.middle() * 2;
  on.mouse(QEvent::MouseButtonPress, {2, 2});
  on.mouse(QEvent::MouseMove, {40, 40});
  on.mouse(QEvent::MouseMove, corner - SketchPoint{2, 2});
  QApplication::processEvents();
  on.mouse(QEvent::MouseButtonRelease, corner - SketchPoint{2, 2});
}
void drag(LiveWindow& on) {
  const SketchPoint start = on.middle();
  on.mouse(QEvent::MouseButtonPress, start);
  for (int i = 1; i <= 10; ++i) {
    on.mouse(QEvent::MouseMove, start + SketchPoint{4.0 * i, 3.0 * i});
    on.settle();
  }
  on.mouse(QEvent::MouseButtonRelease, start + SketchPoint{40, 30});
}

void selectAndDo(LiveWindow& on, Step act) {
  selectEverything(on);
  on.run([&] { act(on); });
}
template <Step act>
void done(LiveWindow& on) {
  selectAndDo(on, act);
}
template <Step act>
void undone(LiveWindow& on) {
  selectAndDo(on, act);
  on.run([&] { undo(on); });
}
void copyEverything(LiveWindow& on) {
  selectEverything(on);
  copySelection(on.sketch());
}

/// The plan in a file, and a thousand of its entities made lines of another length since.
void saveAndReshapeThousand(LiveWindow& on) {
  on.saveAs("plan.ostrel");
  std::vector<std::size_t> places;
  std::vector<SketchEntity> lines;
  const EntityList& all = on.sketch().entities();
  for (std::size_t i = 0; i < 1000; ++i) {
    const std::size_t at = i * (all.size() / 1000);
    const SketchPoint from = planPlace(at, all.size());
    places.push_back(at);
    lines.emplace_back(LineEntity{entityID(all[at]), from, from + SketchPoint{3, 9}});
  }
  on.sketch().edit([&](Drawing& drawing) { drawing.entities.replaceAll(places, lines); });
}
void compareWithFile(LiveWindow& on) { on.application.comparison().beginWithFile(on.file("plan.ostrel")); }
void comparing(LiveWindow& on) {
  saveAndReshapeThousand(on);
  on.run([&] { compareWithFile(on); });
}
void mergeFile(LiveWindow& on) {
  on.application.mergeReview().begin(fileDrawingSource(on.files, on.file("plan.ostrel")));
}

void sizes(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t count : {10'000, 100'000, 1'000'000}) benchmark->Arg(count);
  benchmark->Unit(benchmark::kMillisecond)->Iterations(1);
}

template <int kind>
void exportAs(LiveWindow& on) {
  static constexpr const char* kNames[] = {"plan.pdf", "plan.dxf", "plan.png", "plan.svg"};
  static constexpr ExportFormat kFormats[] = {ExportFormat::pdf, ExportFormat::dxf, ExportFormat::png,
                                              ExportFormat::svg};
  on.dialogs.queue(on.file(kNames[kind]).string());
  exportWithPanel(on.application, {}, kFormats[kind]);
}

struct Operation {
  const char* name;
  Step prepare;
  Step act;
};

const std::vector<Operation> kOperations{
    {"selectAll", nothing, [](LiveWindow& on) { selectAll(on.sketch()); }},
    {"marqueeAll", nothing, marquee},
    {"copyAll", selectEverything, [](LiveWindow& on) { on.console("copy"); }},
    {"deleteAll", selectEverything, deleteAll},
    {"undoDelete", done<deleteAll>, undo},
    {"redoDelete", undone<deleteAll>, redo},
    {"duplicateAll", selectEverything, duplicateAll},
    {"undoDuplicate", done<duplicateAll>, undo},
    {"redoDuplicate", undone<duplicateAll>, redo},
    {"pasteAll", copyEverything, paste},
    {"alignAll", selectEverything, align},
    {"undoAlign", done<align>, undo},
    {"redoAlign", undone<align>, redo},
    {"dragAll", selectEverything, drag},
    {"undoDrag", done<drag>, undo},
    {"redoDrag", undone<drag>, redo},
    {"clear", nothing, clear},
    {"undoClear", [](LiveWindow& on) { on.run([&] { clear(on); }); }, undo},
    {"chain", selectEverything,
     [](LiveWindow& on) { on.console("line 0 0 9 9; rect 0 0 5 5; circle 0 0 3"); }},
    {"newDocument", nothing, [](LiveWindow& on) { on.workspace.document.begin(); }},
    {"open",
     [](LiveWindow& on) {
       on.saveAs("plan.ostrel");
       on.workspace.document.begin();
     },
     [](LiveWindow& on) { on.application.openDocumentAt(on.file("plan.ostrel")); }},
    {"save",
     [](LiveWindow& on) {
       on.saveAs("plan.ostrel");
       addLine(on.sketch(), {0, 0}, {5, 5});
     },
     [](LiveWindow& on) { on.application.save(); }},
    {"saveWithSteps",
     [](LiveWindow& on) {
       on.saveAs("plan.ostrel");
       for (int i = 0; i < 20; ++i) addLine(on.sketch(), {0, 0}, {5.0 * i, 5});
     },
     [](LiveWindow& on) { on.application.save(); }},
    {"autoSave",
     [](LiveWindow& on) {
       on.saveAs("plan.ostrel");
       addLine(on.sketch(), {0, 0}, {5, 5});
     },
     [](LiveWindow& on) {
       on.application.settings().setAutoSaveEnabled(true);
       on.isUnderWay = [&on] { return on.workspace.document.isDirty(); };
     }},
    {"checkpoint",
     [](LiveWindow& on) {
       on.saveAs("plan.ostrel");
       addLine(on.sketch(), {0, 0}, {5, 5});
     },
     [](LiveWindow& on) { on.console("checkpoint first"); }},
    {"switchBranch",
     [](LiveWindow& on) {
       on.saveAs("plan.ostrel");
       on.console("checkpoint first");
       on.console("branch create other");
     },
     [](LiveWindow& on) { on.application.switchBranch("other"); }},
    {"compare", saveAndReshapeThousand, compareWithFile},
    {"compareNext", comparing, [](LiveWindow& on) { on.application.comparison().next(); }},
    {"compareEdit", comparing,
     [](LiveWindow& on) {
       addLine(on.sketch(), {0, 0}, {5, 5});
     }},
    {"compareTake",
     [](LiveWindow& on) {
       comparing(on);
       on.run([&] { on.application.comparison().next(); });
     },
     [](LiveWindow& on) { on.application.comparison().takeThis(); }},
    {"compareFilter", comparing,
     [](LiveWindow& on) {
       ComparisonFilter filter;
       filter.entityKind = 0;
       on.application.comparison().setFilter(filter);
     }},
    {"compareEnd", comparing, [](LiveWindow& on) { on.application.comparison().end(); }},
    {"merge", saveAndReshapeThousand, mergeFile},
    {"mergeChooseAll",
     [](LiveWindow& on) {
       saveAndReshapeThousand(on);
       on.run([&] { mergeFile(on); });
     },
     [](LiveWindow& on) { on.application.mergeReview().chooseAll(MergeChoice::theirs); }},
    {"mergeTake",
     [](LiveWindow& on) {
       saveAndReshapeThousand(on);
       on.run([&] { mergeFile(on); });
       on.run([&] { on.application.mergeReview().chooseAll(MergeChoice::theirs); });
     },
     [](LiveWindow& on) { on.application.mergeReview().take(); }},
    {"exportPdf", nothing, exportAs<0>},
    {"exportDxf", nothing, exportAs<1>},
    {"exportPng", nothing, exportAs<2>},
    {"exportSvg", nothing, exportAs<3>},
    {"importDxf",
     [](LiveWindow& on) {
       exportDrawing(on.workspace, on.file("plan.dxf"), {}, drawingPictureBytes);
       on.workspace.document.begin();
     },
     [](LiveWindow& on) {
       on.dialogs.queue(on.file("plan.dxf").string());
       importWithPanel(on.application);
     }},
    {"print", nothing,
     [](LiveWindow& on) {
       QPrinter printer;
       printer.setOutputFormat(QPrinter::PdfFormat);
       printer.setOutputFileName(QString::fromStdString(on.file("print.pdf").string()));
       printDrawing(printer, on.workspace, {});
     }},
};

const bool areRegistered = [] {
  for (const Operation& operation : kOperations) {
    benchmark::RegisterBenchmark((std::string("BM_LongestPause/") + operation.name).c_str(), measure,
                                 operation.prepare, operation.act)
        ->Apply(sizes);
  }
  return true;
}();

// The list of the History window, a notch of the wheel a frame, through a thousand checkpoints of a small
// drawing whose pictures are made meanwhile.
void BM_HistoryScroll(benchmark::State& state) {
  startWithoutDisplay();
  LiveWindow on;
  on.show(plan(100));
  on.saveAs("plan.ostrel");
  for (int i = 0; i < 1000; ++i) {
    addLine(on.sketch(), {0, 0}, {5.0 * i, 5});
    on.workspace.document.saveCheckpoint("number " + std::to_string(i));
  }
  HistoryWindow history(on.application, theme(), &on.window);
  history.open();
  on.settle();
  auto* list = history.findChild<HistoryList*>("history.list");
  const QPointF middle = QRectF(list->viewport()->rect()).center();
  std::vector<double> elapsed;
  std::vector<double> atWork;
  on.pauses.forget();
  for (auto _ : state) {
    const auto start = Clock::now();
    const double startWork = threadTime();
    QWheelEvent event(middle, list->viewport()->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(list->viewport(), &event);
    QApplication::processEvents();
    elapsed.push_back(millisecondsSince(start));
    atWork.push_back(threadTime() - startWork);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  on.settle();
  for (auto* times : {&elapsed, &atWork}) std::sort(times->begin(), times->end());
  state.counters["p95_ms"] = elapsed[elapsed.size() * 95 / 100];
  state.counters["worst_ms"] = elapsed.back();
  state.counters["cpu_p95_ms"] = atWork[atWork.size() * 95 / 100];
  state.counters["cpu_worst_ms"] = atWork.back();
  state.counters["scrolled_px"] = list->verticalScrollBar()->value();
}
BENCHMARK(BM_HistoryScroll)->Unit(benchmark::kMillisecond)->Iterations(900);

}  // namespace
}  // namespace ostrelon
