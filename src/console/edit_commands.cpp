#include "console/edit_commands.h"

#include "console/command_arguments.h"
#include "core/length_text.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {
namespace {

// What a command says of an edit: its own words for a success, a bad value and an entity that the edit
// does not apply to.
std::string editReply(EntityEditResult result, std::string applied, std::string_view invalid,
                      std::string_view unsupported) {
  switch (result) {
    case EntityEditResult::applied:
      return applied;
    case EntityEditResult::unchanged:
      return "No change.";
    case EntityEditResult::noSelection:
      return "Select an entity first.";
    case EntityEditResult::invalidValue:
      return std::string(invalid);
    case EntityEditResult::unsupported:
      return std::string(unsupported);
  }
  return applied;
}

const SketchEntity* primarySelection(const SketchViewModel& sketch) {
  const auto& primary = *sketch.primarySelectedEntityID;
  return primary ? sketch.entity(*primary) : nullptr;
}

}  // namespace

std::optional<UUID> selectedWallID(const SketchViewModel& sketch) {
  const SketchEntity* primary = primarySelection(sketch);
  if (primary == nullptr || !std::holds_alternative<WallEntity>(*primary)) return std::nullopt;
  const UUID& id = entityID(*primary);
  return sketch.selectedEntityIDs->contains(id) ? std::optional(id) : std::nullopt;
}

Reply assignCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto& arguments = command.arguments;
  const WallSystemSpec* spec =
      arguments.size() == 2 ? sketch.wallSystemSpec(std::string_view(arguments[1])) : nullptr;
  const auto wall = selectedWallID(sketch);
  if (spec == nullptr || !wall) return "Usage: assign <system>  (select a wall first)";
  const std::string name = spec->name;
  if (!sketch.assignWallSystem(spec->id, *wall)) return "Could not assign system to selection.";
  return "Wall assigned to " + name + ".";
}

Reply moveCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto numbers = command.arguments.size() == 3 ? readNumbers(command.arguments) : std::nullopt;
  if (!numbers) return "Usage: move <dx> <dy>  (select a line first)";
  const SketchEntity* primary = primarySelection(sketch);
  if (primary == nullptr) return "Select a line before moving.";
  if (!std::holds_alternative<LineEntity>(*primary)) return "Move currently supports selected lines only.";
  if (!sketch.moveSelectedLine((*numbers)[0], (*numbers)[1])) return "Could not move selected line.";
  return "Line moved.";
}

Reply lengthCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto numbers = command.arguments.size() == 2 ? readNumbers(command.arguments) : std::nullopt;
  if (!numbers || !(numbers->front() > 0)) return "Usage: length <value>  (select an entity first)";
  return editReply(sketch.setSelectedEntityLength(numbers->front()),
                   "Length set to " + command.arguments[1] + ".", "Invalid length value.",
                   "Length edit is not supported for this selection.");
}

Reply nudgeCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto numbers = command.arguments.size() == 3 ? readNumbers(command.arguments) : std::nullopt;
  if (!numbers) return "Usage: nudge <dx> <dy>  (select an entity first)";
  return editReply(sketch.nudgeSelectedEntity((*numbers)[0], (*numbers)[1]), "Selection nudged.",
                   "Invalid nudge values.", "Nudge is not supported for this selection.");
}

Reply centerCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const std::string word = command.arguments.size() == 2 ? lowerCased(command.arguments[1]) : std::string();
  if (word != "h" && word != "v") return "Usage: center h|v  (align selected entities; need ≥2 selected)";
  if (sketch.selectedEntityIDs->size() < 2) return "Select at least 2 entities.";
  const bool isHorizontal = word == "h";
  const int count = sketch.alignSelection(isHorizontal ? AlignmentAxis::horizontal : AlignmentAxis::vertical);
  const std::string direction = isHorizontal ? " horizontally." : " vertically.";
  if (count == 0) return "Selection already aligned" + direction;
  return "Aligned " + (count == 1 ? "1 entity" : std::to_string(count) + " entities") + direction;
}

Reply convertCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto& arguments = command.arguments;
  const std::string word = arguments.size() == 2 || arguments.size() == 3 ? lowerCased(arguments[1]) : "";
  if (word != "line" && word != "wall") return "Usage: convert line|wall [system]";
  const bool toWall = word == "wall";
  std::optional<UUID> system;
  if (toWall && arguments.size() == 3) {
    const WallSystemSpec* spec = sketch.wallSystemSpec(std::string_view(arguments[2]));
    if (spec == nullptr) return "Unknown wall system.";
    system = spec->id;
  }
  const auto target = toWall ? EntityConversionTarget::wall : EntityConversionTarget::line;
  return editReply(sketch.convertSelectedEntity(target, system), "Selection converted to " + word + ".",
                   "Invalid conversion request.", "Conversion is not supported for this selection.");
}

}  // namespace ostrelon::CommandInterpreter
