#include "interaction/context_menu.h"

#include "geometry/edit_operations.h"
#include "geometry/plan_item_operations.h"

namespace ostrelon {
namespace {

ContextMenuSubmenu wallSystemChoices(const Sketch& sketch) {
  ContextMenuSubmenu choices;
  for (const WallSystemSpec& spec : sketch.drawing->wallSystemSpecs) {
    choices.push_back({spec.name, {}, AssignWallSystemChoice{spec.id}});
  }
  return choices;
}

void assignToSelectedWalls(const UUID& wallSystemID, Sketch& sketch, Messages& messages) {
  const WallSystemSpec* spec = sketch.drawing->wallSystem(wallSystemID);
  if (spec == nullptr) return;
  const std::string reply = "Wall system set to " + spec->name + ".";
  const auto selection = sketch.selection->ids;
  bool isAssigned = false;
  for (const UUID& id : selection) isAssigned = assignWallSystem(sketch, wallSystemID, id) || isAssigned;
  if (isAssigned) messages.appendSystem(reply);
}

ContextMenu planItemMenu(const PlanItem& item) {
  ContextMenu menu;
  menu.push_back({"Inspect", "⌘I", ContextMenuCommand::inspect});
  menu.push_back({{}, {}, ContextMenuSeparator{}});
  menu.push_back({"Duplicate", {}, ContextMenuCommand::duplicatePlanItem});
  if (flippedPlanItem(item)) menu.push_back({"Flip", {}, ContextMenuCommand::flipPlanItem});
  menu.push_back({"Delete", {}, ContextMenuCommand::deletePlanItem});
  return menu;
}

}  // namespace

std::optional<ContextMenu> selectionContextMenu(const Sketch& sketch) {
  if (const auto item = selectedPlanItem(sketch)) return planItemMenu(*item);
  const auto& primary = sketch.selection->primary;
  const SketchEntity* entity = primary ? sketch.entity(*primary) : nullptr;
  if (entity == nullptr) return std::nullopt;
  ContextMenu menu;
  menu.push_back({"Inspect", "⌘I", ContextMenuCommand::inspect});
  menu.push_back({{}, {}, ContextMenuSeparator{}});
  menu.push_back({"Duplicate", {}, ContextMenuCommand::duplicateSelection});
  menu.push_back({"Delete", {}, ContextMenuCommand::deleteSelection});
  if (std::holds_alternative<WallEntity>(*entity)) {
    menu.push_back({"Change Wall System", {}, wallSystemChoices(sketch)});
  }
  return menu;
}

void runContextMenuItem(const ContextMenuItem& item, Sketch& sketch, Messages& messages) {
  std::visit(Overloaded{
                 [](const ContextMenuSeparator&) {},
                 [](const ContextMenuSubmenu&) {},
                 [&](const AssignWallSystemChoice& choice) {
                   assignToSelectedWalls(choice.wallSystemID, sketch, messages);
                 },
                 [&](const ContextMenuCommand& command) {
                   switch (command) {
                     case ContextMenuCommand::inspect:
                       sketch.setInspected(true);
                       break;
                     case ContextMenuCommand::duplicateSelection:
                       duplicateSelection(sketch, messages, kDuplicateOffset.x, kDuplicateOffset.y);
                       break;
                     case ContextMenuCommand::deleteSelection:
                       deleteSelection(sketch, messages);
                       break;
                     case ContextMenuCommand::duplicatePlanItem:
                       duplicateSelectedPlanItem(sketch, messages);
                       break;
                     case ContextMenuCommand::flipPlanItem:
                       flipSelectedPlanItem(sketch, messages);
                       break;
                     case ContextMenuCommand::deletePlanItem:
                       deleteSelectedPlanItem(sketch, messages);
                       break;
                   }
                 },
             },
             item.content);
}

std::vector<std::string> contextMenuTitles(const ContextMenu& menu) {
  std::vector<std::string> titles;
  for (const ContextMenuItem& item : menu) titles.push_back(item.isSeparator() ? "-" : item.title);
  return titles;
}

}  // namespace ostrelon
