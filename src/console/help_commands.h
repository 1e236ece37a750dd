// `help`, whose text is fixed, and `more`, which lists what has come since.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseHelp(const Words& words, const ParseState& state, Place place);
ParseResult parseMore(const Words& words, const ParseState& state, Place place);

/// Both write one system line.
Reply run(const ShowHelp& help, const CommandContext& context);
Reply run(const ShowMore& more, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
