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
/// "4.5 thick · 96 high".
std::string wallSystemMeasures(const WallSystemSpec& spec);

/// A row was chosen: the selected wall takes the system, and nothing is reported; with no wall selected it
/// becomes the active one.
void selectWallSystemRow(Workspace& workspace, const UUID& specID);
/// Gives the shown system to the selected wall and reports it; nothing without one.
void assignPanelSystemToSelection(Workspace& workspace);
/// Replaces a system by its identifier; nothing for one that is not there or for an equal one.
void updateWallSystem(Workspace& workspace, const WallSystemSpec& spec);

enum class WallSystemField { thickness, height, assemblyNotes };
/// The text that a field shows for a system.
std::string wallSystemFieldText(const WallSystemSpec& spec, WallSystemField field);
/// Writes an edited field into a system. A thickness or height that is not a plain finite decimal number
/// above 0 is dropped without a report: false, and nothing changes.
bool commitWallSystemField(Workspace& workspace, const UUID& specID, WallSystemField field,
                           std::string_view text);

}  // namespace ostrelon
