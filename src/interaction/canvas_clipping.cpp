#include "interaction/canvas_clipping.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/circle.h"
#include "core/half_plane.h"

namespace ostrelon {

namespace {

/// How far, in view points, a polyline may leave the circle that it stands for.
constexpr double kCirclePrecision = 0.05;

/// The polygon's part on the side of the line where `inside` is not negative. `inside` is linear.
template <class Side>
std::vector<SketchPoint> cutPolygon(std::span<const SketchPoint> polygon, const Side& inside) {
  return cutByHalfPlane(
      polygon, [&inside](SketchPoint p) { return inside(p) >= 0; },
      [&inside](SketchPoint a, SketchPoint b) {
        const double sideA = inside(a);
        return a + (b - a) * (sideA / (sideA - inside(b)));
      });
}

/// The point itself, but for what rounding has added to a point that lies in the box.
SketchPoint within(SketchPoint point, const SketchBox& box) {
  return {std::clamp(point.x, box.minX, box.maxX), std::clamp(point.y, box.minY, box.maxY)};
}

/// The angles, ascending and from 0 to 2π, at which the circle meets the four lines of the box.
std::vector<double> crossingAngles(SketchPoint center, double radius, const SketchBox& box) {
  std::vector<double> angles{0, kFullTurn};
  const auto add = [&angles](double angle) { angles.push_back(angle < 0 ? angle + kFullTurn : angle); };
  for (const double x : {box.minX, box.maxX}) {
    const double cosine = (x - center.x) / radius;
    if (std::abs(cosine) <= 1) {
      add(std::acos(cosine));
      add(-std::acos(cosine));
    }
  }
  for (const double y : {box.minY, box.maxY}) {
    const double sine = (y - center.y) / radius;
    if (std::abs(sine) <= 1) {
      add(std::asin(sine));
      add(std::numbers::pi - std::asin(sine));
    }
  }
  std::sort(angles.begin(), angles.end());
  return angles;
}

}  // namespace

std::optional<CanvasSegment> clippedSegment(const CanvasSegment& segment, const SketchBox& box) {
  const auto [from, to] = segment;
  if (box.contains(from) && box.contains(to)) return segment;
  const SketchPoint d = to - from;
  if (!isFinite(from) || !isFinite(to) || !isFinite(d)) return std::nullopt;
  double start = 0;
  double end = 1;
  const auto cut = [&start, &end](double direction, double room) {
    if (direction == 0) return room >= 0;
    const double t = room / direction;
    if (direction < 0) {
      start = std::max(start, t);
    } else {
      end = std::min(end, t);
    }
    return start <= end;
  };
  if (!cut(-d.x, from.x - box.minX) || !cut(d.x, box.maxX - from.x) || !cut(-d.y, from.y - box.minY) ||
      !cut(d.y, box.maxY - from.y)) {
    return std::nullopt;
  }
  return CanvasSegment{start > 0 ? within(from + d * start, box) : from,
                       end < 1 ? within(from + d * end, box) : to};
}

void addClippedPolyline(std::span<const SketchPoint> points, bool closed, const SketchBox& box,
                        CanvasPath& path) {
  if (points.empty()) return;
  if (std::all_of(points.begin(), points.end(), [&box](SketchPoint p) { return box.contains(p); })) {
    path.addPiece(points, closed);
    return;
  }
  std::optional<SketchPoint> reached;
  const std::size_t count = closed ? points.size() : points.size() - 1;
  for (std::size_t i = 0; i < count; ++i) {
    const auto piece = clippedSegment({points[i], points[(i + 1) % points.size()]}, box);
    if (!piece) {
      reached.reset();
      continue;
    }
    if (!reached || *reached != piece->from) {
      path.begin();
      path.add(piece->from);
    }
    path.add(piece->to);
    reached = piece->to;
  }
}

std::vector<SketchPoint> clippedPolygon(std::span<const SketchPoint> vertices, const SketchBox& box) {
  std::vector<SketchPoint> polygon(vertices.begin(), vertices.end());
  if (!areFinite(polygon)) return {};
  if (std::all_of(polygon.begin(), polygon.end(), [&box](SketchPoint p) { return box.contains(p); })) {
    return polygon;
  }
  polygon = cutPolygon(polygon, [&box](SketchPoint p) { return p.x - box.minX; });
  polygon = cutPolygon(polygon, [&box](SketchPoint p) { return box.maxX - p.x; });
  polygon = cutPolygon(polygon, [&box](SketchPoint p) { return p.y - box.minY; });
  polygon = cutPolygon(polygon, [&box](SketchPoint p) { return box.maxY - p.y; });
  for (SketchPoint& point : polygon) point = within(point, box);
  return polygon;
}

void addClippedCircle(SketchPoint center, double radius, const SketchBox& box, CanvasPath& path) {
  if (!isFinite(center) || !std::isfinite(radius) || radius <= 0) return;
  const std::vector<double> angles = crossingAngles(center, radius, box);
  // A chord over an angle leaves its circle by radius · (1 − cos(angle / 2)), about radius · angle² / 8.
  const double step = std::min(std::numbers::pi / 8, std::sqrt(8 * kCirclePrecision / radius));
  const auto at = [&](double angle) { return within(pointOnCircle(center, radius, angle), box); };
  std::optional<double> reached;
  for (std::size_t i = 0; i + 1 < angles.size(); ++i) {
    const double span = angles[i + 1] - angles[i];
    const SketchPoint middle = pointOnCircle(center, radius, angles[i] + span / 2);
    // The middle decides; the ends lie on the box itself, where rounding would.
    if (span <= 0 || !box.contains(middle)) continue;
    if (!reached || *reached != angles[i]) {
      path.begin();
      path.add(at(angles[i]));
    }
    const int steps = static_cast<int>(std::clamp(std::ceil(span / step), 1.0, 4096.0));
    for (int s = 1; s <= steps; ++s) path.add(at(angles[i] + span * s / steps));
    reached = angles[i + 1];
  }
}

std::vector<SketchPoint> clippedDisc(SketchPoint center, double radius, const SketchBox& box) {
  CanvasPath edge;
  addClippedCircle(center, radius, box, edge);
  const auto corners = box.corners();
  std::vector<SketchPoint> polygon(corners.begin(), corners.end());
  if (edge.empty()) {
    // No edge is seen: the box lies wholly within the disc or wholly outside it.
    return distanceBetween(box.center(), center) <= radius ? polygon : std::vector<SketchPoint>{};
  }
  // A disc is convex, so it is what lies on the inner side of all chords of its edge.
  for (const CanvasPath::Piece& piece : edge.pieces()) {
    const auto points = edge.points(piece);
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
      const SketchPoint p = points[i];
      const SketchPoint d = points[i + 1] - p;
      polygon = cutPolygon(polygon, [p, d](SketchPoint q) { return cross(d, q - p); });
    }
  }
  return polygon;
}

}  // namespace ostrelon
