// What an undo step has changed of the wall systems, and taking it back. The systems have no undo of their
// own: whoever edits one in the panel does so for good. A step takes back the fields that it changed itself,
// and leaves the others as they have become since.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "core/wall_system.h"

namespace ostrelon {

/// One system before and after; absent where it was not there. At least one of both is.
struct WallSystemChange {
  std::optional<WallSystemSpec> before;
  std::optional<WallSystemSpec> after;
  std::size_t position = 0;  ///< 0-based, of the system in the list that it was in first
  friend bool operator==(const WallSystemChange&, const WallSystemChange&) = default;
};

std::vector<WallSystemChange> wallSystemChanges(const std::vector<WallSystemSpec>& before,
                                                const std::vector<WallSystemSpec>& after);

/// Takes the changes back, the last one first. Gives what takes this back in turn. The last system of a list
/// stays, whatever added it.
std::vector<WallSystemChange> takeBackWallSystemChanges(const std::vector<WallSystemChange>& changes,
                                                        std::vector<WallSystemSpec>& systems);

}  // namespace ostrelon
