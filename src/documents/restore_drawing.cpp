#include "documents/restore_drawing.h"

namespace ostrelon {

void restoreDrawing(Sketch& sketch, const Drawing& then) {
  const auto scope = sketch.change();
  sketch.edit(
      [&](Drawing& drawing) {
        drawing.entities = then.entities;
        drawing.plan = then.plan;
        drawing.wallSystemSpecs = then.wallSystemSpecs;
      },
      UndoStep::withWallSystems);
  sketch.keepSelectionOfEntities();
}

}  // namespace ostrelon
