#include "core/drawing.h"

#include <algorithm>

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

const WallSystemSpec* Drawing::activeWallSystem() const {
  if (const WallSystemSpec* active = wallSystem(activeWallSystemSpecID)) return active;
  return wallSystemSpecs.empty() ? nullptr : &wallSystemSpecs.front();
}

const WallSystemSpec* Drawing::wallSystem(const UUID& id) const {
  const auto found = std::find_if(wallSystemSpecs.begin(), wallSystemSpecs.end(),
                                  [&](const WallSystemSpec& spec) { return spec.id == id; });
  return found == wallSystemSpecs.end() ? nullptr : &*found;
}

const WallSystemSpec* Drawing::wallSystem(std::string_view named) const {
  const std::string wanted = lowerCased(named);
  const auto found =
      std::find_if(wallSystemSpecs.begin(), wallSystemSpecs.end(),
                   [&](const WallSystemSpec& spec) { return lowerCased(spec.name) == wanted; });
  return found == wallSystemSpecs.end() ? nullptr : &*found;
}

std::optional<std::string> Drawing::wallSystemName(const SketchEntity& entity) const {
  const auto* wall = std::get_if<WallEntity>(&entity);
  const WallSystemSpec* spec = wall != nullptr ? wallSystem(wall->systemSpecID) : nullptr;
  return spec != nullptr ? std::optional(spec->name) : std::nullopt;
}

}  // namespace ostrelon
