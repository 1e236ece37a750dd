// The commands that edit the selection: `assign`, `move`, `length`, `nudge`, `center` and `convert`.
#pragma once

#include "console/command_interpreter.h"

namespace ostrelon::CommandInterpreter {

Reply assignCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply moveCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply lengthCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply nudgeCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply centerCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply convertCommand(const ResolvedCommand& command, SketchViewModel& sketch);

/// The primary selection when it is a wall, also among several.
std::optional<UUID> selectedWallID(const SketchViewModel& sketch);

}  // namespace ostrelon::CommandInterpreter
