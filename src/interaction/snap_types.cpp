#include "interaction/snap_types.h"

namespace ostrelon {

std::string_view entitySnapKindWord(EntitySnapKind kind) {
  switch (kind) {
    case EntitySnapKind::endpoint:
      return "Endpoint";
    case EntitySnapKind::midpoint:
    case EntitySnapKind::edgeMidpoint:
      return "Midpoint";
    case EntitySnapKind::center:
      return "Center";
    case EntitySnapKind::quadrant:
      return "Quadrant";
    case EntitySnapKind::tangent:
      return "Tangent";
    case EntitySnapKind::corner:
    case EntitySnapKind::faceCorner:
      return "Corner";
    case EntitySnapKind::face:
      return "Face";
    case EntitySnapKind::jamb:
      return "Jamb";
  }
  return {};
}

std::string snapTargetDescription(const EntitySnapTarget& target) {
  return std::string(entitySnapKindWord(target.kind)) + " · " + target.entityName;
}

std::optional<std::string> snapFeedbackText(const SketchSnapResult& result) {
  if (result.entitySnap) return snapTargetDescription(*result.entitySnap);
  if (result.gridSnap) {
    if (result.gridSnap->axes.size() < 2) return "Grid line";
    return result.gridSnap->isMajorIntersection ? "Major grid intersection" : "Grid intersection";
  }
  if (result.axes.size() != 1) return std::nullopt;
  switch (result.axes.front()) {
    case AxisSnap::horizontal:
      return "Snapped to X-axis";
    case AxisSnap::vertical:
      return "Snapped to Y-axis";
    case AxisSnap::diagonalUp:
    case AxisSnap::diagonalDown:
      return "Snapped to 45°";
  }
  return std::nullopt;
}

}  // namespace ostrelon
