// Bringing back what was drawn at another time: a checkpoint, a kept drawing, a file.
#pragma once

#include "core/sketch.h"

namespace ostrelon {

/// The entities of another drawing take the place of those of the open one, as one undo step, and nothing
/// else changes. Undo does not bring wall systems back: those that there are stay as they are, and missing
/// ones are added.
void restoreDrawing(Sketch& sketch, const Drawing& then);

}  // namespace ostrelon
