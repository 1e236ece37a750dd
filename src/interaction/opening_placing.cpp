// Putting doors, windows and openings into walls with the pointer.
#include <fmt/format.h>
#include <algorithm>
#include <cmath>

#include "geometry/entity_geometry.h"
#include "geometry/opening_operations.h"
#include "interaction/board.h"
#include "interaction/canvas_frame.h"

namespace ostrelon {
namespace {

// How far beside a wall's faces the pointer still means the wall, view points.
constexpr double kReach = 8;

double usualWidth(OpeningKind kind) { return kind == OpeningKind::window ? 4 : 3; }

// The wall that the pointer is on: the one whose centre line is nearest.
std::optional<OpeningWall> wallAt(const Sketch& sketch, SketchPoint point, double tolerance) {
  double thickest = kUnknownWallThickness;
  for (const WallSystemSpec& system : sketch.drawing->wallSystemSpecs) {
    thickest = std::max(thickest, std::abs(system.thickness));
  }
  std::optional<OpeningWall> nearest;
  double least = 0;
  const EntitySource source(sketch.index());
  source.visitNear(SketchBox::centered(point, thickest / 2 + tolerance),
                   [&](const SketchEntity& entity, std::size_t position) {
                     const auto wall = openingWall(entity, position, sketch.drawing->wallSystemSpecs);
                     if (!wall) return;
                     const double distance = distanceToSegment(point, wall->from, wall->to);
                     if (distance > std::abs(wall->thickness) / 2 + tolerance) return;
                     if (nearest && distance >= least) return;
                     nearest = wall;
                     least = distance;
                   });
  return nearest;
}

}  // namespace

void Board::beginOpeningPlacing(OpeningKind kind) {
  const auto scope = change();
  activateSelectTool();
  sketch_.clearSelection();
  hover = Hover();
  gesture =
      OpeningPlacing{kind, usualWidth(kind), DoorHinge::left, DoorSwing::in, std::nullopt, std::nullopt};
}

void Board::updateOpeningPlacing(std::optional<SketchPoint> point) {
  if (openingPlacing() == nullptr) return;
  const auto scope = change();
  OpeningPlacing placing = *openingPlacing();
  placing.preview.reset();
  const auto wall = point ? wallAt(sketch_, *point, kReach / scale()) : std::nullopt;
  if (wall) {
    const double at = wall->along(*point);
    const double distance = placing.distance
                                ? *placing.distance
                                : roundedDistance(*wall, at, placing.width, sketch_.drawing->plan.openings);
    placing.preview =
        Opening{{}, wall->id, placing.kind, distance, placing.width, placing.hinge, placing.swing};
  }
  gesture = placing;
}

void Board::flipOpeningPlacing() {
  if (openingPlacing() == nullptr) return;
  const auto scope = change();
  OpeningPlacing placing = *openingPlacing();
  const DoorHanging next = flipped({placing.hinge, placing.swing});
  placing.hinge = next.hinge;
  placing.swing = next.swing;
  if (placing.preview) {
    placing.preview->hinge = placing.hinge;
    placing.preview->swing = placing.swing;
  }
  gesture = placing;
}

void Board::setOpeningPlacingSize(double width, std::optional<double> distance) {
  if (openingPlacing() == nullptr) return;
  const auto scope = change();
  OpeningPlacing placing = *openingPlacing();
  placing.width = width;
  placing.distance = distance;
  gesture = placing;
  updateOpeningPlacing(cursor);
}

void Board::placeOpening() {
  if (openingPlacing() == nullptr || !openingPlacing()->preview) return;
  const auto scope = change();
  OpeningPlacing placing = *openingPlacing();
  Opening opening = *placing.preview;
  opening.id = UUID::random();
  const auto placed = addOpening(sketch_, opening);
  if (!placed) return;
  if (placed->fit != OpeningFit::fits) {
    messages_.append(openingMisfitText(*placed, sketch_.drawing->plan), false, false);
    return;
  }
  messages_.appendSystem(
      fmt::format("{} added to Wall {}.", openingTypeLabel(opening.kind), placed->wall.position + 1));
  placing.distance.reset();
  placing.preview.reset();
  gesture = placing;
}

}  // namespace ostrelon
