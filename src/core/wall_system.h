// A named wall assembly. `thickness` is the full width of the wall and is drawn as so many sketch
// units; `height` is a number of the same space.
#pragma once

#include <string>
#include <vector>

#include "platform/uuid.h"

namespace ostrelon {

struct WallSystemSpec {
  UUID id;
  std::string name;
  double thickness = 0;
  double height = 0;
  std::string assemblyNotes;
  friend bool operator==(const WallSystemSpec&, const WallSystemSpec&) = default;
};

/// The built-in systems that a new document starts with. Made once a process, with fresh identifiers.
const std::vector<WallSystemSpec>& defaultWallSystems();

/// The width, in sketch units, with which a wall of an unknown system is painted.
inline constexpr double kUnknownWallThickness = 6.0;

}  // namespace ostrelon
