#include "interaction/drawing_tools.h"

#include <algorithm>
#include <cmath>

#include "core/length_text.h"
#include "core/sketch_view_model.h"
#include "interaction/sketch_snapping.h"
#include "interaction/tracking.h"

namespace ostrelon {

std::optional<SketchEntity> draftedEntity(SketchTool tool, const SketchDraft& draft,
                                          const UUID& wallSystemID) {
  const auto [start, current] = draft;
  switch (tool) {
    case SketchTool::line:
      return LineEntity{{}, start, current};
    case SketchTool::wall:
      return WallEntity{{}, start, current, wallSystemID};
    case SketchTool::circle:
      return CircleEntity{{}, start, distanceBetween(start, current)};
    case SketchTool::rectangle:
      return RectangleEntity{{},
                             {std::min(start.x, current.x), std::min(start.y, current.y)},
                             {std::abs(current.x - start.x), std::abs(current.y - start.y)}};
    case SketchTool::select:
    case SketchTool::pan:
    case SketchTool::polygon:
    case SketchTool::trim:
      return std::nullopt;
  }
  return std::nullopt;
}

bool isDraftLargeEnough(SketchTool tool, const SketchDraft& draft) {
  const SketchPoint span = draft.current - draft.start;
  if (tool == SketchTool::rectangle) {
    return std::abs(span.x) >= kMinimumDraftSize && std::abs(span.y) >= kMinimumDraftSize;
  }
  return std::hypot(span.x, span.y) >= kMinimumDraftSize;
}

std::optional<SketchPoint> pointerBadgePoint(const SketchViewModel& sketch) {
  if (*sketch.acquiredEntitySnap && *sketch.draft && *sketch.cursorSketchPoint) {
    return sketch.cursorSketchPoint;
  }
  if (*sketch.activeEntitySnapPoint) return sketch.activeEntitySnapPoint;
  if (*sketch.activeGridSnapPoint) return sketch.activeGridSnapPoint;
  if (*sketch.draft) return (*sketch.draft)->current;
  if (*sketch.polygonDraft) return (*sketch.polygonDraft)->current;
  return sketch.cursorSketchPoint;
}

// --- Two-point tools

void SketchViewModel::beginDraft(SketchPoint point) {
  const ChangeScope scope(tracker_);
  closeSegmentLengthEdit();
  lastDraftConstraintAxes = {};
  const SketchSnapResult result = snapPointer(point, showGrid);
  draft = SketchDraft{result.point, result.point};
  publishSnap(result);
}

void SketchViewModel::updateDraft(SketchPoint point) {
  if (!*draft) return;
  const ChangeScope scope(tracker_);
  const SketchPoint start = (*draft)->start;
  SketchSnapResult result;
  switch (*selectedTool) {
    case SketchTool::line:
    case SketchTool::wall:
      tickTrackingAcquire(point, host_.scheduler.now());
      lastDraftConstraintAxes = SketchSnapping::axisSnap(start, point).axes;
      result = snapDraftEnd(start, point);
      break;
    case SketchTool::circle:
    case SketchTool::rectangle:
    case SketchTool::polygon:
      result = snapPointer(point, showGrid);
      break;
    case SketchTool::select:
    case SketchTool::pan:
    case SketchTool::trim:
      result.point = point;
      break;
  }
  draft = SketchDraft{start, result.point};
  publishDraftSnap(result, start);
}

void SketchViewModel::setDraftCurrent(SketchPoint point) {
  if (*draft) draft = SketchDraft{(*draft)->start, point};
}

void SketchViewModel::commitDraft() { addDraft(false); }

void SketchViewModel::commitTypedDraft() { addDraft(true); }

void SketchViewModel::addDraft(bool whateverItsSize) {
  if (!*draft) return;
  const ChangeScope scope(tracker_);
  auto entity = draftedEntity(selectedTool, **draft, activeWallSystemSpecID);
  if (entity && (whateverItsSize || isDraftLargeEnough(selectedTool, **draft))) {
    appendNewEntity(withEntityID(std::move(*entity), UUID::random()));
  }
  clearDraft();
}

// --- Polygons

void SketchViewModel::addPolygonVertex(SketchPoint point) {
  const ChangeScope scope(tracker_);
  closeSegmentLengthEdit();
  SketchSnapResult result;
  PolygonDraft grown = polygonDraft->value_or(PolygonDraft());
  if (grown.vertices.empty()) {
    result = snapPointer(point, showGrid);
  } else {
    result = snapDraftEnd(grown.vertices.back(), point);
    if (!result.axes.empty()) lastDraftConstraintAxes = result.axes;
  }
  grown.vertices.push_back(result.point);
  grown.current = result.point;
  polygonDraft = std::move(grown);
  publishSnap(result, result.point);
}

void SketchViewModel::updatePolygonDraft(SketchPoint point) {
  if (!*polygonDraft) return;
  const ChangeScope scope(tracker_);
  const auto& vertices = (*polygonDraft)->vertices;
  const SketchPoint last = vertices.empty() ? point : vertices.back();
  const SketchSnapResult result = snapDraftEnd(last, point);
  if (!result.axes.empty()) lastDraftConstraintAxes = result.axes;
  if (!((*polygonDraft)->current == result.point)) polygonDraft.edit()->current = result.point;
  publishDraftSnap(result, last);
}

bool SketchViewModel::closePolygon() {
  if (!*polygonDraft || (*polygonDraft)->vertices.size() < kMinimumPolygonVertices) return false;
  const ChangeScope scope(tracker_);
  addPolygon((*polygonDraft)->vertices);
  polygonDraft = std::nullopt;
  lastDraftConstraintAxes = {};
  releaseTracking();
  clearSnapState();
  return true;
}

// --- Changing the tool

void SketchViewModel::activateTool(SketchTool tool) {
  if (tool == SketchTool::select) {
    activateSelectTool();
    return;
  }
  const ChangeScope scope(tracker_);
  endSelectGestures();
  cancelDraft();
  trimCuttingEdgeEntityID = std::nullopt;
  if (selectedTool == SketchTool::trim) clearSelection();
  selectedTool = tool;
}

void SketchViewModel::activateSelectTool() {
  const ChangeScope scope(tracker_);
  cancelDraft();
  trimCuttingEdgeEntityID = std::nullopt;
  if (selectedTool == SketchTool::trim) clearSelection();
  if (*selectDrag) cancelSelectDrag();
  selectMarquee = std::nullopt;
  selectedTool = SketchTool::select;
  releaseTracking();
  clearSnapState();
}

void SketchViewModel::endSelectGestures() {
  const ChangeScope scope(tracker_);
  if (*selectDrag) finishSelectDrag();
  selectMarquee = std::nullopt;
}

// --- Escape

void SketchViewModel::handleEscape() {
  const ChangeScope scope(tracker_);
  const bool isDrawing = *draft || *polygonDraft;
  if (isSegmentLengthEditing) {
    closeSegmentLengthEdit();
  } else if (*pendingTrackingAcquire) {
    cancelTrackingDwell();
  } else if (*acquiredEntitySnap && !isDrawing) {
    releaseTracking();
  } else if (*selectDrag && !isDrawing) {
    cancelSelectDrag();
  } else if (*selectMarquee && !isDrawing) {
    selectMarquee = std::nullopt;
  } else if (selectedTool == SketchTool::select && !isDrawing) {
    if (!selectedEntityIDs->empty()) {
      clearSelection();
      hoveredEntityID = std::nullopt;
      hoverViewPoint = std::nullopt;
    }
  } else {
    activateSelectTool();
  }
  clearSnapState();
}

// --- What is being drawn, in words

std::optional<std::string> SketchViewModel::draftMeasurementText() const {
  if (selectedTool == SketchTool::polygon && *polygonDraft && !(*polygonDraft)->vertices.empty()) {
    const PolygonDraft& polygon = **polygonDraft;
    return "Vertices " + std::to_string(polygon.vertices.size()) + " · Segment " +
           formatShortNumber(distanceBetween(polygon.vertices.back(), polygon.current));
  }
  if (!*draft) return std::nullopt;
  const SketchPoint span = (*draft)->current - (*draft)->start;
  const std::string distance = formatShortNumber(std::hypot(span.x, span.y));
  switch (*selectedTool) {
    case SketchTool::line:
    case SketchTool::wall:
      return "Length " + distance + " · Angle " + formatShortNumber(directionDegrees(span.x, span.y)) + "°";
    case SketchTool::circle:
      return "Radius " + distance;
    case SketchTool::rectangle:
      return "Width " + formatShortNumber(std::abs(span.x)) + " · Height " +
             formatShortNumber(std::abs(span.y));
    case SketchTool::select:
    case SketchTool::pan:
    case SketchTool::polygon:
    case SketchTool::trim:
      return std::nullopt;
  }
  return std::nullopt;
}

}  // namespace ostrelon
