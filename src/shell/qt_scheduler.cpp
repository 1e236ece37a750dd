#include "shell/qt_scheduler.h"

#include <QTimer>
#include <algorithm>
#include <limits>
#include <utility>

namespace ostrelon {

namespace {

/// Whole milliseconds, rounded up so that no work runs early, within what a timer can count.
int timerInterval(Seconds delay) {
  const double milliseconds = std::ceil(delay.count() * 1000);
  return static_cast<int>(
      std::clamp(milliseconds, 0.0, static_cast<double>(std::numeric_limits<int>::max())));
}

}  // namespace

QtScheduler::QtScheduler() = default;

QtScheduler::~QtScheduler() {
  threads_.clear();
  threads_.waitForDone();
}

Date QtScheduler::now() const {
  return std::chrono::time_point_cast<Date::duration>(std::chrono::system_clock::now());
}

ScheduledTask QtScheduler::after(Seconds delay, std::function<void()> work) {
  auto cancelled = std::make_shared<bool>(false);
  QTimer::singleShot(timerInterval(delay), Qt::PreciseTimer, &context_, [cancelled, work = std::move(work)] {
    if (!*cancelled) work();
  });
  return ScheduledTask(std::move(cancelled));
}

ScheduledTask QtScheduler::every(Seconds period, std::function<void()> work) {
  auto cancelled = std::make_shared<bool>(false);
  auto* timer = new QTimer(&context_);
  timer->setTimerType(Qt::PreciseTimer);
  QObject::connect(timer, &QTimer::timeout, timer, [timer, cancelled, work = std::move(work)] {
    if (!*cancelled) work();
    if (*cancelled) {
      timer->stop();
      timer->deleteLater();
    }
  });
  timer->start(std::max(1, timerInterval(period)));
  return ScheduledTask(std::move(cancelled));
}

ScheduledTask QtScheduler::inBackground(std::function<void()> work, std::function<void()> finish) {
  auto cancelled = std::make_shared<bool>(false);
  threads_.start([this, cancelled, work = std::move(work), finish = std::move(finish)]() mutable {
    work();
    // The functions may hold what belongs to the main thread, so they are released there.
    QMetaObject::invokeMethod(
        &context_,
        [cancelled = std::move(cancelled), work = std::move(work), finish = std::move(finish)] {
          if (!*cancelled) finish();
        },
        Qt::QueuedConnection);
  });
  return ScheduledTask(std::move(cancelled));
}

}  // namespace ostrelon
