// What the objects of a DXF file draw, as shapes that keep their form under every affine map: a circle
// becomes an ellipse when its block is stretched. They are in the unit of the file, and flat: height is
// dropped.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/circle.h"
#include "core/plan.h"
#include "core/sketch_point.h"
#include "core/wall_system.h"

namespace ostrelon {

/// p ↦ origin + p.x · x + p.y · y.
struct AffineMap {
  SketchPoint x{1, 0};
  SketchPoint y{0, 1};
  SketchPoint origin;

  SketchPoint vector(SketchPoint v) const { return x * v.x + y * v.y; }
  SketchPoint point(SketchPoint p) const { return origin + vector(p); }
  /// First `inner`, then this one.
  AffineMap after(const AffineMap& inner) const {
    return {vector(inner.x), vector(inner.y), point(inner.origin)};
  }
  static AffineMap scale(double factor) { return {{factor, 0}, {0, factor}, {}}; }
};

/// What a wall of Ostrelon's own carries. Identifiers are not set; the distances and widths of openings are
/// in the unit of the file, the measures of the system in sketch units.
struct DxfWallContent {
  std::optional<WallSystemSpec> system;  ///< absent for a wall of an unknown one
  std::vector<Opening> openings;
};

struct DxfLine {
  SketchPoint from;
  SketchPoint to;
};

/// A circle, an ellipse or a part of one: center + u cos t + v sin t, for t from `start` on.
struct DxfCurve {
  SketchPoint center;
  SketchPoint u;
  SketchPoint v;
  double start = 0;          ///< radians of the parameter
  double sweep = kFullTurn;  ///< radians of the parameter, above 0; 2π: closed
};

struct DxfPath {
  std::vector<SketchPoint> points;
  bool isClosed = false;
};

/// A rational B-spline.
struct DxfSpline {
  int degree = 3;                   ///< 1 to `kLargestSplineDegree`
  std::vector<double> knots;        ///< ascending; points + degree + 1 of them
  std::vector<SketchPoint> points;  ///< the control points, more than the degree
  std::vector<double> weights;      ///< above 0, one a control point; empty: all alike
  bool isClosed = false;
};
inline constexpr int kLargestSplineDegree = 24;

/// A block drawn at a place, in rows and columns perhaps.
struct DxfInsert {
  std::uint32_t block = 0;  ///< its place in `DxfFile::blocks`
  AffineMap map;            ///< of the first one, from the block to where it is drawn
  std::uint32_t columns = 1;
  std::uint32_t rows = 1;
  SketchPoint columnStep;
  SketchPoint rowStep;
};

/// A wall of Ostrelon's own, by its centre line.
struct DxfWall {
  SketchPoint from;
  SketchPoint to;
  std::shared_ptr<const DxfWallContent> content;
};

/// Why an object is not drawn. Reports name them in this order.
enum class DxfReason : std::uint8_t {
  drawn,         ///< it is
  unknownKind,   ///< it cannot be drawn here
  tilted,        ///< its plane is not that of the plan
  noSize,        ///< it has no length, radius or two different points
  noBlock,       ///< the block is not in the file, as one of another file
  ownBlock,      ///< the block holds itself, or blocks within blocks never end
  tooFar,        ///< its coordinates cannot be written into a file
  onPaper,       ///< it lies on a paper sheet
  invisible,     ///< it is switched off itself
  layerOff,      ///< its layer is off
  layerFrozen,   ///< its layer is frozen
  layerNotTaken  ///< its layer was not asked for
};

/// `drawn` is none of its values.
struct DxfNothing {
  DxfReason reason = DxfReason::unknownKind;
};

using DxfShape = std::variant<DxfNothing, DxfLine, DxfCurve, DxfPath, std::shared_ptr<const DxfSpline>,
                              std::shared_ptr<const DxfInsert>, DxfWall>;

/// The shape under a map.
DxfShape mapped(const DxfShape& shape, const AffineMap& map);

/// The arc from one point to another by its bulge, the tangent of a quarter of its angle, positive
/// counter-clockwise; a line where it is next to straight.
DxfShape bulgedPiece(SketchPoint from, SketchPoint to, double bulge);

DxfCurve circleCurve(SketchPoint center, double radius);
/// From one angle counter-clockwise to the other, degrees; equal ones are a full turn.
DxfCurve arcCurve(SketchPoint center, double radius, double startDegrees, double endDegrees);

}  // namespace ostrelon
