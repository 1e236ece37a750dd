// The differences of two drawings one by one, each with its words and with what it is about.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "documents/compare.h"

namespace ostrelon {

struct ToldDifference {
  DifferenceKind kind = DifferenceKind::changed;
  bool isWallSystem = false;  ///< or the look of the plan: nothing that lies on the canvas
  UUID id;  ///< of the drawing after; of what was removed, of the drawing before; of an opening, its wall's
  std::string text;  ///< "Wall 18: moved 2' right, 1' longer"
  friend bool operator==(const ToldDifference&, const ToldDifference&) = default;
};

/// Those whose texts `differenceLines` gives, in its order.
std::vector<ToldDifference> toldDifferences(const DrawingDifference& difference, const Drawing& before,
                                            const Drawing& after, std::size_t limit = SIZE_MAX);

}  // namespace ostrelon
