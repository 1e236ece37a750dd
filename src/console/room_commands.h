// The console command that names rooms.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseRoom(const Words& words, const ParseState& state, Place place);

ParseResult parseDivide(const Words& words, const ParseState& state, Place place);

Reply run(const NameRoom& room, const CommandContext& context);

Reply run(const PartRooms& part, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
