// The tool forms of `line`, `poly`, `trim` and `select`: the command word alone changes the tool.
#pragma once

#include "console/command_interpreter.h"

namespace ostrelon::CommandInterpreter {

/// Activates the tool and gives the reply: "Line tool active.".
Reply activateToolCommand(SketchTool tool, SketchViewModel& sketch);

}  // namespace ostrelon::CommandInterpreter
