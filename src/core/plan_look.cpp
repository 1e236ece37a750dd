#include "core/plan_look.h"

#include <cmath>

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

DrawingScale drawingScale(const Plan& plan) {
  const double said = plan.sheet.unitsPerInch;
  return std::isfinite(said) && said > 0 ? DrawingScale{said * kInchesPerFoot} : DrawingScale{};
}

void setDrawingScale(Sketch& sketch, DrawingScale scale) {
  if (drawingScale(sketch.drawing->plan) == scale) return;
  sketch.edit([&](Drawing& drawing) { drawing.plan.sheet.unitsPerInch = scale.ratio / kInchesPerFoot; });
}

}  // namespace ostrelon
