// How the items of a plan follow the entities that they live in or hold on to. Sketch units.
#pragma once

#include <functional>
#include <optional>
#include <span>

#include "core/entity_list.h"
#include "core/plan.h"
#include "core/wall_system.h"

namespace ostrelon {

struct Drawing;

/// Where an opening is once its wall has become `after`: as far from the start as it was, or, where the start
/// alone has moved, as far from the end, so that it keeps its place on the ground.
double followedDistance(double distance, const SketchEntity& before, const SketchEntity& after);
/// The openings after an edit of the entities: moved with their walls, and gone with those that are gone.
SharedList<Opening> followedOpenings(const SharedList<Opening>& openings, const EntityList& before,
                                     const EntityList& after);

/// Where the part of an entity is that a dimension holds on to; absent where it has none such. Of a jamb the
/// entity is the wall of `opening`, and the point is on its middle line.
std::optional<SketchPoint> anchorPoint(const DimensionEnd& end, const SketchEntity& entity,
                                       std::span<const WallSystemSpec> systems,
                                       const Opening* opening = nullptr);
/// The dimensions after an edit: an end moves by as much as what it holds on to, and is lost with it. `find`
/// gives an entity of `after`, null for an unknown one.
SharedList<Dimension> followedDimensions(const SharedList<Dimension>& dimensions, const Drawing& before,
                                         const Drawing& after,
                                         const std::function<const SketchEntity*(const UUID&)>& find);

}  // namespace ostrelon
