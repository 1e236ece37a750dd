#include <algorithm>
#include <utility>

#include "exchange/dxf_objects.h"
#include "exchange/dxf_polyline.h"

namespace ostrelon {
namespace {

// Reads the groups of a hatch from one to the next: its boundaries are told in a fixed order.
class HatchReader {
 public:
  HatchReader(const DxfObject& hatch, std::vector<DxfShape>& shapes)
      : hatch_(hatch), groups_(hatch.groups()), shapes_(shapes) {}

  void read() {
    const auto loops =
        std::find_if(groups_.begin(), groups_.end(), [](const DxfGroup& g) { return g.code == 91; });
    if (loops == groups_.end()) return;
    at_ = static_cast<std::size_t>(loops - groups_.begin());
    const int count = take(91).integer();
    for (int i = 0; i < count; ++i) readLoop();
  }

 private:
  bool isNext(int code) const { return at_ < groups_.size() && groups_[at_].code == code; }
  const DxfGroup& take(int code) {
    if (!isNext(code)) hatch_.refuse("has a boundary that cannot be read");
    return groups_[at_++];
  }
  double number(int code) { return take(code).number(); }
  int integer(int code) { return take(code).integer(); }
  SketchPoint point(int code) {
    const double x = number(code);
    return {x, number(code + 10)};
  }
  bool takesOptional(int code) {
    if (!isNext(code)) return false;
    ++at_;
    return true;
  }

  void readLoop() {
    constexpr unsigned kPolyline = 2;
    const auto flags = static_cast<unsigned>(integer(92));
    if ((flags & kPolyline) != 0) {
      readPolyline();
    } else {
      const int edges = integer(93);
      for (int i = 0; i < edges; ++i) readEdge();
    }
    if (!isNext(97)) return;
    for (int left = integer(97); left > 0 && takesOptional(330);) --left;
  }

  void readPolyline() {
    DxfPolyline polyline;
    const bool hasBulges = integer(72) != 0;
    polyline.isClosed = integer(73) != 0;
    const int count = integer(93);
    for (int i = 0; i < count; ++i) {
      DxfVertex vertex{point(10)};
      if (hasBulges && isNext(42)) vertex.bulge = number(42);
      polyline.vertices.push_back(vertex);
    }
    addPolylineShapes(std::move(polyline), shapes_);
  }

  void readEdge() {
    switch (integer(72)) {
      case 1: {
        const SketchPoint from = point(10);
        shapes_.emplace_back(DxfLine{from, point(11)});
        return;
      }
      case 2: {
        const SketchPoint center = point(10);
        const double radius = number(40);
        double start = number(50);
        double end = number(51);
        const bool isForward = integer(73) != 0;
        if (!isForward) start = -std::exchange(end, -start);
        if (radius > 0) shapes_.emplace_back(arcCurve(center, radius, start, end));
        return;
      }
      case 3: {
        DxfCurve curve;
        curve.center = point(10);
        curve.u = point(11);
        const double ratio = number(40);
        const double start = number(50);
        const double end = number(51);
        const bool isForward = integer(73) != 0;
        curve.v = perpendicular(curve.u) * (isForward ? ratio : -ratio);
        const DxfCurve angles = arcCurve({}, 1, start, end);
        curve.start = angles.start;
        curve.sweep = angles.sweep;
        if (squaredLength(curve.u) > 0) shapes_.emplace_back(curve);
        return;
      }
      case 4:
        readSplineEdge();
        return;
      default:
        hatch_.refuse("has a boundary of an unknown kind");
    }
  }

  void readSplineEdge() {
    DxfSpline spline;
    spline.degree = integer(94);
    const bool isRational = integer(73) != 0;
    integer(74);
    const int knots = integer(95);
    const int points = integer(96);
    for (int i = 0; i < knots; ++i) spline.knots.push_back(number(40));
    for (int i = 0; i < points; ++i) {
      spline.points.push_back(point(10));
      if (isRational && isNext(42)) spline.weights.push_back(number(42));
    }
    // Newer files tell the points that the spline was made from, and its ends' directions. After that the
    // number of boundary objects has the same code.
    if (isNext(97) && at_ + 1 < groups_.size() && groups_[at_ + 1].code == 11) {
      for (int left = integer(97); left > 0; --left) point(11);
      if (isNext(12)) point(12);
      if (isNext(13)) point(13);
    } else if (isNext(97) && at_ + 1 < groups_.size() && groups_[at_ + 1].code == 97) {
      ++at_;
    }
    shapes_.push_back(checkedSpline(std::move(spline), {}, hatch_));
  }

  const DxfObject& hatch_;
  const std::vector<DxfGroup>& groups_;
  std::vector<DxfShape>& shapes_;
  std::size_t at_ = 0;
};

}  // namespace

void addHatchOutlines(const DxfObject& hatch, std::vector<DxfShape>& shapes) {
  HatchReader(hatch, shapes).read();
}

}  // namespace ostrelon
