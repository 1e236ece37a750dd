#include "interaction/opening_painting.h"

#include "core/circle.h"
#include "core/typed_length.h"
#include "geometry/opening_operations.h"
#include "interaction/canvas_overlays.h"
#include "interaction/entity_shape.h"
#include "interaction/segment_label.h"

namespace ostrelon {
namespace {

constexpr double kStrokeReach = 2.0;  // how far strokes reach beyond what they outline, view points
constexpr double kSwingWidth = 1.0;   // of the arc that a leaf's tip runs along, view points
constexpr double kMisfitOpacity = 0.9;
constexpr LineDash kMisfitDash{4, 3};
constexpr double kPreviewWidth = 2.0;
constexpr double kLabelDistance = 16;  // from a wall's face to the middle of a distance, view points
constexpr double kLabelCharacterWidth = 7;
constexpr double kLabelPadding = 14;
constexpr double kHoverWidth = 1.75;
constexpr LineDash kHoverDash{5, 4};
constexpr double kGlowWidth = 7;
constexpr double kGlowOpacity = 0.24;
constexpr double kSelectedWidth = 2.25;
constexpr double kSelectedFillOpacity = 0.14;
constexpr double kArrowDistance = 18;  // from a wall's face to the middle of the arrow, view points
constexpr double kArrowWidth = 1.5;
constexpr double kArrowReach = 5.5;
constexpr double kArrowHead = 2.5;
constexpr double kLabelGap = 3;  // between a label and the middle of the opening, view points

// What of the layout touches the painted part, with its shape.
template <class Visit>
void visitVisible(const CanvasFrame& frame, const OpeningLayout& layout, Visit visit) {
  const SketchBox visible = frame.paintedRect().grown(kStrokeReach);
  for (const PlacedOpening& placed : layout.all()) {
    const OpeningShape shape = openingShape(placed.opening, placed.wall);
    const SketchBox bounds = openingBounds(shape);
    const SketchBox view = SketchBox::spanning(frame.toView({bounds.minX, bounds.minY}),
                                               frame.toView({bounds.maxX, bounds.maxY}));
    if (isFinite(view) && view.overlaps(visible)) visit(placed, shape);
  }
}

void strokeOpening(CanvasPainter& painter, const CanvasFrame& frame, const OpeningShape& shape, Stroke stroke,
                   double swingWidth = kSwingWidth) {
  const auto line = [&](const OpeningShape::Line& one) {
    strokeSegment(painter, frame, {frame.toView(one.first), frame.toView(one.second)}, stroke);
  };
  for (const OpeningShape::Line& jamb : shape.jambs) line(jamb);
  for (const OpeningShape::Line& one : shape.lines) line(one);
  if (shape.leaf) line(*shape.leaf);
  if (!shape.arc) return;
  EntityShape arc;
  outlineEntity(
      ArcEntity{{}, shape.arc->center, shape.arc->radius, shape.arc->startAngle, shape.arc->endAngle}, 0,
      frame, arc);
  stroke.width = swingWidth;
  strokeShape(painter, frame, arc, stroke);
}

// Of length 1.
SketchPoint sideWithoutLeaf(const Opening& opening, const OpeningWall& wall) {
  return perpendicular(wall.at(1) - wall.at(0)) * (opening.swing == DoorSwing::in ? -1 : 1);
}

// The distances to both neighbours stand beside the wall, on the side to which no leaf swings.
void paintDistances(CanvasPainter& painter, const CanvasFrame& frame, const Sketch& sketch,
                    const PlacedOpening& placed, Color color) {
  const Opening& opening = placed.opening;
  const OpeningWall& wall = placed.wall;
  const double end = opening.distance + opening.width;
  const OpeningRoom room =
      openingRoom(wall, opening.distance + opening.width / 2, sketch.drawing->plan.openings, opening.id);
  const SketchPoint across = sideWithoutLeaf(opening, wall);
  const auto label = [&](double from, double to) {
    if (!(to - from > kOpeningTolerance)) return;
    const std::string text = formatLength(to - from);
    const double offset = std::abs(wall.thickness) / 2 + kLabelDistance / frame.scale();
    const double width = kLabelCharacterWidth * static_cast<double>(text.size()) + kLabelPadding;
    SketchPoint center = frame.toView(wall.at((from + to) / 2) + across * offset);
    // Seen from afar the two labels would lie over each other: they keep to their sides of the opening.
    const SketchPoint middle = frame.toView(wall.at(opening.distance + opening.width / 2) + across * offset);
    const SketchPoint away = center - middle;
    const double apart = lengthOf(away);
    const double wanted =
        kLabelGap + (std::abs(away.x) * width + std::abs(away.y) * kSegmentLabelHeight) / (2 * apart);
    if (apart < wanted) center = middle + away * (wanted / apart);
    const SketchBox pill{center.x - width / 2, center.y - kSegmentLabelHeight / 2, center.x + width / 2,
                         center.y + kSegmentLabelHeight / 2};
    if (!isFinite(pill)) return;
    painter.fillRoundedRect(pill, kSegmentLabelCornerRadius, {frame.palette.card});
    painter.strokeRoundedRect(pill, kSegmentLabelCornerRadius, {.color = color});
    painter.drawText(text, center, kSegmentLabelTextHeight, {frame.palette.foreground});
  };
  label(room.from, opening.distance);
  label(end, room.to);
}

// Two points that face away from each other, across the wall.
void paintFlipArrow(CanvasPainter& painter, const CanvasFrame& frame, SketchPoint at, SketchPoint across) {
  const SketchPoint center = frame.toView(at);
  if (!isFinite(center) || !frame.clipBox().contains(center)) return;
  const Color active = frame.palette.active;
  const CanvasEllipse button{center, kFlipArrowRadius - 1};
  painter.fillEllipse(button, {frame.palette.card});
  painter.strokeEllipse(button, {.color = active, .width = kArrowWidth});
  const SketchPoint along{across.x, -across.y};  // in the view y goes down
  const SketchPoint beside = perpendicular(along);
  std::vector<CanvasSegment> lines;
  for (const double side : {-1.0, 1.0}) {
    const SketchPoint tip = center + along * (kArrowReach * side);
    const SketchPoint back = center + along * ((kArrowReach - kArrowHead) * side);
    lines.push_back({center, tip});
    lines.push_back({tip, back + beside * kArrowHead});
    lines.push_back({tip, back - beside * kArrowHead});
  }
  painter.strokeSegments(
      lines, {.color = active, .width = kArrowWidth, .cap = LineCap::round, .join = LineJoin::round});
}

}  // namespace

std::vector<std::array<SketchPoint, 4>> openingGaps(const CanvasFrame& frame, const OpeningLayout& layout) {
  std::vector<std::array<SketchPoint, 4>> gaps;
  visitVisible(frame, layout, [&](const PlacedOpening& placed, const OpeningShape& shape) {
    if (placed.fit != OpeningFit::fits) return;
    const SketchPoint across = perpendicular(frame.toView(placed.wall.to) - frame.toView(placed.wall.from));
    const SketchPoint reach = across * (kStrokeReach / lengthOf(across));
    // With y down, the left of the wall lies against the perpendicular.
    const auto corner = [&](int i, double side) {
      return frame.toView(shape.gap[static_cast<std::size_t>(i)]) + reach * side;
    };
    gaps.push_back({corner(0, -1), corner(1, 1), corner(2, 1), corner(3, -1)});
  });
  return gaps;
}

void paintOpeningGaps(CanvasPainter& painter, const CanvasFrame& frame, const OpeningLayout& layout) {
  for (const auto& gap : openingGaps(frame, layout)) {
    EntityShape shape;
    shape.kind = EntityShape::Kind::closedPath;
    shape.path.addPiece(gap, true);
    fillShape(painter, frame, shape, {frame.palette.background});
  }
}

void paintOpenings(CanvasPainter& painter, const CanvasFrame& frame, const OpeningLayout& layout,
                   OpeningMisfits misfits) {
  visitVisible(frame, layout, [&](const PlacedOpening& placed, const OpeningShape& shape) {
    if (placed.fit == OpeningFit::fits) {
      strokeOpening(painter, frame, shape, entityStroke(frame.palette.foreground));
    } else if (misfits == OpeningMisfits::shown) {
      Stroke stroke = entityStroke(frame.palette.destructive);
      stroke.opacity = kMisfitOpacity;
      stroke.dash = kMisfitDash;
      strokeOpening(painter, frame, shape, stroke);
    }
  });
}

void paintEmphasizedOpening(CanvasPainter& painter, const CanvasFrame& frame, const Sketch& sketch,
                            const Opening& opening, OpeningEmphasis emphasis) {
  const auto placed = placedOpening(sketch, opening);
  if (!placed) return;
  const bool fits = placed->fit == OpeningFit::fits;
  const Color color = fits ? frame.palette.active : frame.palette.destructive;
  const OpeningShape shape = openingShape(opening, placed->wall);
  // A plain opening has no lines of its own between its jambs.
  EntityShape gap;
  gap.kind = EntityShape::Kind::closedPath;
  std::array<SketchPoint, 4> corners{};
  for (std::size_t i = 0; i < corners.size(); ++i) corners[i] = frame.toView(shape.gap[i]);
  gap.path.addPiece(corners, true);
  Stroke stroke = entityStroke(color);
  if (emphasis == OpeningEmphasis::hovered) {
    stroke.width = kHoverWidth;
    stroke.dash = kHoverDash;
    strokeShape(painter, frame, gap, stroke);
    strokeOpening(painter, frame, shape, stroke);
    return;
  }
  fillShape(painter, frame, gap, {color, kSelectedFillOpacity});
  stroke.width = kGlowWidth;
  stroke.opacity = kGlowOpacity;
  strokeShape(painter, frame, gap, stroke);
  stroke.width = kSelectedWidth;
  stroke.opacity = 1;
  strokeShape(painter, frame, gap, stroke);
  strokeOpening(painter, frame, shape, stroke, kSelectedWidth);
  if (emphasis == OpeningEmphasis::dragged) {
    paintDistances(painter, frame, sketch, *placed, color);
  } else if (const auto arrow = flipArrowPoint(sketch, opening, frame.scale())) {
    paintFlipArrow(painter, frame, *arrow, sideWithoutLeaf(opening, placed->wall));
  }
}

std::optional<SketchPoint> flipArrowPoint(const Sketch& sketch, const Opening& opening, double scale) {
  const auto wall = openingWall(sketch, opening.wallID);
  if (!wall || opening.kind != OpeningKind::door) return std::nullopt;
  const double offset = std::abs(wall->thickness) / 2 + kArrowDistance / scale;
  return wall->at(opening.distance + opening.width / 2) + sideWithoutLeaf(opening, *wall) * offset;
}

void paintOpeningPreview(CanvasPainter& painter, const CanvasFrame& frame, const Sketch& sketch,
                         const Opening& opening) {
  const auto placed = placedOpening(sketch, opening);
  if (!placed) return;
  const bool fits = placed->fit == OpeningFit::fits;
  const Color color = fits ? frame.palette.active : frame.palette.destructive;
  Stroke stroke = entityStroke(color);
  stroke.width = kPreviewWidth;
  strokeOpening(painter, frame, openingShape(opening, placed->wall), stroke);
  paintDistances(painter, frame, sketch, *placed, color);
}

}  // namespace ostrelon
