// Changing how a plan looks.
#pragma once

#include <string_view>

#include "core/plan.h"

namespace ostrelon {

class Sketch;

/// The part of a look by its word, "clean", "fill" or "weights"; null for any other.
bool* planLookPart(PlanLook& look, std::string_view word);

/// The sketch's plan looks so from now on: one undo step, or nothing where it looks so already.
void setPlanLook(Sketch& sketch, const PlanLook& look);

}  // namespace ostrelon
