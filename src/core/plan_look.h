// Changing how a plan looks.
#pragma once

#include <string_view>

#include "core/drawing_scale.h"
#include "core/plan.h"

namespace ostrelon {

class Sketch;

/// The part of a look by its word, "clean", "fill" or "weights"; null for any other.
bool* planLookPart(PlanLook& look, std::string_view word);

/// The sketch's plan looks so from now on: one undo step, or nothing where it looks so already.
void setPlanLook(Sketch& sketch, const PlanLook& look);

/// The scale at which texts of the plan have their size on paper: 1/4" = 1' where it does not say it.
DrawingScale drawingScale(const Plan& plan);
/// Likewise one undo step, or nothing.
void setDrawingScale(Sketch& sketch, DrawingScale scale);

}  // namespace ostrelon
