// Painting doors, windows and openings over the walls that they are in.
#pragma once

#include <array>
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

/// An opening that is about to be added, in the active colour, or in that of a warning where it does not fit,
/// with its distances to the neighbours on both sides.
void paintOpeningPreview(CanvasPainter& painter, const CanvasFrame& frame, const Sketch& sketch,
                         const Opening& opening);

}  // namespace ostrelon
