// The schedules of rooms and of quantities.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseRooms(const Words& words, const ParseState& state, Place place);
ParseResult parseTakeoff(const Words& words, const ParseState& state, Place place);

Reply run(const ListRooms& list, const CommandContext& context);
Reply run(const ShowTakeoff& show, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
