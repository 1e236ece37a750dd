// The clock and later work on Qt's event loop.
#pragma once

#include <QObject>
#include <QThreadPool>
#include <functional>
#include <vector>

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
  /// Runs `work` on a thread of its own and returns once it is done. The windows go on painting meanwhile,
  /// and nothing else happens: input, timers, the ends of other work and a closing of windows wait. What
  /// `work` throws is thrown again here.
  void run(const std::function<void()>& work);

 private:
  /// Calls it now, or once what is being run has ended.
  void callWhenFree(std::function<void()> call);

  QObject context_;  // timers and queued calls end with it
  bool isRunning_ = false;
  std::vector<std::function<void()>> waiting_;
  QThreadPool threads_;
};

}  // namespace ostrelon
