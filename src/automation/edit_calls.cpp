// Calls that select and edit, those of the inspector and of the wall system panel.
#include "app/inspector.h"
#include "app/wall_panel.h"
#include "automation/call_binding.h"
#include "console/command_chain.h"

namespace ostrelon {
namespace {

Json toJson(const EntityEditMessage& message) {
  return {{"text", message.text}, {"isError", message.isError}, {"isSystem", message.isSystem}};
}

Json chainCommandJson(const CommandInterpreter::ChainCommand& command) {
  using namespace CommandInterpreter;  // NOLINT(google-build-using-namespace)
  using ostrelon::toJson;
  return std::visit(
      Overloaded{
          [](const ChainLine& line) {
            return Json{{"case", "line"}, {"from", toJson(line.from)}, {"to", toJson(line.to)}};
          },
          [](const ChainWall& wall) {
            return Json{{"case", "wall"},
                        {"from", toJson(wall.from)},
                        {"to", toJson(wall.to)},
                        {"systemSpecID", toJson(wall.systemSpecID)}};
          },
          [](const ChainCircle& circle) {
            return Json{{"case", "circle"}, {"center", toJson(circle.center)}, {"radius", circle.radius}};
          },
          [](const ChainRectangle& rectangle) {
            return Json{{"case", "rectangle"},
                        {"origin", toJson(rectangle.origin)},
                        {"size", toJson(rectangle.size)}};
          },
          [](const ChainSelect& select) {
            return Json{{"case", "select"}, {"indices", toJson(select.indices)}};
          },
          [](const ChainAssign& assign) {
            return Json{{"case", "assign"}, {"specID", toJson(assign.specID)}};
          },
          [](const ChainSpecUse& use) {
            return Json{{"case", "specUse"}, {"specID", toJson(use.specID)}};
          },
          [](const ChainSpecShow& show) {
            return Json{{"case", "specShow"}, {"name", toJson(show.name)}};
          },
          [](const ChainSpecList&) {
            return Json{{"case", "specList"}};
          },
      },
      command);
}

// The commands of a chain, or the number of the segment that cannot be one and what is wrong with it.
Json parsedChain(AutomationSession& session, const std::string& text) {
  const auto parsed = CommandInterpreter::parseChain(text, session.sketch());
  if (const auto* error = std::get_if<CommandInterpreter::ChainError>(&parsed)) {
    return {{"case", "failure"}, {"segment", error->segment}, {"message", error->message}};
  }
  Json commands = Json::array();
  for (const auto& command : std::get<0>(parsed)) commands.push_back(chainCommandJson(command));
  return commands;
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
  table["runChain"] = sessionCall([](AutomationSession& session, const std::string& text) {
    return CommandInterpreter::runChain(text, session.sketch());
  });

  table["parseChain"] = sessionCall(
      [](AutomationSession& session, const std::string& text) { return parsedChain(session, text); });

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
