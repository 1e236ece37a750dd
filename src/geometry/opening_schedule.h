// The schedule of a drawing's openings, as it stands beside a plan: a row for each kind and width.
#pragma once

#include <string>
#include <vector>

#include "geometry/openings.h"

namespace ostrelon {

struct OpeningScheduleRow {
  std::string mark;  ///< "D1": D, W or O, and the place among the widths of its kind, ascending
  OpeningKind kind = OpeningKind::door;
  double width = 0;                ///< sketch units
  std::vector<std::size_t> walls;  ///< their 1-based numbers, ascending, each once
  std::size_t count = 0;
  friend bool operator==(const OpeningScheduleRow&, const OpeningScheduleRow&) = default;
};

/// Doors, then windows, then openings, by width; those that fit. Widths that are the same to 1/16" are one.
std::vector<OpeningScheduleRow> openingSchedule(const OpeningLayout& layout);

/// The schedule as rows of texts with their headings first: Mark, Kind, Width, Wall, Count.
std::vector<std::vector<std::string>> openingScheduleTable(const OpeningLayout& layout);
/// The table in columns, and a line for each opening that does not fit and for those that wait in lines.
std::string openingScheduleText(const OpeningLayout& layout, const Plan& plan);

}  // namespace ostrelon
