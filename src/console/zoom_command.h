// The command that moves the view: `zoom [in|out|fit|reset]`.
#pragma once

#include "console/command_interpreter.h"

namespace ostrelon::CommandInterpreter {

Reply zoomCommand(const ResolvedCommand& command, SketchViewModel& sketch);

}  // namespace ostrelon::CommandInterpreter
