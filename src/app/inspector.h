// What the entity inspector shows and does, without its window.
#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "app/workspace.h"
#include "core/entity_edits.h"

namespace ostrelon {

struct InspectorMetricRow {
  std::string label;
  std::string value;
  friend bool operator==(const InspectorMetricRow&, const InspectorMetricRow&) = default;
};

/// The metric rows of one entity, in their order; a row is there only when its value is.
/// `wallThickness`: of the wall's system, where it is known.
std::vector<InspectorMetricRow> inspectorMetricRows(const SketchEntity& entity,
                                                    std::optional<double> wallThickness);
/// "3 selected · 2 walls, 1 circle".
std::string inspectorSelectionHeading(const Workspace& workspace);
/// True when the entity has a length that can be set.
bool inspectorSupportsLength(const SketchEntity& entity);
/// The entity's length as feet and inches, or empty when it has none that can be set.
std::string inspectorLengthText(const SketchEntity& entity);
/// "Convert to Wall (W2-INT)", "Convert to Line", or empty for an entity that cannot be converted.
std::string inspectorConvertTitle(const Workspace& workspace, const SketchEntity& entity);

// --- Showing it

/// Opens on a selection; nothing without one.
void showEntityInspector(Sketch& sketch);
/// Closes it, or opens it on a selection.
void toggleEntityInspector(Sketch& sketch);

// --- Reports

/// The common report of the inspector's edits: the line that a result writes to the console.
struct EntityEditMessage {
  std::string text;
  bool isError = false;
  bool isSystem = false;
  friend bool operator==(const EntityEditMessage&, const EntityEditMessage&) = default;
};
/// What was asked for. Sketch units.
struct LengthEdit {
  double value = 0;
};
struct NudgeEdit {
  double dx = 0;
  double dy = 0;
};
struct ConvertEdit {
  EntityConversionTarget target = EntityConversionTarget::line;
};
using EntityEditKind = std::variant<LengthEdit, NudgeEdit, ConvertEdit>;
EntityEditMessage entityEditMessage(const EntityEditKind& kind, EntityEditResult result);

// --- Operations on the selected entity. Each reports through the console.

/// The Apply button beside the length field. True when the length was set or stood already.
bool applyInspectorLength(Workspace& workspace, std::string_view lengthText);
/// The Nudge button: both texts are plain finite decimal numbers, in sketch units.
bool applyInspectorNudge(Workspace& workspace, std::string_view xText, std::string_view yText);
/// The convert button: a line becomes a wall of the active system, a wall a line.
void applyInspectorConvert(Workspace& workspace);
/// The wall system picker: the selected wall takes the system. Nothing when it has it already.
void applyInspectorWallSystem(Workspace& workspace, const UUID& specID);

}  // namespace ostrelon
