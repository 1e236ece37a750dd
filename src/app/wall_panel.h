// What the wall system panel shows and does, without its widgets.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/workspace.h"

namespace ostrelon {

/// The one selected entity when it is a wall, else null.
const WallEntity* selectedWallEntity(const Workspace& workspace);
/// The system of the selected wall, when there is one that exists, else null.
const WallSystemSpec* selectedWallSystem(const Workspace& workspace);
/// The system that the fields show: the selected wall's, else the active one. Null only when the
/// document holds no system at all.
const WallSystemSpec* panelSystem(const Workspace& workspace);
/// "SELECTED WALL · W2-EXT" or "ACTIVE SYSTEM · W2-INT".
std::string panelContextTitle(const Workspace& workspace);

struct WallSystemRow {
  WallSystemSpec spec;
  bool isActive = false;               ///< new walls take it
  bool isAssignedToSelection = false;  ///< the selected wall uses it
  bool isShown = false;                ///< the fields show it
  friend bool operator==(const WallSystemRow&, const WallSystemRow&) = default;
};
std::vector<WallSystemRow> wallSystemRows(const Workspace& workspace);
/// "4.5 thick · 96 high", or `5 1/2" thick · 8'-0" high` where one of them is no short number.
std::string wallSystemMeasures(const WallSystemSpec& spec);
/// A size as its field shows it: `4.5`, or `5 1/2"` where the number has more than two decimals and the
/// sixteenths of an inch say it as well.
std::string wallSizeText(double size);
/// The line below a size: `= 5 1/2"`, with `≈` where it is not a whole number of sixteenths.
std::string wallSizeInInches(double size);

/// A row was chosen: the selected wall takes the system, and nothing is reported; with no wall selected it
/// becomes the active one.
void selectWallSystemRow(Workspace& workspace, const UUID& specID);
/// Gives the shown system to the selected wall and reports it; nothing without one.
void assignPanelSystemToSelection(Workspace& workspace);
/// Replaces a system by its identifier; nothing for one that is not there or for an equal one.
void updateWallSystem(Workspace& workspace, const WallSystemSpec& spec);

enum class WallSystemField { name, thickness, height, assemblyNotes };
/// The text that a field shows for a system.
std::string wallSystemFieldText(const WallSystemSpec& spec, WallSystemField field);
/// Writes an edited field into a system. Sizes are read by core/typed_length.h and have to be above 0; a name
/// has to be free. Else nothing changes, and the answer says why in a few words. A name is written as an undo
/// step; the other fields take none.
std::optional<std::string> commitWallSystemField(Workspace& workspace, const UUID& specID,
                                                 WallSystemField field, std::string_view text);

// --- What undo takes back: adding, copying, renaming, deleting. The console is told.

/// A new system, the active one from now on. Nothing stays selected, so that the panel shows it.
void addWallSystemFromPanel(Workspace& workspace);
/// The same with a copy of the shown system.
void duplicatePanelSystem(Workspace& workspace);
/// Asks which system takes over the walls of the shown one, if there are any, and deletes it.
void deletePanelSystem(Workspace& workspace);

}  // namespace ostrelon
