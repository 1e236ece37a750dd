// The wall systems of the document, and the built-in ones.
#include "core/wall_system.h"

#include <algorithm>

#include "core/sketch_view_model.h"
#include "platform/unicode.h"

namespace ostrelon {

const std::vector<WallSystemSpec>& defaultWallSystems() {
  static const std::vector<WallSystemSpec> systems{
      {UUID::random(), "W2-INT", 4.5, 96, "2×4 stud wall, interior"},
      {UUID::random(), "W2-EXT", 6.5, 96, "2×6 stud wall, exterior"},
      {UUID::random(), "CMU-8", 8, 96, "8\" concrete masonry unit"},
  };
  return systems;
}

const WallSystemSpec* SketchViewModel::activeWallSystemSpec() const {
  if (const WallSystemSpec* active = wallSystemSpec(activeWallSystemSpecID.get())) return active;
  return wallSystemSpecs->empty() ? nullptr : &wallSystemSpecs->front();
}

const WallSystemSpec* SketchViewModel::wallSystemSpec(const UUID& id) const {
  const auto found = std::find_if(wallSystemSpecs->begin(), wallSystemSpecs->end(),
                                  [&](const WallSystemSpec& spec) { return spec.id == id; });
  return found == wallSystemSpecs->end() ? nullptr : &*found;
}

const WallSystemSpec* SketchViewModel::wallSystemSpec(std::string_view named) const {
  const std::string wanted = lowerCased(named);
  const auto found =
      std::find_if(wallSystemSpecs->begin(), wallSystemSpecs->end(),
                   [&](const WallSystemSpec& spec) { return lowerCased(spec.name) == wanted; });
  return found == wallSystemSpecs->end() ? nullptr : &*found;
}

void SketchViewModel::setActiveWallSystem(const WallSystemSpec& spec) {
  const WallSystemSpec* active = activeWallSystemSpec();
  if (active != nullptr && *active == spec) return;
  const ChangeScope scope(tracker_);
  activeWallSystemSpecID = spec.id;
  appendConsoleLine("Active wall system: " + spec.name, false, true);
}

void SketchViewModel::updateWallSystemSpec(const WallSystemSpec& spec) {
  const ChangeScope scope(tracker_);
  for (std::size_t row = 0; row < wallSystemSpecs->size(); ++row) {
    if (wallSystemSpecs.get()[row].id != spec.id) continue;
    if (!(wallSystemSpecs.get()[row] == spec)) wallSystemSpecs.edit()[row] = spec;
    isDocumentDirty = true;
    return;
  }
}

}  // namespace ostrelon
