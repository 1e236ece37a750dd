// Drawings in from DXF: what of a file Ostrelon can draw, as entities.
//
// | in the file                                  | entity                                          |
// |----------------------------------------------|-------------------------------------------------|
// | LINE                                         | line                                            |
// | CIRCLE; ARC through a full turn              | circle                                          |
// | ARC                                          | arc                                             |
// | closed LWPOLYLINE or POLYLINE, straight      | polygon                                         |
// | other polylines                              | a line for each straight piece, an arc for each |
// |                                              | bulged one; the outline of what has a width     |
// | ELLIPSE, SPLINE                              | chords, within `kDxfChordTolerance` of the curve |
// | SOLID, TRACE, 3DFACE                         | polygon                                         |
// | meshes and faces of a POLYLINE               | a line for each edge                            |
// | HATCH                                        | its outlines                                    |
// | LEADER                                       | lines                                           |
// | INSERT, DIMENSION                            | what their blocks hold                          |
// | what Ostrelon has written of a wall          | the wall, with its openings                     |
//
// A polyline that ends where it began counts as closed. Height is dropped; what is mirrored by its extrusion
// direction is mirrored back. Everything else is counted by kind and reason, and left out.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/sketch_entity.h"
#include "exchange/dxf_file.h"
#include "exchange/dxf_groups.h"

namespace ostrelon {

/// How far chords may lie from their curve: a 64th of an inch, in feet.
inline constexpr double kDxfChordTolerance = 1.0 / 768;
/// How many entities a drawing may have once its blocks are drawn out.
inline constexpr std::size_t kMostDxfEntities = 10'000'000;

struct DxfChoices {
  double feetPerUnit = 1;
  /// Names of layers, without regard to case. Absent: all that are neither off nor frozen.
  std::optional<std::vector<std::string>> layers;
  std::size_t mostEntities = kMostDxfEntities;
};

struct DxfDrawing {
  std::vector<SketchEntity> entities;
  /// Of Ostrelon's own walls: their systems, each once, and what is in them.
  std::vector<WallSystemSpec> systems;
  std::vector<Opening> openings;
  /// How many objects of each kind were left out, by the reason and the format's name for the kind.
  std::map<std::pair<DxfReason, std::string>, std::size_t> leftOut;
  /// How many objects would be drawn on each layer, whether it was taken or not; by `DxfFile::layers`.
  std::vector<std::size_t> objectsOnLayer;

  std::size_t leftOutCount() const;
};

/// What of the file is drawn, in feet. Throws `DxfError` where that would be more than may be, or where the
/// file has no layer of a name that was asked for.
DxfDrawing drawDxf(const DxfFile& file, const DxfChoices& choices = {});

}  // namespace ostrelon
