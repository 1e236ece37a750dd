// What the benchmarks of the window share: a program without a display, and its theme.
#pragma once

#include <QApplication>
#include <chrono>
#include <cstdint>
#include <ctime>

#include "shell/theme.h"

namespace ostrelon {

using Clock = std::chrono::steady_clock;

inline double millisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// Milliseconds for which this thread has been at work.
inline double threadTime() {
  timespec time{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

inline void startWithoutDisplay() {
  static int count = 1;
  static char name[] = "benchmark";
  static char* arguments[] = {name, nullptr};
  qputenv("QT_QPA_PLATFORM", "offscreen");
  // Never taken down: the benchmarks end with the process.
  [[maybe_unused]] static const auto* application = new QApplication(count, arguments);
}

inline Theme& theme() {
  static Theme* made = [] {
    auto* theme = new Theme(QCoreApplication::instance());
    installBaseStyle(*theme);
    theme->setPalette(lightPalette());
    return theme;
  }();
  return *made;
}

}  // namespace ostrelon
