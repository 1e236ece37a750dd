// Calls that select and edit, those of the inspector and of the wall system panel.
#include "app/inspector.h"
#include "app/wall_panel.h"
#include "automation/call_binding.h"
#include "core/adding.h"
#include "geometry/edit_operations.h"
#include "geometry/plan_item_operations.h"

namespace ostrelon {
namespace {

Json toJson(const EntityEditMessage& message) {
  return {{"text", message.text}, {"isError", message.isError}, {"isSystem", message.isSystem}};
}

Json toJson(const InspectorMetricRow& row) { return {{"label", row.label}, {"value", row.value}}; }

// Moves the end of the line or wall at this position; a wall becomes the selection. No undo step of its
// own: a chain takes one.
void extendChainSegment(Sketch& sketch, std::int64_t index, SketchPoint to) {
  if (index < 0 || index >= static_cast<std::int64_t>(sketch.entities().size())) {
    throw ArgumentError("Argument 1: no entity stands at this position.");
  }
  const auto change = sketch.change();
  SketchEntity extended = sketch.entities()[static_cast<std::size_t>(index)];
  if (auto* line = std::get_if<LineEntity>(&extended)) line->to = to;
  if (auto* wall = std::get_if<WallEntity>(&extended)) {
    wall->to = to;
    sketch.selectOnly(wall->id);
  }
  const UUID id = entityID(extended);
  replaceEntity(sketch, id, std::move(extended));
}

// The kind of an edit by its name, with its values after the result.
Json editMessage(AutomationSession& /*session*/, const std::string& kind, EntityEditResult result,
                 const Json& first, const Json& second) {
  const auto number = [](const Json& json) { return json.is_number() ? json.get<double>() : 0; };
  if (kind == "length") return toJson(entityEditMessage(LengthEdit{number(first)}, result));
  if (kind == "nudge") return toJson(entityEditMessage(NudgeEdit{number(first), number(second)}, result));
  if (kind == "convert") {
    const bool toWall = first == Json("wall") || first == Json(1);
    const auto target = toWall ? EntityConversionTarget::wall : EntityConversionTarget::line;
    return toJson(entityEditMessage(ConvertEdit{target}, result));
  }
  throw ArgumentError("Argument 1: expected one of length, nudge, convert.");
}

std::optional<std::string> orNull(std::string refusal) {
  return refusal.empty() ? std::nullopt : std::optional(std::move(refusal));
}

Opening knownOpening(const Sketch& sketch, const UUID& id) {
  const Opening* opening = sketch.drawing->plan.opening(id);
  if (opening == nullptr) throw ArgumentError("Argument 1: no opening has this identifier.");
  return *opening;
}

}  // namespace

template <>
Json Reader<Json>::read(const Json& json, const ReadContext&) {
  return json;
}

void addEditCalls(CallTable& table) {
  // --- Selection
  table["selectedEntity"] = call(&Sketch::selectedEntity);
  table["selectionSummary"] = call(&Sketch::selectionSummary);
  table["selectAtPoint"] = call(&Board::selectAtPoint);
  table["toggleEntitySelection"] = call(toggleEntitySelection);
  table["selectSingleEntity"] = call(selectSingleEntity);
  table["selectEntities"] = call(selectEntities);
  table["beginMarquee"] = call(&Board::beginMarquee);
  table["finishMarquee"] = call(&Board::finishMarquee);
  table["setSelectMarquee"] = call(&Board::setMarquee);
  table["updateMarquee"] = call(&Board::updateMarquee);
  table["selectAll"] = call(selectAll);
  table["replaceEntity"] = call(
      [](Sketch& sketch, const UUID& id, const SketchEntity& entity) { replaceEntity(sketch, id, entity); });

  // --- Edits
  table["setSelectedEntityLength"] = call(setSelectedEntityLength);
  table["nudgeSelectedEntity"] = call(nudgeSelectedEntity);
  table["convertSelectedEntity"] = call(convertSelectedEntity);
  table["assignWallSystem"] = call(assignWallSystem);
  table["alignSelection"] = call(alignSelection);
  table["moveSelectedLine"] = call(moveSelectedLine);
  table["deleteEntity"] = call(deleteEntity);
  table["deleteSelection"] = call(deleteSelection);
  table["duplicateEntity"] = call(duplicateEntity);
  table["duplicateSelection"] = call(duplicateSelection);
  table["copySelection"] = call(copySelection);
  table["pasteClipboard"] = call([](Sketch& sketch, std::optional<SketchPoint> offset) {
    return pasteClipboard(sketch, offset.value_or(kDuplicateOffset));
  });
  table["entityEditMessage"] =
      call([](AutomationSession& session, const std::string& kind, EntityEditResult result,
              const std::optional<Json>& first, const std::optional<Json>& second) {
        return editMessage(session, kind, result, first.value_or(Json()), second.value_or(Json()));
      });

  // --- Doors, windows and openings. What changes one gives why it was refused, or null.
  table["selectOpening"] = call(&Sketch::selectPlanItem);
  table["changeOpening"] =
      call([](Sketch& sketch, const Opening& opening) { return orNull(changePlanItem(sketch, opening)); });
  table["moveOpening"] = call([](Sketch& sketch, const UUID& id, double distance) {
    Opening moved = knownOpening(sketch, id);
    moved.distance = distance;
    return orNull(changePlanItem(sketch, moved));
  });
  table["flipOpening"] = call([](Sketch& sketch, const UUID& id) {
    const auto flipped = flippedPlanItem(knownOpening(sketch, id));
    return flipped ? orNull(changePlanItem(sketch, *flipped)) : std::nullopt;
  });
  table["deleteOpening"] = call(deletePlanItem);

  // --- Items of the plan, whatever their kind
  table["addPlanItem"] = call([](Sketch& sketch, const PlanItem& item) {
    if (findPlanItem(sketch.drawing->plan, planItemID(item))) return;
    sketch.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, item); });
  });
  table["selectPlanItem"] = call(&Sketch::selectPlanItem);
  table["changePlanItem"] = call([](Sketch& sketch, const PlanItem& item) {
    return orNull(changePlanItem(sketch, item, UndoStep::own));
  });
  table["movePlanItem"] = call(movePlanItem);
  table["deletePlanItem"] = call(deletePlanItem);

  // --- Trim and extend
  table["applyTrim"] = call(applyTrim);
  table["handleTrimClick"] =
      call([](Board& board, SketchPoint point) { return board.trimAt(point).message; });
  table["instruction"] = call(&Board::instruction);
  table["trimInstruction"] = call(&Board::trimInstruction);
  table["clearTrimCuttingEdge"] = call(&Board::clearTrimCuttingEdge);
  table["extendLine"] = call(extendLine);
  table["extendChainSegment"] = call(extendChainSegment);

  // --- The length editor
  table["currentSegmentLengthText"] = call(&Board::currentLengthText);
  table["beginSegmentLengthEdit"] = call(&Board::beginLengthEdit);
  table["setSegmentLengthEditText"] = call(&Board::setLengthEditText);
  table["commitSegmentLengthEdit"] = call(&Board::commitLengthEdit);
  table["applySegmentLength"] = call(&Board::applyLength);

  // --- The inspector
  table["showEntityInspector"] = call(showEntityInspector);
  table["toggleEntityInspector"] = call(toggleEntityInspector);
  table["setEntityInspectorVisible"] = call(&Sketch::setInspected);
  table["applyInspectorLength"] = call([](AutomationSession& session, const std::string& text) {
    return applyInspectorLength(session.workspace(), text);
  });
  table["applyInspectorNudge"] =
      call([](AutomationSession& session, const std::string& x, const std::string& y) {
        return applyInspectorNudge(session.workspace(), x, y);
      });
  table["applyInspectorConvert"] =
      call([](AutomationSession& session) { applyInspectorConvert(session.workspace()); });
  table["applyInspectorWallSystem"] = call(
      [](AutomationSession& session, const UUID& id) { applyInspectorWallSystem(session.workspace(), id); });
  table["inspectorSelectionHeading"] =
      call([](AutomationSession& session) { return inspectorSelectionHeading(session.workspace()); });
  table["inspectorLengthText"] = call(inspectorLengthText);
  table["inspectorMetricRows"] = call([](AutomationSession& session, const SketchEntity& entity) -> Json {
    const auto* wall = std::get_if<WallEntity>(&entity);
    const WallSystemSpec* spec =
        wall != nullptr ? session.workspace().sketch.drawing->wallSystem(wall->systemSpecID) : nullptr;
    Json rows = Json::array();
    for (const auto& row :
         inspectorMetricRows(entity, spec != nullptr ? std::optional(spec->thickness) : std::nullopt)) {
      rows.push_back(toJson(row));
    }
    return rows;
  });

  // --- The wall system panel
  table["selectedWallEntity"] = call([](AutomationSession& session) -> Json {
    const WallEntity* wall = selectedWallEntity(session.workspace());
    if (wall == nullptr) return nullptr;
    return ostrelon::toJson(SketchEntity(*wall));
  });
  table["activeWallSystem"] = call([](const Sketch& sketch) { return sketch.drawing->activeWallSystem(); });
  table["panelSystem"] = call([](AutomationSession& session) { return panelSystem(session.workspace()); });
  table["panelContextTitle"] =
      call([](AutomationSession& session) { return panelContextTitle(session.workspace()); });
  table["updateWallSystem"] = call([](AutomationSession& session, const WallSystemSpec& spec) {
    updateWallSystem(session.workspace(), spec);
  });
  table["selectWallSystemRow"] =
      call([](AutomationSession& session, const UUID& id) { selectWallSystemRow(session.workspace(), id); });
  table["assignPanelSystemToSelection"] =
      call([](AutomationSession& session) { assignPanelSystemToSelection(session.workspace()); });
}

}  // namespace ostrelon
