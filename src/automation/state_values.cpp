// The observable properties of the long-lived objects by name.
#include <array>

#include "automation/automation_session.h"

namespace ostrelon {
namespace {

struct StateField {
  std::string_view name;
  Json (*value)(const SketchViewModel& sketch);
};

constexpr std::array kStateFields{
    StateField{"entities", [](const SketchViewModel& s) { return toJson(s.entities.get()); }},
    StateField{"wallSystemSpecs", [](const SketchViewModel& s) { return toJson(s.wallSystemSpecs.get()); }},
    StateField{"activeWallSystemSpecID",
               [](const SketchViewModel& s) { return toJson(s.activeWallSystemSpecID.get()); }},
    StateField{"selectedEntityIDs",
               [](const SketchViewModel& s) { return toJson(s.selectedEntityIDs.get()); }},
    StateField{"primarySelectedEntityID",
               [](const SketchViewModel& s) { return toJson(s.primarySelectedEntityID.get()); }},
    StateField{"selectMarquee", [](const SketchViewModel& s) { return toJson(s.selectMarquee.get()); }},
    StateField{"selectedTool", [](const SketchViewModel& s) { return toJson(s.selectedTool.get()); }},
    StateField{"consoleLines", [](const SketchViewModel& s) { return toJson(s.consoleLines.get()); }},
    StateField{"commandInput", [](const SketchViewModel& s) { return toJson(s.commandInput.get()); }},
    StateField{"isConsoleInputFocused",
               [](const SketchViewModel& s) { return toJson(s.isConsoleInputFocused.get()); }},
    StateField{"showGrid", [](const SketchViewModel& s) { return toJson(s.showGrid.get()); }},
    StateField{"documentName", [](const SketchViewModel& s) { return toJson(s.documentName.get()); }},
    StateField{"documentFileURL", [](const SketchViewModel& s) { return toJson(s.documentFileURL.get()); }},
    StateField{"isDocumentDirty", [](const SketchViewModel& s) { return toJson(s.isDocumentDirty.get()); }},
    StateField{"lastSavedAt", [](const SketchViewModel& s) { return toJson(s.lastSavedAt.get()); }},
    StateField{"documentToast", [](const SketchViewModel& s) { return toJson(s.documentToast.get()); }},
    StateField{"documentHistoryState",
               [](const SketchViewModel& s) { return toJson(s.documentHistoryState.get()); }},
    StateField{"draft", [](const SketchViewModel& s) { return toJson(s.draft.get()); }},
    StateField{"polygonDraft", [](const SketchViewModel& s) { return toJson(s.polygonDraft.get()); }},
    StateField{"hoveredEntityID", [](const SketchViewModel& s) { return toJson(s.hoveredEntityID.get()); }},
    StateField{"hoverViewPoint", [](const SketchViewModel& s) { return toJson(s.hoverViewPoint.get()); }},
    StateField{"cursorSketchPoint",
               [](const SketchViewModel& s) { return toJson(s.cursorSketchPoint.get()); }},
    StateField{"selectDrag", [](const SketchViewModel& s) { return toJson(s.selectDrag.get()); }},
    StateField{"isEntityInspectorVisible",
               [](const SketchViewModel& s) { return toJson(s.isEntityInspectorVisible.get()); }},
    StateField{"activeAxisSnaps", [](const SketchViewModel& s) { return toJson(s.activeAxisSnaps.get()); }},
    StateField{"activeEntitySnapPoint",
               [](const SketchViewModel& s) { return toJson(s.activeEntitySnapPoint.get()); }},
    StateField{"activeGridSnapPoint",
               [](const SketchViewModel& s) { return toJson(s.activeGridSnapPoint.get()); }},
    StateField{"activeEntitySnapSourcePoint",
               [](const SketchViewModel& s) { return toJson(s.activeEntitySnapSourcePoint.get()); }},
    StateField{"snapGuideAnchor", [](const SketchViewModel& s) { return toJson(s.snapGuideAnchor.get()); }},
    StateField{"snapFeedback", [](const SketchViewModel& s) { return toJson(s.snapFeedback.get()); }},
    StateField{"acquiredEntitySnap",
               [](const SketchViewModel& s) { return toJson(s.acquiredEntitySnap.get()); }},
    StateField{"pendingTrackingAcquire",
               [](const SketchViewModel& s) { return toJson(s.pendingTrackingAcquire.get()); }},
    StateField{"trackingAcquireProgress",
               [](const SketchViewModel& s) { return toJson(s.trackingAcquireProgress.get()); }},
    StateField{"lastDraftConstraintAxes",
               [](const SketchViewModel& s) { return toJson(s.lastDraftConstraintAxes.get()); }},
    StateField{"trackingAcquireDwellStart",
               [](const SketchViewModel& s) { return toJson(s.trackingAcquireDwellStart.get()); }},
    StateField{"trackingAcquireDwellTask",
               [](const SketchViewModel& s) { return toJson(s.hasTrackingAcquireDwellTask()); }},
    StateField{"handleDragReferenceAngle",
               [](const SketchViewModel& s) { return toJson(s.handleDragReferenceAngle.get()); }},
    StateField{"trimCuttingEdgeEntityID",
               [](const SketchViewModel& s) { return toJson(s.trimCuttingEdgeEntityID.get()); }},
    StateField{"viewport", [](const SketchViewModel& s) { return toJson(s.viewport.get()); }},
    StateField{"hasInitializedViewport",
               [](const SketchViewModel& s) { return toJson(s.hasInitializedViewport.get()); }},
    StateField{"canvasSize", [](const SketchViewModel& s) { return toJson(s.canvasSize.get()); }},
    StateField{"isSegmentLengthEditing",
               [](const SketchViewModel& s) { return toJson(s.isSegmentLengthEditing.get()); }},
    StateField{"segmentLengthEditText",
               [](const SketchViewModel& s) { return toJson(s.segmentLengthEditText.get()); }},
    StateField{"segmentLengthEditError",
               [](const SketchViewModel& s) { return toJson(s.segmentLengthEditError.get()); }},
    StateField{"undoStack", [](const SketchViewModel& s) { return toJson(s.undoStack()); }},
    StateField{"isApplyingUndoRedo", [](const SketchViewModel& s) { return toJson(s.isApplyingUndoRedo()); }},
    StateField{"selectDragUndoBaseline",
               [](const SketchViewModel& s) { return toJson(s.selectDragUndoBaseline.get()); }},
    StateField{"entityClipboard", [](const SketchViewModel& s) { return toJson(s.entityClipboard.get()); }},
    StateField{"entityClipboardPasteOffset",
               [](const SketchViewModel&) { return toJson(SketchViewModel::entityClipboardPasteOffset); }},
    StateField{"documentToastDismissTask",
               [](const SketchViewModel& s) { return toJson(s.hasDocumentToastDismissTask()); }},
    StateField{"undoCheckpointSuppressionDepth",
               [](const SketchViewModel& s) { return toJson(s.undoCheckpointSuppressionDepth()); }},
    StateField{"isSaveDialogActive",
               [](const SketchViewModel& s) { return toJson(s.isSaveDialogActive.get()); }},
};

}  // namespace

Json stateOf(const SketchViewModel& sketch, const std::optional<std::vector<std::string>>& names) {
  Json state = Json::object();
  if (!names) {
    for (const StateField& field : kStateFields) {
      if (field.name != "consoleLines") state[std::string(field.name)] = field.value(sketch);
    }
    return state;
  }
  for (const std::string& name : *names) {
    const auto* const found = std::find_if(kStateFields.begin(), kStateFields.end(),
                                           [&](const StateField& field) { return field.name == name; });
    if (found == kStateFields.end()) throw ArgumentError("There is no field \"" + name + "\".");
    state[name] = found->value(sketch);
  }
  return state;
}

Json settingsOf(const AppSettings& settings) {
  return {{"appearanceMode", toJson(settings.appearanceMode.get())},
          {"activePalette", toJson(settings.activePalette.get())},
          {"lastKnownColorScheme", toJson(settings.lastKnownColorScheme.get())},
          {"autoSaveEnabled", toJson(settings.autoSaveEnabled.get())},
          {"autoSaveIntervalMinutes", toJson(settings.autoSaveIntervalMinutes.get())},
          {"projectsFolderURL", toJson(settings.projectsFolderURL.get())},
          {"lastAutoSave", toJson(settings.lastAutoSave.get())},
          {"lastUpdateCheckAt", toJson(settings.lastUpdateCheckAt.get())},
          {"postponedUpdateVersion", toJson(settings.postponedUpdateVersion.get())},
          {"autoSaveRecoveryCandidate", toJson(settings.autoSaveRecoveryCandidate.get())},
          {"isUITesting", settings.isUITesting()}};
}

Json updateOf(const AppUpdateManager& updates) {
  return {{"currentVersion", updates.currentVersion()},
          {"currentDisplayVersion", updates.currentDisplayVersion()},
          {"latestVersion", toJson(updates.latestVersion.get())},
          {"lastCheckedAt", toJson(updates.lastCheckedAt.get())},
          {"status", std::string(caseName(updates.status->value))},
          {"statusText", updates.statusText()},
          {"availableUpdate", toJson(updates.availableUpdate.get())},
          {"downloadProgress", toJson(updates.downloadProgress.get())},
          {"feedURL", toJson(updates.feedURL())},
          {"signingPublicKey", toJson(updates.signingPublicKey())}};
}

}  // namespace ostrelon
