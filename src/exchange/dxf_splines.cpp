#include <algorithm>
#include <cmath>

#include "exchange/dxf_objects.h"

namespace ostrelon {
namespace {

// The natural cubic through the points, its parameter the length of the chords; de Boor, "A Practical Guide
// to Splines", chapter 4. Given as a B-spline whose pieces are Bézier curves.
DxfSpline splineThrough(std::vector<SketchPoint> points) {
  points.erase(std::unique(points.begin(), points.end()), points.end());
  DxfSpline spline;
  const std::size_t n = points.size();
  if (n < 2) return spline;
  std::vector<double> chord(n - 1);
  for (std::size_t i = 0; i + 1 < n; ++i) chord[i] = distanceBetween(points[i], points[i + 1]);
  // The slopes at the points, by elimination of the tridiagonal system.
  std::vector<double> diagonal(n, 2);
  std::vector<SketchPoint> slope(n);
  const auto rise = [&](std::size_t i) { return (points[i + 1] - points[i]) * (1 / chord[i]); };
  std::vector<double> upper(n, 1);
  slope[0] = rise(0) * 3;
  for (std::size_t i = 1; i < n; ++i) {
    double lower = 1;
    if (i + 1 == n) {
      slope[i] = rise(i - 1) * 3;
    } else {
      const double share = chord[i] / (chord[i - 1] + chord[i]);
      lower = share;
      upper[i] = 1 - share;
      slope[i] = (rise(i - 1) * share + rise(i) * (1 - share)) * 3;
    }
    const double factor = lower / diagonal[i - 1];
    diagonal[i] -= factor * upper[i - 1];
    slope[i] = slope[i] - slope[i - 1] * factor;
  }
  slope[n - 1] = slope[n - 1] * (1 / diagonal[n - 1]);
  for (std::size_t i = n - 1; i-- > 0;) slope[i] = (slope[i] - slope[i + 1] * upper[i]) * (1 / diagonal[i]);

  spline.degree = 3;
  double knot = 0;
  spline.knots.assign(4, 0);
  spline.points.push_back(points.front());
  for (std::size_t i = 0; i + 1 < n; ++i) {
    const double third = chord[i] / 3;
    spline.points.push_back(points[i] + slope[i] * third);
    spline.points.push_back(points[i + 1] - slope[i + 1] * third);
    spline.points.push_back(points[i + 1]);
    knot += chord[i];
    spline.knots.insert(spline.knots.end(), 3, knot);
  }
  spline.knots.push_back(knot);
  return spline;
}

}  // namespace

DxfShape checkedSpline(DxfSpline spline, const std::vector<SketchPoint>& fitPoints, const DxfObject& object) {
  if (spline.points.empty() && fitPoints.size() > 1) {
    const bool isClosed = spline.isClosed;
    std::vector<SketchPoint> through = fitPoints;
    if (isClosed && through.front() != through.back()) through.push_back(through.front());
    spline = splineThrough(std::move(through));
    spline.isClosed = isClosed;
  }
  if (spline.points.empty()) return DxfNothing{DxfReason::noSize};
  if (spline.degree < 1 || spline.degree > kLargestSplineDegree)
    object.refuse("has a degree that no spline has");
  const auto degree = static_cast<std::size_t>(spline.degree);
  if (spline.points.size() <= degree) object.refuse("has too few control points");
  if (spline.knots.size() != spline.points.size() + degree + 1)
    object.refuse("has another number of knots than it needs");
  if (!std::is_sorted(spline.knots.begin(), spline.knots.end()))
    object.refuse("has knots that do not ascend");
  if (!spline.weights.empty()) {
    if (spline.weights.size() != spline.points.size())
      object.refuse("has another number of weights than control points");
    if (!std::all_of(spline.weights.begin(), spline.weights.end(),
                     [](double weight) { return weight > 0; })) {
      object.refuse("has a weight that is not above 0");
    }
  }
  return std::make_shared<const DxfSpline>(std::move(spline));
}

}  // namespace ostrelon
