// What the ends of a dimension hold on to, so that it follows. Sketch units.
#pragma once

#include <optional>
#include <string>

#include "core/drawing.h"
#include "core/entity_source.h"
#include "core/sketch.h"

namespace ostrelon {

/// How far a typed point may be from what it means, feet: 1/16".
inline constexpr double kTypedPointTolerance = 1.0 / 192;

/// The end of a dimension at this point: on the end, corner, center, jamb or corner of faces that is nearest
/// within the tolerance, or holding on to the wall on whose face it is, else to nothing. Of walls that meet
/// there, the one that is more at a right angle to `axis` is meant, the direction that is measured.
/// `entities` are those of the drawing.
DimensionEnd dimensionEndAt(SketchPoint point, SketchPoint axis, const Drawing& drawing,
                            const EntitySource& entities, double tolerance);

/// A dimension between two points, with its ends as above. Its line is so far to the left of from → to;
/// absent: 3/8" of paper.
Dimension dimensionBetween(SketchPoint from, SketchPoint to, DimensionDirection direction,
                           std::optional<double> offset, const Drawing& drawing, const EntitySource& entities,
                           double tolerance);

/// What a dimension between two points measures whose line is to lie at a third: their distance along x or y
/// where the line lies above, below or beside them, else the way itself. Points that share a coordinate are
/// measured along the other.
DimensionDirection directionTowards(SketchPoint from, SketchPoint to, SketchPoint line);

/// Why there is nothing to measure, as a sentence; empty where there is.
std::string dimensionRefusal(const Dimension& dimension);

/// "Wall 2", `Door 3'-0" wide in Wall 2`; empty for an end that holds on to nothing, or no longer.
std::string heldText(const Sketch& sketch, const DimensionEnd& end);

/// `Dimension 20'-0" added, following Wall 2 and Wall 3.`
std::string dimensionAddedText(const Sketch& sketch, const Dimension& dimension);

}  // namespace ostrelon
