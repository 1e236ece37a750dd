#include "console/drawing_commands.h"

#include "console/command_arguments.h"
#include "console/tool_commands.h"

namespace ostrelon::CommandInterpreter {

Reply lineCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  if (command.arguments.size() == 1) return activateToolCommand(SketchTool::line, sketch);
  const auto numbers = command.arguments.size() == 5 ? readNumbers(command.arguments) : std::nullopt;
  if (!numbers) return "Usage: line [<x1> <y1> <x2> <y2>]";
  const auto& n = *numbers;
  sketch.addLine({n[0], n[1]}, {n[2], n[3]});
  return "Line added.";
}

Reply wallCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto& arguments = command.arguments;
  const bool countFits = arguments.size() == 5 || arguments.size() == 6;
  const auto numbers = countFits ? readNumbers(arguments, 1, 5) : std::nullopt;
  if (!numbers) return "Usage: wall <x1> <y1> <x2> <y2> [system]";
  const bool isNamed = arguments.size() == 6;
  const WallSystemSpec* spec =
      isNamed ? sketch.wallSystemSpec(std::string_view(arguments[5])) : sketch.activeWallSystemSpec();
  if (spec == nullptr) {
    // A file may hold no wall systems at all; the name is then what the user typed, if anything.
    return "Unknown wall system \"" + (isNamed ? arguments[5] : std::string()) + "\". Use spec list.";
  }
  const auto& n = *numbers;
  const std::string name = spec->name;
  sketch.addWall(spec->id, {n[0], n[1]}, {n[2], n[3]});
  return "Wall added (" + name + ").";
}

Reply circleCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto numbers = command.arguments.size() == 4 ? readNumbers(command.arguments) : std::nullopt;
  if (!numbers || !((*numbers)[2] > 0)) return "Usage: circle <cx> <cy> <r>";
  const auto& n = *numbers;
  sketch.addCircle({n[0], n[1]}, n[2]);
  return "Circle added.";
}

Reply rectangleCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto numbers = command.arguments.size() == 5 ? readNumbers(command.arguments) : std::nullopt;
  if (!numbers || !((*numbers)[2] > 0) || !((*numbers)[3] > 0)) return "Usage: rect <x> <y> <w> <h>";
  const auto& n = *numbers;
  sketch.addRectangle({n[0], n[1]}, {n[2], n[3]});
  return "Rectangle added.";
}

Reply polygonCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  if (command.arguments.size() == 1) return activateToolCommand(SketchTool::polygon, sketch);
  const auto numbers = readNumbers(command.arguments);
  if (!numbers || numbers->size() < 4 || numbers->size() % 2 != 0) {
    return "Usage: poly [<x1> <y1> <x2> <y2> ...]  (≥3 vertices)";
  }
  if (numbers->size() == 4) return "Polygon requires at least 3 vertices.";
  std::vector<SketchPoint> vertices;
  vertices.reserve(numbers->size() / 2);
  for (std::size_t i = 0; i < numbers->size(); i += 2) {
    vertices.push_back({(*numbers)[i], (*numbers)[i + 1]});
  }
  sketch.addPolygon(std::move(vertices));
  return "Polygon added.";
}

}  // namespace ostrelon::CommandInterpreter
