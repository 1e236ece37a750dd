#include "documents/restore_drawing.h"

namespace ostrelon {

void restoreDrawing(Sketch& sketch, const Drawing& then) {
  const auto scope = sketch.change();
  sketch.edit([&](Drawing& drawing) {
    drawing.entities = then.entities;
    for (const WallSystemSpec& system : then.wallSystemSpecs) {
      if (drawing.wallSystem(system.id) == nullptr) drawing.wallSystemSpecs.push_back(system);
    }
  });
  sketch.keepSelectionOfEntities();
}

}  // namespace ostrelon
