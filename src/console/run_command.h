// The command that draws walls along a typed path: `run 0,0 e42' n28' w42' c out`.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseRun(const Words& words, const ParseState& state, Place place);

/// The walls are one undo step, and the selection.
Reply run(const DrawRun& walls, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
