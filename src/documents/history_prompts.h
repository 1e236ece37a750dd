// The history commands of the menus: they ask for what they need and say how it went, on the console
// and in a toast.
#pragma once

#include <string>

#include "core/sketch_view_model.h"

namespace ostrelon {

/// Asks for a message and saves a checkpoint with it.
void promptForCheckpoint(SketchViewModel& sketch);
/// Asks for a name and creates a branch from the head of the current one.
void promptForBranch(SketchViewModel& sketch);
/// Switches to a branch by its name or identifier.
void switchBranchFromMenu(SketchViewModel& sketch, const std::string& nameOrID);

}  // namespace ostrelon
