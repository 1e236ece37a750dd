// Adding openings to a sketch, and where each of them is in its wall. What does not fit is refused and
// changes nothing. Changing and deleting them is in geometry/plan_item_operations.h.
#pragma once

#include <optional>
#include <string>

#include "core/sketch.h"
#include "geometry/openings.h"

namespace ostrelon {

/// The wall of this identifier as openings see it; absent for what is none, or has no length.
std::optional<OpeningWall> openingWall(const Sketch& sketch, const UUID& wallID);
/// Where the opening is, and whether it fits there; absent where its wall is no wall.
std::optional<PlacedOpening> placedOpening(const Sketch& sketch, const Opening& opening);
OpeningLayout openingLayout(const Sketch& sketch);

/// The distance that centres an opening of this width in the wall.
double centeredDistance(const OpeningWall& wall, double width);

/// Adds the opening, whose identifier must be new. Absent, with nothing changed, where its wall is no wall;
/// nothing is changed either where the answer does not fit.
std::optional<PlacedOpening> addOpening(Sketch& sketch, const Opening& opening);

/// A copy of the opening in its wall, with an identifier of its own: behind it, else in front of it, at the
/// nearest place where it fits and leaves 6" between. Absent where there is none.
std::optional<Opening> copyBeside(const Sketch& sketch, const Opening& opening);

/// Why it does not fit: "Does not fit Wall 3 (8'-5 1/2\").", "Overlaps the door at 4'-0\" in Wall 3.",
/// "Wall 5 crosses Wall 3 there."; empty where it fits.
std::string openingMisfitText(const PlacedOpening& placed, const Plan& plan);

}  // namespace ostrelon
