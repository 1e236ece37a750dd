// The commands that cut and lengthen: `trim` and `extend`.
#pragma once

#include "console/command_interpreter.h"

namespace ostrelon::CommandInterpreter {

Reply trimCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply extendCommand(const ResolvedCommand& command, SketchViewModel& sketch);

}  // namespace ostrelon::CommandInterpreter
