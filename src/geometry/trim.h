// Trim: cuts one entity against another and removes the portion on which a point lies. Pure
// functions; lengths in sketch units, angles in radians.
//
// A few rules are chosen for predictability rather than cleverness: the first segment of a cutter
// that cuts wins, not the nearest; an arc cuts as its full circle; a circle against a rectangle keeps
// or drops whole corners; an arc against a circle is cut on its chord.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "core/sketch_entity.h"
#include "geometry/entity_geometry.h"

namespace ostrelon {

/// The target gives way to this entity of the same identifier.
struct TrimReplace {
  SketchEntity entity;
  friend bool operator==(const TrimReplace&, const TrimReplace&) = default;
};

/// The target gives way to these entities, which have fresh identifiers.
struct TrimReplaceMany {
  std::vector<SketchEntity> entities;
  friend bool operator==(const TrimReplaceMany&, const TrimReplaceMany&) = default;
};

/// The target goes.
struct TrimDelete {
  friend bool operator==(const TrimDelete&, const TrimDelete&) = default;
};

using TrimOutcome = std::variant<TrimReplace, TrimReplaceMany, TrimDelete>;

enum class TrimFailure { noIntersection, intersectionAtEndpoint };

/// What the geometry of a trim gives.
using TrimGeometry = std::variant<TrimOutcome, TrimFailure>;

/// What trimming entities of the document gives: success with the 1-based numbers of both, as they
/// were before the change, or a code.
struct TrimResult {
  enum class Code {
    targetNotFound = 0,
    edgeNotFound = 1,
    sameEntity = 2,
    targetNotTrimmable = 3,
    edgeNotTrimmable = 4,
    noIntersection = 7,
    intersectionAtEndpoint = 8,
    success = 9,
  };
  Code code = Code::success;
  std::int64_t targetNumber = 0;
  std::int64_t edgeNumber = 0;
  friend bool operator==(const TrimResult&, const TrimResult&) = default;
};

/// One sentence on a result.
std::string trimResultMessage(const TrimResult& result);

/// All kinds but polygons can be cut and cut others.
bool isTrimmable(const SketchEntity& entity);

/// The straight cutting edges of an entity: none for circles, arcs and polygons.
std::vector<Segment> cuttingSegments(const SketchEntity& entity);

struct SegmentCircleHit {
  SketchPoint point;
  double t = 0;  ///< along the segment, 0 to 1
  friend bool operator==(const SegmentCircleHit&, const SegmentCircleHit&) = default;
};

/// Where a segment meets a circle, by the quadratic formula. A tangent gives its point twice.
std::vector<SegmentCircleHit> segmentCircleIntersections(SketchPoint a, SketchPoint b, SketchPoint center,
                                                         double radius);

/// Of the two arcs between the angles `a` and `b` the one that holds `p`: its start and end, normalised.
std::pair<double, double> arcContainingPoint(double p, double a, double b);

/// What stays of a circle or arc once the arc between the angles `a` and `b` that holds the angle `p`
/// goes: nothing, the circle again when just a hair went, or an arc with angles from 0 to the full turn.
TrimOutcome keptArc(const UUID& id, SketchPoint center, double radius, double a, double b, double p);

/// Four corners of an axis-aligned rectangle, in any order, as that rectangle; absent for any other points.
std::optional<RectangleEntity> rectangleFromCorners(const std::vector<SketchPoint>& corners, const UUID& id);

/// The part of a polygon on the side of an infinite line that does not hold `point` (a point on the
/// line counts as to the left of its direction). The line must have a length.
std::vector<SketchPoint> clipPolygonByLine(const std::vector<SketchPoint>& vertices, const Segment& line,
                                           SketchPoint point);

// --- Trimming one kind of target; `target` must be of that kind. The point lies on the part to remove.

TrimGeometry trimSegment(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point);
TrimGeometry trimCircle(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point);
TrimGeometry trimArc(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point);
TrimGeometry trimRectangle(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point);
/// Any trimmable target.
TrimGeometry trimEntity(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point);

/// The segment `from`–`to` lengthened until it meets the boundary segment; only the end on the
/// boundary's side moves. Absent when they do not meet beyond an end, or meet already.
std::optional<Segment> extendSegmentToBoundary(SketchPoint from, SketchPoint to, SketchPoint boundaryFrom,
                                               SketchPoint boundaryTo);

}  // namespace ostrelon
