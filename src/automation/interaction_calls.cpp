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
  table["viewPointToSketch"] = functionCall(viewPointToSketch);
  table["sketchPointToView"] = functionCall(sketchPointToView);
  table["visibleSketchRect"] = sessionCall(
      [](AutomationSession&, const SketchSize& canvasSize, const SketchViewport& viewport) -> Json {
        const SketchBox box = visibleSketchBox(canvasSize, viewport);
        return {{"minX", box.minX}, {"minY", box.minY}, {"width", box.width()}, {"height", box.height()}};
      });
  table["gridStep"] = functionCall(gridStep);
  table["gridScaleLabel"] = functionCall(gridScaleLabel);
  table["zoomPercentageLabel"] = functionCall(zoomPercentageLabel);
  table["clampedViewportScale"] = functionCall(clampedViewportScale);
  table["zoomViewport"] = sketchCall(&SketchViewModel::zoomViewport);
  table["zoomToFit"] = sketchCall(&SketchViewModel::zoomToFit);
  table["resetViewport"] = sketchCall(&SketchViewModel::resetViewport);
  table["panViewport"] = sketchCall(&SketchViewModel::panViewport);
  table["updateCanvasSize"] = sketchCall(&SketchViewModel::updateCanvasSize);
  table["setViewport"] = sketchCall(&SketchViewModel::setViewport);

  // --- Snapping
  table["entitySnapTargets"] = functionCall(entitySnapTargets);
  table["snapTargetDescription"] = functionCall(snapTargetDescription);
  table["snapFeedbackText"] = functionCall(snapFeedbackText);
  table["axesForAngle"] = functionCall(axesForAngle);
  table["lockAngle"] = functionCall(lockAngle);
  table["axisSnap"] = functionCall(axisSnap);
  table["axisSnapDelta"] = functionCall(axisSnapDelta);
  table["gridSnap"] = functionCall(gridSnap);
  table["nearestEntityTarget"] =
      sessionCall([](AutomationSession&, const EntityList& entities, const Excluded& excluded,
                     SketchPoint point, double scale, const std::optional<SketchPoint>& from) {
        return nearestEntityTarget(entities, idsOf(excluded), point, scale, from);
      });
  table["nearestAcquirableTarget"] = sessionCall(
      [](AutomationSession&, const EntityList& entities, const Excluded& excluded, SketchPoint point,
         double scale) { return nearestAcquirableTarget(entities, idsOf(excluded), point, scale); });
  table["snapPoint"] = sessionCall([](AutomationSession&, SketchPoint point, const SketchViewport& viewport,
                                      const EntityList& entities, const Excluded& excluded, bool useGrid) {
    return snapPoint(point, viewport, entities, idsOf(excluded), useGrid);
  });
  table["snapEntityMove"] = sessionCall(
      [](AutomationSession&, SketchPoint delta, const SketchViewport& viewport, const SketchEntity& moved,
         const EntityList& entities) { return snapEntityMove(delta, viewport, moved, entities); });
  table["snapHandleDrag"] =
      sessionCall([](AutomationSession&, const SelectionHandle& handle, const SketchEntity& entity,
                     const EntityList& entities, SketchPoint point, const SketchViewport& viewport,
                     bool useGrid, const std::optional<double>& reference) {
        return snapHandleDrag(handle, entity, entities, point, viewport, useGrid, reference);
      });
  table["handleAnchor"] = functionCall(handleAnchor);
  table["trackingCandidate"] = functionCall(trackingCandidate);
  table["snapPointer"] = sketchCall(&SketchViewModel::snapPointer);
  table["snapDraftEnd"] = sketchCall(&SketchViewModel::snapDraftEnd);
  table["publishSnap"] = sessionCall([](AutomationSession& session, const SketchSnapResult& result,
                                        const std::optional<SketchPoint>& guideAnchor) {
    session.sketch().publishSnap(result, guideAnchor);
  });

  // --- Tracking
  table["tickTrackingAcquire"] = sketchCall(&SketchViewModel::tickTrackingAcquire);
  table["startTrackingDwell"] = sketchCall(&SketchViewModel::startTrackingDwell);
  table["advanceTrackingDwell"] = sketchCall(&SketchViewModel::advanceTrackingDwell);
  table["scheduleTrackingDwell"] = sketchCall(&SketchViewModel::scheduleTrackingDwell);
  table["lockTrackingTarget"] = sketchCall(&SketchViewModel::lockTrackingTarget);
  table["trackingHoldText"] = sketchCall(&SketchViewModel::trackingHoldText);
  table["showIdleTrackingFeedback"] = sketchCall(&SketchViewModel::showIdleTrackingFeedback);

  // --- Drawing tools
  table["beginDraft"] = sketchCall(&SketchViewModel::beginDraft);
  table["updateDraft"] = sketchCall(&SketchViewModel::updateDraft);
  table["commitDraft"] = sketchCall(&SketchViewModel::commitDraft);
  table["addPolygonVertex"] = sketchCall(&SketchViewModel::addPolygonVertex);
  table["updatePolygonDraft"] = sketchCall(&SketchViewModel::updatePolygonDraft);
  table["closePolygon"] = sketchCall(&SketchViewModel::closePolygon);
  table["activateTool"] = sketchCall(&SketchViewModel::activateTool);
  table["setDraftCurrent"] = sketchCall(&SketchViewModel::setDraftCurrent);
  table["activateToolFromConsole"] = sketchCall(&SketchViewModel::activateToolFromConsole);
  table["activateSelectTool"] = sketchCall(&SketchViewModel::activateSelectTool);
  table["handleEscape"] = sketchCall(&SketchViewModel::handleEscape);
  table["hoverMoved"] = sketchCall(&SketchViewModel::hoverMoved);
  table["recordPointer"] = sketchCall(&SketchViewModel::recordPointer);
  table["draftMeasurementText"] = sketchCall(&SketchViewModel::draftMeasurementText);
  table["applyNumericDraftInput"] =
      sessionCall([](AutomationSession& session, const std::string& text) -> Json {
        const auto reply = session.sketch().applyNumericDraftInput(text);
        if (!reply) return nullptr;
        return Json::array({reply->message, reply->isError});
      });

  // --- Drags of the select tool
  table["beginSelectDrag"] = sketchCall(&SketchViewModel::beginSelectDrag);
  table["updateSelectDrag"] = sketchCall(&SketchViewModel::updateSelectDrag);
  table["finishSelectDrag"] = sketchCall(&SketchViewModel::finishSelectDrag);
  table["cancelSelectDrag"] = sketchCall(&SketchViewModel::cancelSelectDrag);
}

}  // namespace ostrelon
