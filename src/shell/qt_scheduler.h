// The clock and later work on Qt's event loop.
#pragma once

#include <QObject>
#include <QThreadPool>

#include "platform/scheduler.h"

namespace ostrelon {

/// Belongs to the main thread, needs a QCoreApplication, and must outlive the objects that schedule.
class QtScheduler final : public Scheduler {
 public:
  QtScheduler();
  /// Work that has not begun never runs; background work that has begun is waited for.
  ~QtScheduler() override;

  Date now() const override;
  ScheduledTask after(Seconds delay, std::function<void()> work) override;
  ScheduledTask every(Seconds period, std::function<void()> work) override;
  ScheduledTask inBackground(std::function<void()> work, std::function<void()> finish) override;

 private:
  QObject context_;  // timers and queued calls end with it
  QThreadPool threads_;
};

}  // namespace ostrelon
