#include "exchange/dxf_entities.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "core/circle.h"

namespace ostrelon {
namespace {

// Extrusion directions this near to straight up or down lie in the plan.
constexpr double kUprightTolerance = 1e-9;
// A bulge smaller than this is a straight piece: the arc stays within 1e-12 of its chord's length.
constexpr double kSmallestBulge = 1e-12;

SketchPoint mirrored(SketchPoint p) { return {-p.x, p.y}; }

bool addLine(const DxfObject& object, std::vector<SketchEntity>& entities) {
  // A line is given in the coordinates of the world, whatever its plane.
  entities.emplace_back(
      LineEntity{UUID::random(), object.point(10, "start point"), object.point(11, "end point")});
  return true;
}

bool addCircle(const DxfObject& object, std::vector<SketchEntity>& entities) {
  SketchPoint center = object.point(10, "center");
  const double radius = object.requiredNumber(40, "radius");
  if (object.plane() == DxfObject::Plane::other || !(radius > 0)) return false;
  if (object.plane() == DxfObject::Plane::mirrored) center = mirrored(center);
  entities.emplace_back(CircleEntity{UUID::random(), center, radius});
  return true;
}

bool addArc(const DxfObject& object, std::vector<SketchEntity>& entities) {
  SketchPoint center = object.point(10, "center");
  const double radius = object.requiredNumber(40, "radius");
  double start = std::fmod(object.requiredNumber(50, "start angle"), 360);
  double end = std::fmod(object.requiredNumber(51, "end angle"), 360);
  if (object.plane() == DxfObject::Plane::other || !(radius > 0)) return false;
  if (object.plane() == DxfObject::Plane::mirrored) {
    center = mirrored(center);
    start = std::exchange(end, 180 - start);
    start = 180 - start;
  }
  if (std::fmod(end - start, 360) == 0) {
    entities.emplace_back(CircleEntity{UUID::random(), center, radius});
  } else {
    entities.emplace_back(ArcEntity{UUID::random(), center, radius, radiansOf(start), radiansOf(end)});
  }
  return true;
}

/// The arc between two vertices. Geometry of the bulge: with chord c and bulge b = tan(θ/4) the radius
/// is c (1 + b²) / (4 |b|), and the centre lies c (1 - b²) / (4 b) to the left of the chord's middle.
std::optional<ArcEntity> bulgedArc(SketchPoint from, SketchPoint to, double bulge) {
  const SketchPoint chord = to - from;
  const SketchPoint left = perpendicular(chord);
  const SketchPoint center = (from + to) * 0.5 + left * ((1 - bulge * bulge) / (4 * bulge));
  const double radius = distanceBetween(from, to) * (1 + bulge * bulge) / (4 * std::abs(bulge));
  if (!isFinite(center) || !std::isfinite(radius)) return std::nullopt;
  const double fromAngle = angleFrom(center, from);
  const double toAngle = angleFrom(center, to);
  return bulge > 0 ? ArcEntity{UUID::random(), center, radius, fromAngle, toAngle}
                   : ArcEntity{UUID::random(), center, radius, toAngle, fromAngle};
}

bool addLightPolyline(const DxfObject& object, std::vector<SketchEntity>& entities) {
  if (object.plane() == DxfObject::Plane::other) return false;
  DxfPolyline polyline;
  polyline.isMirrored = object.plane() == DxfObject::Plane::mirrored;
  polyline.isClosed = (static_cast<unsigned>(object.integer(70, 0)) & 1U) != 0;
  const DxfGroup* lastX = nullptr;  // an x that waits for its y
  for (const DxfGroup& group : object.groups()) {
    if (group.code == 10) {
      if (lastX != nullptr) throw DxfError(fmt::format("Line {}: a vertex has no y.", lastX->line));
      lastX = &group;
    } else if (group.code == 20) {
      if (lastX == nullptr) throw DxfError(fmt::format("Line {}: a vertex has no x.", group.line));
      polyline.vertices.push_back({{lastX->number(), group.number()}, 0});
      lastX = nullptr;
    } else if (group.code == 42 && !polyline.vertices.empty()) {
      polyline.vertices.back().bulge = group.number();
    }
  }
  if (lastX != nullptr) throw DxfError(fmt::format("Line {}: a vertex has no y.", lastX->line));
  return addDxfPolyline(std::move(polyline), entities);
}

// Drops vertices that repeat the one before; what bulges between equal points is nothing.
void dropRepeated(std::vector<DxfVertex>& vertices) {
  const auto last = std::unique(vertices.begin(), vertices.end(),
                                [](const DxfVertex& a, const DxfVertex& b) { return a.point == b.point; });
  vertices.erase(last, vertices.end());
}

}  // namespace

void DxfObject::restart(std::string_view kind, std::size_t line) {
  kind_ = kind;
  line_ = line;
  groups_.clear();
}

const DxfGroup* DxfObject::find(int code) const {
  const auto found =
      std::find_if(groups_.rbegin(), groups_.rend(), [code](const DxfGroup& g) { return g.code == code; });
  return found == groups_.rend() ? nullptr : &*found;
}

int DxfObject::integer(int code, int otherwise) const {
  const DxfGroup* group = find(code);
  return group == nullptr ? otherwise : group->integer();
}

double DxfObject::number(int code, double otherwise) const {
  const DxfGroup* group = find(code);
  return group == nullptr ? otherwise : group->number();
}

const DxfGroup& DxfObject::required(int code, std::string_view what) const {
  const DxfGroup* group = find(code);
  if (group == nullptr) throw DxfError(fmt::format("The {} at line {} has no {}.", kind_, line_, what));
  return *group;
}

SketchPoint DxfObject::point(int code, std::string_view what) const {
  return {required(code, what).number(), required(code + 10, what).number()};
}

double DxfObject::requiredNumber(int code, std::string_view what) const {
  return required(code, what).number();
}

DxfObject::Plane DxfObject::plane() const {
  const double x = number(210, 0);
  const double y = number(220, 0);
  const double z = number(230, 1);
  const double flatness = kUprightTolerance * std::abs(z);
  if (z == 0 || std::abs(x) > flatness || std::abs(y) > flatness) return Plane::other;
  return z > 0 ? Plane::plan : Plane::mirrored;
}

bool addDxfObject(const DxfObject& object, std::vector<SketchEntity>& entities) {
  if (object.kind() == "LINE") return addLine(object, entities);
  if (object.kind() == "CIRCLE") return addCircle(object, entities);
  if (object.kind() == "ARC") return addArc(object, entities);
  if (object.kind() == "LWPOLYLINE") return addLightPolyline(object, entities);
  return false;
}

bool addDxfPolyline(DxfPolyline polyline, std::vector<SketchEntity>& entities) {
  auto& vertices = polyline.vertices;
  if (polyline.isMirrored) {
    for (DxfVertex& vertex : vertices) vertex = {mirrored(vertex.point), -vertex.bulge};
  }
  dropRepeated(vertices);
  if (vertices.size() > 2 && vertices.front().point == vertices.back().point) {
    vertices.pop_back();
    polyline.isClosed = true;
  }
  if (vertices.size() < 2) return false;
  const auto isBulged = [](const DxfVertex& vertex) { return std::abs(vertex.bulge) > kSmallestBulge; };
  const bool isStraight = std::none_of(vertices.begin(), vertices.end(), isBulged);
  if (polyline.isClosed && isStraight && vertices.size() > 2) {
    std::vector<SketchPoint> points;
    points.reserve(vertices.size());
    for (const DxfVertex& vertex : vertices) points.push_back(vertex.point);
    entities.emplace_back(PolygonEntity{UUID::random(), PolygonVertices(std::move(points))});
    return true;
  }
  // A closed one of two straight pieces goes there and back on one line.
  const bool goesBack = polyline.isClosed && !(isStraight && vertices.size() == 2);
  const std::size_t pieces = goesBack ? vertices.size() : vertices.size() - 1;
  for (std::size_t i = 0; i < pieces; ++i) {
    const DxfVertex& from = vertices[i];
    const SketchPoint to = vertices[(i + 1) % vertices.size()].point;
    const auto arc = isBulged(from) ? bulgedArc(from.point, to, from.bulge) : std::nullopt;
    if (arc) {
      entities.emplace_back(*arc);
    } else {
      entities.emplace_back(LineEntity{UUID::random(), from.point, to});
    }
  }
  return true;
}

}  // namespace ostrelon
