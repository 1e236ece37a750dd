#include "console/general_commands.h"

#include "console/edit_commands.h"
#include "core/length_text.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {
namespace {

constexpr std::string_view kSpecUsage = "Usage: spec list | spec use <name> | spec show [name]";

}  // namespace

Reply helpCommand(const ResolvedCommand& /*command*/, SketchViewModel& sketch) {
  sketch.appendConsoleLine(helpText(), false, true);
  return std::nullopt;
}

Reply clearCommand(const ResolvedCommand& /*command*/, SketchViewModel& sketch) {
  sketch.clearSketch();
  return "Sketch cleared.";
}

Reply specCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto& arguments = command.arguments;
  if (arguments.size() < 2) return std::string(kSpecUsage);
  const std::string subCommand = lowerCased(arguments[1]);
  if (subCommand == "list") {
    printWallSystems(sketch);
    return std::nullopt;
  }
  if (subCommand == "use") {
    const WallSystemSpec* spec =
        arguments.size() == 3 ? sketch.wallSystemSpec(std::string_view(arguments[2])) : nullptr;
    if (spec == nullptr) return "Usage: spec use <name>";
    const WallSystemSpec chosen = *spec;
    sketch.setActiveWallSystem(chosen);
    return "Active wall system: " + chosen.name + ".";
  }
  if (subCommand == "show") {
    const auto name = arguments.size() > 2 ? std::optional(arguments[2]) : std::nullopt;
    if (!printWallSystem(name, sketch)) return "Unknown wall system.";
    return std::nullopt;
  }
  return std::string(kSpecUsage);
}

void printWallSystems(SketchViewModel& sketch) {
  const WallSystemSpec* active = sketch.activeWallSystemSpec();
  std::string text;
  for (const WallSystemSpec& spec : *sketch.wallSystemSpecs) {
    if (!text.empty()) text += '\n';
    text += "  " + spec.name + (&spec == active ? " *" : "") + "  t=" + formatExactNumber(spec.thickness) +
            "  h=" + formatExactNumber(spec.height);
  }
  sketch.appendConsoleLine(std::move(text), false, true);
}

bool printWallSystem(const std::optional<std::string>& name, SketchViewModel& sketch) {
  const WallSystemSpec* spec = nullptr;
  if (name) {
    spec = sketch.wallSystemSpec(std::string_view(*name));
  } else {
    spec = sketch.activeWallSystemSpec();
    if (const auto wall = selectedWallID(sketch)) {
      const UUID& used = std::get<WallEntity>(*sketch.entity(*wall)).systemSpecID;
      if (const WallSystemSpec* known = sketch.wallSystemSpec(used)) spec = known;
    }
  }
  if (spec == nullptr) return false;
  sketch.appendConsoleLine(spec->name + "\n  thickness: " + formatExactNumber(spec->thickness) +
                               "\n  height: " + formatExactNumber(spec->height) + "\n  " +
                               spec->assemblyNotes,
                           false, true);
  return true;
}

}  // namespace ostrelon::CommandInterpreter
