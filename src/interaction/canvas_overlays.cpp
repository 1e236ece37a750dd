#include "interaction/canvas_overlays.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>
#include <utility>

#include "geometry/annotation_builder.h"
#include "geometry/dimension_annotation.h"
#include "geometry/plan_item_operations.h"
#include "geometry/selection_handles.h"
#include "interaction/annotation_painting.h"
#include "interaction/board.h"
#include "interaction/canvas_clipping.h"
#include "interaction/drawing_tools.h"
#include "interaction/entity_shape.h"
#include "interaction/opening_painting.h"
#include "interaction/segment_label.h"

namespace ostrelon {

namespace {

constexpr double kWallFillOpacity = 0.55;
constexpr double kFilledWallOpacity = 0.4;
constexpr double kCenterLineWidth = 0.75;
constexpr LineDash kCenterLineDash{4, 3};
constexpr double kGuideReach = 40;  // sketch units beyond the visible part
constexpr double kGuideOpacity = 0.85;
constexpr double kGuideWidth = 1.25;
constexpr LineDash kGuideDash{6, 4};

constexpr double kHoverWidth = 1.75;
constexpr LineDash kHoverDash{5, 4};
constexpr double kCuttingEdgeWidth = 2.25;

constexpr double kSelectionFillOpacity = 0.14;
constexpr double kSelectionGlowWidth = 7.0;
constexpr double kSelectionGlowOpacity = 0.24;
constexpr double kSelectionWidth = 2.75;
constexpr double kHandleRadius = 6.0;
constexpr double kHandleRingWidth = 2.0;
/// With more handles than this, one stands for all those within a cell of so many view points.
constexpr std::size_t kMostPlainHandles = 256;
constexpr double kCrowdedHandleCell = 3.0;

constexpr double kMarqueeWidth = 1.25;
constexpr LineDash kMarqueeDash{4, 3};
constexpr double kMarqueeOpacity = 0.9;
constexpr double kCrossingFillOpacity = 0.08;
constexpr double kWindowFillOpacity = 0.04;

constexpr double kDraftWidth = 1.25;
constexpr double kVertexDotRadius = 3.0;

constexpr double kLabelOpacity = 0.96;
constexpr double kLabelBorderWidth = 1.0;

constexpr double kMarkerHalfSide = 5.0;
constexpr double kMarkerOutlineWidth = 1.0;
constexpr double kMarkerOutlineOpacity = 0.9;
constexpr double kGridMarkerWidth = 1.5;
/// Points nearer than this, sketch units, count as the same.
constexpr double kSamePointDistance = 0.5;

constexpr double kPulseWidth = 1.75;

constexpr double kLockOpacity = 0.9;
constexpr double kLockCrossWidth = 1.5;
constexpr double kLockLineWidth = 2.0;
constexpr double kLockHalfSide = 6.5;
constexpr double kLockFillOpacity = 0.85;
constexpr double kLockOutlineWidth = 1.5;

double wallThickness(const SketchEntity& entity, const Board& board) {
  const auto* wall = std::get_if<WallEntity>(&entity);
  return wall != nullptr ? paintedWallThickness(*wall, board.sketch().drawing->wallSystemSpecs) : 0;
}

/// The entity's outline once more, in the active colour. An unknown identifier paints nothing.
void paintHighlight(CanvasPainter& painter, const Board& board, const CanvasFrame& frame,
                    const std::optional<UUID>& id, double width, LineDash dash) {
  const SketchEntity* entity = id ? board.sketch().entity(*id) : nullptr;
  if (entity == nullptr) return;
  EntityShape shape;
  outlineEntity(*entity, wallThickness(*entity, board), frame, shape);
  Stroke stroke{.color = frame.palette.active, .width = width, .dash = dash};
  if (!stroke.isDashed()) {
    stroke.cap = LineCap::round;
    stroke.join = LineJoin::round;
  }
  strokeShape(painter, frame, shape, stroke);
}

/// A square around a sketch point, filled and then outlined; either may be left out.
void paintSquare(CanvasPainter& painter, const CanvasFrame& frame, SketchPoint point, double halfSide,
                 const std::optional<Fill>& fill, const std::optional<Stroke>& outline) {
  const SketchPoint center = frame.toView(point);
  if (!isFinite(center) || !frame.clipBox().contains(center)) return;
  const SketchBox square = SketchBox::centered(center, halfSide);
  if (fill) painter.fillRoundedRect(square, 0, *fill);
  if (outline) painter.strokeRoundedRect(square, 0, *outline);
}

void paintEmphasizedShape(CanvasPainter& painter, const CanvasFrame& frame, const Sketch& sketch,
                          const UUID& id, OpeningEmphasis emphasis) {
  const bool isHovered = emphasis == OpeningEmphasis::hovered;
  const Stroke stroke{.color = frame.palette.active,
                      .width = isHovered ? kHoverWidth : kSelectionWidth,
                      .dash = isHovered ? kHoverDash : decltype(Stroke::dash)()};
  for (const PlanItemShape& shape : planItemShapes(sketch.drawing->plan)) {
    if (shape.id != id) continue;
    for (const auto& [start, end] : shape.strokes) {
      strokeSegment(painter, frame, {frame.toView(start), frame.toView(end)}, stroke);
    }
  }
}

/// An unknown identifier paints nothing.
void paintEmphasizedItem(CanvasPainter& painter, const CanvasFrame& frame, const Sketch& sketch,
                         const UUID& id, OpeningEmphasis emphasis) {
  const auto item = findPlanItem(sketch.drawing->plan, id);
  if (!item) return;
  std::visit(
      Overloaded{
          [&](const Opening& opening) { paintEmphasizedOpening(painter, frame, sketch, opening, emphasis); },
          [&](const auto& other) { paintEmphasizedShape(painter, frame, sketch, other.id, emphasis); }},
      *item);
}

Stroke draftStroke(const CanvasFrame& frame) {
  return {
      .color = frame.palette.active, .width = kDraftWidth, .cap = LineCap::round, .join = LineJoin::round};
}

void paintDimensionPreview(CanvasPainter& painter, const CanvasFrame& frame, const Sketch& sketch,
                           const Dimension& dimension) {
  CanvasFrame active = frame;
  active.palette.foreground = frame.palette.active;
  const auto width = [](std::string_view text) { return annotationTextWidth(text); };
  paintAnnotations(
      painter, active,
      dimensionAnnotations(SharedList<Dimension>{dimension}, unitsPerInch(sketch.drawing->plan), width));
}

void paintPolygonDraft(CanvasPainter& painter, const CanvasFrame& frame, const PolygonDraft& draft) {
  EntityShape shape;
  shape.kind = EntityShape::Kind::polyline;
  shape.path.begin();
  for (const SketchPoint vertex : draft.vertices) shape.path.add(frame.toView(vertex));
  shape.path.add(frame.toView(draft.current));
  strokeShape(painter, frame, shape, draftStroke(frame));

  shape.kind = EntityShape::Kind::ellipse;
  for (const SketchPoint vertex : draft.vertices) {
    shape.ellipse = {frame.toView(vertex), kVertexDotRadius};
    fillShape(painter, frame, shape, {frame.palette.active});
  }
}

}  // namespace

void paintSnapGuides(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  const auto& anchor = board.snap->guideAnchor;
  if (!anchor) return;
  const SketchBox visible = visibleSketchBox(frame.transform.canvasSize, frame.transform.viewport);
  const double minX = visible.minX - kGuideReach;
  const double maxX = visible.maxX + kGuideReach;
  const auto diagonal = [&](double slope) {
    const auto at = [&](double x) { return SketchPoint{x, anchor->y + slope * (x - anchor->x)}; };
    return CanvasSegment{at(minX), at(maxX)};
  };
  const auto guide = [&](AxisSnap axis) -> CanvasSegment {
    switch (axis) {
      case AxisSnap::horizontal:
        return {{minX, anchor->y}, {maxX, anchor->y}};
      case AxisSnap::vertical:
        return {{anchor->x, visible.minY - kGuideReach}, {anchor->x, visible.maxY + kGuideReach}};
      case AxisSnap::diagonalUp:
        return diagonal(1);
      case AxisSnap::diagonalDown:
        return diagonal(-1);
    }
    return {};
  };
  for (const AxisSnap axis : board.snap->axes) {
    const CanvasSegment line = guide(axis);
    strokeSegment(
        painter, frame, {frame.toView(line.from), frame.toView(line.to)},
        {.color = frame.palette.active, .opacity = kGuideOpacity, .width = kGuideWidth, .dash = kGuideDash});
  }
}

void paintHover(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  if (board.tool.get() != SketchTool::select) return;
  if (const auto& id = board.hover->planItem; id && id != board.sketch().selection->planItem) {
    paintEmphasizedItem(painter, frame, board.sketch(), *id, OpeningEmphasis::hovered);
  }
  const auto& hovered = board.hover->entityID;
  if (!hovered) return;
  if (board.sketch().isSelected(*hovered)) return;
  paintHighlight(painter, board, frame, hovered, kHoverWidth, kHoverDash);
}

void paintSelectedEntity(CanvasPainter& painter, const CanvasFrame& frame, const SketchEntity& entity,
                         std::span<const WallSystemSpec> systems) {
  const auto* wall = std::get_if<WallEntity>(&entity);
  const double thickness = wall != nullptr ? paintedWallThickness(*wall, systems) : 0;
  const SketchBox visible = frame.paintedRect().grown(kSelectionGlowWidth);
  if (!entityViewBounds(entity, thickness, frame.transform.viewport).overlaps(visible)) return;
  EntityShape shape;
  outlineEntity(entity, thickness, frame, shape);
  const Color active = frame.palette.active;
  fillShape(painter, frame, shape, {active, kSelectionFillOpacity});
  Stroke stroke{.color = active,
                .opacity = kSelectionGlowOpacity,
                .width = kSelectionGlowWidth,
                .cap = LineCap::round,
                .join = LineJoin::round};
  strokeShape(painter, frame, shape, stroke);
  stroke.opacity = 1;
  stroke.width = kSelectionWidth;
  strokeShape(painter, frame, shape, stroke);
}

void paintSelection(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  if (const auto& item = board.sketch().selection->planItem) {
    paintEmphasizedItem(painter, frame, board.sketch(), *item,
                        board.selectDrag() != nullptr ? OpeningEmphasis::dragged : OpeningEmphasis::selected);
    return;
  }
  const EntitySet& selected = board.sketch().selection->ids;
  if (selected.empty()) return;
  if (selected.size() > 1) {
    board.sketch().visitSelected([&](const SketchEntity& entity) {
      paintSelectedEntity(painter, frame, entity, board.sketch().drawing->wallSystemSpecs);
    });
    return;
  }
  const SketchEntity* entity = board.sketch().entity(*selected.begin());
  if (entity == nullptr) return;
  paintSelectedEntity(painter, frame, *entity, board.sketch().drawing->wallSystemSpecs);
  const SketchBox visible = frame.paintedRect().grown(kHandleRadius + kHandleRingWidth);
  const auto handles = selectionHandles(*entity);
  std::set<std::pair<double, double>> taken;
  for (const auto& [handle, point] : handles) {
    const CanvasEllipse grip{frame.toView(point), kHandleRadius};
    if (!visible.contains(grip.center)) continue;
    if (handles.size() > kMostPlainHandles) {
      const auto cell = std::pair(std::floor(grip.center.x / kCrowdedHandleCell),
                                  std::floor(grip.center.y / kCrowdedHandleCell));
      if (!taken.insert(cell).second) continue;
    }
    painter.fillEllipse(grip, {frame.palette.active});
    painter.strokeEllipse(grip, {.color = frame.palette.card, .width = kHandleRingWidth});
  }
}

void paintMarquee(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  const SelectMarqueeState* marquee = board.marquee();
  if (!marquee) return;
  const bool isCrossing = marquee->currentViewX < marquee->startViewX;
  const Color color = isCrossing ? frame.palette.active : frame.palette.foreground;
  const SketchPoint a = marquee->startSketchPoint;
  const SketchPoint b = marquee->currentSketchPoint;
  EntityShape shape;
  outlineEntity(RectangleEntity{{}, a, {b.x - a.x, b.y - a.y}}, 0, frame, shape);
  fillShape(painter, frame, shape, {color, isCrossing ? kCrossingFillOpacity : kWindowFillOpacity});
  strokeShape(painter, frame, shape,
              {.color = color, .opacity = kMarqueeOpacity, .width = kMarqueeWidth, .dash = kMarqueeDash});
}

void paintTrim(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  if (board.tool.get() != SketchTool::trim) return;
  paintHighlight(painter, board, frame, board.trimCuttingEdge, kCuttingEdgeWidth, {});
  paintHighlight(painter, board, frame, board.hover->entityID, kHoverWidth, kHoverDash);
}

void paintDrafts(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  const SketchTool tool = board.tool.get();
  const SketchDraft* draft = board.draft();
  const auto entity = draft && isDraftLargeEnough(tool, *draft) ? draftedEntity(board) : std::nullopt;
  if (entity) {
    EntityShape shape;
    outlineEntity(*entity, wallThickness(*entity, board), frame, shape);
    const auto* wall = std::get_if<WallEntity>(&*entity);
    if (wall != nullptr) fillShape(painter, frame, shape, wallFill(frame.palette));
    strokeShape(painter, frame, shape, draftStroke(frame));
    if (wall != nullptr) {
      strokeWallCenterLine(painter, frame, wall->from, wall->to, frame.palette.active);
    }
  }
  if (board.polygonDraft() != nullptr) paintPolygonDraft(painter, frame, *board.polygonDraft());
  if (board.openingPlacing() != nullptr && board.openingPlacing()->preview) {
    paintOpeningPreview(painter, frame, board.sketch(), *board.openingPlacing()->preview);
  }
  if (board.dimensionPlacing() != nullptr && board.dimensionPlacing()->preview) {
    paintDimensionPreview(painter, frame, board.sketch(), *board.dimensionPlacing()->preview);
  }
}

void paintSegmentLabel(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  if (board.lengthEditor->isOpen) return;
  const auto label = segmentLabel(board, frame.transform.viewport);
  if (!label || !label->pill.overlaps(frame.paintedRect())) return;
  painter.fillRoundedRect(label->pill, kSegmentLabelCornerRadius, {frame.palette.card, kLabelOpacity});
  painter.strokeRoundedRect(label->pill, kSegmentLabelCornerRadius,
                            {.color = frame.palette.border, .width = kLabelBorderWidth});
  painter.drawText(label->text, label->pill.center(), kSegmentLabelTextHeight, {frame.palette.foreground});
}

void paintMarkers(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  const Color active = frame.palette.active;
  const Stroke outline{.color = active, .opacity = kMarkerOutlineOpacity, .width = kMarkerOutlineWidth};
  const auto& target = board.snap->entityPoint;
  const auto& source = board.snap->entitySourcePoint;
  if (source && (!target || distanceBetween(*source, *target) > kSamePointDistance)) {
    paintSquare(painter, frame, *source, kMarkerHalfSide, Fill{active}, outline);
  }
  if (target) paintSquare(painter, frame, *target, kMarkerHalfSide, Fill{active}, outline);
  if (const auto& grid = board.snap->gridPoint) {
    paintSquare(painter, frame, *grid, kMarkerHalfSide, std::nullopt,
                Stroke{.color = kThemeGreen, .opacity = kMarkerOutlineOpacity, .width = kGridMarkerWidth});
  }
}

void paintDwellPulse(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  const double progress = board.tracking->progress;
  const auto& pending = board.tracking->pending;
  if (!pending || !(progress < 1)) return;
  const SketchPoint center = frame.toView(pending->point);
  if (!isFinite(center) || !frame.clipBox().contains(center)) return;
  const Color active = frame.palette.active;
  const double halfSide = 5 + 2 * progress;
  painter.fillRoundedRect(SketchBox::centered(center, halfSide), 0, {active, 0.35 + 0.45 * progress});
  const double swing = 0.5 + 0.5 * std::sin(8 * std::numbers::pi * progress);
  painter.strokeEllipse({center, halfSide + 3 + 4 * swing + 3 * progress},
                        {.color = active, .opacity = 0.45 + 0.45 * swing, .width = kPulseWidth});
}

void paintLock(CanvasPainter& painter, const Board& board, const CanvasFrame& frame) {
  const auto& lock = board.tracking->locked;
  if (!lock) return;
  const Color active = frame.palette.active;
  const SketchPoint point = frame.toView(lock->point);
  if (!isFinite(point)) return;
  const SketchBox canvas = frame.canvasRect();
  Stroke stroke{.color = active, .opacity = kLockOpacity, .width = kLockCrossWidth};
  strokeSegment(painter, frame, {{canvas.minX, point.y}, {canvas.maxX, point.y}}, stroke);
  strokeSegment(painter, frame, {{point.x, canvas.minY}, {point.x, canvas.maxY}}, stroke);
  if (const SketchDraft* draft = board.draft();
      draft && distanceBetween(draft->current, lock->point) > kSamePointDistance) {
    stroke.width = kLockLineWidth;
    strokeSegment(painter, frame, {point, frame.toView(draft->current)}, stroke);
  }
  paintSquare(painter, frame, lock->point, kLockHalfSide, Fill{active, kLockFillOpacity},
              Stroke{.color = active, .width = kLockOutlineWidth});
}

Stroke entityStroke(Color color) {
  return {.color = color, .width = 1.5, .cap = LineCap::round, .join = LineJoin::round};
}

Stroke weightedStroke(const CanvasFrame& frame, const SketchEntity& entity) {
  Stroke stroke = entityStroke(frame.palette.foreground);
  stroke.width = penMillimetres(entity) * frame.pointsPerMillimetre;
  return stroke;
}

void strokeWallCenterLine(CanvasPainter& painter, const CanvasFrame& frame, SketchPoint from, SketchPoint to,
                          Color color) {
  strokeSegment(painter, frame, {frame.toView(from), frame.toView(to)},
                {.color = color, .width = kCenterLineWidth, .dash = kCenterLineDash});
}

Fill wallFill(const ThemePalette& palette, bool isFilled) {
  return isFilled ? Fill{palette.foreground, kFilledWallOpacity} : Fill{palette.muted, kWallFillOpacity};
}

}  // namespace ostrelon
