// The drawing of the wall benchmarks: rooms side by side, whose outer walls run through in pieces and whose
// inner walls end in them, of two systems of one family.
#pragma once

#include <vector>

#include "core/entity_list.h"
#include "core/wall_system.h"
#include "plan.h"

namespace ostrelon {

/// So many walls on a square lattice of 40 units: to each place belong a wall to the right, one upwards, and
/// one that divides the room.
inline EntityList wallPlan(std::size_t count) {
  const auto& systems = defaultWallSystems();
  std::vector<SketchEntity> walls;
  walls.reserve(count);
  const std::size_t rooms = (count + 2) / 3;
  for (std::size_t i = 0; walls.size() < count; ++i) {
    const SketchPoint at = planPlace(i, rooms) * 4;
    const auto add = [&](SketchPoint from, SketchPoint to, const WallSystemSpec& system) {
      if (walls.size() < count) walls.emplace_back(WallEntity{UUID::random(), at + from, at + to, system.id});
    };
    add({0, 0}, {40, 0}, systems[0]);
    add({0, 0}, {0, 40}, systems[0]);
    add({20, 0}, {20, 40}, systems[1 % systems.size()]);
  }
  return EntityList(std::move(walls));
}

}  // namespace ostrelon
