#include "app/wall_panel.h"

#include "core/adding.h"
#include "core/length_text.h"
#include "geometry/edit_operations.h"

namespace ostrelon {

const WallEntity* selectedWallEntity(const Workspace& workspace) {
  const SketchEntity* selected = workspace.sketch.selectedEntity();
  return selected != nullptr ? std::get_if<WallEntity>(selected) : nullptr;
}

const WallSystemSpec* selectedWallSystem(const Workspace& workspace) {
  const WallEntity* wall = selectedWallEntity(workspace);
  return wall != nullptr ? workspace.sketch.drawing->wallSystem(wall->systemSpecID) : nullptr;
}

const WallSystemSpec* panelSystem(const Workspace& workspace) {
  const WallSystemSpec* selected = selectedWallSystem(workspace);
  return selected != nullptr ? selected : workspace.sketch.drawing->activeWallSystem();
}

std::string panelContextTitle(const Workspace& workspace) {
  if (const WallSystemSpec* selected = selectedWallSystem(workspace))
    return "SELECTED WALL · " + selected->name;
  const WallSystemSpec* active = workspace.sketch.drawing->activeWallSystem();
  return "ACTIVE SYSTEM · " + (active != nullptr ? active->name : std::string());
}

std::vector<WallSystemRow> wallSystemRows(const Workspace& workspace) {
  const WallSystemSpec* assigned = selectedWallSystem(workspace);
  const WallSystemSpec* shown = panelSystem(workspace);
  std::vector<WallSystemRow> rows;
  for (const WallSystemSpec& spec : workspace.sketch.drawing->wallSystemSpecs) {
    rows.push_back({spec, spec.id == workspace.sketch.drawing->activeWallSystemSpecID, &spec == assigned,
                    &spec == shown});
  }
  return rows;
}

std::string wallSystemMeasures(const WallSystemSpec& spec) {
  return plainDecimalText(spec.thickness) + " thick · " + plainDecimalText(spec.height) + " high";
}

void selectWallSystemRow(Workspace& workspace, const UUID& specID) {
  const WallSystemSpec* spec = workspace.sketch.drawing->wallSystem(specID);
  if (spec == nullptr) return;
  if (const WallEntity* wall = selectedWallEntity(workspace)) {
    assignWallSystem(workspace.sketch, specID, UUID(wall->id));
  } else {
    setActiveWallSystem(workspace.sketch, workspace.messages, WallSystemSpec(*spec));
  }
}

void assignPanelSystemToSelection(Workspace& workspace) {
  const WallEntity* wall = selectedWallEntity(workspace);
  const WallSystemSpec* shown = panelSystem(workspace);
  if (wall == nullptr || shown == nullptr) return;
  const std::string name = shown->name;
  if (assignWallSystem(workspace.sketch, UUID(shown->id), UUID(wall->id))) {
    workspace.messages.append("Wall assigned to " + name + ".", false, true);
  }
}

void updateWallSystem(Workspace& workspace, const WallSystemSpec& spec) {
  const WallSystemSpec* old = workspace.sketch.drawing->wallSystem(spec.id);
  if (old == nullptr || *old == spec) return;
  updateWallSystemSpec(workspace.sketch, spec);
}

std::string wallSystemFieldText(const WallSystemSpec& spec, WallSystemField field) {
  switch (field) {
    case WallSystemField::thickness:
      return plainDecimalText(spec.thickness);
    case WallSystemField::height:
      return plainDecimalText(spec.height);
    case WallSystemField::assemblyNotes:
      return spec.assemblyNotes;
  }
  return {};
}

bool commitWallSystemField(Workspace& workspace, const UUID& specID, WallSystemField field,
                           std::string_view text) {
  const WallSystemSpec* old = workspace.sketch.drawing->wallSystem(specID);
  if (old == nullptr) return false;
  WallSystemSpec edited = *old;
  if (field == WallSystemField::assemblyNotes) {
    edited.assemblyNotes = text;
  } else if (text == wallSystemFieldText(*old, field)) {
    return true;  // as it was shown, which may be less than the value holds
  } else {
    const auto number = parsePlainDecimal(text);
    if (!number || !(*number > 0)) return false;
    (field == WallSystemField::thickness ? edited.thickness : edited.height) = *number;
  }
  updateWallSystem(workspace, edited);
  return true;
}

}  // namespace ostrelon
