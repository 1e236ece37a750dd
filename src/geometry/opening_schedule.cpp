#include "geometry/opening_schedule.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "core/text_table.h"
#include "core/typed_length.h"
#include "geometry/opening_operations.h"

namespace ostrelon {
namespace {

constexpr double kSixteenthsInFoot = 192;
constexpr std::string_view kMarkLetters = "DWO";

}  // namespace

std::vector<OpeningScheduleRow> openingSchedule(const OpeningLayout& layout) {
  struct Group {
    std::set<std::size_t> walls;
    std::size_t count = 0;
  };
  std::map<std::pair<OpeningKind, double>, Group> groups;
  for (const PlacedOpening& placed : layout.all()) {
    if (placed.fit != OpeningFit::fits) continue;
    Group& group = groups[{placed.opening.kind, std::round(placed.opening.width * kSixteenthsInFoot)}];
    group.walls.insert(placed.wall.position + 1);
    ++group.count;
  }
  std::vector<OpeningScheduleRow> rows;
  std::size_t number = 0;
  for (const auto& [key, group] : groups) {
    const auto& [kind, sixteenths] = key;
    number = rows.empty() || rows.back().kind != kind ? 1 : number + 1;
    rows.push_back({kMarkLetters[static_cast<std::size_t>(kind)] + std::to_string(number),
                    kind,
                    sixteenths / kSixteenthsInFoot,
                    {group.walls.begin(), group.walls.end()},
                    group.count});
  }
  return rows;
}

std::vector<std::vector<std::string>> openingScheduleTable(const OpeningLayout& layout) {
  std::vector<std::vector<std::string>> table{{"Mark", "Kind", "Width", "Wall", "Count"}};
  for (const OpeningScheduleRow& row : openingSchedule(layout)) {
    table.push_back({row.mark, std::string(openingKindName(row.kind)), formatLength(row.width),
                     fmt::format("{}", fmt::join(row.walls, ", ")), std::to_string(row.count)});
  }
  return table;
}

std::string openingScheduleText(const OpeningLayout& layout, const Plan& plan) {
  std::string text;
  const auto add = [&](const std::string& line) { text += (text.empty() ? "" : "\n") + line; };
  const std::vector<std::vector<std::string>> table = openingScheduleTable(layout);
  if (table.size() > 1) {
    add(columnsText(table));
  } else if (layout.empty()) {
    add("No doors, windows or openings.");
  }
  for (const PlacedOpening& placed : layout.all()) {
    if (placed.fit == OpeningFit::fits) continue;
    add(fmt::format("{} of {} at {} in Wall {} is left out: {}", openingTypeLabel(placed.opening.kind),
                    formatLength(placed.opening.width), formatLength(placed.opening.distance),
                    placed.wall.position + 1, openingMisfitText(placed, plan)));
  }
  if (layout.waiting() > 0) {
    add(fmt::format("{} more in what is a line now.", layout.waiting()));
  }
  return text;
}

}  // namespace ostrelon
