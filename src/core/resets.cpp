// Putting fields back to rest, and showing and hiding the inspector.
#include "core/sketch_view_model.h"

namespace ostrelon {

void SketchViewModel::clearSelection() {
  const ChangeScope scope(tracker_);
  selectedEntityIDs = {};
  primarySelectedEntityID = std::nullopt;
  isEntityInspectorVisible = false;
}

void SketchViewModel::selectOnly(const UUID& id) {
  const ChangeScope scope(tracker_);
  selectedEntityIDs = {id};
  primarySelectedEntityID = id;
}

void SketchViewModel::deselect(const UUID& id) {
  if (!selectedEntityIDs->contains(id)) return;
  const ChangeScope scope(tracker_);
  auto& selection = selectedEntityIDs.edit();
  selection.erase(id);
  if (primarySelectedEntityID == id) {
    primarySelectedEntityID =
        selection.empty() ? std::optional<UUID>() : std::optional<UUID>(*selection.begin());
  }
  if (selection.empty()) isEntityInspectorVisible = false;
}

void SketchViewModel::clearSnapState() {
  const ChangeScope scope(tracker_);
  activeAxisSnaps = {};
  activeEntitySnapPoint = std::nullopt;
  activeGridSnapPoint = std::nullopt;
  activeEntitySnapSourcePoint = std::nullopt;
  snapGuideAnchor = std::nullopt;
  snapFeedback = std::nullopt;
}

void SketchViewModel::cancelTrackingDwell() {
  const ChangeScope scope(tracker_);
  pendingTrackingAcquire = std::nullopt;
  trackingAcquireDwellStart = std::nullopt;
  trackingAcquireProgress = 0;
  trackingAcquireDwellTask_.reset();
}

void SketchViewModel::closeSegmentLengthEdit() {
  const ChangeScope scope(tracker_);
  isSegmentLengthEditing = false;
  segmentLengthEditText = std::string();
  segmentLengthEditError = std::nullopt;
}

void SketchViewModel::clearDraft() {
  const ChangeScope scope(tracker_);
  draft = std::nullopt;
  closeSegmentLengthEdit();
  lastDraftConstraintAxes = {};
  cancelTrackingDwell();
  acquiredEntitySnap = std::nullopt;
  clearSnapState();
}

void SketchViewModel::cancelDraft() {
  const ChangeScope scope(tracker_);
  clearDraft();
  polygonDraft = std::nullopt;
}

void SketchViewModel::showEntityInspector() {
  if (!selectedEntityIDs->empty()) isEntityInspectorVisible = true;
}

void SketchViewModel::toggleEntityInspector() {
  isEntityInspectorVisible = !selectedEntityIDs->empty() && !*isEntityInspectorVisible;
}

void SketchViewModel::setEntityInspectorVisible(bool visible) { isEntityInspectorVisible = visible; }

}  // namespace ostrelon
