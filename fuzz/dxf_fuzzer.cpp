// The reader of drawings from other programs: whatever the bytes, it ends with places that are numbers, or
// with an error in words.
#include <cstdint>
#include <string>

#include "core/entity_bounds.h"
#include "exchange/dxf_reader.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ostrelon;
  try {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    // What is drawn out of blocks is bounded, here so that each of many inputs takes no second.
    DxfChoices choices;
    choices.mostEntities = 20'000;
    for (const DxfDamage damage : {DxfDamage::salvage, DxfDamage::refuse}) {
      const DxfDrawing drawing = drawDxf(parseDxf(bytes, damage), choices);
      for (const SketchEntity& entity : drawing.entities) {
        require(isFinite(entityBounds(entity)), "an entity has its place");
        const auto* arc = std::get_if<ArcEntity>(&entity);
        require(arc == nullptr || arc->radius > 0, "an arc has a radius");
      }
    }
  } catch (const DxfError& error) {
    require(*error.what() != '\0', "a refusal has a text");
  }
  return 0;
}
