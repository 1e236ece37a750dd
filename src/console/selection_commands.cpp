#include "console/selection_commands.h"

#include <string>
#include <vector>

#include "console/command_words.h"
#include "core/plan_items.h"
#include "geometry/edit_operations.h"

namespace ostrelon::CommandInterpreter {
namespace {

std::string entityCount(int count) { return count == 1 ? "1 entity" : std::to_string(count) + " entities"; }

// What was copied or pasted: entities, or an item of the plan that stands by itself, by its kind.
std::string clipboardText(const Sketch& sketch, int count) {
  const std::vector<PlanItem>& items = sketch.clipboardItems();
  if (sketch.clipboard->empty() && items.size() == 1) return std::string(planItemTypeLabel(items.front()));
  return entityCount(count);
}

}  // namespace

ParseResult parseSelect(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  auto indices = readEntityIndices(words);
  if (!indices) return WrongUse{};
  return SelectEntities{std::move(*indices)};
}

ParseResult parseCopy(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() > 1) return WrongUse{};
  return CopySelection{};
}

ParseResult parsePaste(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() > 1) return WrongUse{};
  return PasteClipboard{};
}

Reply run(const ActivateTool& activate, const CommandContext& context) {
  context.board.activateToolFromConsole(activate.tool);
  std::string text = std::string(displayName(activate.tool)) + " tool active.";
  if (activate.tool == SketchTool::trim) text += " Select cutting edge, then click entities to trim.";
  return Reply::done(std::move(text));
}

Reply run(const SelectEntities& select, const CommandContext& context) {
  if (select.indices.empty()) return run(ActivateTool{SketchTool::select}, context);
  selectEntities(context.sketch, select.indices);
  if (const SketchEntity* selected = context.sketch.selectedEntity()) {
    return Reply::done("Selected entity (" + std::string(entityKindName(*selected)) + ").");
  }
  return Reply::done("Selected " + std::to_string(context.sketch.selection->ids.size()) + " entities.");
}

Reply run(const CopySelection& /*copy*/, const CommandContext& context) {
  const int count = copySelection(context.sketch);
  if (count == 0) return Reply::refused("Select an entity to copy.");
  return Reply::done(clipboardText(context.sketch, count) + " copied.");
}

Reply run(const PasteClipboard& /*paste*/, const CommandContext& context) {
  const int count = pasteClipboard(context.sketch);
  if (count == 0) return Reply::refused("Clipboard is empty.");
  return Reply::done(clipboardText(context.sketch, count) + " pasted.");
}

}  // namespace ostrelon::CommandInterpreter
