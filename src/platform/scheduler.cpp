#include "platform/scheduler.h"

#include <algorithm>

namespace ostrelon {

ScheduledTask VirtualScheduler::after(Seconds delay, std::function<void()> work) {
  return add(advanced(now_, std::max(delay, Seconds(0))), Seconds(0), std::move(work));
}

ScheduledTask VirtualScheduler::every(Seconds period, std::function<void()> work) {
  return add(advanced(now_, period), period, std::move(work));
}

ScheduledTask VirtualScheduler::inBackground(std::function<void()> work, std::function<void()> finish) {
  return after(Seconds(0), [work = std::move(work), finish = std::move(finish)] {
    work();
    finish();
  });
}

void VirtualScheduler::advance(Seconds seconds) {
  const Date end = advanced(now_, std::max(seconds, Seconds(0)));
  const auto later = [](const Entry& a, const Entry& b) {
    return a.due != b.due ? a.due > b.due : a.sequence > b.sequence;
  };
  while (!queue_.empty() && queue_.front().due <= end) {
    std::pop_heap(queue_.begin(), queue_.end(), later);
    Entry entry = std::move(queue_.back());
    queue_.pop_back();
    if (*entry.cancelled) continue;
    now_ = std::max(now_, entry.due);
    entry.work();
    if (entry.period > Seconds(0) && !*entry.cancelled) {
      entry.due = advanced(entry.due, entry.period);
      push(std::move(entry));
    }
  }
  now_ = end;
}

ScheduledTask VirtualScheduler::add(Date due, Seconds period, std::function<void()> work) {
  auto cancelled = std::make_shared<bool>(false);
  push({due, 0, period, std::move(work), cancelled});
  return ScheduledTask(std::move(cancelled));
}

void VirtualScheduler::push(Entry entry) {
  entry.sequence = nextSequence_++;
  queue_.push_back(std::move(entry));
  std::push_heap(queue_.begin(), queue_.end(), [](const Entry& a, const Entry& b) {
    return a.due != b.due ? a.due > b.due : a.sequence > b.sequence;
  });
}

}  // namespace ostrelon
