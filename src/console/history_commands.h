// The commands on the history of the document: `checkpoint`, `history` and `branch`.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseCheckpoint(const Words& words, const ParseState& state, Place place);
ParseResult parseHistory(const Words& words, const ParseState& state, Place place);
ParseResult parseBranch(const Words& words, const ParseState& state, Place place);

/// Both may have to ask the user first. The reply is then silent, and the answer is written to the
/// console when it comes.
Reply run(const SaveCheckpoint& save, const CommandContext& context);
Reply run(const SwitchBranch& change, const CommandContext& context);
Reply run(const ShowHistory& show, const CommandContext& context);
Reply run(const CreateBranch& create, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
