// Calls of the core: values and texts, wall systems, adding, undo, the console, toasts.
#include "automation/call_binding.h"
#include "console/command_interpreter.h"
#include "core/length_text.h"

namespace ostrelon {

void addSketchCalls(CallTable& table) {
  // --- Entities as values
  table["entityID"] = sessionCall([](AutomationSession&, const SketchEntity& e) { return entityID(e); });
  table["entityKindName"] = functionCall(entityKindName);
  table["entityTypeLabel"] = functionCall(entityTypeLabel);
  table["entityLabel"] = functionCall(entityLabel);
  table["entityDescription"] = functionCall(entityDescription);
  table["entityMetrics"] = functionCall(entityMetrics);
  table["entityLabelText"] = sketchCall(&SketchViewModel::entityLabelText);
  table["entityNumber"] =
      sessionCall([](AutomationSession& session, const UUID& id, const std::optional<EntityList>& entities) {
        return entityNumber(id, entities ? *entities : session.sketch().entities.get());
      });
  table["polygonPerimeter"] = functionCall(polygonPerimeter);
  table["polygonArea"] = functionCall(polygonArea);
  table["wallCorners"] = functionCall(wallCorners);
  table["defaultWallSystems"] = functionCall(defaultWallSystems);

  // --- Texts
  table["parseNumber"] = functionCall(parseNumber);
  table["parseEntityNumber"] = functionCall(parseEntityNumber);
  table["parsePoint"] = functionCall(parsePoint);
  table["parseFeetInches"] = functionCall(parseFeetInches);
  table["formatFeetInches"] = functionCall(formatFeetInches);
  table["formatShortNumber"] = functionCall(formatShortNumber);
  table["formatExactNumber"] = functionCall(formatExactNumber);
  table["parseDegrees"] = functionCall(parseDegrees);
  table["aliasHelpText"] = functionCall(CommandInterpreter::aliasHelpText);
  table["helpText"] = functionCall(CommandInterpreter::helpText);
  table["resolveCommandLine"] =
      sessionCall([](AutomationSession&, const std::vector<std::string>& tokens) -> Json {
        const auto resolved = CommandInterpreter::resolveCommandLine(tokens);
        if (!resolved) return nullptr;
        return {{"head", resolved->head}, {"command", resolved->command}, {"arguments", resolved->arguments}};
      });
  table["executeCommandLine"] = sessionCall([](AutomationSession& session, const std::string& text) {
    return CommandInterpreter::executeCommandLine(text, session.sketch());
  });

  // --- Console and toasts
  table["appendConsoleLine"] = sketchCall(&SketchViewModel::appendConsoleLine);
  table["submitCommandInput"] = sketchCall(&SketchViewModel::submitCommandInput);
  table["setCommandInput"] = sketchCall(&SketchViewModel::setCommandInput);
  table["setConsoleInputFocused"] = sketchCall(&SketchViewModel::setConsoleInputFocused);
  table["printEntityDescription"] = sketchCall(&SketchViewModel::printEntityDescription);
  table["showDocumentToast"] = sketchCall(&SketchViewModel::showDocumentToast);
  table["clearDocumentToast"] = sketchCall(&SketchViewModel::clearDocumentToast);

  // --- Wall systems
  table["activeWallSystemSpec"] = sketchCall(&SketchViewModel::activeWallSystemSpec);
  table["wallSystemSpec"] = sessionCall([](AutomationSession& session, const std::string& idOrName) {
    const auto id = UUID::parse(idOrName);
    const WallSystemSpec* byID = id ? session.sketch().wallSystemSpec(*id) : nullptr;
    return toJson(byID != nullptr ? byID : session.sketch().wallSystemSpec(std::string_view(idOrName)));
  });
  table["wallSystemName"] = sketchCall(&SketchViewModel::wallSystemName);
  table["setActiveWallSystem"] = sketchCall(&SketchViewModel::setActiveWallSystem);
  table["updateWallSystemSpec"] = sketchCall(&SketchViewModel::updateWallSystemSpec);

  // --- The document
  table["setShowGrid"] = sketchCall(&SketchViewModel::setShowGrid);
  table["newDocument"] = sketchCall(&SketchViewModel::newDocument);
  table["addLine"] = sketchCall(&SketchViewModel::addLine);
  table["addRectangle"] = sketchCall(&SketchViewModel::addRectangle);
  table["addCircle"] = sketchCall(&SketchViewModel::addCircle);
  table["addPolygon"] = sketchCall(&SketchViewModel::addPolygon);
  table["addWall"] = sketchCall(&SketchViewModel::addWall);
  table["clearSketch"] = sketchCall(&SketchViewModel::clearSketch);

  // --- Undo
  table["captureUndoCheckpoint"] = sketchCall(&SketchViewModel::captureUndoCheckpoint);
  table["undo"] = sketchCall(&SketchViewModel::undo);
  table["redo"] = sketchCall(&SketchViewModel::redo);
  table["restoreSnapshot"] = sketchCall(&SketchViewModel::restoreSnapshot);
  table["clearUndoHistory"] = sketchCall(&SketchViewModel::clearUndoHistory);
  table["replaceUndoSnapshots"] = sketchCall(&SketchViewModel::replaceUndoSnapshots);
  table["captureCommandMutationState"] = sketchCall(&SketchViewModel::captureCommandMutationState);
  table["restoreCommandMutationState"] = sketchCall(&SketchViewModel::restoreCommandMutationState);
  table["commitCommandMutationState"] = sketchCall(&SketchViewModel::commitCommandMutationState);

  // --- Resets
  table["clearSelection"] = sketchCall(&SketchViewModel::clearSelection);
  table["clearSnapState"] = sketchCall(&SketchViewModel::clearSnapState);
  table["cancelTrackingDwell"] = sketchCall(&SketchViewModel::cancelTrackingDwell);
  table["clearDraft"] = sketchCall(&SketchViewModel::clearDraft);
  table["closeSegmentLengthEdit"] = sketchCall(&SketchViewModel::closeSegmentLengthEdit);
  table["cancelDraft"] = sketchCall(&SketchViewModel::cancelDraft);
}

}  // namespace ostrelon
