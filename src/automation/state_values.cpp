// The observable properties of the long-lived objects by name.
#include <algorithm>
#include <array>

#include "automation/automation_session.h"
#include "geometry/plan_item_operations.h"
#include "platform/near_names.h"

namespace ostrelon {
namespace {

struct StateField {
  std::string_view name;
  Json (*value)(const Workspace& workspace);
};

// A gesture of this kind, or null while another or none is in progress.
template <class Kind>
Json inGesture(const Kind* gesture) {
  return gesture != nullptr ? toJson(*gesture) : Json();
}

Json dragBaseline(const Sketch& sketch) {
  return sketch.dragStart() != nullptr ? toJson(SketchUndoSnapshot{*sketch.dragStart()}) : Json();
}

// The protocol's names, in its order. Undo runs within one request, and so do chains: their markers are
// always at rest between requests.
constexpr std::array kStateFields{
    StateField{"entities", [](const Workspace& w) { return toJson(w.sketch.entities()); }},
    StateField{"wallSystemSpecs",
               [](const Workspace& w) { return toJson(w.sketch.drawing->wallSystemSpecs); }},
    StateField{"activeWallSystemSpecID",
               [](const Workspace& w) { return toJson(w.sketch.drawing->activeWallSystemSpecID); }},
    StateField{"selectedEntityIDs", [](const Workspace& w) { return toJson(w.sketch.selection->ids); }},
    StateField{"primarySelectedEntityID",
               [](const Workspace& w) { return toJson(w.sketch.selection->primary); }},
    StateField{"selectMarquee", [](const Workspace& w) { return inGesture(w.board.marquee()); }},
    StateField{"selectedTool", [](const Workspace& w) { return toJson(w.board.tool.get()); }},
    StateField{"consoleLines", [](const Workspace& w) { return toJson(w.messages.lines.get()); }},
    StateField{"commandInput", [](const Workspace& w) { return toJson(w.console.input.get()); }},
    StateField{"isConsoleInputFocused", [](const Workspace& w) { return toJson(w.console.isFocused.get()); }},
    StateField{"showGrid", [](const Workspace& w) { return toJson(w.sketch.drawing->showGrid); }},
    StateField{"documentName", [](const Workspace& w) { return toJson(w.document.name.get()); }},
    StateField{"documentFileURL", [](const Workspace& w) { return toJson(w.document.fileURL.get()); }},
    StateField{"isDocumentDirty", [](const Workspace& w) { return toJson(w.document.isDirty()); }},
    StateField{"lastSavedAt", [](const Workspace& w) { return toJson(w.document.lastSavedAt.get()); }},
    StateField{"documentToast", [](const Workspace& w) { return toJson(w.messages.toast.get()); }},
    StateField{"documentHistoryState", [](const Workspace& w) { return toJson(w.document.history.get()); }},
    StateField{"draft", [](const Workspace& w) { return inGesture(w.board.draft()); }},
    StateField{"polygonDraft", [](const Workspace& w) { return inGesture(w.board.polygonDraft()); }},
    StateField{"hoveredEntityID", [](const Workspace& w) { return toJson(w.board.hover->entityID); }},
    StateField{"hoverViewPoint", [](const Workspace& w) { return toJson(w.board.hover->viewPoint); }},
    StateField{"cursorSketchPoint", [](const Workspace& w) { return toJson(w.board.cursor.get()); }},
    StateField{"selectDrag",
               [](const Workspace& w) {
                 return w.board.selectDrag() != nullptr ? toJson(w.board.selectDrag()->state) : Json();
               }},
    StateField{"isEntityInspectorVisible",
               [](const Workspace& w) { return toJson(w.sketch.selection->isInspected); }},
    StateField{"activeAxisSnaps", [](const Workspace& w) { return toJson(w.board.snap->axes); }},
    StateField{"activeEntitySnapPoint", [](const Workspace& w) { return toJson(w.board.snap->entityPoint); }},
    StateField{"activeGridSnapPoint", [](const Workspace& w) { return toJson(w.board.snap->gridPoint); }},
    StateField{"activeEntitySnapSourcePoint",
               [](const Workspace& w) { return toJson(w.board.snap->entitySourcePoint); }},
    StateField{"snapGuideAnchor", [](const Workspace& w) { return toJson(w.board.snap->guideAnchor); }},
    StateField{"snapFeedback", [](const Workspace& w) { return toJson(w.board.snap->feedback); }},
    StateField{"acquiredEntitySnap", [](const Workspace& w) { return toJson(w.board.tracking->locked); }},
    StateField{"pendingTrackingAcquire",
               [](const Workspace& w) { return toJson(w.board.tracking->pending); }},
    StateField{"trackingAcquireProgress",
               [](const Workspace& w) { return toJson(w.board.tracking->progress); }},
    StateField{"lastDraftConstraintAxes", [](const Workspace& w) { return toJson(w.board.draftAxes.get()); }},
    StateField{"trackingAcquireDwellStart",
               [](const Workspace& w) { return toJson(w.board.tracking->dwellStart); }},
    StateField{"trackingAcquireDwellTask", [](const Workspace& w) { return toJson(w.board.isDwelling()); }},
    StateField{"handleDragReferenceAngle",
               [](const Workspace& w) {
                 return w.board.selectDrag() != nullptr ? toJson(w.board.selectDrag()->referenceAngle)
                                                        : Json();
               }},
    StateField{"trimCuttingEdgeEntityID",
               [](const Workspace& w) { return toJson(w.board.trimCuttingEdge.get()); }},
    StateField{"viewport", [](const Workspace& w) { return toJson(w.board.viewport()); }},
    StateField{"hasInitializedViewport",
               [](const Workspace& w) { return toJson(w.board.view->isInitialized); }},
    StateField{"canvasSize", [](const Workspace& w) { return toJson(w.board.view->canvasSize); }},
    StateField{"isSegmentLengthEditing",
               [](const Workspace& w) { return toJson(w.board.lengthEditor->isOpen); }},
    StateField{"segmentLengthEditText",
               [](const Workspace& w) { return toJson(w.board.lengthEditor->text); }},
    StateField{"segmentLengthEditError",
               [](const Workspace& w) { return toJson(w.board.lengthEditor->error); }},
    StateField{"undoStack", [](const Workspace& w) { return toJson(w.sketch.undoStack.get()); }},
    StateField{"isApplyingUndoRedo", [](const Workspace&) { return Json(false); }},
    StateField{"selectDragUndoBaseline", [](const Workspace& w) { return dragBaseline(w.sketch); }},
    StateField{"entityClipboard", [](const Workspace& w) { return toJson(w.sketch.clipboard.get()); }},
    StateField{"entityClipboardPasteOffset", [](const Workspace&) { return toJson(kDuplicateOffset); }},
    StateField{"documentToastDismissTask",
               [](const Workspace& w) { return toJson(w.messages.willDismissToast()); }},
    StateField{"undoCheckpointSuppressionDepth", [](const Workspace&) { return Json(0); }},
    StateField{"isSaveDialogActive",
               [](const Workspace& w) { return toJson(w.document.isSaveDialogActive.get()); }},
    StateField{"plan", [](const Workspace& w) { return toJson(w.sketch.drawing->plan); }},
    StateField{"selectedOpening",
               [](const Workspace& w) { return toJson(selectedPlanItem<Opening>(w.sketch)); }},
    StateField{"selectedPlanItem", [](const Workspace& w) { return toJson(selectedPlanItem(w.sketch)); }},
};

// Shown only where they are asked for.
constexpr std::array<std::string_view, 4> kFieldsOnDemand{"consoleLines", "plan", "selectedOpening",
                                                          "selectedPlanItem"};

}  // namespace

Json stateOf(const Workspace& workspace, const std::optional<std::vector<std::string>>& names) {
  Json state = Json::object();
  if (!names) {
    for (const StateField& field : kStateFields) {
      if (std::find(kFieldsOnDemand.begin(), kFieldsOnDemand.end(), field.name) == kFieldsOnDemand.end()) {
        state[std::string(field.name)] = field.value(workspace);
      }
    }
    return state;
  }
  for (const std::string& name : *names) {
    const auto* const found = std::find_if(kStateFields.begin(), kStateFields.end(),
                                           [&](const StateField& field) { return field.name == name; });
    if (found == kStateFields.end()) {
      std::vector<std::string_view> fields;
      fields.reserve(kStateFields.size());
      for (const StateField& field : kStateFields) fields.push_back(field.name);
      throw ArgumentError("There is no field \"" + name + "\"." + didYouMean(name, fields));
    }
    state[name] = found->value(workspace);
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
