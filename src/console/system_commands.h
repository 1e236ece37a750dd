// The command that changes wall systems: `system NAME THICKNESS [HEIGHT]`, `system add`, `system rename`,
// `system delete` and `system inches`. Undo takes each of them back.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseSystem(const Words& words, const ParseState& state, Place place);

Reply run(const AddWallSystem& add, const CommandContext& context);
Reply run(const ChangeWallSystem& change, const CommandContext& context);
Reply run(const DeleteWallSystem& deletion, const CommandContext& context);
/// Without `isConfirmed` writes one system line on what would change.
Reply run(const ConvertWallSystems& conversion, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
