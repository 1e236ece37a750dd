#include "geometry/marquee.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/circle.h"
#include "geometry/entity_geometry.h"

namespace ostrelon {
namespace {

bool segmentsCross(SketchPoint a, SketchPoint b, SketchPoint c, SketchPoint d) {
  const SketchPoint first = b - a;
  const SketchPoint second = d - c;
  const double determinant = cross(first, second);
  if (!(std::fabs(determinant) > kGeometryEpsilon)) return false;
  return isSegmentParameter(cross(c - a, second) / determinant) &&
         isSegmentParameter(cross(c - a, first) / determinant);
}

bool sideMeetsCircle(SketchPoint start, SketchPoint end, SketchPoint center, double radius) {
  const SketchPoint d = end - start;
  const SketchPoint f = start - center;
  const double a = squaredLength(d);
  if (!(a > 0)) return std::fabs(distanceBetween(start, center) - radius) <= kGeometryEpsilon;
  const double b = 2 * dot(d, f);
  const double discriminant = b * b - 4 * a * (squaredLength(f) - radius * radius);
  if (!(discriminant >= 0)) return false;
  const double root = std::sqrt(discriminant);
  return isSegmentParameter((-b - root) / (2 * a)) || isSegmentParameter((-b + root) / (2 * a));
}

bool containsAll(const SketchBox& rect, std::span<const SketchPoint> points) {
  return !points.empty() && std::all_of(points.begin(), points.end(),
                                        [&](SketchPoint point) { return rectContains(rect, point); });
}

bool hasSpan(const ArcEntity& arc) { return arcSpan(arc.startAngle, arc.endAngle) > kGeometryEpsilon; }

}  // namespace

bool rectContains(const SketchBox& rect, SketchPoint point) {
  return rect.minX <= point.x && point.x < rect.maxX && rect.minY <= point.y && point.y < rect.maxY;
}

bool segmentIntersectsRect(SketchPoint start, SketchPoint end, const SketchBox& rect) {
  if (rectContains(rect, start) || rectContains(rect, end)) return true;
  const auto corners = rect.corners();
  for (std::size_t side = 0; side < corners.size(); ++side) {
    if (segmentsCross(start, end, corners[side], corners[(side + 1) % corners.size()])) return true;
  }
  return false;
}

bool circleIntersectsRect(SketchPoint center, double radius, const SketchBox& rect) {
  if (!(radius > 0)) return false;
  const bool overlaps = center.x - radius < rect.maxX && center.x + radius > rect.minX &&
                        center.y - radius < rect.maxY && center.y + radius > rect.minY &&
                        rect.minX < rect.maxX && rect.minY < rect.maxY;
  if (!overlaps) return false;
  for (int i = 0; i < kArcSteps; ++i) {
    if (rectContains(rect, pointOnCircle(center, radius, kFullTurn * i / kArcSteps))) return true;
  }
  const auto corners = rect.corners();
  for (std::size_t side = 0; side < corners.size(); ++side) {
    if (sideMeetsCircle(corners[side], corners[(side + 1) % corners.size()], center, radius)) return true;
  }
  return false;
}

bool polylineIntersectsRect(const std::vector<SketchPoint>& points, const SketchBox& rect) {
  if (points.size() == 1) return rectContains(rect, points.front());
  for (std::size_t i = 1; i < points.size(); ++i) {
    if (segmentIntersectsRect(points[i - 1], points[i], rect)) return true;
  }
  return false;
}

bool rectangleIntersectsRect(SketchPoint origin, SketchSize size, const SketchBox& rect) {
  const auto corners = SketchBox::spanning(origin, size).corners();
  for (std::size_t side = 0; side < corners.size(); ++side) {
    if (segmentIntersectsRect(corners[side], corners[(side + 1) % corners.size()], rect)) return true;
  }
  return false;
}

bool entityIntersectsRect(const SketchEntity& entity, const SketchBox& rect) {
  return std::visit(
      Overloaded{
          [&](const LineEntity& line) { return segmentIntersectsRect(line.from, line.to, rect); },
          [&](const WallEntity& wall) { return segmentIntersectsRect(wall.from, wall.to, rect); },
          [&](const CircleEntity& circle) {
            return circleIntersectsRect(circle.center, circle.radius, rect);
          },
          [&](const ArcEntity& arc) { return hasSpan(arc) && polylineIntersectsRect(arcPoints(arc), rect); },
          [&](const RectangleEntity& rectangle) {
            return rectangleIntersectsRect(rectangle.origin, rectangle.size, rect);
          },
          [&](const PolygonEntity& polygon) {
            return polylineIntersectsRect(closedPolygonRing(polygon.vertices.list()), rect);
          },
      },
      entity);
}

bool entityContainedInRect(const SketchEntity& entity, const SketchBox& rect) {
  return std::visit(
      Overloaded{
          [&](const LineEntity& line) {
            return rectContains(rect, line.from) && rectContains(rect, line.to);
          },
          [&](const WallEntity& wall) {
            return rectContains(rect, wall.from) && rectContains(rect, wall.to);
          },
          [&](const CircleEntity& circle) {
            return rect.minX <= circle.center.x - circle.radius &&
                   circle.center.x + circle.radius <= rect.maxX &&
                   rect.minY <= circle.center.y - circle.radius &&
                   circle.center.y + circle.radius <= rect.maxY;
          },
          [&](const ArcEntity& arc) { return hasSpan(arc) && containsAll(rect, arcPoints(arc)); },
          [&](const RectangleEntity& rectangle) {
            const auto corners = SketchBox::spanning(rectangle.origin, rectangle.size).corners();
            return containsAll(rect, corners);
          },
          [&](const PolygonEntity& polygon) { return containsAll(rect, polygon.vertices.list()); },
      },
      entity);
}

EntitySet entitiesInMarquee(const EntitySource& entities, const SketchBox& rect, bool isCrossing) {
  if (!(rect.width() > 0) && !(rect.height() > 0)) return {};
  // The tests reach a hair beyond the rectangle, as far as their tolerances along a segment do, so a
  // crossing test looks at every entity that touches a box wider by more than that.
  const double reach = 1e-3 * (1 + std::max(rect.width(), rect.height()));
  const SketchBox box = rect.grown(reach);
  std::vector<std::size_t> hits;
  std::unordered_set<UUID> ids;  // where the list may hold an identifier twice
  const bool isByPosition = entities.hasDistinctIDs();
  entities.visitNear(box, [&](const SketchEntity& entity, std::size_t position) {
    if (!(isCrossing ? entityIntersectsRect(entity, rect) : entityContainedInRect(entity, rect))) return;
    if (isByPosition) {
      hits.push_back(position);
    } else {
      ids.insert(entityID(entity));
    }
  });
  return isByPosition ? EntitySet::at(entities.list(), hits) : EntitySet(std::move(ids));
}

}  // namespace ostrelon
