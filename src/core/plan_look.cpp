#include "core/plan_look.h"

#include "core/sketch.h"

namespace ostrelon {

bool* planLookPart(PlanLook& look, std::string_view word) {
  if (word == "clean") return &look.cleanWalls;
  if (word == "fill") return &look.filledWalls;
  if (word == "weights") return &look.lineWeights;
  return nullptr;
}

void setPlanLook(Sketch& sketch, const PlanLook& look) {
  if (sketch.drawing->plan.look == look) return;
  sketch.edit([&](Drawing& drawing) { drawing.plan.look = look; });
}

}  // namespace ostrelon
