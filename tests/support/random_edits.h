// A drawing and what somebody else made of it, for the properties of comparing and merging.
#pragma once

#include <algorithm>
#include <unordered_set>

#include "core/drawing.h"
#include "support/random_drawing.h"

namespace ostrelon::testing {

/// Begins with a few walls that edits come back to.
inline constexpr int kBusyWalls = 8;

inline Drawing randomDrawing(RandomDrawing& random, int entities) {
  Drawing drawing;
  const UUID system = defaultWallSystems().front().id;
  for (int count = std::min(entities, kBusyWalls); count > 0; --count) {
    drawing.entities.append(WallEntity{UUID::random(), random.point(), random.point(), system});
  }
  drawing.entities.append(random.entities(std::max(0, entities - kBusyWalls)));
  return drawing;
}

/// Replaces, removes, adds and moves to another place, `edits` times. What exists is left alone unless
/// `mayTouch` says otherwise.
template <class MayTouch>
Drawing randomlyEdited(RandomDrawing& random, Drawing drawing, int edits, MayTouch mayTouch) {
  EntityList& list = drawing.entities;
  for (; edits > 0; --edits) {
    if (list.empty() || random.chance(3)) {
      list.insert(static_cast<std::size_t>(random.below(static_cast<int>(list.size()) + 1)),
                  {random.entity()});
      continue;
    }
    const int size = static_cast<int>(list.size());
    const auto at =
        static_cast<std::size_t>(random.below(random.chance(2) ? std::min(size, kBusyWalls) : size));
    const SketchEntity entity = list[at];
    const UUID id = entityID(entity);
    if (!mayTouch(id)) continue;
    switch (random.below(6)) {
      case 0:
        list.remove(at);
        break;
      case 1:  // to the end of the list
        list.remove(at);
        list.append(entity);
        break;
      case 2:
      case 3:
      case 4:
        if (const auto* wall = std::get_if<WallEntity>(&entity)) {
          WallEntity pulled = *wall;
          (random.chance(2) ? pulled.from : pulled.to) = random.point();
          list.replace(at, pulled);
          break;
        }
        [[fallthrough]];
      default:
        list.replace(at, random.entity(defaultWallSystems(), id));
    }
  }
  return drawing;
}

inline Drawing randomlyEdited(RandomDrawing& random, const Drawing& drawing, int edits) {
  return randomlyEdited(random, drawing, edits, [](const UUID&) { return true; });
}

}  // namespace ostrelon::testing
