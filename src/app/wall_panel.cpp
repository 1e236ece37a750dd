#include "app/wall_panel.h"

#include <cmath>

#include "core/adding.h"
#include "core/length_text.h"
#include "core/typed_length.h"
#include "geometry/edit_operations.h"

namespace ostrelon {
namespace {

bool isWhole(double value, double tolerance) { return std::fabs(value - std::round(value)) <= tolerance; }
// At most two decimals.
bool isShortNumber(double size) { return isWhole(size * 100, 1e-6); }
// Near enough for a value that a file has rounded to 32 bits.
bool isInSixteenths(double size) { return isWhole(size * 12 * 16, 1e-4); }

}  // namespace

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
  const bool areShort = isShortNumber(spec.thickness) && isShortNumber(spec.height);
  const auto text = [&](double size) { return areShort ? plainDecimalText(size) : formatLength(size); };
  return text(spec.thickness) + " thick · " + text(spec.height) + " high";
}

std::string wallSizeText(double size) {
  return isShortNumber(size) || !isInSixteenths(size) ? plainDecimalText(size) : formatLength(size);
}

std::string wallSizeInInches(double size) {
  return (isInSixteenths(size) ? "= " : "≈ ") + formatInches(size);
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
      return wallSizeText(spec.thickness);
    case WallSystemField::height:
      return wallSizeText(spec.height);
    case WallSystemField::assemblyNotes:
      return spec.assemblyNotes;
  }
  return {};
}

std::optional<std::string> commitWallSystemField(Workspace& workspace, const UUID& specID,
                                                 WallSystemField field, std::string_view text) {
  const WallSystemSpec* old = workspace.sketch.drawing->wallSystem(specID);
  // As it was shown, a text may be less than the value holds.
  if (old == nullptr || text == wallSystemFieldText(*old, field)) return std::nullopt;
  WallSystemSpec edited = *old;
  switch (field) {
    case WallSystemField::assemblyNotes:
      edited.assemblyNotes = text;
      break;
    case WallSystemField::thickness:
    case WallSystemField::height: {
      const LengthReading read = readLength(text);
      const auto* size = std::get_if<double>(&read);
      if (size == nullptr) return "Write 4-1/2\", 8' or 8.5.";
      if (!(*size > 0)) return "It has to be above 0.";
      (field == WallSystemField::thickness ? edited.thickness : edited.height) = *size;
      break;
    }
  }
  updateWallSystem(workspace, edited);
  return std::nullopt;
}

}  // namespace ostrelon
