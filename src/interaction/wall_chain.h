// Walls that are drawn one behind the other by one of their faces. Their centre lines lie beside what is
// drawn, so that they would miss each other at every corner: the next wall of a chain takes the end of the
// one before to where both cross.
#pragma once

#include <vector>

#include "core/entity_source.h"
#include "core/wall_system.h"
#include "geometry/wall_run.h"

namespace ostrelon {

/// Lays a new wall, given by its drawn line, beside this line, so that the line is this part of it. It begins
/// where the wall ends that it goes on from, and ends where the wall begins that it closes the chain with;
/// only ends that meet no third wall are moved. Gives the walls that become others.
std::vector<WallEntity> joinToChain(WallEntity& wall, WallJustification justification,
                                    const EntitySource& entities, const std::vector<WallSystemSpec>& systems);

}  // namespace ostrelon
