// Doors, windows and openings: adding one to a wall, and the schedule of all.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseDoor(const Words& words, const ParseState& state, Place place);
ParseResult parseWindow(const Words& words, const ParseState& state, Place place);
ParseResult parseOpening(const Words& words, const ParseState& state, Place place);
ParseResult parseOpenings(const Words& words, const ParseState& state, Place place);

Reply run(const AddOpening& add, const CommandContext& context);
Reply run(const ListOpenings& list, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
