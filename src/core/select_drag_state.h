// Gestures of the select tool in progress: the marquee, and the drag of a handle or of entities.
#pragma once

#include <map>
#include <unordered_map>
#include <unordered_set>
#include <variant>

#include "core/sketch_entity.h"
#include "core/sketch_point.h"

namespace ostrelon {

struct SelectMarqueeState {
  SketchPoint startSketchPoint;
  SketchPoint currentSketchPoint;
  double startViewX = 0;    ///< view points
  double currentViewX = 0;  ///< view points; left of the start makes a crossing marquee
  friend bool operator==(const SelectMarqueeState&, const SelectMarqueeState&) = default;
};

/// A grip of a selected entity. Only `polygonVertex` uses `index`.
struct SelectionHandle {
  enum class Kind {
    polygonVertex,
    lineStart,
    lineEnd,
    circleCenter,
    circleRadius,
    rectMinXMinY,
    rectMaxXMinY,
    rectMaxXMaxY,
    rectMinXMaxY,
  };

  Kind kind = Kind::lineStart;
  int index = 0;

  static constexpr SelectionHandle polygonVertex(int index) { return {Kind::polygonVertex, index}; }
  friend auto operator<=>(const SelectionHandle&, const SelectionHandle&) = default;
};

struct HandleDrag {
  SelectionHandle handle;
  UUID entityID;
  SketchEntity anchor;  ///< the entity as it was at the start
  friend bool operator==(const HandleDrag&, const HandleDrag&) = default;
};

struct BodyDrag {
  UUID entityID;
  SketchEntity anchor;
  SketchPoint startSketchPoint;
  friend bool operator==(const BodyDrag&, const BodyDrag&) = default;
};

struct MultiBodyDrag {
  std::unordered_set<UUID> entityIDs;
  std::unordered_map<UUID, SketchEntity> anchors;
  UUID leadEntityID;  ///< the entity under the press
  SketchPoint startSketchPoint;
  friend bool operator==(const MultiBodyDrag&, const MultiBodyDrag&) = default;
};

using SelectDragState = std::variant<HandleDrag, BodyDrag, MultiBodyDrag>;

}  // namespace ostrelon
