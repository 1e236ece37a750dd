// The commands that edit the selection: `assign`, `move`, `length`, `nudge`, `center` and `convert`.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseAssign(const Words& words, const ParseState& state, Place place);
ParseResult parseMove(const Words& words, const ParseState& state, Place place);
ParseResult parseLength(const Words& words, const ParseState& state, Place place);
ParseResult parseNudge(const Words& words, const ParseState& state, Place place);
ParseResult parseCenter(const Words& words, const ParseState& state, Place place);
ParseResult parseConvert(const Words& words, const ParseState& state, Place place);

Reply run(const AssignWallSystem& assign, const CommandContext& context);
Reply run(const MoveSelectedLine& move, const CommandContext& context);
Reply run(const SetSelectedLength& length, const CommandContext& context);
Reply run(const NudgeSelection& nudge, const CommandContext& context);
Reply run(const AlignSelection& align, const CommandContext& context);
Reply run(const ConvertSelection& convert, const CommandContext& context);

/// The primary selection when it is a wall, also among several.
std::optional<UUID> selectedWallID(const Sketch& sketch);

}  // namespace ostrelon::CommandInterpreter
