// Instants and spans of time. An instant counts whole microseconds, so that twenty polls of 0.05 s
// make exactly one second.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace ostrelon {

using Date = std::chrono::sys_time<std::chrono::microseconds>;
using Seconds = std::chrono::duration<double>;

/// Seconds since 1970-01-01T00:00:00Z.
double secondsSince1970(Date date);
/// The instant that many seconds after 1970-01-01T00:00:00Z, rounded to the microsecond and held to
/// the range that the clock can count. A value that is not a number gives 1970.
Date dateFromSeconds(double seconds);
/// The instant `delay` after `start`, rounded to the microsecond.
Date advanced(Date start, Seconds delay);
/// Seconds from `start` to `end`.
double secondsBetween(Date start, Date end);

/// "2026-03-01T12:00:00Z": UTC, cut to whole seconds.
std::string iso8601Text(Date date);
/// Reads `YYYY-MM-DDThh:mm:ss` with `Z` or an offset, and with or without a fraction of a second.
std::optional<Date> parseISO8601(std::string_view text);

}  // namespace ostrelon
