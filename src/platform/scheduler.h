// Time and later work, as the host gives them: the clock, and tasks that run on the main thread.
// The window runs them on its event loop; tests and automation run them on a virtual clock.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "platform/date.h"

namespace ostrelon {

/// The handle of a task or timer. Destroying or cancelling it stops work that has not begun; a
/// cancelled task never runs again.
class ScheduledTask {
 public:
  ScheduledTask() = default;
  explicit ScheduledTask(std::shared_ptr<bool> cancelled) : cancelled_(std::move(cancelled)) {}
  ScheduledTask(ScheduledTask&&) noexcept = default;
  ScheduledTask& operator=(ScheduledTask&& other) noexcept {
    if (this != &other) {
      cancel();
      cancelled_ = std::move(other.cancelled_);
    }
    return *this;
  }
  ScheduledTask(const ScheduledTask&) = delete;
  ScheduledTask& operator=(const ScheduledTask&) = delete;
  ~ScheduledTask() { cancel(); }

  void cancel() {
    if (cancelled_) *cancelled_ = true;
    cancelled_.reset();
  }
  /// Lets the work run on without a handle.
  void detach() { cancelled_.reset(); }

 private:
  std::shared_ptr<bool> cancelled_;
};

class Scheduler {
 public:
  Scheduler() = default;
  Scheduler(const Scheduler&) = delete;
  Scheduler& operator=(const Scheduler&) = delete;
  virtual ~Scheduler() = default;

  virtual Date now() const = 0;
  /// Runs `work` once on the main thread, `delay` from now; never within this call.
  [[nodiscard]] virtual ScheduledTask after(Seconds delay, std::function<void()> work) = 0;
  /// Runs `work` every `period` (above 0) on the main thread, first one period from now.
  [[nodiscard]] virtual ScheduledTask every(Seconds period, std::function<void()> work) = 0;
  /// Runs `work` away from the main thread where there is one to spare, then `finish` on the main
  /// thread. `work` must touch nothing that the main thread may change. A cancelled task still ends
  /// its `work` but never runs `finish`.
  [[nodiscard]] virtual ScheduledTask inBackground(std::function<void()> work,
                                                   std::function<void()> finish) = 0;

  /// Runs `work` once on the main thread as soon as the present call has ended.
  void soon(std::function<void()> work) { after(Seconds(0), std::move(work)).detach(); }
};

/// A clock that moves by `advance` alone. Work falls due in order of time, then of scheduling.
class VirtualScheduler final : public Scheduler {
 public:
  explicit VirtualScheduler(Date start = {}) : now_(start) {}

  Date now() const override { return now_; }
  ScheduledTask after(Seconds delay, std::function<void()> work) override;
  ScheduledTask every(Seconds period, std::function<void()> work) override;
  ScheduledTask inBackground(std::function<void()> work, std::function<void()> finish) override;

  /// Moves the clock by `seconds` (0 or more) and runs all that falls due on the way, work that is
  /// scheduled meanwhile included; each piece sees the clock at its own moment.
  void advance(Seconds seconds);

 private:
  struct Entry {
    Date due;
    std::uint64_t sequence;
    Seconds period;  // 0: runs once
    std::function<void()> work;
    std::shared_ptr<bool> cancelled;
  };

  ScheduledTask add(Date due, Seconds period, std::function<void()> work);
  void push(Entry entry);

  Date now_;
  std::uint64_t nextSequence_ = 0;
  std::vector<Entry> queue_;  // a heap, the earliest entry first
};

}  // namespace ostrelon
