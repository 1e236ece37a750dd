// The select tool's drags: of a handle, of one entity, of a group. A drag always computes from the
// entities as they were at its start, so that rounding and snapping do not add up over the moves; its
// whole course is one undo step.
#include "core/sketch_view_model.h"

namespace ostrelon {

void SketchViewModel::finishSelectDrag() {
  const ChangeScope scope(tracker_);
  if (*selectDragUndoBaseline) {
    if (!((*selectDragUndoBaseline)->entities == entities.get())) {
      undoStack_.pushUndoSnapshot(**selectDragUndoBaseline);
      tracker_.mark(n(SketchField::undoStack));
    }
    selectDragUndoBaseline = std::nullopt;
  }
  selectDrag = std::nullopt;
  handleDragReferenceAngle = std::nullopt;
  closeSegmentLengthEdit();
  clearSnapState();
}

void SketchViewModel::cancelSelectDrag() {
  const ChangeScope scope(tracker_);
  if (*selectDragUndoBaseline) {
    entities = (*selectDragUndoBaseline)->entities;
    selectDragUndoBaseline = std::nullopt;
  }
  selectDrag = std::nullopt;
  selectMarquee = std::nullopt;
  handleDragReferenceAngle = std::nullopt;
  closeSegmentLengthEdit();
  clearSnapState();
}

}  // namespace ostrelon
