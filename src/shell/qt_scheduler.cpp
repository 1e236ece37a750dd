#include "shell/qt_scheduler.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <exception>
#include <limits>
#include <thread>
#include <utility>

namespace ostrelon {

namespace {

/// Whole milliseconds, rounded up so that no work runs early, within what a timer can count.
int timerInterval(Seconds delay) {
  const double milliseconds = std::ceil(delay.count() * 1000);
  return static_cast<int>(
      std::clamp(milliseconds, 0.0, static_cast<double>(std::numeric_limits<int>::max())));
}

/// As long as it lives, windows that are asked to close are asked again afterwards.
class ClosingWaits final : public QObject {
 public:
  ClosingWaits() { QCoreApplication::instance()->installEventFilter(this); }
  ~ClosingWaits() override {
    for (const QPointer<QObject>& window : asked_) {
      if (window == nullptr) continue;
      QMetaObject::invokeMethod(
          window.data(), [window] { QMetaObject::invokeMethod(window.data(), "close"); },
          Qt::QueuedConnection);
    }
  }
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() != QEvent::Close) return false;
    event->ignore();
    asked_.emplace_back(object);
    return true;
  }

 private:
  std::vector<QPointer<QObject>> asked_;
};

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
  QTimer::singleShot(timerInterval(delay), Qt::PreciseTimer, &context_,
                     [this, cancelled, work = std::move(work)] {
                       callWhenFree([cancelled, work] {
                         if (!*cancelled) work();
                       });
                     });
  return ScheduledTask(std::move(cancelled));
}

ScheduledTask QtScheduler::every(Seconds period, std::function<void()> work) {
  auto cancelled = std::make_shared<bool>(false);
  auto* timer = new QTimer(&context_);
  timer->setTimerType(Qt::PreciseTimer);
  QObject::connect(timer, &QTimer::timeout, timer, [this, timer, cancelled, work = std::move(work)] {
    if (isRunning_) return;  // its next turn comes soon enough
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
        [this, cancelled = std::move(cancelled), work = std::move(work),
         finish = std::move(finish)]() mutable {
          callWhenFree(
              [cancelled = std::move(cancelled), work = std::move(work), finish = std::move(finish)] {
                if (!*cancelled) finish();
              });
        },
        Qt::QueuedConnection);
  });
  return ScheduledTask(std::move(cancelled));
}

void QtScheduler::callWhenFree(std::function<void()> call) {
  if (isRunning_) {
    waiting_.push_back(std::move(call));
  } else {
    call();
  }
}

void QtScheduler::run(const std::function<void()>& work) {
  if (isRunning_) {
    work();
    return;
  }
  isRunning_ = true;
  ClosingWaits closing;
  std::exception_ptr failure;
  QEventLoop loop;
  std::thread worker([&] {
    try {
      work();
    } catch (...) {
      failure = std::current_exception();
    }
    QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
  });
  loop.exec(QEventLoop::ExcludeUserInputEvents | QEventLoop::ExcludeSocketNotifiers);
  worker.join();
  isRunning_ = false;
  for (auto& call : std::exchange(waiting_, {})) {
    QMetaObject::invokeMethod(&context_, std::move(call), Qt::QueuedConnection);
  }
  if (failure) std::rethrow_exception(failure);
}

}  // namespace ostrelon
