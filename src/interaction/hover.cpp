// What the pointer shows while no button is held: the coordinates, the entity under it, and the snap
// that a press would take.
#include "core/sketch_view_model.h"
#include "geometry/hit_testing.h"
#include "geometry/trim.h"
#include "interaction/canvas_transform.h"

namespace ostrelon {
namespace {

bool isPositive(SketchSize size) { return size.width > 0 && size.height > 0; }

}  // namespace

void SketchViewModel::recordPointer(std::optional<SketchPoint> viewPoint) {
  if (!viewPoint) {
    cursorSketchPoint = std::nullopt;
  } else if (isPositive(canvasSize)) {
    cursorSketchPoint = viewPointToSketch(*viewPoint, viewport);
  }
}

void SketchViewModel::hoverMoved(std::optional<SketchPoint> viewPoint) {
  const ChangeScope scope(tracker_);
  recordPointer(viewPoint);
  if (!viewPoint || !isPositive(canvasSize)) {
    showHovered(std::nullopt, std::nullopt);
    clearIdleSnapState();
    return;
  }

  const SketchPoint point = viewPointToSketch(*viewPoint, viewport);
  switch (*selectedTool) {
    case SketchTool::select:
    case SketchTool::trim: {
      releaseTracking();
      const auto pick = pickEntityAtPoint(index(), point, viewport->scale);
      const bool counts = pick && (selectedTool == SketchTool::select || isTrimmable(pick->entity));
      showHovered(counts ? std::optional(entityID(pick->entity)) : std::nullopt, viewPoint);
      clearIdleSnapState();
      break;
    }
    case SketchTool::pan:
      releaseTracking();
      showHovered(std::nullopt, std::nullopt);
      clearIdleSnapState();
      break;
    case SketchTool::line:
    case SketchTool::wall:
      showHovered(std::nullopt, std::nullopt);
      if (*selectDrag) break;
      tickTrackingAcquire(point, host_.scheduler.now());
      if (*draft) {
        updateDraft(point);
      } else {
        showIdleTrackingFeedback(point);
      }
      break;
    case SketchTool::circle:
    case SketchTool::rectangle:
      showHovered(std::nullopt, std::nullopt);
      releaseTracking();
      showEntityPointFeedback(point);
      break;
    case SketchTool::polygon:
      showHovered(std::nullopt, std::nullopt);
      releaseTracking();
      if (*polygonDraft && !*selectDrag) {
        updatePolygonDraft(point);
      } else {
        showEntityPointFeedback(point);
      }
      break;
  }
}

void SketchViewModel::showHovered(std::optional<UUID> id, std::optional<SketchPoint> viewPoint) {
  hoveredEntityID = id;
  hoverViewPoint = id ? viewPoint : std::nullopt;
}

void SketchViewModel::clearIdleSnapState() {
  if (!*draft && !*selectDrag) clearSnapState();
}

void SketchViewModel::showEntityPointFeedback(SketchPoint point) {
  if (*draft || *selectDrag) return;
  const SketchSnapResult result = snapPointer(point, false);
  if (result.entitySnap) {
    publishSnap(result);
  } else {
    clearSnapState();
  }
}

}  // namespace ostrelon
