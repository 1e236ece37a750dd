// The reader of drawings from other programs: whatever the bytes, it ends with places that are numbers, or
// with an error in words.
#include <cmath>
#include <cstdint>
#include <string>

#include "exchange/dxf_reader.h"
#include "geometry/entity_geometry.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ostrelon;
  try {
    const DxfDrawing drawing = readDxf(std::string(reinterpret_cast<const char*>(data), size));
    for (const SketchEntity& entity : drawing.entities) {
      if (const auto* arc = std::get_if<ArcEntity>(&entity)) {
        require(std::isfinite(arc->center.x) && std::isfinite(arc->center.y), "an arc has a centre");
        require(std::isfinite(arc->radius) && arc->radius > 0, "an arc has a radius");
      } else if (const auto* line = std::get_if<LineEntity>(&entity)) {
        require(std::isfinite(line->from.x) && std::isfinite(line->to.y), "a line has its ends");
      }
    }
  } catch (const DxfError& error) {
    require(*error.what() != '\0', "a refusal has a text");
  }
  return 0;
}
