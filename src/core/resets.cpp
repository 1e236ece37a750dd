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
  const bool isSelected = selectedEntityIDs->contains(id);
  // A marquee without hits leaves a primary entity that is not selected.
  if (!isSelected && primarySelectedEntityID != std::optional(id)) return;
  const ChangeScope scope(tracker_);
  if (isSelected) selectedEntityIDs.edit().erase(id);
  const auto& selection = *selectedEntityIDs;
  if (primarySelectedEntityID == id) {
    primarySelectedEntityID =
        selection.empty() ? std::optional<UUID>() : std::optional<UUID>(*selection.begin());
  }
  if (selection.empty()) isEntityInspectorVisible = false;
}

void SketchViewModel::settleSelection() {
  const ChangeScope scope(tracker_);
  std::unordered_set<UUID> present = selectedEntityIDs;
  std::erase_if(present, [&](const UUID& id) { return entity(id) == nullptr; });
  selectedEntityIDs = std::move(present);
  if (selectedEntityIDs->empty()) {
    primarySelectedEntityID = std::nullopt;
    isEntityInspectorVisible = false;
  } else if (*primarySelectedEntityID && !selectedEntityIDs->contains(**primarySelectedEntityID)) {
    primarySelectedEntityID = *selectedEntityIDs->begin();
  }
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
  isSegmentLengthTextOffered_ = false;
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
