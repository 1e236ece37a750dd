#include "interaction/drawing_tools.h"

#include <algorithm>
#include <cmath>

#include "core/adding.h"
#include "core/circle.h"
#include "core/length_text.h"
#include "geometry/dimension_annotation.h"
#include "interaction/board.h"
#include "interaction/canvas_frame.h"
#include "interaction/sketch_snapping.h"
#include "interaction/tracking.h"
#include "interaction/wall_chain.h"

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

std::optional<SketchEntity> draftedEntity(const Board& board, std::vector<WallEntity>* changed) {
  if (board.draft() == nullptr) return std::nullopt;
  const Drawing& drawing = board.sketch().drawing;
  auto entity = draftedEntity(board.tool, *board.draft(), drawing.activeWallSystemSpecID);
  if (auto* wall = entity ? std::get_if<WallEntity>(&*entity) : nullptr) {
    auto others =
        joinToChain(*wall, board.wallJustification, board.sketch().index(), drawing.wallSystemSpecs);
    if (changed != nullptr) *changed = std::move(others);
  }
  return entity;
}

bool isDraftLargeEnough(SketchTool tool, const SketchDraft& draft) {
  const SketchPoint span = draft.current - draft.start;
  if (tool == SketchTool::rectangle) {
    return std::abs(span.x) >= kMinimumDraftSize && std::abs(span.y) >= kMinimumDraftSize;
  }
  return lengthOf(span) >= kMinimumDraftSize;
}

std::optional<SketchPoint> pointerBadgePoint(const Board& board) {
  if (board.tracking->locked && board.draft() != nullptr && *board.cursor) return *board.cursor;
  if (board.snap->entityPoint) return board.snap->entityPoint;
  if (board.snap->gridPoint) return board.snap->gridPoint;
  if (board.draft() != nullptr) return board.draft()->current;
  if (board.polygonDraft() != nullptr) return board.polygonDraft()->current;
  return *board.cursor;
}

// --- Two-point tools

void Board::beginDraft(SketchPoint point) {
  const auto scope = change();
  closeLengthEditor();
  draftAxes = {};
  const SketchSnapResult result = snapPointer(point, sketch_.drawing->showGrid);
  gesture = SketchDraft{result.point, result.point};
  publishSnap(result);
}

void Board::updateDraft(SketchPoint point) {
  if (draft() == nullptr) return;
  const auto scope = change();
  const SketchPoint start = draft()->start;
  SketchSnapResult result;
  switch (*tool) {
    case SketchTool::line:
    case SketchTool::wall:
      tickTracking(point, scheduler_.now());
      draftAxes = SketchSnapping::axisSnap(start, point).axes;
      result = snapDraftEnd(start, point);
      break;
    case SketchTool::circle:
    case SketchTool::rectangle:
    case SketchTool::polygon:
      result = snapPointer(point, sketch_.drawing->showGrid);
      break;
    case SketchTool::select:
    case SketchTool::pan:
    case SketchTool::trim:
      result.point = point;
      break;
  }
  gesture = SketchDraft{start, result.point};
  publishDraftSnap(result, start);
}

void Board::setDraftCurrent(SketchPoint point) {
  if (draft() != nullptr) gesture = SketchDraft{draft()->start, point};
}

void Board::commitDraft() { addDraft(false); }

void Board::commitTypedDraft() { addDraft(true); }

void Board::addDraft(bool whateverItsSize) {
  if (draft() == nullptr) return;
  const auto scope = change();
  std::vector<WallEntity> changed;
  auto entity = draftedEntity(*this, &changed);
  if (entity && (whateverItsSize || isDraftLargeEnough(tool, *draft()))) {
    *entity = withEntityID(std::move(*entity), UUID::random());
    if (changed.empty()) {
      addEntity(sketch_, std::move(*entity));
    } else {
      sketch_.asOneStep([&] {
        for (const WallEntity& wall : changed) replaceEntity(sketch_, wall.id, wall, UndoStep::own);
        addEntity(sketch_, *entity);
        return true;
      });
    }
  }
  clearDraft();
}

// --- Polygons

void Board::addPolygonVertex(SketchPoint point) {
  const auto scope = change();
  closeLengthEditor();
  SketchSnapResult result;
  PolygonDraft grown = polygonDraft() != nullptr ? *polygonDraft() : PolygonDraft();
  if (grown.vertices.empty()) {
    result = snapPointer(point, sketch_.drawing->showGrid);
  } else {
    result = snapDraftEnd(grown.vertices.back(), point);
    if (!result.axes.empty()) draftAxes = result.axes;
  }
  grown.vertices.push_back(result.point);
  grown.current = result.point;
  gesture = std::move(grown);
  publishSnap(result, result.point);
}

void Board::updatePolygonDraft(SketchPoint point) {
  if (polygonDraft() == nullptr) return;
  const auto scope = change();
  const auto& vertices = polygonDraft()->vertices;
  const SketchPoint last = vertices.empty() ? point : vertices.back();
  const SketchSnapResult result = snapDraftEnd(last, point);
  if (!result.axes.empty()) draftAxes = result.axes;
  if (!(polygonDraft()->current == result.point)) {
    std::get<PolygonDraft>(gesture.edit()).current = result.point;
  }
  publishDraftSnap(result, last);
}

bool Board::closePolygon() {
  if (polygonDraft() == nullptr || polygonDraft()->vertices.size() < kMinimumPolygonVertices) return false;
  const auto scope = change();
  addPolygon(sketch_, polygonDraft()->vertices);
  gesture = Gesture();
  draftAxes = {};
  releaseTracking();
  clearSnap();
  return true;
}

// --- Changing the tool

void Board::activateTool(SketchTool chosen) {
  if (chosen == SketchTool::select) {
    activateSelectTool();
    return;
  }
  const auto scope = change();
  endSelectGestures();
  cancelDraft();
  trimCuttingEdge = std::nullopt;
  if (tool == SketchTool::trim) sketch_.clearSelection();
  tool = chosen;
}

void Board::activateSelectTool() {
  const auto scope = change();
  cancelDraft();
  trimCuttingEdge = std::nullopt;
  if (tool == SketchTool::trim) sketch_.clearSelection();
  if (selectDrag() != nullptr) cancelSelectDrag();
  if (marquee() != nullptr || isPlacing()) gesture = Gesture();
  tool = SketchTool::select;
  releaseTracking();
  clearSnap();
}

void Board::endSelectGestures() {
  const auto scope = change();
  if (selectDrag() != nullptr) finishSelectDrag();
  if (marquee() != nullptr || isPlacing()) gesture = Gesture();
  if (sketch_.selection->planItem) sketch_.clearSelection();
}

// Typed commands disturb less than the tool buttons. The trim tool starts with nothing selected, since its
// selection is the cutting edge; chosen again it only drops the edge.
void Board::activateToolFromConsole(SketchTool chosen) {
  if (chosen == SketchTool::select) {
    activateSelectTool();
    return;
  }
  const auto scope = change();
  endSelectGestures();
  if (chosen == SketchTool::trim) {
    trimCuttingEdge = std::nullopt;
    if (tool != SketchTool::trim) sketch_.clearSelection();
  } else {
    cancelDraft();
  }
  tool = chosen;
}

// --- Escape

void Board::handleEscape() {
  const auto scope = change();
  if (lengthEditor->isOpen) {
    closeLengthEditor();
  } else if (tracking->pending) {
    cancelTrackingDwell();
  } else if (tracking->locked && !isDrawing()) {
    releaseTracking();
  } else if (selectDrag() != nullptr) {
    cancelSelectDrag();
  } else if (dimensionPlacing() != nullptr) {
    stepBackFromDimension();
    return;
  } else if (marquee() != nullptr || isPlacing()) {
    gesture = Gesture();
  } else if (tool == SketchTool::select && !isDrawing()) {
    if (!sketch_.selection->isNothing()) {
      sketch_.clearSelection();
      hover = Hover();
    }
  } else {
    activateSelectTool();
  }
  clearSnap();
}

// --- What is being drawn, in words

std::optional<std::string> Board::instruction() const {
  const DimensionPlacing* placing = dimensionPlacing();
  if (placing == nullptr) return trimInstruction();
  if (!placing->from) return "Click the first end of the dimension";
  if (!placing->to) return "Click the second end";
  return "Click where the dimension line goes";
}

std::optional<std::string> Board::draftMeasurementText() const {
  if (tool == SketchTool::polygon && polygonDraft() != nullptr && !polygonDraft()->vertices.empty()) {
    const PolygonDraft& polygon = *polygonDraft();
    return "Vertices " + std::to_string(polygon.vertices.size()) + " · Segment " +
           formatShortNumber(distanceBetween(polygon.vertices.back(), polygon.current));
  }
  if (dimensionPlacing() != nullptr && dimensionPlacing()->preview) {
    return dimensionText(*dimensionPlacing()->preview);
  }
  if (draft() == nullptr) return std::nullopt;
  const SketchPoint span = draft()->current - draft()->start;
  const std::string distance = formatShortNumber(lengthOf(span));
  switch (*tool) {
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
