// The align buttons: the operation and what they say.
#pragma once

#include "core/sketch_view_model.h"

namespace ostrelon {

/// Aligns the selection and reports through the console.
void alignSelectionAndReport(SketchViewModel& sketch, AlignmentAxis axis);

}  // namespace ostrelon
