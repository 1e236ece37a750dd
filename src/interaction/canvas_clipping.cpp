#include "interaction/canvas_clipping.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace ostrelon {

namespace {

constexpr double kFullTurn = 2 * std::numbers::pi;
/// How far, in view points, a polyline may leave the circle that it stands for.
constexpr double kCirclePrecision = 0.05;

/// The polygon's part on the side of the line where `inside` is not negative. `inside` is linear.
template <class Side>
std::vector<SketchPoint> cutPolygon(const std::vector<SketchPoint>& polygon, const Side& inside) {
  std::vector<SketchPoint> kept;
  kept.reserve(polygon.size() + 1);
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const SketchPoint a = polygon[i];
    const SketchPoint b = polygon[(i + 1) % polygon.size()];
    const double sideA = inside(a);
    const double sideB = inside(b);
    if (sideA >= 0) kept.push_back(a);
    if ((sideA >= 0) != (sideB >= 0)) kept.push_back(a + (b - a) * (sideA / (sideA - sideB)));
  }
  return kept;
}

std::vector<SketchPoint> corners(const ViewRect& box) {
  return {{box.minX, box.minY}, {box.maxX, box.minY}, {box.maxX, box.maxY}, {box.minX, box.maxY}};
}

/// The point itself, but for what rounding has added to a point that lies in the box.
SketchPoint within(SketchPoint point, const ViewRect& box) {
  return {std::clamp(point.x, box.minX, box.maxX), std::clamp(point.y, box.minY, box.maxY)};
}

SketchPoint circlePoint(SketchPoint center, double radius, double angle) {
  return {center.x + radius * std::cos(angle), center.y + radius * std::sin(angle)};
}

/// The angles, ascending and from 0 to 2π, at which the circle meets the four lines of the box.
std::vector<double> crossingAngles(SketchPoint center, double radius, const ViewRect& box) {
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

bool isFinite(SketchPoint point) { return std::isfinite(point.x) && std::isfinite(point.y); }

std::optional<CanvasSegment> clippedSegment(const CanvasSegment& segment, const ViewRect& box) {
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

void addClippedPolyline(std::span<const SketchPoint> points, bool closed, const ViewRect& box,
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

std::vector<SketchPoint> clippedPolygon(std::span<const SketchPoint> vertices, const ViewRect& box) {
  std::vector<SketchPoint> polygon(vertices.begin(), vertices.end());
  if (!std::all_of(polygon.begin(), polygon.end(), isFinite)) return {};
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

void addClippedCircle(SketchPoint center, double radius, const ViewRect& box, CanvasPath& path) {
  if (!isFinite(center) || !std::isfinite(radius) || radius <= 0) return;
  const std::vector<double> angles = crossingAngles(center, radius, box);
  // A chord over an angle leaves its circle by radius · (1 − cos(angle / 2)), about radius · angle² / 8.
  const double step = std::min(std::numbers::pi / 8, std::sqrt(8 * kCirclePrecision / radius));
  const auto at = [&](double angle) { return within(circlePoint(center, radius, angle), box); };
  std::optional<double> reached;
  for (std::size_t i = 0; i + 1 < angles.size(); ++i) {
    const double span = angles[i + 1] - angles[i];
    const SketchPoint middle = circlePoint(center, radius, angles[i] + span / 2);
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

std::vector<SketchPoint> clippedDisc(SketchPoint center, double radius, const ViewRect& box) {
  CanvasPath edge;
  addClippedCircle(center, radius, box, edge);
  std::vector<SketchPoint> polygon = corners(box);
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
      polygon = cutPolygon(polygon, [p, d](SketchPoint q) { return d.x * (q.y - p.y) - d.y * (q.x - p.x); });
    }
  }
  return polygon;
}

}  // namespace ostrelon
