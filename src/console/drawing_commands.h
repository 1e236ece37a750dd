// The commands that draw: `line`, `wall`, `circle`, `rect` and `poly`.
#pragma once

#include "console/command_interpreter.h"

namespace ostrelon::CommandInterpreter {

Reply lineCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply wallCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply circleCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply rectangleCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply polygonCommand(const ResolvedCommand& command, SketchViewModel& sketch);

}  // namespace ostrelon::CommandInterpreter
