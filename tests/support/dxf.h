// What a DXF text draws, with every layer on, one unit a foot.
#pragma once

#include <cstdlib>
#include <string>
#include <utility>

#include "exchange/dxf_reader.h"

namespace ostrelon::testing {

inline DxfDrawing readDxf(std::string text) {
  DxfFile file = parseDxf(std::move(text));
  for (DxfLayer& layer : file.layers) layer.isOff = layer.isFrozen = false;
  return drawDxf(file);
}

/// How many objects of a kind were left out for a reason.
inline std::size_t leftOut(const DxfDrawing& drawing, DxfReason reason, const std::string& kind) {
  const auto found = drawing.leftOut.find({reason, kind});
  return found == drawing.leftOut.end() ? 0 : found->second;
}

/// The first interpreter that has an independent reader of DXF; empty where none has.
inline std::string pythonWithReader() {
  for (const char* python : {"/usr/bin/python3", "python3"}) {
    if (std::system((std::string(python) + " -c 'import ezdxf' >/dev/null 2>&1").c_str()) == 0) return python;
  }
  return {};
}

}  // namespace ostrelon::testing
