// The look of the plan: joined walls, filled walls, pens of a true width.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseLook(const Words& words, const ParseState& state, Place place);
Reply run(const ChangeLook& change, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
