// The dimension strings around a building: for each of its four sides the openings, the walls and the whole,
// worked out from the edges that are seen from that side. Sketch units, which are feet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "core/drawing.h"
#include "core/sketch_point.h"
#include "geometry/openings.h"
#include "geometry/rooms.h"

namespace ostrelon {

/// From the building outward.
enum class StringRow : std::uint8_t {
  openings,  ///< the jambs of doors, windows and openings, with the corners between them
  walls,     ///< the corners of the outline, and the faces of the walls that join it from within
  overall
};

/// How far the line of a row is from the outermost edge of its side, inches of paper.
double stringDistance(StringRow row);

/// What a side is dimensioned by.
struct StringMark {
  double along = 0;  ///< from the first mark of its string
  double depth = 0;  ///< how far behind the outermost edge of the side it is, 0 or more
};

struct DimensionString {
  StringRow row = StringRow::overall;
  SketchPoint from;               ///< where the first mark meets the outermost edge of the side
  SketchPoint along;              ///< of length one
  SketchPoint outward;            ///< of length one, at a right angle to it
  std::vector<StringMark> marks;  ///< two at least, ascending; the first and the last are those of the side

  /// The lengths between the marks, in whole sixteenths of an inch. The marks are rounded, not the lengths,
  /// so that these add up to what the overall string says.
  std::vector<double> lengths() const;
};

/// The strings of each building of the plan, by side: in front (-y), behind (+y), left, right, as far as the
/// building stands square to the axes; one that is turned has them along its own directions. A row that says
/// no more than the overall string is left out. Buildings whose strings would run into each other at this
/// drawing scale, units per inch of paper, are dimensioned as one.
///
/// A gap between two walls in line is an opening, whatever is seen through it. A wall at an angle to the side
/// is dimensioned by its corners alone.
std::vector<DimensionString> dimensionStrings(const Drawing& drawing, const RoomPlan& rooms,
                                              const OpeningLayout& openings, double unitsPerInch);

}  // namespace ostrelon
