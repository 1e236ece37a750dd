#include "app/opening_inspector.h"

#include <fmt/format.h>

#include <array>

#include "core/typed_length.h"
#include "geometry/opening_operations.h"
#include "geometry/plan_item_operations.h"

namespace ostrelon {

std::optional<Opening> inspectedOpening(const Workspace& workspace) {
  return selectedPlanItem<Opening>(workspace.sketch);
}

std::vector<InspectorMetricRow> openingMetricRows(const Workspace& workspace, const Opening& opening) {
  const Sketch& sketch = workspace.sketch;
  std::vector<InspectorMetricRow> rows;
  if (const auto label = sketch.labelOf(opening.wallID)) rows.push_back({"In", *label});
  if (const auto wall = openingWall(sketch, opening.wallID)) {
    rows.push_back({"To the end", formatLength(wall->length() - opening.distance - opening.width)});
  }
  return rows;
}

std::string wallOpeningsText(const Workspace& workspace, const UUID& wallID) {
  std::array<int, 3> counts{};
  for (const Opening& opening : workspace.sketch.drawing->plan.openings) {
    if (opening.wallID == wallID) ++counts.at(static_cast<std::size_t>(opening.kind));
  }
  std::string text;
  for (const OpeningKind kind : {OpeningKind::door, OpeningKind::window, OpeningKind::opening}) {
    const int count = counts.at(static_cast<std::size_t>(kind));
    if (count == 0) continue;
    text += fmt::format("{}{} {}{}", text.empty() ? "" : ", ", count, openingKindName(kind),
                        count == 1 ? "" : "s");
  }
  return text;
}

std::string openingFieldText(const Opening& opening, OpeningField field) {
  return formatLength(field == OpeningField::width ? opening.width : opening.distance);
}

std::optional<std::string> commitOpeningField(Workspace& workspace, const UUID& id, OpeningField field,
                                              std::string_view text) {
  const Opening* found = workspace.sketch.drawing->plan.opening(id);
  if (found == nullptr || text == openingFieldText(*found, field)) return std::nullopt;
  const LengthReading reading = readLength(text);
  if (const auto* problem = std::get_if<LengthProblem>(&reading)) return lengthProblemText(*problem);
  Opening changed = *found;
  const double length = std::get<double>(reading);
  if (field == OpeningField::width) {
    if (!(length > 0)) return "The width must be greater than zero.";
    changed.width = length;
  } else {
    changed.distance = length;
  }
  const std::string refusal = changePlanItem(workspace.sketch, changed);
  return refusal.empty() ? std::nullopt : std::optional(refusal);
}

void setOpeningKind(Workspace& workspace, const UUID& id, OpeningKind kind) {
  const Opening* found = workspace.sketch.drawing->plan.opening(id);
  if (found == nullptr) return;
  Opening changed = *found;
  changed.kind = kind;
  changePlanItem(workspace.sketch, changed);
}

void setDoorHanging(Workspace& workspace, const UUID& id, DoorHanging hanging) {
  const Opening* found = workspace.sketch.drawing->plan.opening(id);
  if (found == nullptr) return;
  Opening changed = *found;
  changed.hinge = hanging.hinge;
  changed.swing = hanging.swing;
  changePlanItem(workspace.sketch, changed);
}

}  // namespace ostrelon
