// Painting doors, windows and openings over the walls that they are in.
#pragma once

#include <array>
#include <optional>
#include <vector>

#include "core/sketch.h"
#include "geometry/openings.h"
#include "interaction/canvas_frame.h"
#include "interaction/canvas_painter.h"

namespace ostrelon {

enum class OpeningMisfits {
  shown,    ///< those that do not fit, in the colour of a warning
  leftOut,  ///< as on paper
};

/// Where walls are cut open within the painted part: four corners each, view points. As wide as the strokes
/// of the walls' faces, so that these go too.
std::vector<std::array<SketchPoint, 4>> openingGaps(const CanvasFrame& frame, const OpeningLayout& layout);
/// Fills the gaps with the background.
void paintOpeningGaps(CanvasPainter& painter, const CanvasFrame& frame, const OpeningLayout& layout);
/// Jambs, glass, leaves and what these run along, of those that touch the painted part.
void paintOpenings(CanvasPainter& painter, const CanvasFrame& frame, const OpeningLayout& layout,
                   OpeningMisfits misfits);

/// A stronger look for one opening, in the active colour, or in that of a warning where it does not fit.
enum class OpeningEmphasis {
  hovered,   ///< dashed
  selected,  ///< glowing; a door with the arrow that flips it
  dragged,   ///< glowing, with its distances to the neighbours on both sides
};
void paintEmphasizedOpening(CanvasPainter& painter, const CanvasFrame& frame, const Sketch& sketch,
                            const Opening& opening, OpeningEmphasis emphasis);
/// The middle of the arrow beside a door that flips it; absent for what cannot be flipped. Sketch units.
/// `scale` is view points per sketch unit.
std::optional<SketchPoint> flipArrowPoint(const Sketch& sketch, const Opening& opening, double scale);
/// As far from its middle a click still is on the arrow, view points.
inline constexpr double kFlipArrowRadius = 10;

/// An opening that is about to be added, in the active colour, or in that of a warning where it does not fit,
/// with its distances to the neighbours on both sides.
void paintOpeningPreview(CanvasPainter& painter, const CanvasFrame& frame, const Sketch& sketch,
                         const Opening& opening);

}  // namespace ostrelon
