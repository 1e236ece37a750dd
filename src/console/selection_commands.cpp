#include "console/selection_commands.h"

#include "console/tool_commands.h"
#include "core/length_text.h"

namespace ostrelon::CommandInterpreter {

std::optional<std::vector<std::int64_t>> readEntityIndices(const std::vector<std::string>& arguments) {
  std::vector<std::int64_t> indices;
  indices.reserve(arguments.size());
  for (std::size_t i = 1; i < arguments.size(); ++i) {
    const auto number = parseEntityNumber(arguments[i]);
    if (!number || *number < 1) return std::nullopt;
    indices.push_back(*number - 1);
  }
  return indices;
}

Reply selectCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  if (command.arguments.size() == 1) return activateToolCommand(SketchTool::select, sketch);
  const auto indices = readEntityIndices(command.arguments);
  if (!indices) return "Usage: select [<n>…]  (1-based entity numbers)";
  sketch.selectEntities(*indices);
  if (const SketchEntity* selected = sketch.selectedEntity()) {
    return "Selected entity (" + std::string(entityKindName(*selected)) + ").";
  }
  return "Selected " + std::to_string(sketch.selectedEntityIDs->size()) + " entities.";
}

Reply copyCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  if (command.arguments.size() > 1) return "Usage: copy";
  const int count = sketch.copySelection();
  if (count == 0) return "Select an entity to copy.";
  return count == 1 ? "1 entity copied." : std::to_string(count) + " entities copied.";
}

Reply pasteCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  if (command.arguments.size() > 1) return "Usage: paste";
  const int count = sketch.pasteClipboard(SketchViewModel::entityClipboardPasteOffset);
  if (count == 0) return "Clipboard is empty.";
  return count == 1 ? "1 entity pasted." : std::to_string(count) + " entities pasted.";
}

}  // namespace ostrelon::CommandInterpreter
