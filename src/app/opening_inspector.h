// What the inspector shows and does of the selected opening, and of the openings of a wall, without its
// window.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/inspector.h"

namespace ostrelon {

/// The selected opening; absent while none is.
std::optional<Opening> inspectedOpening(const Workspace& workspace);
/// Its wall, and what is left to the wall's end.
std::vector<InspectorMetricRow> openingMetricRows(const Workspace& workspace, const Opening& opening);
/// "2 doors, 1 window"; empty for a wall without openings.
std::string wallOpeningsText(const Workspace& workspace, const UUID& wallID);

enum class OpeningField { width, distance };
/// The text that a field shows: a length to 1/16".
std::string openingFieldText(const Opening& opening, OpeningField field);
/// Writes an edited field into the opening, as an undo step. A text that is no length, and a place where it
/// does not fit, changes nothing, and the answer says why. The text that the field shows asks for nothing.
std::optional<std::string> commitOpeningField(Workspace& workspace, const UUID& id, OpeningField field,
                                              std::string_view text);
/// One undo step each; an unknown opening does nothing.
void setOpeningKind(Workspace& workspace, const UUID& id, OpeningKind kind);
void setDoorHanging(Workspace& workspace, const UUID& id, DoorHanging hanging);

}  // namespace ostrelon
