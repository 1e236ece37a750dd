// A DXF file as it was read: its layers, its blocks, and what its objects draw, in the unit of the file.
// `drawDxf` makes a drawing of it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "exchange/dxf_shapes.h"

namespace ostrelon {

struct DxfItem {
  DxfShape shape;
  std::uint32_t layer = 0;  ///< its place in `DxfFile::layers`
  std::uint16_t kind = 0;   ///< its place in `DxfFile::kinds`
  /// `onPaper` and `invisible`, which go before what the shape says; else `drawn`.
  DxfReason hidden = DxfReason::drawn;
  bool continues = false;  ///< it is of the same object as the one before
};

struct DxfLayer {
  std::string name;  ///< UTF-8
  bool isOff = false;
  bool isFrozen = false;
};

struct DxfBlock {
  bool isDefined = false;  ///< false where the file only names it, or takes it from another file
  SketchPoint base;
  std::vector<DxfItem> items;
};

struct DxfFile {
  std::vector<DxfLayer> layers;
  std::vector<DxfBlock> blocks;
  std::vector<DxfItem> items;
  std::vector<std::string> kinds;  ///< the format's names of the kinds of objects: "LINE"

  int unitNumber = 0;            ///< of $INSUNITS; 0 for none
  std::optional<bool> isMetric;  ///< by $MEASUREMENT

  // Of a damaged file, where what can be read was asked for.
  std::size_t lostPlaces = 0;
  std::vector<std::string> losses;  ///< the first of them, as whole sentences
};

/// The layer of what names none; inside a block it stands for the layer of what draws the block.
inline constexpr std::uint32_t kDxfLayerZero = 0;

enum class DxfDamage {
  refuse,  ///< a damaged place is an error
  salvage  ///< a damaged place is left out
};

/// `bytes` are those of a text or a binary DXF file, in any encoding and with line ends of any kind. Throws
/// `DxfError` for what is no DXF at all, and, without `salvage`, for what is cut off or holds an
/// unreadable value in what would be drawn. Nothing else is refused.
DxfFile parseDxf(std::string bytes, DxfDamage damage = DxfDamage::refuse);

}  // namespace ostrelon
