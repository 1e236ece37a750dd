// All annotations of a drawing: what its room names, dividers, dimensions and notes look like. The window,
// print and every kind of file paint or write these same values.
#pragma once

#include <vector>

#include "core/drawing.h"
#include "geometry/annotation.h"
#include "geometry/openings.h"
#include "geometry/rooms.h"

namespace ostrelon {

/// In the order in which they are painted. `rooms`: those of the drawing, or null where they have not been
/// worked out; labels of rooms are then their names, and the building has no dimension strings. `openings`:
/// those of the drawing. `unitsPerInch`: sketch units to an inch of paper.
std::vector<Annotation> annotations(const Drawing& drawing, const RoomPlan* rooms,
                                    const OpeningLayout& openings, double unitsPerInch);
/// Whether anything of the plan asks for its rooms.
bool needsRooms(const Plan& plan);

/// Where a label of this size goes that would stand around `place`: there if it fits the room beside those
/// that are taken, else as near as it does; `place` where it fits nowhere.
SketchPoint labelPlace(const Room& room, SketchPoint place, SketchSize size,
                       const std::vector<SketchBox>& taken);

}  // namespace ostrelon
