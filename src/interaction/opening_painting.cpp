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

void strokeOpening(CanvasPainter& painter, const CanvasFrame& frame, const OpeningShape& shape,
                   Stroke stroke) {
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
  stroke.width = kSwingWidth;
  strokeShape(painter, frame, arc, stroke);
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

void paintOpeningPreview(CanvasPainter& painter, const CanvasFrame& frame, const Sketch& sketch,
                         const Opening& opening) {
  const auto placed = placedOpening(sketch, opening);
  if (!placed) return;
  const bool fits = placed->fit == OpeningFit::fits;
  const Color color = fits ? frame.palette.active : frame.palette.destructive;
  Stroke stroke = entityStroke(color);
  stroke.width = kPreviewWidth;
  strokeOpening(painter, frame, openingShape(opening, placed->wall), stroke);

  // The distances stand beside the wall, on the side to which no leaf swings.
  const OpeningWall& wall = placed->wall;
  const double end = opening.distance + opening.width;
  const OpeningRoom room =
      openingRoom(wall, opening.distance + opening.width / 2, sketch.drawing->plan.openings);
  const SketchPoint across =
      perpendicular(wall.at(1) - wall.at(0)) * (opening.swing == DoorSwing::in ? -1 : 1);
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

}  // namespace ostrelon
