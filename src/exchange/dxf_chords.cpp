#include "exchange/dxf_chords.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace ostrelon {
namespace {

// More points than this has no curve, however large it is.
constexpr std::size_t kMostPoints = 100'000;
// Axes that are parallel within this share of their lengths enclose nothing.
constexpr double kFlatness = 1e-9;
// How often a stretch of a spline is halved at most.
constexpr int kDeepestHalving = 16;

SketchPoint pointAt(const DxfCurve& curve, double t) {
  return curve.center + curve.u * std::cos(t) + curve.v * std::sin(t);
}

// Seen from its edge a curve is a line, from one extreme within its sweep to the other.
std::vector<SketchPoint> edgeOnLine(const DxfCurve& curve) {
  const SketchPoint direction = squaredLength(curve.u) >= squaredLength(curve.v) ? curve.u : curve.v;
  std::vector parameters{curve.start, curve.start + curve.sweep};
  const double extreme = std::atan2(dot(curve.v, direction), dot(curve.u, direction));
  for (int i = 0; i < 4; ++i) {
    const double after = arcSpan(curve.start, extreme + i * std::numbers::pi);
    if (after < curve.sweep) parameters.push_back(curve.start + after);
  }
  const auto along = [&](double a, double b) {
    return dot(pointAt(curve, a), direction) < dot(pointAt(curve, b), direction);
  };
  const auto [least, most] = std::minmax_element(parameters.begin(), parameters.end(), along);
  return {pointAt(curve, *least), pointAt(curve, *most)};
}

// A control point with its weight, times its weight.
struct Weighted {
  double x = 0;
  double y = 0;
  double weight = 1;
  SketchPoint point() const { return {x / weight, y / weight}; }
};

class SplineChords {
 public:
  SplineChords(const DxfSpline& spline, double tolerance, std::size_t most)
      : spline_(spline), tolerance_(tolerance), most_(std::min(most, kMostPoints)) {
    controls_.reserve(spline.points.size());
    for (std::size_t i = 0; i < spline.points.size(); ++i) {
      const double weight = spline.weights.empty() ? 1 : spline.weights[i];
      controls_.push_back({spline.points[i].x * weight, spline.points[i].y * weight, weight});
    }
  }

  std::vector<SketchPoint> points() {
    const auto degree = static_cast<std::size_t>(spline_.degree);
    const auto& knots = spline_.knots;
    for (std::size_t span = degree; span < spline_.points.size(); ++span) {
      if (!(knots[span] < knots[span + 1])) continue;
      const SketchPoint start = at(span, knots[span]);
      if (points_.empty()) points_.push_back(start);
      // The pieces of a high degree may wind: two halves of each are looked at in any case.
      const double middle = (knots[span] + knots[span + 1]) / 2;
      const SketchPoint half = at(span, middle);
      halve(span, knots[span], start, middle, half, 1);
      halve(span, middle, half, knots[span + 1], at(span, knots[span + 1]), 1);
    }
    return std::move(points_);
  }

 private:
  // De Boor's algorithm, in homogeneous coordinates.
  SketchPoint at(std::size_t span, double t) const {
    const auto degree = static_cast<std::size_t>(spline_.degree);
    const auto& knots = spline_.knots;
    std::array<Weighted, kLargestSplineDegree + 1> d;
    for (std::size_t j = 0; j <= degree; ++j) d[j] = controls_[span - degree + j];
    for (std::size_t round = 1; round <= degree; ++round) {
      for (std::size_t j = degree; j >= round; --j) {
        const double low = knots[span - degree + j];
        const double width = knots[span + 1 + j - round] - low;
        const double share = width > 0 ? (t - low) / width : 0;
        d[j] = {d[j - 1].x + (d[j].x - d[j - 1].x) * share, d[j - 1].y + (d[j].y - d[j - 1].y) * share,
                d[j - 1].weight + (d[j].weight - d[j - 1].weight) * share};
      }
    }
    return d[degree].point();
  }

  // Points between the ends until the chords are near enough, then the end.
  void halve(std::size_t span, double fromT, SketchPoint from, double toT, SketchPoint to, int depth) {
    const double width = toT - fromT;
    const auto isNear = [&](double share) {
      const SketchPoint point = at(span, fromT + width * share);
      const SketchPoint chord = to - from;
      const double length = lengthOf(chord);
      const double distance =
          length > 0 ? std::abs(cross(chord, point - from)) / length : distanceBetween(from, point);
      // A point behind an end of the chord is away from it by more than its distance from the line.
      const double along = length > 0 ? dot(chord, point - from) / length : 0;
      return distance <= tolerance_ / 2 && along >= -tolerance_ && along <= length + tolerance_;
    };
    const bool isDone = depth >= kDeepestHalving || points_.size() >= most_ || !isFinite(from) ||
                        !isFinite(to) || (isNear(0.5) && isNear(0.25) && isNear(0.75));
    if (isDone) {
      points_.push_back(to);
      return;
    }
    const double middleT = fromT + width / 2;
    const SketchPoint middle = at(span, middleT);
    halve(span, fromT, from, middleT, middle, depth + 1);
    halve(span, middleT, middle, toT, to, depth + 1);
  }

  const DxfSpline& spline_;
  double tolerance_;
  std::size_t most_;
  std::vector<Weighted> controls_;
  std::vector<SketchPoint> points_;
};

}  // namespace

// A chord over the parameter h lies within a (1 - cos(h / 2)) of an ellipse whose longer half-axis is a.
std::vector<SketchPoint> curveChords(const DxfCurve& curve, double tolerance, std::size_t most) {
  const double size = std::hypot(lengthOf(curve.u), lengthOf(curve.v));
  if (!std::isfinite(size)) return {};
  if (std::abs(cross(curve.u, curve.v)) <= kFlatness * size * size) return edgeOnLine(curve);
  constexpr double kWidestStep = std::numbers::pi / 8;
  const double step = std::min(kWidestStep, 2 * std::acos(std::max(0.0, 1 - tolerance / size)));
  const double limit = static_cast<double>(std::clamp(most, std::size_t{2}, kMostPoints));
  const auto steps = static_cast<std::size_t>(std::clamp(std::ceil(curve.sweep / step), 1.0, limit));
  std::vector<SketchPoint> points;
  points.reserve(steps + 1);
  for (std::size_t i = 0; i <= steps; ++i) {
    points.push_back(
        pointAt(curve, curve.start + curve.sweep * static_cast<double>(i) / static_cast<double>(steps)));
  }
  // Exactly, however the rounding went.
  if (curve.sweep >= kFullTurn) points.back() = points.front();
  return points;
}

std::vector<SketchPoint> splineChords(const DxfSpline& spline, double tolerance, std::size_t most) {
  return SplineChords(spline, tolerance, most).points();
}

}  // namespace ostrelon
