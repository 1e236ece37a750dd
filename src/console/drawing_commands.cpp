#include "console/drawing_commands.h"

#include "console/command_words.h"
#include "core/adding.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseLine(const Words& words, const ParseState& /*state*/, Place place) {
  if (words.size() == 1) {
    if (place == Place::chain) return Reply::refused("line tool activation cannot be used in a chain.");
    return ActivateTool{SketchTool::line};
  }
  const auto n = readNumbers(words, 4);
  if (!n) return WrongUse{};
  return DrawLine{{(*n)[0], (*n)[1]}, {(*n)[2], (*n)[3]}};
}

ParseResult parseWall(const Words& words, const ParseState& state, Place /*place*/) {
  const bool isNamed = words.size() == 6;
  const auto n = isNamed || words.size() == 5 ? readNumbers(words, 1, 5) : std::nullopt;
  if (!n) return WrongUse{};
  const Drawing& drawing = state.drawing();
  const WallSystemSpec* spec = isNamed ? drawing.wallSystem(std::string_view(words[5]))
                                       : drawing.wallSystem(state.activeWallSystemSpecID);
  if (spec == nullptr && !isNamed) spec = drawing.activeWallSystem();
  if (spec == nullptr) {
    // A file may hold no wall systems at all; the name is then what the user typed, if anything.
    return Reply::error("Unknown wall system \"" + (isNamed ? words[5] : std::string()) +
                        "\". Use spec list.");
  }
  return DrawWall{{(*n)[0], (*n)[1]}, {(*n)[2], (*n)[3]}, spec->id};
}

ParseResult parseCircle(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  const auto n = readNumbers(words, 3);
  if (!n || !((*n)[2] > 0)) return WrongUse{};
  return DrawCircle{{(*n)[0], (*n)[1]}, (*n)[2]};
}

ParseResult parseRectangle(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  const auto n = readNumbers(words, 4);
  if (!n || !((*n)[2] > 0) || !((*n)[3] > 0)) return WrongUse{};
  return DrawRectangle{{(*n)[0], (*n)[1]}, {(*n)[2], (*n)[3]}};
}

ParseResult parsePolygon(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() == 1) return ActivateTool{SketchTool::polygon};
  const auto n = readNumbers(words, 1, words.size());
  if (!n || n->size() < 4 || n->size() % 2 != 0) return WrongUse{};
  if (n->size() == 4) return Reply::refused("Polygon requires at least 3 vertices.");
  DrawPolygon polygon;
  polygon.vertices.reserve(n->size() / 2);
  for (std::size_t i = 0; i < n->size(); i += 2) polygon.vertices.push_back({(*n)[i], (*n)[i + 1]});
  return polygon;
}

ParseResult parseClear(const Words& /*words*/, const ParseState& /*state*/, Place /*place*/) {
  return ClearDrawing{};
}

Reply run(const DrawLine& line, const CommandContext& context) {
  addLine(context.sketch, line.from, line.to);
  return Reply::done("Line added.");
}

Reply run(const DrawWall& wall, const CommandContext& context) {
  addWall(context.sketch, wall.systemSpecID, wall.from, wall.to);
  const WallSystemSpec* spec = context.sketch.drawing->wallSystem(wall.systemSpecID);
  return Reply::done("Wall added (" + (spec != nullptr ? spec->name : std::string()) + ").");
}

Reply run(const DrawCircle& circle, const CommandContext& context) {
  addCircle(context.sketch, circle.center, circle.radius);
  return Reply::done("Circle added.");
}

Reply run(const DrawRectangle& rectangle, const CommandContext& context) {
  addRectangle(context.sketch, rectangle.origin, rectangle.size);
  return Reply::done("Rectangle added.");
}

Reply run(const DrawPolygon& polygon, const CommandContext& context) {
  addPolygon(context.sketch, polygon.vertices);
  return Reply::done("Polygon added.");
}

Reply run(const ClearDrawing& /*clear*/, const CommandContext& context) {
  context.board.clearSketch();
  return Reply::done("Sketch cleared.");
}

}  // namespace ostrelon::CommandInterpreter
