// The commands that cut and lengthen: `trim` and `extend`.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseTrim(const Words& words, const ParseState& state, Place place);
ParseResult parseExtend(const Words& words, const ParseState& state, Place place);

Reply run(const TrimEntity& trim, const CommandContext& context);
Reply run(const ExtendToBoundary& extend, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
