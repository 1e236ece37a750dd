// The last snap as the canvas shows it, and the pipeline for the end of a draft.
#include <cmath>

#include "interaction/board.h"
#include "interaction/sketch_snapping.h"
#include "interaction/tracking.h"

namespace ostrelon {

SketchSnapResult Board::snapDraftEnd(SketchPoint anchor, SketchPoint pointer) const {
  const double scale = view->viewport.scale;
  SketchSnapResult result;
  if (auto target = SketchSnapping::nearestEntityTarget(sketch_.index(), {}, pointer, scale, anchor)) {
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
  return SketchSnapping::snapPoint(point, viewport(), sketch_.index(), {}, useGrid);
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
