// Calls that select and edit, those of the inspector and of the wall system panel.
#include "app/inspector.h"
#include "app/wall_panel.h"
#include "automation/call_binding.h"

namespace ostrelon {
namespace {

Json toJson(const EntityEditMessage& message) {
  return {{"text", message.text}, {"isError", message.isError}, {"isSystem", message.isSystem}};
}

Json toJson(const InspectorMetricRow& row) { return {{"label", row.label}, {"value", row.value}}; }

// The kind of an edit by its name, with its values behind the result.
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

}  // namespace

template <>
Json Reader<Json>::read(const Json& json, const ReadContext&) {
  return json;
}

void addEditCalls(CallTable& table) {
  // --- Selection
  table["selectedEntity"] = sketchCall(&SketchViewModel::selectedEntity);
  table["selectionSummary"] = sketchCall(&SketchViewModel::selectionSummary);
  table["selectAtPoint"] = sketchCall(&SketchViewModel::selectAtPoint);
  table["toggleEntitySelection"] = sketchCall(&SketchViewModel::toggleEntitySelection);
  table["selectSingleEntity"] = sketchCall(&SketchViewModel::selectSingleEntity);
  table["selectEntities"] = sketchCall(&SketchViewModel::selectEntities);
  table["beginMarquee"] = sketchCall(&SketchViewModel::beginMarquee);
  table["finishMarquee"] = sketchCall(&SketchViewModel::finishMarquee);
  table["setSelectMarquee"] = sketchCall(&SketchViewModel::setSelectMarquee);
  table["updateMarquee"] = sketchCall(&SketchViewModel::updateMarquee);
  table["selectAll"] = sketchCall(&SketchViewModel::selectAll);
  table["replaceEntity"] = sketchCall(&SketchViewModel::replaceEntity);

  // --- Edits
  table["setSelectedEntityLength"] = sketchCall(&SketchViewModel::setSelectedEntityLength);
  table["nudgeSelectedEntity"] = sketchCall(&SketchViewModel::nudgeSelectedEntity);
  table["convertSelectedEntity"] = sketchCall(&SketchViewModel::convertSelectedEntity);
  table["assignWallSystem"] = sketchCall(&SketchViewModel::assignWallSystem);
  table["alignSelection"] = sketchCall(&SketchViewModel::alignSelection);
  table["moveSelectedLine"] = sketchCall(&SketchViewModel::moveSelectedLine);
  table["deleteEntity"] = sketchCall(&SketchViewModel::deleteEntity);
  table["deleteSelection"] = sketchCall(&SketchViewModel::deleteSelection);
  table["duplicateEntity"] = sketchCall(&SketchViewModel::duplicateEntity);
  table["duplicateSelection"] = sketchCall(&SketchViewModel::duplicateSelection);
  table["copySelection"] = sketchCall(&SketchViewModel::copySelection);
  table["pasteClipboard"] = sketchCall(&SketchViewModel::pasteClipboard);
  table["entityEditMessage"] =
      sessionCall([](AutomationSession& session, const std::string& kind, EntityEditResult result,
                     const std::optional<Json>& first, const std::optional<Json>& second) {
        return editMessage(session, kind, result, first.value_or(Json()), second.value_or(Json()));
      });

  // --- Trim and extend
  table["applyTrim"] = sketchCall(&SketchViewModel::applyTrim);
  table["handleTrimClick"] = sketchCall(&SketchViewModel::handleTrimClick);
  table["trimInstruction"] = sketchCall(&SketchViewModel::trimInstruction);
  table["clearTrimCuttingEdge"] = sketchCall(&SketchViewModel::clearTrimCuttingEdge);
  table["extendLine"] = sketchCall(&SketchViewModel::extendLine);
  table["extendChainSegment"] =
      sessionCall([](AutomationSession& session, std::int64_t index, SketchPoint to) {
        if (index < 0 || index >= static_cast<std::int64_t>(session.sketch().entities->size())) {
          throw ArgumentError("Argument 1: no entity stands at this position.");
        }
        session.sketch().extendChainSegment(static_cast<std::size_t>(index), to);
      });

  // --- The length editor
  table["currentSegmentLengthText"] = sketchCall(&SketchViewModel::currentSegmentLengthText);
  table["beginSegmentLengthEdit"] = sketchCall(&SketchViewModel::beginSegmentLengthEdit);
  table["setSegmentLengthEditText"] = sketchCall(&SketchViewModel::setSegmentLengthEditText);
  table["commitSegmentLengthEdit"] = sketchCall(&SketchViewModel::commitSegmentLengthEdit);
  table["applySegmentLength"] = sketchCall(&SketchViewModel::applySegmentLength);

  // --- The inspector
  table["showEntityInspector"] = sketchCall(&SketchViewModel::showEntityInspector);
  table["toggleEntityInspector"] = sketchCall(&SketchViewModel::toggleEntityInspector);
  table["setEntityInspectorVisible"] = sketchCall(&SketchViewModel::setEntityInspectorVisible);
  table["applyInspectorLength"] = sessionCall([](AutomationSession& session, const std::string& text) {
    return applyInspectorLength(session.sketch(), text);
  });
  table["applyInspectorNudge"] =
      sessionCall([](AutomationSession& session, const std::string& x, const std::string& y) {
        return applyInspectorNudge(session.sketch(), x, y);
      });
  table["applyInspectorConvert"] =
      sessionCall([](AutomationSession& session) { applyInspectorConvert(session.sketch()); });
  table["applyInspectorWallSystem"] = sessionCall(
      [](AutomationSession& session, const UUID& id) { applyInspectorWallSystem(session.sketch(), id); });
  table["inspectorSelectionHeading"] =
      sessionCall([](AutomationSession& session) { return inspectorSelectionHeading(session.sketch()); });
  table["inspectorLengthText"] = functionCall(inspectorLengthText);
  table["inspectorMetricRows"] =
      sessionCall([](AutomationSession& session, const SketchEntity& entity) -> Json {
        const auto* wall = std::get_if<WallEntity>(&entity);
        const WallSystemSpec* spec =
            wall != nullptr ? session.sketch().wallSystemSpec(wall->systemSpecID) : nullptr;
        Json rows = Json::array();
        for (const auto& row :
             inspectorMetricRows(entity, spec != nullptr ? std::optional(spec->thickness) : std::nullopt)) {
          rows.push_back(toJson(row));
        }
        return rows;
      });

  // --- The wall system panel
  table["selectedWallEntity"] = sessionCall([](AutomationSession& session) -> Json {
    const WallEntity* wall = selectedWallEntity(session.sketch());
    if (wall == nullptr) return nullptr;
    return ostrelon::toJson(SketchEntity(*wall));
  });
  table["activeWallSystem"] = sketchCall(&SketchViewModel::activeWallSystemSpec);
  table["panelSystem"] =
      sessionCall([](AutomationSession& session) { return panelSystem(session.sketch()); });
  table["panelContextTitle"] =
      sessionCall([](AutomationSession& session) { return panelContextTitle(session.sketch()); });
  table["updateWallSystem"] = sessionCall([](AutomationSession& session, const WallSystemSpec& spec) {
    updateWallSystem(session.sketch(), spec);
  });
  table["selectWallSystemRow"] = sessionCall(
      [](AutomationSession& session, const UUID& id) { selectWallSystemRow(session.sketch(), id); });
  table["assignPanelSystemToSelection"] =
      sessionCall([](AutomationSession& session) { assignPanelSystemToSelection(session.sketch()); });
}

}  // namespace ostrelon
