// Drawings in from DXF: what of a file Ostrelon can draw, as entities.
//
// | in the file                                  | entity                                          |
// |----------------------------------------------|-------------------------------------------------|
// | LINE                                         | line                                            |
// | CIRCLE; ARC through a full turn              | circle                                          |
// | ARC                                          | arc                                             |
// | closed LWPOLYLINE or POLYLINE, straight      | polygon                                         |
// | other polylines                              | a line for each straight piece, an arc for each |
// |                                              | bulged one                                      |
//
// A polyline that ends where it began counts as closed. Height is dropped; what is mirrored by its extrusion
// direction is mirrored back. Everything else, and what lies on a paper sheet, is counted by kind and left
// out. Coordinates are taken unchanged; `DxfDrawing::unit` says what they mean.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/sketch_entity.h"
#include "exchange/dxf_groups.h"

namespace ostrelon {

/// The unit in which a file says that it is drawn.
struct DxfUnit {
  std::string_view name;  ///< in the plural: "millimeters"
  double feet = 1;        ///< feet in one
  friend bool operator==(const DxfUnit&, const DxfUnit&) = default;
};

struct DxfDrawing {
  std::vector<SketchEntity> entities;
  /// Absent where the file names none.
  std::optional<DxfUnit> unit;
  /// How many objects of each kind were left out, by the format's name for it.
  std::map<std::string, std::size_t> leftOut;

  std::size_t leftOutCount() const;
};

/// Throws `DxfError` for what is not a DXF text, is cut off, or holds an unreadable value in what
/// would be drawn. Nothing else is refused.
DxfDrawing readDxf(std::string_view text);

}  // namespace ostrelon
