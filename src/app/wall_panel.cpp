#include "app/wall_panel.h"

#include <fmt/format.h>

#include <cmath>

#include "core/adding.h"
#include "core/length_text.h"
#include "core/typed_length.h"
#include "geometry/edit_operations.h"
#include "geometry/wall_system_edits.h"
#include "platform/dialogs.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

// A new system is a frame wall of 4 1/2" finished and a usual storey.
constexpr double kNewThickness = 0.375;
constexpr double kNewHeight = 8;

bool isWhole(double value, double tolerance) { return std::fabs(value - std::round(value)) <= tolerance; }
// At most two decimals.
bool isShortNumber(double size) { return isWhole(size * 100, 1e-6); }
// Near enough for a value that a file has rounded to 32 bits.
bool isInSixteenths(double size) { return isWhole(size * 12 * 16, 1e-4); }

void tell(Workspace& workspace, std::string text) { workspace.messages.append(std::move(text), false, true); }

std::optional<std::string> rename(Workspace& workspace, const WallSystemSpec& renamed) {
  const std::string oldName = workspace.sketch.drawing->wallSystem(renamed.id)->name;
  const auto problem = changeWallSystem(workspace.sketch, renamed);
  if (problem) return *problem == WallSystemProblem::nameTaken ? "This name is taken." : "It needs a name.";
  tell(workspace, "Wall system " + oldName + " is now " + renamed.name + ".");
  return std::nullopt;
}

void addAsActive(Workspace& workspace, const WallSystemSpec& spec) {
  const auto change = workspace.change();
  if (addWallSystem(workspace.sketch, spec)) return;
  workspace.sketch.setActiveWallSystem(spec.id);
  workspace.sketch.clearSelection();
  tell(workspace, "Wall system added: " + spec.name + ".");
}

void deleteAndTell(Workspace& workspace, const UUID& id, std::optional<UUID> successor) {
  const WallSystemSpec* spec = workspace.sketch.drawing->wallSystem(id);
  if (spec == nullptr) return;
  const std::string name = spec->name;
  const auto problem = deleteWallSystem(workspace.sketch, id, successor);
  if (!problem) {
    tell(workspace, "Wall system deleted: " + name + ".");
  } else if (*problem == WallSystemProblem::lastSystem) {
    tell(workspace, "The last wall system stays.");
  }
}

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
    case WallSystemField::name:
      return spec.name;
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
    case WallSystemField::name:
      edited.name = trimmed(text);
      return rename(workspace, edited);
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

void addWallSystemFromPanel(Workspace& workspace) {
  addAsActive(
      workspace,
      {UUID::random(), freeWallSystemName(workspace.sketch.drawing, "WALL"), kNewThickness, kNewHeight, {}});
}

void duplicatePanelSystem(Workspace& workspace) {
  const WallSystemSpec* shown = panelSystem(workspace);
  if (shown == nullptr) return;
  WallSystemSpec copy = *shown;
  copy.id = UUID::random();
  copy.name = freeWallSystemName(workspace.sketch.drawing, shown->name);
  addAsActive(workspace, copy);
}

void deletePanelSystem(Workspace& workspace) {
  const WallSystemSpec* shown = panelSystem(workspace);
  if (shown == nullptr) return;
  const UUID id = shown->id;
  const std::string name = shown->name;
  const std::size_t walls = countWalls(workspace.sketch, id);
  if (walls == 0 || workspace.sketch.drawing->wallSystemSpecs.size() == 1) {
    deleteAndTell(workspace, id, std::nullopt);
    return;
  }
  const std::vector<WallSystemSpec>& systems = workspace.sketch.drawing->wallSystemSpecs;
  const WallSystemSpec& other = systems.front().id == id ? systems[1] : systems.front();
  workspace.host().dialogs.ask(
      TextPrompt{"Delete " + name,
                 fmt::format("{} wall{} this system. Which system {} over?", walls,
                             walls == 1 ? " uses" : "s use", walls == 1 ? "takes it" : "takes them"),
                 other.name, "Delete"},
      [&workspace, id](const DialogAnswer& answer) {
        if (!answer) return;
        const WallSystemSpec* successor = workspace.sketch.drawing->wallSystem(trimmed(*answer));
        if (successor == nullptr) {
          workspace.messages.append("Unknown wall system \"" + *answer + "\". Use spec list.", true, false);
          return;
        }
        deleteAndTell(workspace, id, successor->id);
      });
}

}  // namespace ostrelon
