// The commands that read or reset: `help`, `clear` and `spec`.
#pragma once

#include "console/command_interpreter.h"

namespace ostrelon::CommandInterpreter {

Reply helpCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply clearCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply specCommand(const ResolvedCommand& command, SketchViewModel& sketch);

/// `spec list`: one system line of all wall systems.
void printWallSystems(SketchViewModel& sketch);
/// `spec show`: one system line on the named system or, without a name, on that of the selected wall
/// or the active one. False, with nothing printed, when there is no such system.
bool printWallSystem(const std::optional<std::string>& name, SketchViewModel& sketch);

}  // namespace ostrelon::CommandInterpreter
