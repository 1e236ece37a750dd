// Walls that are drawn by one of their faces: where their centre lines lie, alone and along a path with
// mitred corners. Sketch units; left and right as seen along the wall, y pointing up.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include "core/sketch_point.h"

namespace ostrelon {

/// The part of a wall that the drawn line is.
enum class WallJustification { middle, leftFace, rightFace };

/// The centre line of a wall.
struct WallAxis {
  SketchPoint from;
  SketchPoint to;
  friend bool operator==(const WallAxis&, const WallAxis&) = default;
};

/// The centre line of a wall drawn from one point to another by this part of it. Points that coincide, and
/// a thickness that is not finite and above 0, leave the line as it is.
WallAxis justifiedAxis(const WallAxis& drawn, double thickness, WallJustification justification);

/// The point of the drawn line that belongs to an end of the centre line: to its start (0) or its end (1).
SketchPoint drawnEnd(const WallAxis& axis, int which, double thickness, WallJustification justification);

/// Where two walls meet that are drawn one behind the other by a face: at the point where their centre lines
/// cross. Absent where these are parallel, or nothing would be left of one of the walls.
std::optional<SketchPoint> justifiedCorner(const WallAxis& before, const WallAxis& after);

/// Which face of a run the path is: for a closed one by the area that it encloses, for an open one `outer` is
/// the left face.
enum class RunFace { middle, outer, inner };

/// A path of walls, each from a point to the next; of a closed one the last goes back to the first point.
struct RunPath {
  std::vector<SketchPoint> points;
  bool isClosed = false;

  std::size_t wallCount() const { return isClosed ? points.size() : points.size() - 1; }
};

enum class RunProblem {
  noArea,        ///< a closed path that encloses none, as there and back, has no outer face
  turnsBack,     ///< the next wall lies on this one, so that their faces do not meet
  wallTooShort,  ///< its corners would lie behind one another
};
struct RunRefusal {
  RunProblem problem = RunProblem::noArea;
  std::size_t wall = 0;  ///< the number of the wall, from 1; 0 for the whole
  friend bool operator==(const RunRefusal&, const RunRefusal&) = default;
};

/// The centre lines of the walls, in order. Neighbours meet where theirs intersect. The path has finite
/// points, no two neighbours equal, and at least one wall.
std::variant<std::vector<WallAxis>, RunRefusal> runAxes(const RunPath& path, double thickness, RunFace face);

}  // namespace ostrelon
