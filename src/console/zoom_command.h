// The command that moves the view: `zoom [in|out|fit|reset]`.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseZoom(const Words& words, const ParseState& state, Place place);

Reply run(const ZoomView& zoom, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
