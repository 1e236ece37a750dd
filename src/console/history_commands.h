// The commands of the document history: `checkpoint`, `history` and `branch`.
#pragma once

#include "console/command_interpreter.h"

namespace ostrelon::CommandInterpreter {

Reply checkpointCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply historyCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply branchCommand(const ResolvedCommand& command, SketchViewModel& sketch);

}  // namespace ostrelon::CommandInterpreter
