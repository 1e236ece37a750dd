// What a document's file cannot tell apart: its numbers have 32 bits, which is about seven digits.
#pragma once

#include <cstddef>
#include <string>

#include "core/entity_list.h"
#include "core/sketch_box.h"

namespace ostrelon {

/// Whether a drawing lies so far from the origin that the numbers of a file are more than a 64th of an inch
/// apart there.
bool liesFarFromOrigin(const SketchBox& box);
/// "The drawing lies up to 2000000 feet from the origin, where a saved file keeps places 1.5 inches apart",
/// without a full stop.
std::string farFromOriginText(const SketchBox& box);

/// How a drawing loses by being saved.
struct SavedPrecision {
  std::string farText;     ///< as above, where it lies far away; else empty
  std::size_t merged = 0;  ///< entities whose ends or size differ, and do not in the file
};
SavedPrecision savedPrecision(const EntityList& entities);

}  // namespace ostrelon
