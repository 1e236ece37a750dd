// The commands on other drawings: `compare` and `merge`. A name is all that is left of the line.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseCompare(const Words& words, const ParseState& state, Place place);
ParseResult parseMerge(const Words& words, const ParseState& state, Place place);

Reply run(const CompareDrawing& compare, const CommandContext& context);
Reply run(const MergeDrawing& merge, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
