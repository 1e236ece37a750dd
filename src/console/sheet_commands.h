// Notes, and what the sheet around the drawing says.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseNote(const Words& words, const ParseState& state, Place place);
ParseResult parseSheet(const Words& words, const ParseState& state, Place place);

Reply run(const AddNote& note, const CommandContext& context);
Reply run(const ScaleSheet& sheet, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
