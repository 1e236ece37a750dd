// A scheduler whose background work is done when the test says so, as another thread would.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/scheduler.h"

namespace ostrelon::testing {

class ManualBackground final : public Scheduler {
 public:
  Date now() const override { return clock.now(); }
  ScheduledTask after(Seconds delay, std::function<void()> work) override {
    return clock.after(delay, std::move(work));
  }
  ScheduledTask every(Seconds period, std::function<void()> work) override {
    return clock.every(period, std::move(work));
  }
  ScheduledTask inBackground(std::function<void()> work, std::function<void()> finish) override {
    auto cancelled = std::make_shared<bool>(false);
    work_ = std::move(work);
    finish_ = [cancelled, finish = std::move(finish)] {
      if (!*cancelled) finish();
    };
    return ScheduledTask(cancelled);
  }
  /// The work as it would go on elsewhere, then its end on the main thread.
  void finishBackground() {
    std::exchange(work_, nullptr)();
    std::exchange(finish_, nullptr)();
  }
  VirtualScheduler clock;

 private:
  std::function<void()> work_;
  std::function<void()> finish_;
};

}  // namespace ostrelon::testing
