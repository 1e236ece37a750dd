// What a plan is made of, for whoever orders it: walls by system, doors and windows by width, and all else by
// kind. Sketch units, which are feet.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "core/entity_list.h"
#include "core/text_table.h"
#include "core/wall_system.h"
#include "geometry/openings.h"

namespace ostrelon {

/// Walls of one system.
struct WallTakeoff {
  std::string system;
  std::size_t walls = 0;
  double length = 0;    ///< of the centre lines
  double faceArea = 0;  ///< of one side: length less the openings, times the height
  double volume = 0;    ///< what they cover less the openings, times the height; each place counts once
};

/// Entities of one kind that are no walls.
struct ShapeTakeoff {
  std::string kind;  ///< "Lines"
  std::size_t count = 0;
  double length = 0;  ///< or the way around
  double area = 0;    ///< 0 for lines and arcs
};

struct Takeoff {
  std::vector<WallTakeoff> walls;    ///< in the order of the systems; those without walls are left out
  std::vector<ShapeTakeoff> shapes;  ///< lines, circles, arcs, rectangles, polygons, as far as there are any
};

/// Where walls lie over each other the place belongs to the stronger one (`isStronger`). Walls that cannot be
/// joined, and entities that are not finite, count with 0.
Takeoff takeoff(const EntityList& entities, std::span<const WallSystemSpec> systems,
                const OpeningLayout& openings);

/// As rows of texts with their headings first: Item, Count, Length, Area, Volume; doors, windows and openings
/// with their widths among them.
TextTable takeoffTable(const Takeoff& takeoff, const OpeningLayout& openings);

}  // namespace ostrelon
