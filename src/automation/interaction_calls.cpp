// Calls of the view, snapping, tracking, the drawing tools and the drags.
#include "automation/call_binding.h"
#include "console/numeric_draft_input.h"

namespace ostrelon {
namespace {

// Identifiers that a search leaves out; none when the argument is left out.
using Excluded = std::optional<std::unordered_set<UUID>>;
const std::unordered_set<UUID>& idsOf(const Excluded& excluded) {
  static const std::unordered_set<UUID> none;
  return excluded ? *excluded : none;
}

}  // namespace

void addInteractionCalls(CallTable& table) {
  using namespace SketchSnapping;  // NOLINT(google-build-using-namespace)
  // --- The view
  table["viewPointToSketch"] = call(viewPointToSketch);
  table["sketchPointToView"] = call(sketchPointToView);
  table["visibleSketchRect"] = call([](const SketchSize& canvasSize, const SketchViewport& viewport) -> Json {
    const SketchBox box = visibleSketchBox(canvasSize, viewport);
    return {{"minX", box.minX}, {"minY", box.minY}, {"width", box.width()}, {"height", box.height()}};
  });
  table["gridStep"] = call(gridStep);
  table["gridScaleLabel"] = call(gridScaleLabel);
  table["zoomPercentageLabel"] = call(zoomPercentageLabel);
  table["clampedViewportScale"] = call(clampedViewportScale);
  table["zoomViewport"] = call(&Board::zoom);
  table["zoomToFit"] = call(&Board::zoomToFit);
  table["resetViewport"] = call(&Board::resetViewport);
  table["panViewport"] = call(&Board::pan);
  table["updateCanvasSize"] = call(&Board::resizeCanvas);
  table["setViewport"] = call([](Board& board, double panX, double panY, double scale) {
    board.setViewport({{panX, panY}, scale});
  });

  // --- Snapping
  table["entitySnapTargets"] = call(entitySnapTargets);
  table["snapTargetDescription"] = call(snapTargetDescription);
  table["snapFeedbackText"] = call(snapFeedbackText);
  table["axesForAngle"] = call(axesForAngle);
  table["lockAngle"] = call(lockAngle);
  table["axisSnap"] = call(axisSnap);
  table["axisSnapDelta"] = call(axisSnapDelta);
  table["gridSnap"] = call(gridSnap);
  table["nearestEntityTarget"] =
      call([](const EntityList& entities, const Excluded& excluded, SketchPoint point, double scale,
              const std::optional<SketchPoint>& from) {
        return nearestEntityTarget(entities, idsOf(excluded), point, scale, from);
      });
  table["nearestAcquirableTarget"] =
      call([](const EntityList& entities, const Excluded& excluded, SketchPoint point, double scale) {
        return nearestAcquirableTarget(entities, idsOf(excluded), point, scale);
      });
  table["snapPoint"] = call([](SketchPoint point, const SketchViewport& viewport, const EntityList& entities,
                               const Excluded& excluded, bool useGrid) {
    return snapPoint(point, viewport, entities, idsOf(excluded), useGrid);
  });
  table["snapEntityMove"] =
      call([](SketchPoint delta, const SketchViewport& viewport, const SketchEntity& moved,
              const EntityList& entities) { return snapEntityMove(delta, viewport, moved, entities); });
  table["snapHandleDrag"] =
      call([](const SelectionHandle& handle, const SketchEntity& entity, const EntityList& entities,
              SketchPoint point, const SketchViewport& viewport, bool useGrid,
              const std::optional<double>& reference) {
        return snapHandleDrag(handle, entity, entities, point, viewport, useGrid, reference);
      });
  table["handleAnchor"] = call(handleAnchor);
  table["trackingCandidate"] = call(trackingCandidate);
  table["snapPointer"] = call(&Board::snapPointer);
  table["snapDraftEnd"] = call(&Board::snapDraftEnd);
  table["publishSnap"] = call([](AutomationSession& session, const SketchSnapResult& result,
                                 const std::optional<SketchPoint>& guideAnchor) {
    session.workspace().board.publishSnap(result, guideAnchor);
  });

  // --- Tracking
  table["tickTrackingAcquire"] = call(&Board::tickTracking);
  table["startTrackingDwell"] = call(&Board::startTrackingDwell);
  table["advanceTrackingDwell"] = call(&Board::advanceTrackingDwell);
  table["scheduleTrackingDwell"] = call(&Board::scheduleTrackingDwell);
  table["lockTrackingTarget"] = call(&Board::lockTrackingTarget);
  table["trackingHoldText"] = call(&Board::trackingHoldText);
  table["showIdleTrackingFeedback"] = call(&Board::showIdleTrackingFeedback);

  // --- Drawing tools
  table["beginDraft"] = call(&Board::beginDraft);
  table["updateDraft"] = call(&Board::updateDraft);
  table["commitDraft"] = call(&Board::commitDraft);
  table["addPolygonVertex"] = call(&Board::addPolygonVertex);
  table["updatePolygonDraft"] = call(&Board::updatePolygonDraft);
  table["closePolygon"] = call(&Board::closePolygon);
  table["activateTool"] = call(&Board::activateTool);
  table["setDraftCurrent"] = call(&Board::setDraftCurrent);
  table["activateToolFromConsole"] = call(&Board::activateToolFromConsole);
  table["activateSelectTool"] = call(&Board::activateSelectTool);
  table["handleEscape"] = call(&Board::handleEscape);
  table["hoverMoved"] = call(&Board::hoverMoved);
  table["recordPointer"] = call(&Board::recordPointer);
  table["draftMeasurementText"] = call(&Board::draftMeasurementText);
  table["applyNumericDraftInput"] = call([](Board& board, const std::string& text) -> Json {
    const auto reply = CommandInterpreter::applyNumericDraftInput(text, board);
    if (!reply) return nullptr;
    return Json::array({*reply->text, reply->kind == CommandInterpreter::ReplyKind::error});
  });

  // --- Drags of the select tool
  table["beginSelectDrag"] = call(&Board::beginSelectDrag);
  table["updateSelectDrag"] = call(&Board::updateSelectDrag);
  table["finishSelectDrag"] = call(&Board::finishSelectDrag);
  table["cancelSelectDrag"] = call(&Board::cancelSelectDrag);
}

}  // namespace ostrelon
