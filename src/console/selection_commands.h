// The commands that select and copy, and the tool forms of the commands: the word of `line`, `poly`,
// `trim` or `select` alone changes the tool.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseSelect(const Words& words, const ParseState& state, Place place);
ParseResult parseCopy(const Words& words, const ParseState& state, Place place);
ParseResult parsePaste(const Words& words, const ParseState& state, Place place);

Reply run(const ActivateTool& activate, const CommandContext& context);
Reply run(const SelectEntities& select, const CommandContext& context);
Reply run(const CopySelection& copy, const CommandContext& context);
Reply run(const PasteClipboard& paste, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
