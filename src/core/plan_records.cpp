#include "core/plan_records.h"

#include <cmath>

namespace ostrelon {

DoorHanging flipped(DoorHanging hanging) {
  const bool isNextHinge = (hanging.hinge == DoorHinge::left) == (hanging.swing == DoorSwing::in);
  if (isNextHinge) {
    hanging.hinge = hanging.hinge == DoorHinge::left ? DoorHinge::right : DoorHinge::left;
  } else {
    hanging.swing = hanging.swing == DoorSwing::in ? DoorSwing::out : DoorSwing::in;
  }
  return hanging;
}

SketchPoint dimensionAxis(const Dimension& dimension) {
  const SketchPoint along = dimension.to.point - dimension.from.point;
  switch (dimension.direction) {
    case DimensionDirection::aligned: {
      const double length = lengthOf(along);
      return length > 0 ? along * (1 / length) : SketchPoint{1, 0};
    }
    case DimensionDirection::horizontal:
      return {along.x < 0 ? -1.0 : 1.0, 0};
    case DimensionDirection::vertical:
      return {0, along.y < 0 ? -1.0 : 1.0};
  }
  return {1, 0};
}

double measuredLength(const Dimension& dimension) {
  return std::abs(dot(dimension.to.point - dimension.from.point, dimensionAxis(dimension)));
}

// --- Naming

std::string_view openingKindName(OpeningKind kind) {
  switch (kind) {
    case OpeningKind::door:
      return "door";
    case OpeningKind::window:
      return "window";
    case OpeningKind::opening:
      return "opening";
  }
  return {};
}

std::string_view openingTypeLabel(OpeningKind kind) {
  switch (kind) {
    case OpeningKind::door:
      return "Door";
    case OpeningKind::window:
      return "Window";
    case OpeningKind::opening:
      return "Opening";
  }
  return {};
}

std::string_view hingeName(DoorHinge hinge) { return hinge == DoorHinge::left ? "left" : "right"; }
std::string_view swingName(DoorSwing swing) { return swing == DoorSwing::in ? "in" : "out"; }

}  // namespace ostrelon
