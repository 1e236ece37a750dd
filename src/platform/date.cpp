#include "platform/date.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdint>

namespace ostrelon {
namespace {

using std::chrono::microseconds;

// The clock counts microseconds in 64 bits; a little inside the edge keeps sums from overflowing.
constexpr double kLargestSeconds = 4.0e12;

microseconds rounded(double seconds) {
  if (std::isnan(seconds)) return microseconds(0);
  const double held = std::fmin(std::fmax(seconds, -kLargestSeconds), kLargestSeconds);
  return microseconds(std::llround(held * 1e6));
}

/// Reads exactly `count` ASCII digits at `position` and moves it after them.
std::optional<int> digits(std::string_view text, std::size_t& position, std::size_t count) {
  if (position + count > text.size()) return std::nullopt;
  int value = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const char digit = text[position + i];
    if (digit < '0' || digit > '9') return std::nullopt;
    value = value * 10 + (digit - '0');
  }
  position += count;
  return value;
}

bool literal(std::string_view text, std::size_t& position, char expected) {
  if (position >= text.size() || text[position] != expected) return false;
  ++position;
  return true;
}

}  // namespace

double secondsSince1970(Date date) { return static_cast<double>(date.time_since_epoch().count()) / 1e6; }

Date dateFromSeconds(double seconds) { return Date(rounded(seconds)); }

Date advanced(Date start, Seconds delay) {
  const double sum = secondsSince1970(start) + delay.count();
  if (!(std::fabs(sum) < kLargestSeconds)) return dateFromSeconds(sum);
  return start + rounded(delay.count());
}

double secondsBetween(Date start, Date end) { return static_cast<double>((end - start).count()) / 1e6; }

std::string iso8601Text(Date date) {
  const auto day = std::chrono::floor<std::chrono::days>(date);
  const std::chrono::year_month_day calendar(day);
  const std::chrono::hh_mm_ss clock(std::chrono::floor<std::chrono::seconds>(date - day));
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(calendar.year()),
                     static_cast<unsigned>(calendar.month()), static_cast<unsigned>(calendar.day()),
                     clock.hours().count(), clock.minutes().count(), clock.seconds().count());
}

std::optional<Date> parseISO8601(std::string_view text) {
  std::size_t at = 0;
  const auto year = digits(text, at, 4);
  if (!year || !literal(text, at, '-')) return std::nullopt;
  const auto month = digits(text, at, 2);
  if (!month || !literal(text, at, '-')) return std::nullopt;
  const auto day = digits(text, at, 2);
  if (!day || !literal(text, at, 'T')) return std::nullopt;
  const auto hour = digits(text, at, 2);
  if (!hour || !literal(text, at, ':')) return std::nullopt;
  const auto minute = digits(text, at, 2);
  if (!minute || !literal(text, at, ':')) return std::nullopt;
  const auto second = digits(text, at, 2);
  if (!second || *hour > 23 || *minute > 59 || *second > 60) return std::nullopt;

  const std::chrono::year_month_day calendar{std::chrono::year(*year),
                                             std::chrono::month(static_cast<unsigned>(*month)),
                                             std::chrono::day(static_cast<unsigned>(*day))};
  if (!calendar.ok()) return std::nullopt;

  std::int64_t fraction = 0;  // microseconds
  if (literal(text, at, '.')) {
    std::int64_t weight = 100000;
    const std::size_t first = at;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9') {
      fraction += (text[at] - '0') * weight;
      weight /= 10;
      ++at;
    }
    if (at == first) return std::nullopt;
  }

  std::chrono::minutes offset(0);
  if (!literal(text, at, 'Z')) {
    const bool east = at < text.size() && text[at] == '+';
    if (!east && (at >= text.size() || text[at] != '-')) return std::nullopt;
    ++at;
    const auto offsetHours = digits(text, at, 2);
    if (!offsetHours) return std::nullopt;
    (void)literal(text, at, ':');
    const auto offsetMinutes = digits(text, at, 2);
    if (!offsetMinutes || *offsetHours > 23 || *offsetMinutes > 59) return std::nullopt;
    offset = std::chrono::minutes(*offsetHours * 60 + *offsetMinutes);
    if (!east) offset = -offset;
  }
  if (at != text.size()) return std::nullopt;
  return Date(std::chrono::sys_days(calendar)) + std::chrono::hours(*hour) + std::chrono::minutes(*minute) +
         std::chrono::seconds(*second) + microseconds(fraction) - offset;
}

}  // namespace ostrelon
