#include "app/wall_panel.h"

#include <charconv>
#include <cmath>

#include "core/length_text.h"

namespace ostrelon {

const WallEntity* selectedWallEntity(const SketchViewModel& sketch) {
  const SketchEntity* selected = sketch.selectedEntity();
  return selected != nullptr ? std::get_if<WallEntity>(selected) : nullptr;
}

const WallSystemSpec* selectedWallSystem(const SketchViewModel& sketch) {
  const WallEntity* wall = selectedWallEntity(sketch);
  return wall != nullptr ? sketch.wallSystemSpec(wall->systemSpecID) : nullptr;
}

const WallSystemSpec* panelSystem(const SketchViewModel& sketch) {
  const WallSystemSpec* selected = selectedWallSystem(sketch);
  return selected != nullptr ? selected : sketch.activeWallSystemSpec();
}

std::string panelContextTitle(const SketchViewModel& sketch) {
  if (const WallSystemSpec* selected = selectedWallSystem(sketch)) return "SELECTED WALL · " + selected->name;
  const WallSystemSpec* active = sketch.activeWallSystemSpec();
  return "ACTIVE SYSTEM · " + (active != nullptr ? active->name : std::string());
}

std::vector<WallSystemRow> wallSystemRows(const SketchViewModel& sketch) {
  const WallSystemSpec* assigned = selectedWallSystem(sketch);
  const WallSystemSpec* shown = panelSystem(sketch);
  std::vector<WallSystemRow> rows;
  for (const WallSystemSpec& spec : *sketch.wallSystemSpecs) {
    rows.push_back({spec, spec.id == sketch.activeWallSystemSpecID.get(), &spec == assigned, &spec == shown});
  }
  return rows;
}

std::string wallSystemMeasures(const WallSystemSpec& spec) {
  return plainDecimalText(spec.thickness) + " thick · " + plainDecimalText(spec.height) + " high";
}

void selectWallSystemRow(SketchViewModel& sketch, const UUID& specID) {
  const WallSystemSpec* spec = sketch.wallSystemSpec(specID);
  if (spec == nullptr) return;
  if (const WallEntity* wall = selectedWallEntity(sketch)) {
    sketch.assignWallSystem(specID, UUID(wall->id));
  } else {
    sketch.setActiveWallSystem(WallSystemSpec(*spec));
  }
}

void assignPanelSystemToSelection(SketchViewModel& sketch) {
  const WallEntity* wall = selectedWallEntity(sketch);
  const WallSystemSpec* shown = panelSystem(sketch);
  if (wall == nullptr || shown == nullptr) return;
  const std::string name = shown->name;
  if (sketch.assignWallSystem(UUID(shown->id), UUID(wall->id))) {
    sketch.appendConsoleLine("Wall assigned to " + name + ".", false, true);
  }
}

void updateWallSystem(SketchViewModel& sketch, const WallSystemSpec& spec) {
  const WallSystemSpec* old = sketch.wallSystemSpec(spec.id);
  if (old == nullptr || *old == spec) return;
  sketch.updateWallSystemSpec(spec);
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

bool commitWallSystemField(SketchViewModel& sketch, const UUID& specID, WallSystemField field,
                           std::string_view text) {
  const WallSystemSpec* old = sketch.wallSystemSpec(specID);
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
  updateWallSystem(sketch, edited);
  return true;
}

std::optional<double> parsePlainDecimal(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
    if (text.starts_with('-')) return std::nullopt;
  }
  // The reader knows the words "inf" and "nan" too; a plain number begins with a digit or a point.
  const std::string_view digits = text.starts_with('-') ? text.substr(1) : text;
  if (digits.empty() || (digits.front() != '.' && (digits.front() < '0' || digits.front() > '9'))) {
    return std::nullopt;
  }
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace ostrelon
