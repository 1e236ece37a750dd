// What snapping finds: targets on entities, grid lines, and locked directions. Sketch units.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/sketch_point.h"
#include "platform/uuid.h"

namespace ostrelon {

/// A locked direction: along x, along y, or one of the two diagonals.
enum class AxisSnap { horizontal, vertical, diagonalUp, diagonalDown };

enum class EntitySnapKind {
  endpoint,
  midpoint,
  center,
  quadrant,
  tangent,
  corner,
  edgeMidpoint,
  faceCorner,  ///< of a clean wall
  face,        ///< anywhere along a face of a clean wall
  jamb,        ///< where a face of a clean wall ends at a door, window or opening
};

/// A point of an entity that the pointer can snap to.
struct EntitySnapTarget {
  SketchPoint point;
  EntitySnapKind kind = EntitySnapKind::endpoint;
  UUID entityID;
  std::string entityName;  ///< the entity's label without a wall system: "Wall 2"
  friend bool operator==(const EntitySnapTarget&, const EntitySnapTarget&) = default;
};

struct GridSnapTarget {
  SketchPoint point;
  /// `vertical` for a line of constant x, `horizontal` for one of constant y, in that order.
  std::vector<AxisSnap> axes;
  bool isMajorIntersection = false;
  friend bool operator==(const GridSnapTarget&, const GridSnapTarget&) = default;
};

struct SketchSnapResult {
  SketchPoint point;           ///< the point to use; for the drag of a whole entity the delta to use
  std::vector<AxisSnap> axes;  ///< the axis lock in force
  std::optional<EntitySnapTarget> entitySnap;
  std::optional<GridSnapTarget> gridSnap;
  std::optional<SketchPoint> entitySnapSourcePoint;  ///< for a moved entity: where its own target ended up
  friend bool operator==(const SketchSnapResult&, const SketchSnapResult&) = default;
};

/// The word of a kind in feedback texts: "Endpoint", "Midpoint", …
std::string_view entitySnapKindWord(EntitySnapKind kind);
/// "Endpoint · Line 1".
std::string snapTargetDescription(const EntitySnapTarget& target);
/// The line of the snap badge for a result; absent when there is nothing to say.
std::optional<std::string> snapFeedbackText(const SketchSnapResult& result);

}  // namespace ostrelon
