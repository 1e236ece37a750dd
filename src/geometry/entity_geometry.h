// Pure geometry on entities: distances, centroids, translation. Lengths are sketch units, angles are
// radians. Nothing here fails and nothing keeps state.
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "core/entity_list.h"
#include "core/sketch_entity.h"
#include "core/sketch_point.h"

namespace ostrelon {

/// Nearly zero: sketch units, squared sketch units or radians, depending on the test.
inline constexpr double kGeometryEpsilon = 1e-6;
/// A parameter along a segment counts as on it between these two.
inline constexpr double kGeometryParameterMin = -1e-6;
inline constexpr double kGeometryParameterMax = 1.000001;

using Segment = std::pair<SketchPoint, SketchPoint>;

constexpr bool isSegmentParameter(double t) {
  return t >= kGeometryParameterMin && t <= kGeometryParameterMax;
}

// --- Angles

/// True when the angle lies on the counter-clockwise arc from `startAngle` to `endAngle`, with 1e-6
/// radians of tolerance at both ends.
bool angleInArcSpan(double angle, double startAngle, double endAngle);
/// The 33 points of an arc from its start to its end.
std::vector<SketchPoint> arcPoints(const ArcEntity& arc);

// --- Polygons

/// The edges of a closed polygon, the last one back to the first vertex; none for fewer than 2 vertices.
std::vector<Segment> polygonEdges(const std::vector<SketchPoint>& vertices);
/// The vertices with the first one repeated at the end, unless it is there already.
std::vector<SketchPoint> closedPolygonRing(const std::vector<SketchPoint>& vertices);

// --- Rectangles

/// (x, y), (x + w, y), (x + w, y + h), (x, y + h): as stored, not normalised.
std::vector<SketchPoint> rectangleCorners(SketchPoint origin, SketchSize size);

// --- Distances to a point

double distanceToSegment(SketchPoint point, SketchPoint start, SketchPoint end);
/// To the outline: the inside of a rectangle is as far as its nearest edge.
double distanceToRectangle(SketchPoint point, SketchPoint origin, SketchSize size);
/// To the nearest edge; infinity for no vertices.
double distanceToPolygon(const std::vector<SketchPoint>& vertices, SketchPoint point);
/// To the outline; a wall is its centre line, whatever its thickness.
double distanceToEntity(const SketchEntity& entity, SketchPoint point);

// --- Centres and movement

/// The middle of an entity; an arc's is its centre, a polygon's the mean of its vertices.
SketchPoint entityCentroid(const SketchEntity& entity);
/// The mean of the entities' centroids; absent for none.
std::optional<SketchPoint> selectionCentroid(const std::vector<SketchEntity>& entities);
/// The entity moved by (dx, dy), with the same identifier.
SketchEntity translatedEntity(const SketchEntity& entity, double dx, double dy);

}  // namespace ostrelon
