// One object of a DXF file at a time becomes shapes. What consists of several objects, a POLYLINE of its
// vertices, is in dxf_polyline.h; INSERT and DIMENSION, which draw blocks, are read in dxf_reader.cpp.
#pragma once

#include <vector>

#include "exchange/dxf_object.h"
#include "exchange/dxf_shapes.h"

namespace ostrelon {

/// Adds what the object draws, and `DxfNothing` for what it is left out for. Throws `DxfError` for an
/// unreadable value.
void addDxfShapes(const DxfObject& object, std::vector<DxfShape>& shapes);

/// From the coordinates of the object's plane to those of the plan. The plane must not be tilted.
AffineMap planeMap(DxfObject::Plane plane);

/// The outlines of a HATCH.
void addHatchOutlines(const DxfObject& hatch, std::vector<DxfShape>& shapes);

/// What the groups of a spline say, checked. Without control points a smooth curve through its fit points.
/// Throws `DxfError`.
DxfShape checkedSpline(DxfSpline spline, const std::vector<SketchPoint>& fitPoints, const DxfObject& object);

}  // namespace ostrelon
