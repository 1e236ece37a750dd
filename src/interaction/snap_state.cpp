// The last snap as the canvas shows it, and the pipeline for the end of a draft.
#include <cmath>

#include "core/sketch_view_model.h"
#include "interaction/sketch_snapping.h"
#include "interaction/tracking.h"

namespace ostrelon {

SketchSnapResult SketchViewModel::snapDraftEnd(SketchPoint anchor, SketchPoint pointer) const {
  const double scale = viewport->scale;
  SketchSnapResult result;
  if (auto target = SketchSnapping::nearestEntityTarget(index(), {}, pointer, scale, anchor)) {
    result.point = target->point;
    result.entitySnap = std::move(target);
    return result;
  }

  const SketchSnapResult axis = SketchSnapping::axisSnap(anchor, pointer);
  if (*acquiredEntitySnap && distanceBetween(anchor, pointer) >= SketchSnapping::kMinimumSnapSpan) {
    const auto candidate = SketchSnapping::trackingCandidate(anchor, pointer, (*acquiredEntitySnap)->point,
                                                             axis.axes, lastDraftConstraintAxes);
    if (candidate) {
      result.point = {std::round(candidate->point.x), std::round(candidate->point.y)};
      if (distanceBetween(anchor, result.point) >= SketchSnapping::kMinimumSnapSpan) {
        result.axes = candidate->axes;
        result.entitySnap = acquiredEntitySnap;
        return result;
      }
    }
  }

  if (showGrid) {
    if (auto grid = SketchSnapping::gridSnap(pointer, scale)) {
      result.point = grid->point;
      result.gridSnap = std::move(grid);
      return result;
    }
  }
  return axis;
}

SketchSnapResult SketchViewModel::snapPointer(SketchPoint point, bool useGrid) const {
  return SketchSnapping::snapPoint(point, viewport, index(), {}, useGrid);
}

void SketchViewModel::publishSnap(const SketchSnapResult& result, std::optional<SketchPoint> guideAnchor) {
  publishSnap(result, guideAnchor, snapFeedbackText(result));
}

void SketchViewModel::publishSnap(const SketchSnapResult& result, std::optional<SketchPoint> guideAnchor,
                                  std::optional<std::string> feedback) {
  const ChangeScope scope(tracker_);
  activeAxisSnaps = result.axes;
  activeEntitySnapPoint =
      result.entitySnap ? std::optional(result.entitySnap->point) : std::optional<SketchPoint>();
  activeGridSnapPoint =
      result.gridSnap ? std::optional(result.gridSnap->point) : std::optional<SketchPoint>();
  activeEntitySnapSourcePoint = result.entitySnapSourcePoint;
  snapGuideAnchor = guideAnchor;
  snapFeedback = std::move(feedback);
}

void SketchViewModel::publishDraftSnap(const SketchSnapResult& result, SketchPoint anchor) {
  if (result.entitySnap || !*acquiredEntitySnap) {
    publishSnap(result, anchor);
    return;
  }
  SketchSnapResult marked = result;
  marked.entitySnap = acquiredEntitySnap;
  marked.gridSnap.reset();
  publishSnap(marked, anchor, lockedFeedbackText(**acquiredEntitySnap));
}

void SketchViewModel::publishTrackedTarget(const EntitySnapTarget& target, std::string feedback) {
  SketchSnapResult result;
  result.point = target.point;
  result.entitySnap = target;
  publishSnap(result, std::nullopt, std::move(feedback));
}

}  // namespace ostrelon
