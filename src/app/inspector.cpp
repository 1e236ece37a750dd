#include "app/inspector.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

#include "app/wall_panel.h"
#include "core/length_text.h"
#include "geometry/edit_operations.h"

namespace ostrelon {

namespace {

std::string pointText(SketchPoint point) {
  return "(" + formatOneDecimal(point.x) + ", " + formatOneDecimal(point.y) + ")";
}

std::string pluralKind(std::string_view kind, std::size_t count) {
  return fmt::format("{} {}{}", count, kind, count == 1 ? "" : "s");
}

}  // namespace

std::vector<InspectorMetricRow> inspectorMetricRows(const SketchEntity& entity,
                                                    std::optional<double> wallThickness) {
  const EntityMetrics metrics = entityMetrics(entity, wallThickness);
  std::vector<InspectorMetricRow> rows;
  const auto add = [&rows](std::string label, std::string value) {
    rows.push_back({std::move(label), std::move(value)});
  };
  const auto addLength = [&](std::string label) {
    if (metrics.length) add(std::move(label), formatFeetInches(*metrics.length));
  };
  const auto addDecimal = [&](std::string label, const std::optional<double>& value) {
    if (value) add(std::move(label), formatOneDecimal(*value));
  };
  const auto addAngle = [&] {
    if (metrics.angle) add("Angle", formatShortNumber(*metrics.angle) + "°");
  };

  if (metrics.from) add("From", pointText(*metrics.from));
  if (metrics.to) add("To", pointText(*metrics.to));
  std::visit(Overloaded{
                 [&](const LineEntity&) {
                   addLength("Length");
                   addAngle();
                 },
                 [&](const WallEntity&) {
                   addLength("Length");
                   addDecimal("Thickness", metrics.width);
                   addAngle();
                 },
                 [&](const CircleEntity&) { addLength("Diameter"); },
                 [&](const ArcEntity&) {
                   addLength("Length");
                   addAngle();
                 },
                 [&](const RectangleEntity&) {
                   addDecimal("Width", metrics.width);
                   addLength("Height");
                 },
                 [&](const PolygonEntity&) {
                   addLength("Perimeter");
                   if (metrics.area) add("Area", fmt::format("{:.1f} sq ft", *metrics.area));
                   if (metrics.vertexCount) add("Vertices", std::to_string(*metrics.vertexCount));
                 },
             },
             entity);
  return rows;
}

std::string inspectorSelectionHeading(const Workspace& workspace) {
  std::array<std::size_t, std::variant_size_v<SketchEntity>> counts{};
  std::array<std::string_view, std::variant_size_v<SketchEntity>> kinds{};
  std::size_t total = 0;
  workspace.sketch.visitSelected([&](const SketchEntity& entity) {
    ++total;
    ++counts[entity.index()];
    kinds[entity.index()] = entityKindName(entity);
  });
  // Walls lead, since plans are about walls; the other kinds follow in the order of the variant.
  constexpr std::array<std::size_t, std::variant_size_v<SketchEntity>> order{1, 0, 2, 3, 4, 5};
  std::string list;
  for (const std::size_t kind : order) {
    if (counts[kind] == 0) continue;
    if (!list.empty()) list += ", ";
    list += pluralKind(kinds[kind], counts[kind]);
  }
  return fmt::format("{} selected · {}", total, list);
}

bool inspectorSupportsLength(const SketchEntity& entity) {
  return std::visit(Overloaded{
                        [](const LineEntity&) { return true; },
                        [](const WallEntity&) { return true; },
                        [](const CircleEntity&) { return true; },
                        [](const ArcEntity&) { return true; },
                        [](const RectangleEntity&) { return true; },
                        [](const PolygonEntity&) { return false; },
                    },
                    entity);
}

std::string inspectorLengthText(const SketchEntity& entity) {
  if (!inspectorSupportsLength(entity)) return {};
  const auto length = entityMetrics(entity).length;
  return length ? formatFeetInches(*length) : std::string();
}

std::string inspectorConvertTitle(const Workspace& workspace, const SketchEntity& entity) {
  if (std::holds_alternative<WallEntity>(entity)) return "Convert to Line";
  const WallSystemSpec* active = workspace.sketch.drawing->activeWallSystem();
  if (!std::holds_alternative<LineEntity>(entity) || active == nullptr) return {};
  return "Convert to Wall (" + active->name + ")";
}

// --- Showing it

void showEntityInspector(Sketch& sketch) {
  if (!sketch.selection->isNothing()) sketch.setInspected(true);
}

void toggleEntityInspector(Sketch& sketch) {
  sketch.setInspected(!sketch.selection->isNothing() && !sketch.selection->isInspected);
}

// --- Reports

EntityEditMessage entityEditMessage(const EntityEditKind& kind, EntityEditResult result) {
  switch (result) {
    case EntityEditResult::applied: {
      const auto target = [](EntityConversionTarget to) {
        return to == EntityConversionTarget::line ? "line" : "wall";
      };
      std::string text = std::visit(
          Overloaded{
              [](const LengthEdit& edit) { return fmt::format("Length set to {:g}.", edit.value); },
              [](const NudgeEdit& edit) {
                // Adding 0 makes a 0 of -0.
                return fmt::format("Selection nudged by ({:g}, {:g}).", edit.dx + 0.0, edit.dy + 0.0);
              },
              [&](const ConvertEdit& edit) {
                return fmt::format("Selection converted to {}.", target(edit.target));
              },
          },
          kind);
      return {std::move(text), false, true};
    }
    case EntityEditResult::unchanged:
      return {"No change.", false, true};
    case EntityEditResult::noSelection:
      return {"Select an entity first.", true, false};
    case EntityEditResult::invalidValue:
      return {"Invalid edit value.", true, false};
    case EntityEditResult::unsupported:
      return {"Edit is not supported for this selection.", true, false};
  }
  return {};
}

namespace {

void report(Workspace& workspace, const EntityEditKind& kind, EntityEditResult result) {
  EntityEditMessage message = entityEditMessage(kind, result);
  workspace.messages.append(std::move(message.text), message.isError, message.isSystem);
}

}  // namespace

// --- Operations

bool applyInspectorLength(Workspace& workspace, std::string_view lengthText) {
  const auto value = parseFeetInches(lengthText);
  if (!value || !(*value > 0) || !std::isfinite(*value)) {
    workspace.messages.append("Enter a valid feet/inches length.", true, false);
    return false;
  }
  // The text that the field shows is rounded: applied unchanged it asks for nothing.
  const SketchEntity* selected = workspace.sketch.selectedEntity();
  const bool isAsShown = selected != nullptr && lengthText == inspectorLengthText(*selected);
  const EntityEditResult result =
      isAsShown ? EntityEditResult::unchanged : setSelectedEntityLength(workspace.sketch, *value);
  report(workspace, LengthEdit{*value}, result);
  return result == EntityEditResult::applied || result == EntityEditResult::unchanged;
}

bool applyInspectorNudge(Workspace& workspace, std::string_view xText, std::string_view yText) {
  const auto dx = parsePlainDecimal(xText);
  const auto dy = parsePlainDecimal(yText);
  if (!dx || !dy) {
    workspace.messages.append("Enter numeric nudge values.", true, false);
    return false;
  }
  const EntityEditResult result = nudgeSelectedEntity(workspace.sketch, *dx, *dy);
  report(workspace, NudgeEdit{*dx, *dy}, result);
  return result == EntityEditResult::applied || result == EntityEditResult::unchanged;
}

void applyInspectorConvert(Workspace& workspace) {
  const SketchEntity* entity = workspace.sketch.selectedEntity();
  if (entity == nullptr) return;
  const bool isWall = std::holds_alternative<WallEntity>(*entity);
  const auto target = isWall ? EntityConversionTarget::line : EntityConversionTarget::wall;
  report(workspace, ConvertEdit{target}, convertSelectedEntity(workspace.sketch, target));
}

void applyInspectorWallSystem(Workspace& workspace, const UUID& specID) {
  const WallSystemSpec* spec = workspace.sketch.drawing->wallSystem(specID);
  const WallEntity* wall = selectedWallEntity(workspace);
  if (spec == nullptr || wall == nullptr || wall->systemSpecID == specID) return;
  const std::string name = spec->name;
  if (assignWallSystem(workspace.sketch, specID, UUID(wall->id))) {
    workspace.messages.append("Wall system set to " + name + ".", false, true);
  }
}

}  // namespace ostrelon
