// The last snap as the canvas shows it, and the pipeline for the end of a draft.
#include <cmath>

#include "interaction/board.h"
#include "interaction/face_snapping.h"
#include "interaction/sketch_snapping.h"
#include "interaction/tracking.h"

namespace ostrelon {

SketchSnapResult Board::snapDraftEnd(SketchPoint anchor, SketchPoint pointer) const {
  const double scale = view->viewport.scale;
  SketchSnapResult result;
  const NearWallFaces faces = wallFacesNear(pointer);
  if (auto target =
          faces.orCorner(SketchSnapping::nearestEntityTarget(sketch_.index(), {}, pointer, scale, anchor))) {
    result.point = target->point;
    result.entitySnap = std::move(target);
    return result;
  }

  const SketchSnapResult axis = SketchSnapping::axisSnap(anchor, pointer);
  if (tracking->locked && distanceBetween(anchor, pointer) >= SketchSnapping::kMinimumSnapSpan) {
    const auto candidate =
        SketchSnapping::trackingCandidate(anchor, pointer, tracking->locked->point, axis.axes, draftAxes);
    if (candidate) {
      result.point = {std::round(candidate->point.x), std::round(candidate->point.y)};
      if (distanceBetween(anchor, result.point) >= SketchSnapping::kMinimumSnapSpan) {
        result.axes = candidate->axes;
        result.entitySnap = tracking->locked;
        return result;
      }
    }
  }

  if (auto face =
          faces.place(axis.axes.empty() ? std::nullopt : std::optional(std::pair(anchor, axis.point)))) {
    result.point = face->point;
    result.entitySnap = std::move(face);
    return result;
  }

  if (sketch_.drawing->showGrid) {
    if (auto grid = SketchSnapping::gridSnap(pointer, scale)) {
      result.point = grid->point;
      result.gridSnap = std::move(grid);
      return result;
    }
  }
  return axis;
}

SketchSnapResult Board::snapPointer(SketchPoint point, bool useGrid) const {
  const SketchSnapResult plain = SketchSnapping::snapPoint(point, viewport(), sketch_.index(), {}, useGrid);
  return onWallFaces(plain, wallFacesNear(point));
}

NearWallFaces Board::wallFacesNear(SketchPoint point, const SketchSnapping::EntityIDs& excluded) const {
  if (!sketch_.drawing->plan.look.cleanWalls) return {};
  return {sketch_.index(), sketch_.drawing, excluded, point, view->viewport.scale};
}

SketchSnapResult Board::onWallFaces(const SketchSnapResult& plain, const NearWallFaces& faces) {
  auto target = faces.orCorner(plain.entitySnap);
  if (!target && plain.axes.empty()) target = faces.place();
  if (!target || target == plain.entitySnap) return plain;
  SketchSnapResult result;
  result.point = target->point;
  result.entitySnap = std::move(target);
  return result;
}

void Board::publishSnap(const SketchSnapResult& result, std::optional<SketchPoint> guideAnchor) {
  publishSnap(result, guideAnchor, snapFeedbackText(result));
}

void Board::publishSnap(const SketchSnapResult& result, std::optional<SketchPoint> guideAnchor,
                        std::optional<std::string> feedback) {
  const auto pointOf = [](const auto& target) {
    return target ? std::optional(target->point) : std::optional<SketchPoint>();
  };
  snap = SnapState{
      result.axes, pointOf(result.entitySnap), pointOf(result.gridSnap), result.entitySnapSourcePoint,
      guideAnchor, std::move(feedback)};
}

void Board::publishDraftSnap(const SketchSnapResult& result, SketchPoint anchor) {
  if (result.entitySnap || !tracking->locked) {
    publishSnap(result, anchor);
    return;
  }
  SketchSnapResult marked = result;
  marked.entitySnap = tracking->locked;
  marked.gridSnap.reset();
  publishSnap(marked, anchor, lockedFeedbackText(*tracking->locked));
}

void Board::publishTrackedTarget(const EntitySnapTarget& target, std::string feedback) {
  SketchSnapResult result;
  result.point = target.point;
  result.entitySnap = target;
  publishSnap(result, std::nullopt, std::move(feedback));
}

}  // namespace ostrelon
