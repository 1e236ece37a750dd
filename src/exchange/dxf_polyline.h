// Polylines of both forms, their arcs and widths, and the meshes that the older form holds as well.
#pragma once

#include <vector>

#include "exchange/dxf_object.h"
#include "exchange/dxf_shapes.h"

namespace ostrelon {

/// A vertex, and the piece from it to the next one. `bulge` is the tangent of a quarter of the angle of the
/// arc, positive counter-clockwise; 0 for a straight piece.
struct DxfVertex {
  SketchPoint point;
  double bulge = 0;
  double startWidth = 0;  ///< of the piece, not below 0
  double endWidth = 0;
};

struct DxfPolyline {
  std::vector<DxfVertex> vertices;
  bool isClosed = false;
};

/// A straight one is a path, else each piece is a line or an arc. Where pieces have a width, their outlines.
/// One that ends where it began counts as closed. Nothing for one without two different vertices.
void addPolylineShapes(DxfPolyline polyline, std::vector<DxfShape>& shapes);

/// An LWPOLYLINE.
void addLightPolyline(const DxfObject& object, std::vector<DxfShape>& shapes);

/// A POLYLINE, as its vertices come: plain, in space, or one of two kinds of mesh.
class DxfPolylineReader {
 public:
  bool isOpen() const { return isOpen_; }
  /// Begins with the POLYLINE itself. Throws `DxfError`.
  void begin(const DxfObject& object);
  /// The next VERTEX. Throws `DxfError`.
  void add(const DxfObject& vertex);
  /// What it draws; `DxfNothing` for what it is left out for.
  void finish(std::vector<DxfShape>& shapes);

 private:
  void addMesh(std::vector<DxfShape>& shapes) const;
  void addFaces(std::vector<DxfShape>& shapes) const;

  bool isOpen_ = false;
  unsigned flags_ = 0;
  DxfObject::Plane plane_ = DxfObject::Plane::plan;
  double startWidth_ = 0;
  double endWidth_ = 0;
  int meshRows_ = 0;
  int meshColumns_ = 0;
  DxfPolyline polyline_;
  std::vector<std::vector<int>> faces_;  // numbers of vertices from 1; negative: the edge from it is unseen
};

}  // namespace ostrelon
