// The command on wall systems: `spec list`, `spec use` and `spec show`.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseSpec(const Words& words, const ParseState& state, Place place);

/// Writes one system line of all wall systems.
Reply run(const ListWallSystems& list, const CommandContext& context);
Reply run(const UseWallSystem& use, const CommandContext& context);
/// Writes one system line on the system; an error when there is none.
Reply run(const ShowWallSystem& show, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
