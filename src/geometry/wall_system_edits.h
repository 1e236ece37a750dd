// Adding, changing and removing wall systems so that undo takes it back. A step takes back the fields that it
// changed itself; what the panel's fields have written into a system stays.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "core/sketch.h"

namespace ostrelon {

/// Why the wall systems stay as they are.
enum class WallSystemProblem {
  noName,
  nameTaken,     ///< without regard to case, as names are looked up
  notAboveZero,  ///< a thickness or height has to be finite and above 0
  unknownSystem,
  inUse,             ///< by walls
  lastSystem,        ///< one has to stay
  alreadyConverted,  ///< from inches
};
/// Absent: done, as one undo step.
using WallSystemResult = std::optional<WallSystemProblem>;

/// The walls of this system.
std::size_t countWalls(const Sketch& sketch, const UUID& systemID);

/// What is wrong with the name for a system; `renamed` is the one that has it at present, if any.
WallSystemResult nameProblem(const Drawing& drawing, std::string_view name,
                             std::optional<UUID> renamed = std::nullopt);
/// A name that is free, made of this one: `W2-INT`, `W2-INT-2`, …
std::string freeWallSystemName(const Drawing& drawing, std::string_view name);

/// Adds it behind the others. Its identifier is new to the document.
WallSystemResult addWallSystem(Sketch& sketch, const WallSystemSpec& spec);
/// Writes thickness, height, name and notes of the system with this identifier.
WallSystemResult changeWallSystem(Sketch& sketch, const WallSystemSpec& spec);
/// `successor` takes over its walls. Where it was the active system, the successor is from now on, or else
/// the first of those that are left.
WallSystemResult deleteWallSystem(Sketch& sketch, const UUID& id,
                                  std::optional<UUID> successor = std::nullopt);
/// Whether the systems have been converted, which the document remembers under "inches" of its plan.
bool areConvertedFromInches(const Drawing& drawing);
/// For systems whose sizes were meant as inches: divides every thickness and height by 12, once.
WallSystemResult convertWallSystemsFromInches(Sketch& sketch);

}  // namespace ostrelon
