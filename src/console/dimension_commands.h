// The console command of dimensions.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseDimension(const Words& words, const ParseState& state, Place place);

Reply run(const AddDimension& dimension, const CommandContext& context);
Reply run(const SwitchDimensionStrings& strings, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
