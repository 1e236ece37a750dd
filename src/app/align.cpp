#include "app/align.h"
#include "geometry/edit_operations.h"

#include <fmt/format.h>

namespace ostrelon {

void alignSelectionAndReport(Workspace& workspace, AlignmentAxis axis) {
  const char* direction = axis == AlignmentAxis::horizontal ? "horizontally" : "vertically";
  if (workspace.sketch.selection->ids.size() < 2) {
    workspace.messages.append("Select at least 2 entities.", false, true);
    return;
  }
  const int moved = alignSelection(workspace.sketch, axis);
  workspace.messages.append(moved == 0 ? fmt::format("Selection already aligned {}.", direction)
                                       : fmt::format("Aligned {} entities {}.", moved, direction),
                            false, true);
}

}  // namespace ostrelon
