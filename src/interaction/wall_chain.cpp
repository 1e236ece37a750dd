#include "interaction/wall_chain.h"

#include <algorithm>

#include "geometry/wall_axis.h"
#include "interaction/canvas_frame.h"

namespace ostrelon {
namespace {

SketchPoint endOf(const WallEntity& wall, int which) { return which == 0 ? wall.from : wall.to; }

void moveEnd(WallEntity& wall, int which, SketchPoint to) { (which == 0 ? wall.from : wall.to) = to; }

}  // namespace

std::vector<WallEntity> joinToChain(WallEntity& wall, WallJustification justification,
                                    const EntitySource& entities,
                                    const std::vector<WallSystemSpec>& systems) {
  std::vector<WallEntity> changed;
  if (justification == WallJustification::middle) return changed;
  const WallAxis drawn{wall.from, wall.to};
  const double half = paintedWallThickness(wall, systems) / 2;
  double widest = std::max(half, kUnknownWallThickness / 2);
  for (const WallSystemSpec& system : systems) widest = std::max(widest, system.thickness / 2);

  for (const int which : {0, 1}) {
    const SketchPoint at = drawnEnd(drawn, which, 2 * half, justification);
    const int others =
        1 - which;  // the wall before is met at its end, and the first of the chain at its start
    std::vector<const WallEntity*> near;
    entities.visitNear(SketchBox::centered(at, 2 * widest), [&](const SketchEntity& entity, std::size_t) {
      if (const auto* other = std::get_if<WallEntity>(&entity)) near.push_back(other);
    });
    for (const WallEntity* other : near) {
      const double otherHalf = paintedWallThickness(*other, systems) / 2;
      const double reach = nodeReach(half, otherHalf);
      const WallAxis axis{other->from, other->to};
      if (distanceBetween(drawnEnd(axis, others, 2 * otherHalf, justification), at) > reach) continue;
      const bool isShared = std::any_of(near.begin(), near.end(), [&](const WallEntity* third) {
        if (third == other) return false;
        const SketchPoint end = endOf(*other, others);
        return distanceBetween(third->from, end) <= reach || distanceBetween(third->to, end) <= reach;
      });
      if (isShared) continue;
      const WallAxis mine{wall.from, wall.to};
      const auto corner = which == 0 ? justifiedCorner(axis, mine) : justifiedCorner(mine, axis);
      if (!corner) continue;
      moveEnd(wall, which, *corner);
      // The same wall may be met at both ends, by the second wall of a chain of two.
      const auto known = std::find_if(changed.begin(), changed.end(),
                                      [&](const WallEntity& one) { return one.id == other->id; });
      WallEntity& moved = known != changed.end() ? *known : changed.emplace_back(*other);
      moveEnd(moved, others, *corner);
      break;
    }
  }
  return changed;
}

}  // namespace ostrelon
