#include "exchange/dxf_polyline.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>
#include <set>
#include <utility>

#include "exchange/dxf_objects.h"

namespace ostrelon {
namespace {

using Shapes = std::vector<DxfShape>;

// The flags of a POLYLINE and of its vertices.
constexpr unsigned kClosed = 1;
constexpr unsigned kInSpace = 8;
constexpr unsigned kMesh = 16;
constexpr unsigned kMeshClosedAcross = 32;
constexpr unsigned kFaces = 64;
constexpr unsigned kFrameVertex = 16;
constexpr unsigned kMeshVertex = 64;
constexpr unsigned kFaceVertex = 128;

// Where two edges meet at less than this cosine of half their turn, a mitre would reach too far.
constexpr double kSharpestMitre = 0.25;
// The steps of an arc whose width changes along it.
constexpr double kTaperStep = radiansOf(1);

bool isBulged(const DxfVertex& vertex) { return vertex.bulge != 0; }
bool isWide(const DxfVertex& vertex) { return vertex.startWidth > 0 || vertex.endWidth > 0; }

SketchPoint unit(SketchPoint vector) {
  const double length = lengthOf(vector);
  return length > 0 ? vector * (1 / length) : SketchPoint{};
}

/// The outline of straight pieces of one width with mitred corners; false where a corner is too sharp for it.
bool addMitredOutline(const DxfPolyline& polyline, Shapes& shapes) {
  const auto& vertices = polyline.vertices;
  const std::size_t count = vertices.size();
  const double half = vertices.front().startWidth / 2;
  std::vector<SketchPoint> left;
  std::vector<SketchPoint> right;
  for (std::size_t i = 0; i < count; ++i) {
    const bool hasBefore = i > 0 || polyline.isClosed;
    const bool hasAfter = i + 1 < count || polyline.isClosed;
    const SketchPoint here = vertices[i].point;
    const SketchPoint in = hasBefore ? unit(here - vertices[(i + count - 1) % count].point) : SketchPoint{};
    const SketchPoint out = hasAfter ? unit(vertices[(i + 1) % count].point - here) : SketchPoint{};
    const SketchPoint middle = unit(in + out);
    const SketchPoint normal = perpendicular(middle);
    const double cosine = dot(middle, hasAfter ? out : in);
    if (!(cosine > kSharpestMitre)) return false;
    left.push_back(here + normal * (half / cosine));
    right.push_back(here - normal * (half / cosine));
  }
  if (polyline.isClosed) {
    shapes.emplace_back(DxfPath{std::move(left), true});
    shapes.emplace_back(DxfPath{std::move(right), true});
  } else {
    left.insert(left.end(), right.rbegin(), right.rend());
    shapes.emplace_back(DxfPath{std::move(left), true});
  }
  return true;
}

void addWideArc(const DxfCurve& arc, const DxfVertex& vertex, Shapes& shapes) {
  const double radius = lengthOf(arc.u);
  const auto at = [&](double parameter, double distance) {
    const SketchPoint direction = unit(arc.u) * std::cos(parameter) + unit(arc.v) * std::sin(parameter);
    return arc.center + direction * (radius + distance);
  };
  if (vertex.startWidth != vertex.endWidth || vertex.startWidth / 2 >= radius) {
    const int steps = std::max(1, static_cast<int>(std::ceil(arc.sweep / kTaperStep)));
    DxfPath outline{{}, true};
    const auto side = [&](int step, double sign) {
      const double share = static_cast<double>(step) / steps;
      const double width = vertex.startWidth + (vertex.endWidth - vertex.startWidth) * share;
      outline.points.push_back(at(arc.start + arc.sweep * share, sign * width / 2));
    };
    for (int i = 0; i <= steps; ++i) side(i, 1);
    for (int i = steps; i >= 0; --i) side(i, -1);
    shapes.emplace_back(std::move(outline));
    return;
  }
  for (const double distance : {vertex.startWidth / 2, -vertex.startWidth / 2}) {
    DxfCurve side = arc;
    side.u = unit(arc.u) * (radius + distance);
    side.v = unit(arc.v) * (radius + distance);
    shapes.emplace_back(side);
  }
  for (const double end : {arc.start, arc.start + arc.sweep}) {
    shapes.emplace_back(DxfLine{at(end, vertex.startWidth / 2), at(end, -vertex.startWidth / 2)});
  }
}

void addWidePiece(const DxfVertex& vertex, SketchPoint to, Shapes& shapes) {
  const DxfShape piece = bulgedPiece(vertex.point, to, vertex.bulge);
  if (!isWide(vertex)) {
    shapes.push_back(piece);
  } else if (const auto* arc = std::get_if<DxfCurve>(&piece)) {
    addWideArc(*arc, vertex, shapes);
  } else {
    const SketchPoint normal = perpendicular(unit(to - vertex.point));
    const SketchPoint atStart = normal * (vertex.startWidth / 2);
    const SketchPoint atEnd = normal * (vertex.endWidth / 2);
    shapes.emplace_back(
        DxfPath{{vertex.point + atStart, to + atEnd, to - atEnd, vertex.point - atStart}, true});
  }
}

// Drops vertices that repeat the one before; what bulges between equal points is nothing.
void dropRepeated(std::vector<DxfVertex>& vertices) {
  std::vector<DxfVertex> kept;
  for (const DxfVertex& vertex : vertices) {
    if (!kept.empty() && kept.back().point == vertex.point) {
      kept.back() = vertex;
    } else {
      kept.push_back(vertex);
    }
  }
  vertices = std::move(kept);
}

using Edge = std::pair<std::size_t, std::size_t>;

Edge edgeBetween(std::size_t a, std::size_t b) { return {std::min(a, b), std::max(a, b)}; }

}  // namespace

void addPolylineShapes(DxfPolyline polyline, Shapes& shapes) {
  auto& vertices = polyline.vertices;
  dropRepeated(vertices);
  if (vertices.size() > 2 && vertices.front().point == vertices.back().point) {
    vertices.pop_back();
    polyline.isClosed = true;
  }
  if (vertices.size() < 2) {
    shapes.emplace_back(DxfNothing{DxfReason::noSize});
    return;
  }
  // A closed one of two straight pieces goes there and back on one line.
  const bool isStraight = std::none_of(vertices.begin(), vertices.end(), isBulged);
  if (isStraight && vertices.size() == 2) polyline.isClosed = false;
  const std::size_t pieces = polyline.isClosed ? vertices.size() : vertices.size() - 1;
  const auto end = vertices.begin() + static_cast<std::ptrdiff_t>(pieces);
  const bool hasWidth = std::any_of(vertices.begin(), end, isWide);
  if (isStraight && !hasWidth) {
    DxfPath path{{}, polyline.isClosed};
    path.points.reserve(vertices.size());
    for (const DxfVertex& vertex : vertices) path.points.push_back(vertex.point);
    shapes.emplace_back(std::move(path));
    return;
  }
  const auto hasSameWidth = [&](const DxfVertex& vertex) {
    return vertex.startWidth == vertices.front().startWidth && vertex.endWidth == vertices.front().startWidth;
  };
  if (isStraight && std::all_of(vertices.begin(), end, hasSameWidth) && addMitredOutline(polyline, shapes))
    return;
  for (std::size_t i = 0; i < pieces; ++i) {
    addWidePiece(vertices[i], vertices[(i + 1) % vertices.size()].point, shapes);
  }
}

void addLightPolyline(const DxfObject& object, Shapes& shapes) {
  DxfPolyline polyline;
  polyline.isClosed = (object.flags(70) & kClosed) != 0;
  const double width = std::max(0.0, object.number(43, 0));
  const DxfGroup* lastX = nullptr;  // an x that waits for its y
  for (const DxfGroup& group : object.groups()) {
    if (group.code == 10) {
      if (lastX != nullptr) throw DxfError(fmt::format("Line {}: a vertex has no y.", lastX->line));
      lastX = &group;
    } else if (group.code == 20) {
      if (lastX == nullptr) throw DxfError(fmt::format("Line {}: a vertex has no x.", group.line));
      polyline.vertices.push_back({{lastX->number(), group.number()}, 0, width, width});
      lastX = nullptr;
    } else if (!polyline.vertices.empty()) {
      DxfVertex& vertex = polyline.vertices.back();
      if (group.code == 42) vertex.bulge = group.number();
      if (group.code == 40) vertex.startWidth = std::max(0.0, group.number());
      if (group.code == 41) vertex.endWidth = std::max(0.0, group.number());
    }
  }
  if (lastX != nullptr) throw DxfError(fmt::format("Line {}: a vertex has no y.", lastX->line));
  addPolylineShapes(std::move(polyline), shapes);
}

void DxfPolylineReader::begin(const DxfObject& object) {
  *this = {};
  isOpen_ = true;
  flags_ = object.flags(70);
  plane_ = object.plane();
  startWidth_ = std::max(0.0, object.number(40, 0));
  endWidth_ = std::max(0.0, object.number(41, startWidth_));
  meshRows_ = object.integer(71, 0);
  meshColumns_ = object.integer(72, 0);
  polyline_.isClosed = (flags_ & kClosed) != 0;
}

void DxfPolylineReader::add(const DxfObject& vertex) {
  const unsigned flags = vertex.flags(70);
  if ((flags_ & kFaces) != 0 && (flags & kFaceVertex) != 0 && (flags & kMeshVertex) == 0) {
    std::vector<int> face;
    for (const int code : {71, 72, 73, 74}) {
      if (const int number = vertex.integer(code, 0); number != 0) face.push_back(number);
    }
    faces_.push_back(std::move(face));
    return;
  }
  if ((flags & kFrameVertex) != 0) return;
  polyline_.vertices.push_back({vertex.point(10, "position"), vertex.number(42, 0),
                                std::max(0.0, vertex.number(40, startWidth_)),
                                std::max(0.0, vertex.number(41, endWidth_))});
}

void DxfPolylineReader::addMesh(Shapes& shapes) const {
  const auto rows = static_cast<std::size_t>(std::max(meshRows_, 0));
  const auto columns = static_cast<std::size_t>(std::max(meshColumns_, 0));
  const auto& vertices = polyline_.vertices;
  if (rows == 0 || columns == 0 || vertices.size() / rows < columns) return;
  const auto line = [&](std::size_t a, std::size_t b) {
    shapes.emplace_back(DxfLine{vertices[a].point, vertices[b].point});
  };
  const bool isClosedAlong = (flags_ & kClosed) != 0;
  const bool isClosedAcross = (flags_ & kMeshClosedAcross) != 0;
  for (std::size_t row = 0; row < rows; ++row) {
    for (std::size_t column = 0; column < columns; ++column) {
      const std::size_t here = row * columns + column;
      if (column + 1 < columns) line(here, here + 1);
      if (column + 1 == columns && isClosedAcross && columns > 2) line(here, row * columns);
      if (row + 1 < rows) line(here, here + columns);
      if (row + 1 == rows && isClosedAlong && rows > 2) line(here, column);
    }
  }
}

void DxfPolylineReader::addFaces(Shapes& shapes) const {
  const auto& vertices = polyline_.vertices;
  std::set<Edge> edges;
  for (const std::vector<int>& face : faces_) {
    for (std::size_t i = 0; i < face.size(); ++i) {
      if (face[i] < 0) continue;
      const auto from = static_cast<std::size_t>(face[i]);
      const auto to = static_cast<std::size_t>(std::abs(static_cast<long long>(face[(i + 1) % face.size()])));
      if (from > vertices.size() || to > vertices.size()) continue;
      if (edges.insert(edgeBetween(from, to)).second) {
        shapes.emplace_back(DxfLine{vertices[from - 1].point, vertices[to - 1].point});
      }
    }
  }
}

void DxfPolylineReader::finish(Shapes& shapes) {
  isOpen_ = false;
  const std::size_t first = shapes.size();
  if ((flags_ & kMesh) != 0) {
    addMesh(shapes);
  } else if ((flags_ & kFaces) != 0) {
    addFaces(shapes);
  } else if ((flags_ & kInSpace) != 0) {
    for (DxfVertex& vertex : polyline_.vertices) vertex = {vertex.point};
    addPolylineShapes(std::move(polyline_), shapes);
  } else if (plane_ == DxfObject::Plane::other) {
    shapes.emplace_back(DxfNothing{DxfReason::tilted});
  } else {
    addPolylineShapes(std::move(polyline_), shapes);
    for (std::size_t i = first; i < shapes.size(); ++i) {
      if (plane_ == DxfObject::Plane::mirrored) shapes[i] = mapped(shapes[i], planeMap(plane_));
    }
  }
  if (shapes.size() == first) shapes.emplace_back(DxfNothing{DxfReason::noSize});
}

}  // namespace ostrelon
