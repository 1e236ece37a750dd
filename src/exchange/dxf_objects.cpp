#include "exchange/dxf_objects.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "exchange/dxf_polyline.h"

namespace ostrelon {
namespace {

using Shapes = std::vector<DxfShape>;

void addLine(const DxfObject& object, Shapes& shapes) {
  // A line is given in the coordinates of the world, whatever its plane.
  shapes.emplace_back(DxfLine{object.point(10, "start point"), object.point(11, "end point")});
}

void addCircle(const DxfObject& object, Shapes& shapes) {
  const SketchPoint center = object.point(10, "center");
  const double radius = object.requiredNumber(40, "radius");
  if (!(radius > 0)) {
    shapes.emplace_back(DxfNothing{DxfReason::noSize});
  } else {
    shapes.emplace_back(circleCurve(center, radius));
  }
}

void addArc(const DxfObject& object, Shapes& shapes) {
  const SketchPoint center = object.point(10, "center");
  const double radius = object.requiredNumber(40, "radius");
  const double start = object.requiredNumber(50, "start angle");
  const double end = object.requiredNumber(51, "end angle");
  if (!(radius > 0)) {
    shapes.emplace_back(DxfNothing{DxfReason::noSize});
  } else {
    shapes.emplace_back(arcCurve(center, radius, start, end));
  }
}

// The third coordinate matters here: the minor axis is perpendicular to the major one within the plane.
void addEllipse(const DxfObject& object, Shapes& shapes) {
  DxfCurve curve;
  curve.center = object.point(10, "center");
  curve.u = object.point(11, "major axis");
  const double uz = object.number(31, 0);
  const double ratio = object.requiredNumber(40, "ratio of its axes");
  std::array normal{object.number(210, 0), object.number(220, 0), object.number(230, 1)};
  const double length = std::hypot(normal[0], normal[1], normal[2]);
  if (!(length > 0) || !std::isfinite(length)) object.refuse("has no plane");
  for (double& part : normal) part /= length;
  curve.v =
      SketchPoint{normal[1] * uz - normal[2] * curve.u.y, normal[2] * curve.u.x - normal[0] * uz} * ratio;
  curve.start = object.number(41, 0);
  double sweep = std::fmod(object.number(42, kFullTurn) - curve.start, kFullTurn);
  constexpr double kClosed = 1e-9;
  if (sweep <= kClosed) sweep += kFullTurn;
  if (sweep < kFullTurn - kClosed) curve.sweep = sweep;
  if (!isFinite(curve.v) || squaredLength(curve.u) + squaredLength(curve.v) == 0) {
    shapes.emplace_back(DxfNothing{DxfReason::noSize});
  } else {
    shapes.emplace_back(curve);
  }
}

void addSpline(const DxfObject& object, Shapes& shapes) {
  constexpr unsigned kClosed = 1;
  DxfSpline spline;
  spline.degree = object.integer(71, 3);
  spline.isClosed = (object.flags(70) & kClosed) != 0;
  std::vector<SketchPoint> fitPoints;
  const auto startPoint = [](std::vector<SketchPoint>& points, double x) { points.push_back({x, 0}); };
  for (const DxfGroup& group : object.groups()) {
    switch (group.code) {
      case 10:
        startPoint(spline.points, group.number());
        break;
      case 20:
        if (!spline.points.empty()) spline.points.back().y = group.number();
        break;
      case 11:
        startPoint(fitPoints, group.number());
        break;
      case 21:
        if (!fitPoints.empty()) fitPoints.back().y = group.number();
        break;
      case 40:
        spline.knots.push_back(group.number());
        break;
      case 41:
        spline.weights.push_back(group.number());
        break;
      default:
        break;
    }
  }
  shapes.push_back(checkedSpline(std::move(spline), fitPoints, object));
}

// Two corners in the order of reading, then two in the order of the other side.
void addSolid(const DxfObject& object, Shapes& shapes) {
  DxfPath path{{object.point(10, "first corner"), object.point(11, "second corner")}, true};
  const SketchPoint third = object.point(12, "third corner");
  if (object.find(13) != nullptr) path.points.push_back(object.point(13, "fourth corner"));
  path.points.push_back(third);
  shapes.emplace_back(std::move(path));
}

void addFace(const DxfObject& object, Shapes& shapes) {
  DxfPath path{
      {object.point(10, "first corner"), object.point(11, "second corner"), object.point(12, "third corner")},
      true};
  if (object.find(13) != nullptr) path.points.push_back(object.point(13, "fourth corner"));
  const unsigned unseen = object.flags(70) & 15U;
  if (unseen == 0) {
    shapes.emplace_back(std::move(path));
    return;
  }
  for (std::size_t i = 0; i < path.points.size(); ++i) {
    if ((unseen >> i & 1U) != 0) continue;
    shapes.emplace_back(DxfLine{path.points[i], path.points[(i + 1) % path.points.size()]});
  }
  if (unseen == 15U) shapes.emplace_back(DxfNothing{DxfReason::invisible});
}

void addLeader(const DxfObject& object, Shapes& shapes) {
  DxfPath path;
  for (const DxfGroup& group : object.groups()) {
    if (group.code == 10) path.points.push_back({group.number(), 0});
    if (group.code == 20 && !path.points.empty()) path.points.back().y = group.number();
  }
  shapes.emplace_back(std::move(path));
}

// How an object gives its coordinates.
enum class Space {
  world,  // as they are
  plane   // in the plane that its extrusion direction says
};

struct KnownKind {
  std::string_view kind;
  Space space;
  void (*add)(const DxfObject& object, Shapes& shapes);
};

constexpr std::array kKnownKinds{KnownKind{"LINE", Space::world, addLine},
                                 KnownKind{"CIRCLE", Space::plane, addCircle},
                                 KnownKind{"ARC", Space::plane, addArc},
                                 KnownKind{"LWPOLYLINE", Space::plane, addLightPolyline},
                                 KnownKind{"ELLIPSE", Space::world, addEllipse},
                                 KnownKind{"SPLINE", Space::world, addSpline},
                                 KnownKind{"SOLID", Space::plane, addSolid},
                                 KnownKind{"TRACE", Space::plane, addSolid},
                                 KnownKind{"3DFACE", Space::world, addFace},
                                 KnownKind{"LEADER", Space::world, addLeader},
                                 KnownKind{"HATCH", Space::plane, addHatchOutlines}};

}  // namespace

AffineMap planeMap(DxfObject::Plane plane) {
  return plane == DxfObject::Plane::mirrored ? AffineMap{{-1, 0}, {0, 1}, {}} : AffineMap{};
}

void addDxfShapes(const DxfObject& object, Shapes& shapes) {
  const auto* known = std::find_if(kKnownKinds.begin(), kKnownKinds.end(),
                                   [&](const KnownKind& kind) { return kind.kind == object.kind(); });
  if (known == kKnownKinds.end()) {
    shapes.emplace_back(DxfNothing{});
    return;
  }
  const std::size_t first = shapes.size();
  known->add(object, shapes);
  if (known->space == Space::plane) {
    const auto plane = object.plane();
    if (plane == DxfObject::Plane::other) {
      shapes.resize(first);
      shapes.emplace_back(DxfNothing{DxfReason::tilted});
    } else if (plane == DxfObject::Plane::mirrored) {
      for (std::size_t i = first; i < shapes.size(); ++i) shapes[i] = mapped(shapes[i], planeMap(plane));
    }
  }
  if (shapes.size() == first) shapes.emplace_back(DxfNothing{DxfReason::noSize});
}

}  // namespace ostrelon
