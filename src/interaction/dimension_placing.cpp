// Placing dimensions with the pointer: one click for each end, a third for the line.
#include <cmath>
#include <utility>

#include "core/plan_items.h"
#include "geometry/dimension_annotation.h"
#include "geometry/dimension_ends.h"
#include "geometry/opening_operations.h"
#include "interaction/board.h"
#include "interaction/sketch_snapping.h"

namespace ostrelon {
namespace {

constexpr double kOffsetStep = 1.0 / 12;  // to which the line is put, feet

SketchPoint onFace(const OpeningWall& wall, SketchPoint point) {
  const SketchPoint normal = perpendicular(wall.to - wall.from) * (wall.thickness / 2 / wall.length());
  const SketchPoint middle = wall.at(wall.along(point));
  return dot(point - middle, normal) > 0 ? middle + normal : middle - normal;
}

// What a dimension holds on to near the point, as a target of snapping.
std::optional<EntitySnapTarget> heldTarget(const Sketch& sketch, SketchPoint point, double radius) {
  const DimensionEnd end = dimensionEndAt(point, {1, 0}, sketch.drawing, sketch.index(), radius);
  if (end.anchor == AnchorKind::none) return std::nullopt;
  EntitySnapTarget target{end.point, EntitySnapKind::faceCorner, end.entityID, heldText(sketch, end)};
  switch (end.anchor) {
    case AnchorKind::none:
    case AnchorKind::start:
    case AnchorKind::end:
      target.kind = EntitySnapKind::endpoint;
      break;
    case AnchorKind::center:
      target.kind = EntitySnapKind::center;
      break;
    case AnchorKind::corner:
      target.kind = EntitySnapKind::corner;
      break;
    case AnchorKind::jambNear:
    case AnchorKind::jambFar:
      target.kind = EntitySnapKind::jamb;
      break;
    case AnchorKind::startLeft:
    case AnchorKind::startRight:
    case AnchorKind::endLeft:
    case AnchorKind::endRight:
      break;
  }
  // On a face, away from its corners, the point is where it was asked for.
  const auto wall = target.kind == EntitySnapKind::faceCorner && end.point == point
                        ? openingWall(sketch, end.entityID)
                        : std::nullopt;
  if (wall) {
    target.kind = EntitySnapKind::face;
    target.point = onFace(*wall, point);
  }
  return target;
}

}  // namespace

void Board::beginDimensionPlacing() {
  const auto scope = change();
  activateSelectTool();
  sketch_.clearSelection();
  hover = Hover();
  gesture = DimensionPlacing();
}

SketchSnapResult Board::snapDimensionEnd(SketchPoint point) const {
  SketchSnapResult result = snapPointer(point, sketch_.drawing->showGrid);
  const auto held = heldTarget(sketch_, point, SketchSnapping::kSnapRadius / scale());
  if (!held) return result;
  const bool isNearer = !result.entitySnap || distanceBetween(held->point, point) <
                                                  distanceBetween(result.entitySnap->point, point);
  const bool isFreeOnFace = held->kind == EntitySnapKind::face;
  if (result.entitySnap && (isFreeOnFace || !isNearer)) return result;
  result = {};
  result.point = held->point;
  result.entitySnap = held;
  return result;
}

void Board::updateDimensionPlacing(std::optional<SketchPoint> point) {
  if (dimensionPlacing() == nullptr) return;
  const auto scope = change();
  DimensionPlacing placing = *dimensionPlacing();
  placing.preview.reset();
  placing.pointer.reset();
  clearSnap();
  if (point && !placing.to) {
    const SketchSnapResult snapped = snapDimensionEnd(*point);
    publishSnap(snapped);
    placing.pointer = snapped.point;
  } else if (point) {
    placing.pointer = point;
  }
  if (placing.pointer && placing.from) {
    const SketchPoint to = placing.to.value_or(*placing.pointer);
    const auto direction =
        placing.to ? directionTowards(*placing.from, to, *placing.pointer) : DimensionDirection::aligned;
    Dimension preview = dimensionBetween(*placing.from, to, direction, 0, sketch_.drawing, sketch_.index(),
                                         kTypedPointTolerance);
    if (placing.to) {
      const SketchPoint across = perpendicular(dimensionAxis(preview));
      preview.offset =
          std::round(dot(*placing.pointer - preview.from.point, across) / kOffsetStep) * kOffsetStep;
    }
    preview.id = UUID();
    placing.preview = preview;
  }
  gesture = placing;
}

void Board::placeDimensionPoint() {
  if (dimensionPlacing() == nullptr || !dimensionPlacing()->pointer) return;
  const auto scope = change();
  DimensionPlacing placing = *dimensionPlacing();
  if (!placing.from) {
    placing.from = placing.pointer;
    gesture = placing;
    return;
  }
  if (!placing.preview) return;
  if (std::string refusal = dimensionRefusal(*placing.preview); !refusal.empty()) {
    messages_.append(std::move(refusal), false, false);
    return;
  }
  if (!placing.to) {
    placing.to = placing.pointer;
    gesture = placing;
    clearSnap();
    return;
  }
  Dimension dimension = *placing.preview;
  dimension.id = UUID::random();
  sketch_.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, dimension); });
  messages_.appendSystem(dimensionAddedText(sketch_, dimension));
  gesture = DimensionPlacing();
}

void Board::stepBackFromDimension() {
  if (dimensionPlacing() == nullptr) return;
  const auto scope = change();
  DimensionPlacing placing = *dimensionPlacing();
  if (!placing.from) {
    gesture = Gesture();
    return;
  }
  if (placing.to) {
    placing.to.reset();
  } else {
    placing.from.reset();
  }
  gesture = placing;
  updateDimensionPlacing(cursor);
}

}  // namespace ostrelon
