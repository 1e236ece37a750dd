#include "interaction/context_menu.h"

namespace ostrelon {
namespace {

ContextMenuSubmenu wallSystemChoices(const SketchViewModel& sketch) {
  ContextMenuSubmenu choices;
  for (const WallSystemSpec& spec : *sketch.wallSystemSpecs) {
    choices.push_back({spec.name, {}, AssignWallSystemChoice{spec.id}});
  }
  return choices;
}

void assignToSelectedWalls(const UUID& wallSystemID, SketchViewModel& sketch) {
  const WallSystemSpec* spec = sketch.wallSystemSpec(wallSystemID);
  if (spec == nullptr) return;
  const std::string reply = "Wall system set to " + spec->name + ".";
  const auto selection = *sketch.selectedEntityIDs;
  bool isAssigned = false;
  for (const UUID& id : selection) isAssigned = sketch.assignWallSystem(wallSystemID, id) || isAssigned;
  if (isAssigned) sketch.appendConsoleLine(reply, false, true);
}

}  // namespace

std::optional<ContextMenu> entityContextMenu(const SketchViewModel& sketch) {
  const auto& primary = *sketch.primarySelectedEntityID;
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

void runContextMenuItem(const ContextMenuItem& item, SketchViewModel& sketch) {
  std::visit(
      Overloaded{
          [](const ContextMenuSeparator&) {},
          [](const ContextMenuSubmenu&) {},
          [&](const AssignWallSystemChoice& choice) { assignToSelectedWalls(choice.wallSystemID, sketch); },
          [&](const ContextMenuCommand& command) {
            switch (command) {
              case ContextMenuCommand::inspect:
                sketch.showEntityInspector();
                break;
              case ContextMenuCommand::duplicateSelection:
                sketch.duplicateSelection(kDuplicateOffset.x, kDuplicateOffset.y);
                break;
              case ContextMenuCommand::deleteSelection:
                sketch.deleteSelection();
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
