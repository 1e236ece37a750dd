// Calls of the core: values and texts, wall systems, adding, undo, the console, toasts.
#include "automation/call_binding.h"
#include "console/command_interpreter.h"
#include "core/adding.h"
#include "core/length_text.h"
#include "geometry/edit_operations.h"
#include "geometry/opening_operations.h"
#include "geometry/wall_loops.h"

namespace ostrelon {

void addSketchCalls(CallTable& table) {
  // --- Entities as values
  table["entityID"] = call([](const SketchEntity& e) { return entityID(e); });
  table["entityKindName"] = call(entityKindName);
  table["entityTypeLabel"] = call(entityTypeLabel);
  table["entityLabel"] = call(entityLabel);
  table["entityDescription"] = call(entityDescription);
  table["entityMetrics"] = call(entityMetrics);
  table["entityLabelText"] = call(&Sketch::labelOf);
  table["entityNumber"] =
      call([](AutomationSession& session, const UUID& id, const std::optional<EntityList>& entities) {
        return entityNumber(id, entities ? *entities : session.workspace().sketch.entities());
      });
  table["polygonPerimeter"] = call(polygonPerimeter);
  table["polygonArea"] = call(polygonArea);
  table["wallCorners"] = call(wallCorners);
  table["defaultWallSystems"] = call(defaultWallSystems);

  // --- Texts
  table["parseNumber"] = call(parseNumber);
  table["parseEntityNumber"] = call(parseEntityNumber);
  table["parsePoint"] = call(parsePoint);
  table["parseFeetInches"] = call(parseFeetInches);
  table["formatFeetInches"] = call(formatFeetInches);
  table["formatShortNumber"] = call(formatShortNumber);
  table["formatExactNumber"] = call(formatExactNumber);
  table["parseDegrees"] = call(parseDegrees);
  table["aliasHelpText"] = call(CommandInterpreter::aliasHelpText);
  table["helpText"] = call(CommandInterpreter::helpText);
  table["resolveCommandLine"] = call([](const std::vector<std::string>& tokens) -> Json {
    const auto resolved = CommandInterpreter::resolveCommandLine(tokens);
    if (!resolved) return nullptr;
    return {{"head", resolved->head}, {"command", resolved->command}, {"arguments", resolved->arguments}};
  });
  table["executeCommandLine"] = call([](AutomationSession& session, const std::string& text) {
    return CommandInterpreter::executeCommandLine(text, session.workspace().commands()).text;
  });

  // --- Console and toasts
  table["appendConsoleLine"] = call(&Messages::append);
  table["submitCommandInput"] = call(&Console::submit);
  table["setCommandInput"] = call(&Console::setInput);
  table["setConsoleInputFocused"] = call(&Console::setFocused);
  table["printEntityDescription"] = call(printEntityDescription);
  table["showDocumentToast"] = call(&Messages::showToast);
  table["clearDocumentToast"] = call(&Messages::clearToast);

  // --- Wall systems
  table["activeWallSystemSpec"] =
      call([](const Sketch& sketch) { return sketch.drawing->activeWallSystem(); });
  table["wallSystemSpec"] = call([](AutomationSession& session, const std::string& idOrName) {
    const auto id = UUID::parse(idOrName);
    const WallSystemSpec* byID = id ? session.workspace().sketch.drawing->wallSystem(*id) : nullptr;
    return toJson(
        byID != nullptr ? byID : session.workspace().sketch.drawing->wallSystem(std::string_view(idOrName)));
  });
  table["wallSystemName"] = call([](const Sketch& sketch, const SketchEntity& entity) {
    return sketch.drawing->wallSystemName(entity);
  });
  table["setActiveWallSystem"] = call(setActiveWallSystem);
  table["updateWallSystemSpec"] = call(updateWallSystemSpec);

  // --- The document
  table["setShowGrid"] = call(setShowGrid);
  table["planLoops"] = call([](const Sketch& sketch) {
    Json loops = Json::array();
    for (const WallLoop& loop : wallLoops(JoinedWalls::of(cutOpen(sketch.entities(), openingLayout(sketch)),
                                                          sketch.drawing->wallSystemSpecs))) {
      loops.push_back({{"points", toJson(loop.points)}, {"systems", toJson(loop.systems)}});
    }
    return loops;
  });
  table["newDocument"] = call(&DocumentSession::begin);
  table["addLine"] = call(addLine);
  table["addRectangle"] = call(addRectangle);
  table["addCircle"] = call(addCircle);
  table["addPolygon"] = call(addPolygon);
  table["addWall"] = call(addWall);
  table["clearSketch"] = call(&Board::clearSketch);

  // --- Undo
  table["captureUndoCheckpoint"] = call(captureUndoCheckpoint);
  table["undo"] = call(&Board::undo);
  table["redo"] = call(&Board::redo);
  table["restoreSnapshot"] = call(&Board::restoreSnapshot);
  table["clearUndoHistory"] = call(clearUndoHistory);
  table["replaceUndoSnapshots"] = call(replaceUndoSnapshots);
  table["captureCommandMutationState"] = call(captureCommandMutationState);
  table["restoreCommandMutationState"] = call(restoreCommandMutationState);
  table["commitCommandMutationState"] = call(commitCommandMutationState);

  // --- Resets
  table["clearSelection"] = call(&Sketch::clearSelection);
  table["clearSnapState"] = call(&Board::clearSnap);
  table["cancelTrackingDwell"] = call(&Board::cancelTrackingDwell);
  table["clearDraft"] = call(&Board::clearDraft);
  table["closeSegmentLengthEdit"] = call(&Board::closeLengthEditor);
  table["cancelDraft"] = call(&Board::cancelDraft);
}

}  // namespace ostrelon
