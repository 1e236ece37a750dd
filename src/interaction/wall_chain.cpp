#include "interaction/wall_chain.h"

#include <algorithm>
#include <array>

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
  const double half = paintedWallThickness(wall, systems) / 2;
  double widest = std::max(half, kUnknownWallThickness / 2);
  for (const WallSystemSpec& system : systems) widest = std::max(widest, system.thickness / 2);

  // The wall of the chain at each end of the drawn line: the one before is met at its own end, and the first
  // one of a chain that closes at its start.
  std::array<const WallEntity*, 2> neighbors{};
  for (const int which : {0, 1}) {
    const int met = 1 - which;
    SketchPoint& at = which == 0 ? wall.from : wall.to;
    std::vector<const WallEntity*> near;
    entities.visitNear(SketchBox::centered(at, 2 * widest), [&](const SketchEntity& entity, std::size_t) {
      if (const auto* other = std::get_if<WallEntity>(&entity)) near.push_back(other);
    });
    for (const WallEntity* other : near) {
      const double otherHalf = paintedWallThickness(*other, systems) / 2;
      const double reach = nodeReach(half, otherHalf);
      const SketchPoint end = endOf(*other, met);
      const SketchPoint face = drawnEnd({other->from, other->to}, met, 2 * otherHalf, justification);
      if (distanceBetween(face, at) > reach && distanceBetween(end, at) > reach) continue;
      const bool isShared = std::any_of(near.begin(), near.end(), [&](const WallEntity* third) {
        return third != other &&
               (distanceBetween(third->from, end) <= reach || distanceBetween(third->to, end) <= reach);
      });
      if (isShared) continue;
      // A pointer that snapped to the end of the other centre line means the end of what was drawn.
      at = face;
      neighbors[static_cast<std::size_t>(which)] = other;
      break;
    }
  }

  const auto [from, to] = justifiedAxis({wall.from, wall.to}, 2 * half, justification);
  wall.from = from;
  wall.to = to;
  for (const int which : {0, 1}) {
    const WallEntity* other = neighbors[static_cast<std::size_t>(which)];
    if (other == nullptr) continue;
    const WallAxis mine{wall.from, wall.to};
    const WallAxis axis{other->from, other->to};
    const auto corner = which == 0 ? justifiedCorner(axis, mine) : justifiedCorner(mine, axis);
    if (!corner) continue;
    moveEnd(wall, which, *corner);
    // The same wall is met at both ends by the second wall of a chain of two.
    const auto known = std::find_if(changed.begin(), changed.end(),
                                    [&](const WallEntity& one) { return one.id == other->id; });
    WallEntity& moved = known != changed.end() ? *known : changed.emplace_back(*other);
    moveEnd(moved, 1 - which, *corner);
  }
  return changed;
}

}  // namespace ostrelon
