// Work that the window waits for: it paints meanwhile, and everything else comes afterwards.
#include "shell/qt_scheduler.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QThread>
#include <QWidget>
#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/user_error.h"

namespace ostrelon {
namespace {

class Canvas final : public QWidget {
 public:
  std::vector<std::string> happened;

 protected:
  void paintEvent(QPaintEvent* /*event*/) override { happened.emplace_back("painted"); }
  void closeEvent(QCloseEvent* /*event*/) override { happened.emplace_back("closed"); }
};

void turnFor(std::chrono::milliseconds time) {
  const auto end = std::chrono::steady_clock::now() + time;
  while (std::chrono::steady_clock::now() < end) QApplication::processEvents();
}

TEST(QtScheduler, PaintsWhileWorkRunsAndLetsAllElseWait) {
  QtScheduler scheduler;
  Canvas canvas;
  canvas.show();
  turnFor(std::chrono::milliseconds(50));
  canvas.happened.clear();

  scheduler.soon([&] { canvas.happened.emplace_back("task"); });
  auto timer = scheduler.every(Seconds(0.001), [&] { canvas.happened.emplace_back("timer"); });
  auto background = scheduler.inBackground([] {}, [&] { canvas.happened.emplace_back("background"); });
  canvas.update();
  QMetaObject::invokeMethod(
      &canvas, [&] { canvas.close(); }, Qt::QueuedConnection);
  const QThread* worker = nullptr;
  scheduler.run([&] {
    worker = QThread::currentThread();
    std::this_thread::sleep_for(std::chrono::milliseconds(80));
  });
  EXPECT_NE(worker, QThread::currentThread());
  ASSERT_FALSE(canvas.happened.empty());
  for (const std::string& event : canvas.happened) EXPECT_EQ(event, "painted");
  EXPECT_TRUE(canvas.isVisible());

  canvas.happened.clear();
  turnFor(std::chrono::milliseconds(50));
  for (const char* event : {"task", "timer", "background", "closed"}) {
    EXPECT_NE(std::find(canvas.happened.begin(), canvas.happened.end(), event), canvas.happened.end())
        << event;
  }
}

TEST(QtScheduler, HandsOnWhatWorkThrowsAndRunsTheNextAllTheSame) {
  QtScheduler scheduler;
  EXPECT_THROW(scheduler.run([] { throw UserError("No."); }), UserError);
  bool hasRun = false;
  scheduler.run([&] { hasRun = true; });
  EXPECT_TRUE(hasRun);
}

}  // namespace
}  // namespace ostrelon
