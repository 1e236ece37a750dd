#include "app/align.h"

#include <fmt/format.h>

namespace ostrelon {

void alignSelectionAndReport(SketchViewModel& sketch, AlignmentAxis axis) {
  const char* direction = axis == AlignmentAxis::horizontal ? "horizontally" : "vertically";
  if (sketch.selectedEntityIDs->size() < 2) {
    sketch.appendConsoleLine("Select at least 2 entities.", false, true);
    return;
  }
  const int moved = sketch.alignSelection(axis);
  sketch.appendConsoleLine(moved == 0 ? fmt::format("Selection already aligned {}.", direction)
                                      : fmt::format("Aligned {} entities {}.", moved, direction),
                           false, true);
}

}  // namespace ostrelon
