// The closed outlines of the clean walls: around each family's walls as far as they are joined, and around
// the rooms between them.
#pragma once

#include <vector>

#include "geometry/joined_walls.h"

namespace ostrelon {

struct WallLoop {
  /// Counter-clockwise around walls, clockwise around what they enclose. Corners alone: no point lies on the
  /// line between its neighbours.
  std::vector<SketchPoint> points;
  std::vector<UUID> systems;  ///< of the walls along it, the one of the greatest length first
  friend bool operator==(const WallLoop&, const WallLoop&) = default;
};

/// All loops, those that begin farther to the left first. Where walls of two families lie over each other,
/// the part belongs to the stronger wall (`isStronger`), so loops of different families share no area.
std::vector<WallLoop> wallLoops(const JoinedWalls& joined);

}  // namespace ostrelon
