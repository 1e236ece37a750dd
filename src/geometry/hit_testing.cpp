#include "geometry/hit_testing.h"

#include "geometry/entity_geometry.h"

namespace ostrelon {

std::optional<EntityPick> pickEntityAtPoint(const EntitySource& entities, SketchPoint point, double scale) {
  const double tolerance = kEntityPickTolerance / scale;
  const SketchEntity* best = nullptr;
  double bestDistance = 0;
  // Walking forwards, a later entity wins ties; that is the same as walking backwards and letting
  // only a strictly nearer one win.
  entities.visitNear(SketchBox::centered(point, tolerance), [&](const SketchEntity& entity, std::size_t) {
    const double distance = distanceToEntity(entity, point);
    if (!(distance <= tolerance)) return;
    if (best != nullptr && !(distance <= bestDistance)) return;
    best = &entity;
    bestDistance = distance;
  });
  if (best == nullptr) return std::nullopt;
  return EntityPick{*best, bestDistance};
}

}  // namespace ostrelon
