// Bringing back what was drawn at another time: a checkpoint, a kept drawing, a file.
#pragma once

#include "core/sketch.h"

namespace ostrelon {

/// The entities, the plan and the wall systems of another drawing take the place of those of the open one, as
/// one undo step. The grid, the view and the system that new walls take stay.
void restoreDrawing(Sketch& sketch, const Drawing& then);

}  // namespace ostrelon
