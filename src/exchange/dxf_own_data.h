// What Ostrelon writes beside the shapes of a DXF file, so that its own drawings come back as what they were:
// the extended data of entities, which other programs keep and do not show.
//
// - The centre line of a wall: the layer of its system, the system's name and notes, its thickness and
// height,
//   then for each opening its kind, hinge and swing, its distance and width.
// - Every other part of a wall or an opening, as an outline: that it is one, and is drawn again by the wall.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "core/plan.h"
#include "core/wall_system.h"
#include "exchange/dxf_object.h"
#include "exchange/dxf_output.h"
#include "exchange/dxf_shapes.h"
#include "exchange/dxf_text.h"

namespace ostrelon {

/// The name under which the data is registered in a file.
inline constexpr std::string_view kDxfOwnApplication = "OSTRELON";

struct DxfWallData {
  std::string_view layer;  ///< of the wall; in the bytes of the file
  DxfWallContent content;
};

/// `scale`: units of the file to one sketch unit.
void writeDxfWallData(DxfOutput& out, std::string_view layer, const WallSystemSpec* system,
                      const std::vector<Opening>& openings, double scale);
void writeDxfPartMark(DxfOutput& out);

enum class DxfOwnRole { none, wall, part };
DxfOwnRole dxfOwnRole(const DxfObject& object);
/// Of an object in the role of a wall. Absent where another program has left it in disorder.
std::optional<DxfWallData> dxfWallData(const DxfObject& object, const DxfTextDecoder& decoder);

/// A text in the bytes of the file: ASCII as it is, what lies beyond in the form \U+2713.
std::string dxfEscaped(std::string_view text);

}  // namespace ostrelon
