#include "geometry/trim.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/circle.h"
#include "core/half_plane.h"
#include "core/sketch_box.h"

namespace ostrelon {
namespace {

constexpr double kBeforeSegmentEnd = 0.999999;
// A kept arc within this of the full turn, radians, is the circle again.
constexpr double kFullCircleTolerance = 0.01;

struct Circle {
  SketchPoint center;
  double radius = 0;
};

// The circle as which a round cutter cuts.
std::optional<Circle> cuttingCircle(const SketchEntity& cutter) {
  if (const auto* circle = std::get_if<CircleEntity>(&cutter)) return Circle{circle->center, circle->radius};
  if (const auto* arc = std::get_if<ArcEntity>(&cutter)) return Circle{arc->center, arc->radius};
  return std::nullopt;
}

Segment segmentOf(const SketchEntity& entity) {
  if (const auto* wall = std::get_if<WallEntity>(&entity)) return {wall->from, wall->to};
  const auto& line = std::get<LineEntity>(entity);
  return {line.from, line.to};
}

SketchEntity withSegment(SketchEntity entity, SketchPoint from, SketchPoint to) {
  if (auto* wall = std::get_if<WallEntity>(&entity)) {
    wall->from = from;
    wall->to = to;
  } else if (auto* line = std::get_if<LineEntity>(&entity)) {
    line->from = from;
    line->to = to;
  }
  return entity;
}

TrimGeometry replaced(SketchEntity entity) { return TrimOutcome(TrimReplace{std::move(entity)}); }

// Both ends of a pair of hits along a segment, in order, or why they do not cut it.
using OrderedHits = std::variant<std::pair<SegmentCircleHit, SegmentCircleHit>, TrimFailure>;

OrderedHits innerHits(std::vector<SegmentCircleHit> hits) {
  if (hits.size() != 2) {
    return hits.empty() ? TrimFailure::noIntersection : TrimFailure::intersectionAtEndpoint;
  }
  if (hits[1].t < hits[0].t) std::swap(hits[0], hits[1]);
  if (hits[0].t <= kGeometryEpsilon || hits[1].t >= kBeforeSegmentEnd) {
    return TrimFailure::intersectionAtEndpoint;
  }
  return std::pair{hits[0], hits[1]};
}

TrimGeometry trimSegmentByCircle(const SketchEntity& target, const Circle& circle, SketchPoint point) {
  const auto [a, b] = segmentOf(target);
  const OrderedHits ordered = innerHits(segmentCircleIntersections(a, b, circle.center, circle.radius));
  if (const auto* failure = std::get_if<TrimFailure>(&ordered)) return *failure;
  const auto& [first, second] = std::get<0>(ordered);
  const double tPoint = dot(point - a, b - a) / squaredLength(b - a);
  if (tPoint < first.t - kGeometryEpsilon) return replaced(withSegment(target, first.point, b));
  if (tPoint > second.t + kGeometryEpsilon) return replaced(withSegment(target, a, second.point));
  if (distanceBetween(a, first.point) < distanceBetween(second.point, b)) {
    return replaced(withSegment(target, second.point, b));
  }
  return replaced(withSegment(target, a, first.point));
}

// The common end of cutting circles and arcs at two points.
TrimGeometry keptBetweenHits(const UUID& id, const Circle& circle, const std::vector<SegmentCircleHit>& hits,
                             SketchPoint point) {
  return keptArc(id, circle.center, circle.radius, angleFrom(circle.center, hits[0].point),
                 angleFrom(circle.center, hits[1].point), angleFrom(circle.center, point));
}

TrimGeometry trimRoundBySegments(const UUID& id, const Circle& target, const SketchEntity& cutter,
                                 SketchPoint point) {
  for (const auto& [from, to] : cuttingSegments(cutter)) {
    const auto hits = segmentCircleIntersections(from, to, target.center, target.radius);
    if (hits.size() == 2) return keptBetweenHits(id, target, hits, point);
  }
  return TrimFailure::noIntersection;
}

TrimGeometry trimCircleByCircle(const UUID& id, const Circle& target, const Circle& cutter,
                                SketchPoint point) {
  const SketchPoint between = cutter.center - target.center;
  const double distance = distanceBetween(target.center, cutter.center);
  const bool isCut = distance > kGeometryEpsilon &&
                     distance < target.radius + cutter.radius - kGeometryEpsilon &&
                     std::fabs(target.radius - cutter.radius) + kGeometryEpsilon < distance;
  if (!isCut) return TrimFailure::noIntersection;
  // The radical line of two circles: its distance from the target's centre, and half the chord.
  const double m =
      (target.radius * target.radius - cutter.radius * cutter.radius + distance * distance) / (2 * distance);
  const double halfChordSquared = target.radius * target.radius - m * m;
  if (!(halfChordSquared >= 0)) return TrimFailure::noIntersection;
  const SketchPoint foot = target.center + between * (m / distance);
  const SketchPoint along = perpendicular(between) * (std::sqrt(halfChordSquared) / distance);
  const auto hits = segmentCircleIntersections(foot + along, foot - along, target.center, target.radius);
  if (hits.size() != 2) return TrimFailure::noIntersection;
  return keptBetweenHits(id, target, hits, point);
}

TrimGeometry trimArcByCircle(const ArcEntity& arc, const Circle& cutter, SketchPoint point) {
  const SketchPoint start = pointOnCircle(arc.center, arc.radius, arc.startAngle);
  const SketchPoint end = pointOnCircle(arc.center, arc.radius, arc.endAngle);
  const OrderedHits ordered = innerHits(segmentCircleIntersections(start, end, cutter.center, cutter.radius));
  if (const auto* failure = std::get_if<TrimFailure>(&ordered)) return *failure;
  const auto& [first, second] = std::get<0>(ordered);
  const double chordSquared = squaredLength(end - start);
  const double tPoint = chordSquared <= kGeometryEpsilon ? 0 : dot(point - start, end - start) / chordSquared;
  const auto kept = [&](SketchPoint from, SketchPoint to) {
    ArcEntity rest = arc;
    rest.startAngle = angleFrom(arc.center, from);
    rest.endAngle = angleFrom(arc.center, to);
    return replaced(rest);
  };
  if (tPoint < first.t - kGeometryEpsilon) return kept(first.point, end);
  if (tPoint > second.t + kGeometryEpsilon) return kept(start, second.point);
  if (distanceBetween(second.point, end) <= distanceBetween(start, first.point)) {
    return kept(start, first.point);
  }
  return kept(second.point, end);
}

TrimGeometry rectangleOutcome(const UUID& id, const std::vector<SketchPoint>& kept) {
  if (kept.size() < 3) return TrimOutcome(TrimDelete{});
  if (const auto rectangle = rectangleFromCorners(kept, id)) return replaced(*rectangle);
  TrimReplaceMany lines;
  for (const auto& [from, to] : polygonEdges(kept)) {
    lines.entities.emplace_back(LineEntity{UUID::random(), from, to});
  }
  return TrimOutcome(std::move(lines));
}

}  // namespace

std::string trimResultMessage(const TrimResult& result) {
  switch (result.code) {
    case TrimResult::Code::targetNotFound:
      return "Trim target not found.";
    case TrimResult::Code::edgeNotFound:
      return "Cutting edge not found.";
    case TrimResult::Code::sameEntity:
      return "Trim target and cutting edge must be different entities.";
    case TrimResult::Code::targetNotTrimmable:
    case TrimResult::Code::edgeNotTrimmable:
      break;
    case TrimResult::Code::noIntersection:
      return "Segments do not intersect.";
    case TrimResult::Code::intersectionAtEndpoint:
      return "Segment already ends at that intersection.";
    case TrimResult::Code::success:
      return fmt::format("Entity {} trimmed at intersection with Entity {}.", result.targetNumber,
                         result.edgeNumber);
  }
  return "Entity type cannot be trimmed.";
}

bool isTrimmable(const SketchEntity& entity) { return !std::holds_alternative<PolygonEntity>(entity); }

std::vector<Segment> cuttingSegments(const SketchEntity& entity) {
  using Segments = std::vector<Segment>;
  return std::visit(Overloaded{
                        [](const LineEntity& line) {
                          return Segments{{line.from, line.to}};
                        },
                        [](const WallEntity& wall) {
                          return Segments{{wall.from, wall.to}};
                        },
                        [](const CircleEntity&) { return Segments{}; },
                        [](const ArcEntity&) { return Segments{}; },
                        [](const RectangleEntity& rectangle) {
                          return polygonEdges(rectangleCorners(rectangle.origin, rectangle.size));
                        },
                        [](const PolygonEntity&) { return Segments{}; },
                    },
                    entity);
}

std::vector<SegmentCircleHit> segmentCircleIntersections(SketchPoint a, SketchPoint b, SketchPoint center,
                                                         double radius) {
  std::vector<SegmentCircleHit> hits;
  const SketchPoint d = b - a;
  const SketchPoint f = a - center;
  const double dd = squaredLength(d);
  if (!(dd > kGeometryEpsilon)) return hits;
  const double df = 2 * dot(d, f);
  const double discriminant = df * df - 4 * dd * (squaredLength(f) - radius * radius);
  if (!(discriminant >= -kGeometryEpsilon)) return hits;
  const double root = std::sqrt(std::max(discriminant, 0.0));
  for (const double t : {(-df - root) / (2 * dd), (root - df) / (2 * dd)}) {
    if (!isSegmentParameter(t)) continue;
    const double clamped = std::clamp(t, 0.0, 1.0);
    hits.push_back({a + d * clamped, clamped});
  }
  return hits;
}

std::pair<double, double> arcContainingPoint(double p, double a, double b) {
  const double start = normalizedAngle(a);
  const double end = normalizedAngle(b);
  return angleInArcSpan(p, start, end) ? std::pair{start, end} : std::pair{end, start};
}

TrimOutcome keptArc(const UUID& id, SketchPoint center, double radius, double a, double b, double p) {
  const auto [removedStart, removedEnd] = arcContainingPoint(p, a, b);
  const double keepStart = removedEnd;
  const double keepEnd = removedStart;
  const double sweep = normalizedAngle(keepEnd - keepStart);
  if (sweep <= kGeometryEpsilon) return TrimDelete{};
  if (std::fabs(sweep - kFullTurn) < kFullCircleTolerance) {
    return TrimReplace{CircleEntity{id, center, radius}};
  }
  return TrimReplace{ArcEntity{id, center, radius, keepStart, keepEnd}};
}

std::optional<RectangleEntity> rectangleFromCorners(const std::vector<SketchPoint>& corners, const UUID& id) {
  if (corners.size() != 4) return std::nullopt;
  const SketchBox box =
      SketchBox::spanning(corners[0], corners[1]).united(SketchBox::spanning(corners[2], corners[3]));
  // Each corner occurs once: a triangle that was cut through a corner has four points of two values of x and
  // two of y as well.
  for (const SketchPoint& corner : box.corners()) {
    if (std::count(corners.begin(), corners.end(), corner) != 1) return std::nullopt;
  }
  const SketchSize size{box.width(), box.height()};
  if (!(size.width > kGeometryEpsilon) || !(size.height > kGeometryEpsilon)) return std::nullopt;
  return RectangleEntity{id, {box.minX, box.minY}, size};
}

std::vector<SketchPoint> clipPolygonByLine(const std::vector<SketchPoint>& vertices, const Segment& line,
                                           SketchPoint point) {
  const SketchPoint direction = line.second - line.first;
  const double length = distanceBetween(line.first, line.second);
  // The left normal, turned so that it points away from the point.
  SketchPoint normal = perpendicular(direction) * (1 / length);
  // The cross product is exact for a point at either end of the line, where the unit normal rounds.
  if (cross(direction, point - line.first) >= 0) normal = normal * -1.0;
  const auto signedDistance = [&](SketchPoint vertex) { return dot(vertex - line.first, normal); };
  const auto crossing = [&](SketchPoint previous, SketchPoint vertex) {
    const SketchPoint edge = vertex - previous;
    const double determinant = cross(edge, direction);
    if (!(std::fabs(determinant) > kGeometryEpsilon)) return previous;
    const double t = cross(line.first - previous, direction) / determinant;
    // A coordinate that the line or the edge fixes is taken over without rounding, so that a horizontal or
    // vertical cut of a rectangle leaves an exact rectangle.
    return SketchPoint{direction.x == 0 ? line.first.x : previous.x + edge.x * t,
                       direction.y == 0 ? line.first.y : previous.y + edge.y * t};
  };
  return cutByHalfPlane(
      vertices, [&](SketchPoint vertex) { return signedDistance(vertex) >= -kGeometryEpsilon; }, crossing);
}

TrimGeometry trimSegment(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point) {
  if (const auto circle = cuttingCircle(cutter)) return trimSegmentByCircle(target, *circle, point);
  const auto [a, b] = segmentOf(target);
  const SketchPoint d = b - a;
  const double dd = squaredLength(d);
  TrimFailure status = TrimFailure::noIntersection;
  for (const auto& [from, to] : cuttingSegments(cutter)) {
    if (!(dd > kGeometryEpsilon)) {
      status = TrimFailure::intersectionAtEndpoint;
      continue;
    }
    const SketchPoint e = to - from;
    const double determinant = cross(d, e);
    status = TrimFailure::noIntersection;
    if (!(std::fabs(determinant) > kGeometryEpsilon)) continue;
    const double t = cross(from - a, e) / determinant;
    const double u = cross(from - a, d) / determinant;
    if (!isSegmentParameter(t) || !isSegmentParameter(u)) continue;
    const SketchPoint hit = a + d * std::clamp(t, 0.0, 1.0);
    if (distanceBetween(hit, a) <= kGeometryEpsilon || distanceBetween(hit, b) <= kGeometryEpsilon) {
      status = TrimFailure::intersectionAtEndpoint;
      continue;
    }
    const double tHit = dot(hit - a, d) / dd;
    const double tPoint = dot(point - a, d) / dd;
    return replaced(tHit < tPoint ? withSegment(target, a, hit) : withSegment(target, hit, b));
  }
  return status;
}

TrimGeometry trimCircle(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point) {
  const auto& circle = std::get<CircleEntity>(target);
  const Circle round{circle.center, circle.radius};
  if (const auto cuttingRound = cuttingCircle(cutter)) {
    return trimCircleByCircle(circle.id, round, *cuttingRound, point);
  }
  return trimRoundBySegments(circle.id, round, cutter, point);
}

TrimGeometry trimArc(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point) {
  const auto& arc = std::get<ArcEntity>(target);
  if (const auto circle = cuttingCircle(cutter)) return trimArcByCircle(arc, *circle, point);
  return trimRoundBySegments(arc.id, {arc.center, arc.radius}, cutter, point);
}

TrimGeometry trimRectangle(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point) {
  const auto& rectangle = std::get<RectangleEntity>(target);
  std::vector<SketchPoint> corners = rectangleCorners(rectangle.origin, rectangle.size);
  if (const auto circle = cuttingCircle(cutter)) {
    const bool removesInside = distanceBetween(point, circle->center) < circle->radius;
    std::erase_if(corners, [&](SketchPoint corner) {
      const bool isOutside = distanceBetween(corner, circle->center) >= circle->radius - kGeometryEpsilon;
      return isOutside != removesInside;
    });
    return rectangleOutcome(rectangle.id, corners);
  }
  const auto segments = cuttingSegments(cutter);
  // A segment of no length has no direction in which to cut.
  if (segments.empty() || !(distanceBetween(segments.front().first, segments.front().second) > 0)) {
    return TrimFailure::noIntersection;
  }
  return rectangleOutcome(rectangle.id, clipPolygonByLine(corners, segments.front(), point));
}

TrimGeometry trimEntity(const SketchEntity& target, const SketchEntity& cutter, SketchPoint point) {
  if (entityID(target) == entityID(cutter)) return TrimFailure::noIntersection;
  return std::visit(Overloaded{
                        [&](const LineEntity&) { return trimSegment(target, cutter, point); },
                        [&](const WallEntity&) { return trimSegment(target, cutter, point); },
                        [&](const CircleEntity&) { return trimCircle(target, cutter, point); },
                        [&](const ArcEntity&) { return trimArc(target, cutter, point); },
                        [&](const RectangleEntity&) { return trimRectangle(target, cutter, point); },
                        [](const PolygonEntity&) { return TrimGeometry(TrimFailure::noIntersection); },
                    },
                    target);
}

std::optional<Segment> extendSegmentToBoundary(SketchPoint from, SketchPoint to, SketchPoint boundaryFrom,
                                               SketchPoint boundaryTo) {
  const SketchPoint d = to - from;
  const SketchPoint e = boundaryTo - boundaryFrom;
  const SketchPoint w = boundaryFrom - from;
  const double dd = squaredLength(d);
  if (!(dd > kGeometryEpsilon) || !(squaredLength(e) > kGeometryEpsilon)) return std::nullopt;
  const double determinant = cross(d, e);
  if (std::fabs(determinant) > kGeometryEpsilon) {
    const double u = cross(w, d) / determinant;
    if (!isSegmentParameter(u)) return std::nullopt;
    const double t = cross(w, e) / determinant;
    const SketchPoint hit = from + d * t;
    if (t < kGeometryParameterMin) return Segment{hit, to};
    if (t > kGeometryParameterMax) return Segment{from, hit};
    return std::nullopt;
  }
  const bool isCollinear = std::fabs(cross(d, w)) <= kGeometryEpsilon &&
                           std::fabs(cross(d, boundaryTo - from)) <= kGeometryEpsilon;
  if (!isCollinear) return std::nullopt;
  const double tFrom = dot(w, d) / dd;
  const double tTo = dot(boundaryTo - from, d) / dd;
  const double nearest = std::max(tFrom, tTo);
  const double farthest = std::min(tFrom, tTo);
  if (nearest < kGeometryParameterMin) return Segment{from + d * nearest, to};
  if (farthest > kGeometryParameterMax) return Segment{from, from + d * farthest};
  return std::nullopt;
}

}  // namespace ostrelon
