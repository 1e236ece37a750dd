#include "interaction/drawing_look.h"

namespace ostrelon {

DrawingLook drawingLook(const PlanLook& plan, const EntityList& entities,
                        std::span<const WallSystemSpec> systems) {
  return {plan, plan.cleanWalls ? JoinedWalls::of(entities, systems) : JoinedWalls()};
}

SketchLook::SketchLook(const Sketch& sketch, Scheduler& scheduler, std::function<void()> joined)
    : sketch_(sketch), scheduler_(scheduler), joined_(std::move(joined)) {}

SketchLook::~SketchLook() { cancel(); }

const DrawingLook& SketchLook::now() {
  const Drawing& drawing = sketch_.drawing;
  look_.plan = drawing.plan.look;
  if (!look_.plan.cleanWalls) {
    look_.joined = {};
    cancel();
    return look_;
  }
  if (look_.joined.isOf(drawing.entities, drawing.wallSystemSpecs) ||
      look_.joined.follow(drawing.entities, drawing.wallSystemSpecs, sketch_.index())) {
    return look_;
  }
  if (drawing.entities.size() <= kJoinedAtOnce) {
    cancel();
    look_.joined = JoinedWalls::of(drawing.entities, drawing.wallSystemSpecs);
  } else {
    look_.joined = {};
    if (!derivation_) derive();
  }
  return look_;
}

void SketchLook::derive() {
  derivation_ = std::make_shared<Derivation>();
  derivation_->entities = sketch_.entities();
  derivation_->systems = sketch_.drawing->wallSystemSpecs;
  const auto derivation = derivation_;
  task_ = scheduler_.inBackground(
      [derivation] {
        derivation->joined =
            JoinedWalls::of(derivation->entities, derivation->systems, 2, &derivation->isCancelled);
      },
      // What was edited meanwhile is followed by the next look.
      [this] {
        look_.joined = std::move(derivation_->joined);
        derivation_.reset();
        joined_();
      });
}

void SketchLook::cancel() {
  if (!derivation_) return;
  derivation_->isCancelled = true;
  derivation_.reset();
  task_.cancel();
}

}  // namespace ostrelon
