// Walls that are drawn one behind the other by one of their faces. Their centre lines lie beside what is
// drawn, so that they would miss each other at every corner: the next wall of a chain takes the end of the
// one before to where both cross.
#pragma once

#include <vector>

#include "core/entity_source.h"
#include "core/wall_system.h"
#include "geometry/wall_run.h"

namespace ostrelon {

/// Lets a new wall, the centre line of a line drawn by this part of it, begin where the wall ends whose drawn
/// line it goes on from, and end where the wall begins that it closes the chain with. Only ends that meet no
/// other wall are moved. Gives the walls that become others.
std::vector<WallEntity> joinToChain(WallEntity& wall, WallJustification justification,
                                    const EntitySource& entities, const std::vector<WallSystemSpec>& systems);

}  // namespace ostrelon
