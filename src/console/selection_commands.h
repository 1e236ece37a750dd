// The commands that select and copy: `select`, `copy` and `paste`.
#pragma once

#include "console/command_interpreter.h"

namespace ostrelon::CommandInterpreter {

Reply selectCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply copyCommand(const ResolvedCommand& command, SketchViewModel& sketch);
Reply pasteCommand(const ResolvedCommand& command, SketchViewModel& sketch);

/// The entity numbers behind the command word as 0-based indices; absent when one is not a whole
/// number of at least 1.
std::optional<std::vector<std::int64_t>> readEntityIndices(const std::vector<std::string>& arguments);

}  // namespace ostrelon::CommandInterpreter
