// Drawings out as DXF, for other programs of the field. One sketch unit is a foot.
//
//   files.writeFile(path, [&](const FileSystem::Writer& write) {
//     writeDxf(drawing.entities, drawing.wallSystemSpecs, DxfVersion::r2000, write);
//   });
//
// | entity    | in the file                                                                  |
// |-----------|------------------------------------------------------------------------------|
// | line      | LINE                                                                         |
// | wall      | its outline as a closed polyline and its centre line as a LINE of line type  |
// |           | CENTER, both on the layer of the wall's system                               |
// | circle    | CIRCLE                                                                       |
// | arc       | ARC                                                                          |
// | rectangle | a closed polyline                                                            |
// | polygon   | a closed polyline                                                            |
//
// A wall with openings has an outline for each of its pieces between them. A door's leaf is a LINE and what
// its tip runs along an ARC on the layer "A-DOOR"; a window's faces and glass are LINEs on "A-GLAZ". Openings
// that do not fit their walls are left out.
//
// In a look with clean walls, these are closed polylines around and within walls that are joined, each on the
// layer of the system that has most of it, and their centre lines lie on a layer of their own, which is off.
// In one with line weights every entity has its pen, in 2000 alone.
//
// A closed polyline is a POLYLINE in R12 and an LWPOLYLINE in 2000. All but walls lies on layer "0", or, by
// kind, on "A-LINE" and others beside it. Walls and their parts carry what dxf_own_data.h tells.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "core/entity_list.h"
#include "core/plan.h"
#include "core/wall_system.h"
#include "exchange/dxf_version.h"
#include "geometry/openings.h"
#include "platform/file_system.h"

namespace ostrelon {

struct DxfWritten {
  std::size_t entities = 0;
  /// What the canvas does not show either: no length, radius or sweep, no vertices, not finite.
  std::size_t leftOut = 0;
};

/// Hands the file to `write` piece by piece, in the order of the list. Holds no copy of the drawing.
DxfWritten writeDxf(const EntityList& entities, std::span<const WallSystemSpec> systems, DxfForm form,
                    const FileSystem::Writer& write, const OpeningLayout& openings = {},
                    const PlanLook& look = {});

/// Entities that all go on one layer, walls included.
struct DxfLayerContent {
  std::string layer;
  EntityList entities;
  std::vector<WallSystemSpec> systems;  ///< those of the walls
};

/// The same of several lists, each on a layer of its own, in their order.
DxfWritten writeDxfByLayer(std::span<const DxfLayerContent> contents, DxfForm form,
                           const FileSystem::Writer& write);

}  // namespace ostrelon
