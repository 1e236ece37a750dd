// What comes before and after the entities of a DXF file: the header, the tables of layers, line types and
// styles, the blocks and the objects that each version asks for.
#pragma once

#include "core/entity_bounds.h"
#include "exchange/dxf_layers.h"
#include "exchange/dxf_output.h"

namespace ostrelon {

/// The line type of a wall's centre line.
inline constexpr std::string_view kDxfCenterLineType = "CENTER";

struct DxfFrame {
  DxfForm form;
  SketchBox bounds;  ///< of the whole drawing, in the unit of the file
  const DxfLayers& layers;
  DxfHandle firstFree;  ///< above every handle of the entities
};

/// The handle of the space in which all entities lie; they name it as their owner.
inline constexpr DxfHandle kDxfModelSpace{0x1F};
/// The first handle that the entities may take.
DxfHandle firstEntityHandle(const DxfLayers& layers);

/// How many of the file's units are a foot.
double dxfUnitsPerFoot(DxfExportUnit unit);

/// Everything up to the first entity.
void writeDxfHead(DxfOutput& out, const DxfFrame& frame);
/// Everything after the last one.
void writeDxfTail(DxfOutput& out, const DxfFrame& frame);

}  // namespace ostrelon
