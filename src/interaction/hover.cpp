// What the pointer shows while no button is held: the coordinates, the entity under it, and the snap
// that a press would take.
#include "geometry/hit_testing.h"
#include "geometry/plan_item_operations.h"
#include "geometry/trim.h"
#include "interaction/board.h"
#include "interaction/canvas_transform.h"

namespace ostrelon {
namespace {

bool isPositive(SketchSize size) { return size.width > 0 && size.height > 0; }

}  // namespace

void Board::recordPointer(std::optional<SketchPoint> viewPoint) {
  if (!viewPoint) {
    cursor = std::nullopt;
  } else if (isPositive(view->canvasSize)) {
    cursor = viewPointToSketch(*viewPoint, viewport());
  }
}

void Board::hoverMoved(std::optional<SketchPoint> viewPoint) {
  const auto scope = change();
  recordPointer(viewPoint);
  if (isPlacing()) {
    showHovered(std::nullopt, std::nullopt);
    updateOpeningPlacing(viewPoint ? *cursor : std::nullopt);
    updateDimensionPlacing(viewPoint ? *cursor : std::nullopt);
    return;
  }
  if (!viewPoint || !isPositive(view->canvasSize)) {
    showHovered(std::nullopt, std::nullopt);
    clearIdleSnap();
    return;
  }

  const SketchPoint point = viewPointToSketch(*viewPoint, viewport());
  switch (*tool) {
    case SketchTool::select:
    case SketchTool::trim: {
      releaseTracking();
      const auto item = tool == SketchTool::select ? pickPlanItem(sketch_, point, scale()) : std::nullopt;
      if (item) {
        showHovered(std::nullopt, viewPoint, item);
        clearIdleSnap();
        break;
      }
      const auto pick = pickEntityAtPoint(sketch_.index(), point, scale());
      const bool counts = pick && (tool == SketchTool::select || isTrimmable(pick->entity));
      showHovered(counts ? std::optional(entityID(pick->entity)) : std::nullopt, viewPoint);
      clearIdleSnap();
      break;
    }
    case SketchTool::pan:
      releaseTracking();
      showHovered(std::nullopt, std::nullopt);
      clearIdleSnap();
      break;
    case SketchTool::line:
    case SketchTool::wall:
      showHovered(std::nullopt, std::nullopt);
      if (selectDrag() != nullptr) break;
      tickTracking(point, scheduler_.now());
      if (draft() != nullptr) {
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
      if (polygonDraft() != nullptr) {
        updatePolygonDraft(point);
      } else {
        showEntityPointFeedback(point);
      }
      break;
  }
}

void Board::showHovered(std::optional<UUID> id, std::optional<SketchPoint> viewPoint,
                        std::optional<UUID> planItem) {
  hover = Hover{id, id || planItem ? viewPoint : std::nullopt, planItem};
}

void Board::clearIdleSnap() {
  if (draft() == nullptr && selectDrag() == nullptr) clearSnap();
}

void Board::showEntityPointFeedback(SketchPoint point) {
  if (draft() != nullptr || selectDrag() != nullptr) return;
  const SketchSnapResult result = snapPointer(point, false);
  if (result.entitySnap) {
    publishSnap(result);
  } else {
    clearSnap();
  }
}

}  // namespace ostrelon
