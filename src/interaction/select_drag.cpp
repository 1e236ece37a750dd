// The select tool's drags: of a handle, of one entity, of a group. A drag always computes from the
// entities as they were at its start, so that rounding and snapping do not add up over the moves; its
// whole course is one undo step.
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "core/sketch_view_model.h"
#include "geometry/entity_geometry.h"
#include "geometry/hit_testing.h"
#include "geometry/selection_handles.h"
#include "interaction/sketch_snapping.h"

namespace ostrelon {
namespace {

// The movement of a whole entity (or of the group that it leads) whose pointer went from `start` to
// `pointer`, as a snap result whose point is the movement: entity points first, then the grid if asked
// for, then the axes.
SketchSnapResult snappedMove(SketchPoint start, SketchPoint pointer, const SketchViewport& viewport,
                             const SketchEntity& lead, EntitySource entities,
                             const SketchSnapping::EntityIDs& excluded, bool useGrid) {
  const SketchPoint delta = pointer - start;
  SketchSnapResult result;
  if (const auto match = SketchSnapping::snapEntityMove(delta, viewport, lead, entities, excluded)) {
    const auto& [source, target] = *match;
    result.point = target.point - source.point;
    result.entitySnap = target;
    result.entitySnapSourcePoint = source.point + delta;
    return result;
  }
  if (useGrid) {
    if (auto grid = SketchSnapping::gridSnap(pointer, viewport.scale)) {
      result.point = grid->point - start;
      result.gridSnap = std::move(grid);
      return result;
    }
  }
  return SketchSnapping::axisSnapDelta(delta.x, delta.y);
}

}  // namespace

bool SketchViewModel::beginSelectDrag(SketchPoint press) {
  const ChangeScope scope(tracker_);
  selectDragUndoBaseline = std::nullopt;
  hasUndoStepOfDrag_ = false;
  selectMarquee = std::nullopt;
  groupMove_.reset();

  // Handles come before picking, and only a selection of one has them.
  if (const SketchEntity* selected = selectedEntity()) {
    if (const auto handle = hitSelectionHandle(*selected, press, viewport->scale)) {
      const SketchEntity anchor = *selected;
      const auto handles = selectionHandles(anchor);
      const auto position = handles.find(*handle);
      const auto fixed = handleFixedPoint(*handle, anchor);
      std::optional<double> reference;
      if (fixed && position != handles.end()) {
        const SketchPoint reach = position->second - *fixed;
        reference = directionDegrees(reach.x, reach.y);
      }
      selectDragUndoBaseline = SketchUndoSnapshot{entities};
      handleDragReferenceAngle = reference;
      selectDrag = HandleDrag{*handle, entityID(anchor), anchor};
      return true;
    }
  }

  const auto pick = pickEntityAtPoint(index(), press, viewport->scale);
  if (!pick) return false;
  const SketchEntity hit = pick->entity;
  const UUID hitID = entityID(hit);
  if (!selectedEntityIDs->contains(hitID)) selectOnly(hitID);
  selectDragUndoBaseline = SketchUndoSnapshot{entities};
  if (selectedEntityIDs->size() == 1) {
    selectDrag = BodyDrag{hitID, hit, press};
    return true;
  }
  MultiBodyDrag group{selectedEntityIDs, {}, hitID, press};
  for (const UUID& id : group.entityIDs) {
    if (const SketchEntity* member = entity(id)) group.anchors.emplace(id, *member);
  }
  selectDrag = std::move(group);
  return true;
}

void SketchViewModel::updateSelectDrag(SketchPoint point) {
  if (!*selectDrag || !std::isfinite(point.x) || !std::isfinite(point.y)) return;
  const ChangeScope scope(tracker_);
  std::visit(Overloaded{
                 [&](const HandleDrag& drag) { updateHandleDrag(drag, point); },
                 [&](const BodyDrag& drag) { updateBodyDrag(drag, point); },
                 [&](const MultiBodyDrag& drag) { updateGroupDrag(drag, point); },
             },
             **selectDrag);
}

void SketchViewModel::updateHandleDrag(const HandleDrag& drag, SketchPoint point) {
  const SketchEntity* current = entity(drag.entityID);
  if (current == nullptr) return;
  const SketchSnapResult snap = SketchSnapping::snapHandleDrag(drag.handle, drag.anchor, index(), point,
                                                               viewport, showGrid, handleDragReferenceAngle);
  auto moved = applyHandleDrag(drag.handle, *current, drag.anchor, snap.point);
  if (!moved) return;
  replaceEntity(drag.entityID, std::move(*moved));
  publishSnap(snap, handleFixedPoint(drag.handle, drag.anchor));
}

void SketchViewModel::updateBodyDrag(const BodyDrag& drag, SketchPoint point) {
  if (entity(drag.entityID) == nullptr) return;
  const SketchSnapResult move =
      snappedMove(drag.startSketchPoint, point, viewport, drag.anchor, index(), {}, showGrid);
  replaceEntity(drag.entityID, translatedEntity(drag.anchor, move.point.x, move.point.y));
  publishSnap(move);
}

SketchViewModel::GroupMove& SketchViewModel::groupMove(const MultiBodyDrag& drag) {
  if (groupMove_ && groupMove_->writes == entities.writes()) return *groupMove_;
  std::vector<std::pair<std::size_t, const SketchEntity*>> members;
  members.reserve(drag.anchors.size());
  for (const auto& [id, anchor] : drag.anchors) {
    if (const auto place = entityIndex(id)) members.emplace_back(*place, &anchor);
  }
  std::sort(members.begin(), members.end());
  GroupMove found;
  for (const auto& [place, anchor] : members) {
    found.places.push_back(place);
    found.anchors.push_back(*anchor);
  }
  found.moved = found.anchors;
  groupMove_ = std::move(found);
  return *groupMove_;
}

// A group does not use the grid: its members stand on many lines at once. Where the pointer snaps to is
// asked of the index as it is: as long as nobody else has written, it is right about all but the members,
// which do not count.
void SketchViewModel::updateGroupDrag(const MultiBodyDrag& drag, SketchPoint point) {
  const auto lead = drag.anchors.find(drag.leadEntityID);
  if (lead == drag.anchors.end()) return;
  GroupMove& group = groupMove(drag);
  if (group.places.empty()) return;
  const SketchSnapResult move =
      snappedMove(drag.startSketchPoint, point, viewport, lead->second, index_, drag.entityIDs, false);
  const auto moved = [&](const SketchEntity& anchor) {
    return translatedEntity(anchor, move.point.x, move.point.y);
  };
  // All move alike: where the first stays, as under a snap that holds, so do the others.
  if (!((*entities)[group.places.front()] == moved(group.anchors.front()))) {
    std::transform(group.anchors.begin(), group.anchors.end(), group.moved.begin(), moved);
    if (!entities.edit().replaceAll(group.places, group.moved)) return;
    group.writes = entities.writes();
  }
  isDocumentDirty = true;
  publishSnap(move);
}

void SketchViewModel::finishSelectDrag() {
  const ChangeScope scope(tracker_);
  if (*selectDragUndoBaseline) {
    const bool hasChanged = !((*selectDragUndoBaseline)->entities == entities.get());
    if (hasChanged && !hasUndoStepOfDrag_) pushUndoStep(SketchUndoSnapshot(**selectDragUndoBaseline));
    selectDragUndoBaseline = std::nullopt;
  }
  selectDrag = std::nullopt;
  groupMove_.reset();
  handleDragReferenceAngle = std::nullopt;
  closeSegmentLengthEdit();
  clearSnapState();
}

void SketchViewModel::cancelSelectDrag() {
  const ChangeScope scope(tracker_);
  if (*selectDragUndoBaseline) {
    // The document may have been saved while the drag was under way.
    if (!((*selectDragUndoBaseline)->entities == entities.get())) {
      isDocumentDirty = true;
      // Undo brings the edits back that were made in the middle of the drag.
      if (hasUndoStepOfDrag_) pushUndoStep({entities.get()});
    }
    entities = (*selectDragUndoBaseline)->entities;
    // What a command has added meanwhile is gone with the drag, and so is its selection.
    settleSelection();
    selectDragUndoBaseline = std::nullopt;
  }
  selectDrag = std::nullopt;
  groupMove_.reset();
  selectMarquee = std::nullopt;
  handleDragReferenceAngle = std::nullopt;
  closeSegmentLengthEdit();
  clearSnapState();
}

}  // namespace ostrelon
