// The commands that draw, and `clear`.
#pragma once

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseLine(const Words& words, const ParseState& state, Place place);
ParseResult parseWall(const Words& words, const ParseState& state, Place place);
ParseResult parseCircle(const Words& words, const ParseState& state, Place place);
ParseResult parseRectangle(const Words& words, const ParseState& state, Place place);
ParseResult parsePolygon(const Words& words, const ParseState& state, Place place);
ParseResult parseClear(const Words& words, const ParseState& state, Place place);

Reply run(const DrawLine& line, const CommandContext& context);
Reply run(const DrawWall& wall, const CommandContext& context);
Reply run(const DrawCircle& circle, const CommandContext& context);
Reply run(const DrawRectangle& rectangle, const CommandContext& context);
Reply run(const DrawPolygon& polygon, const CommandContext& context);
Reply run(const ClearDrawing& clear, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
