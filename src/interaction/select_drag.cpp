// The select tool's drags: of a handle, of one entity, of a group, of an item of the plan. A drag always
// computes from the entities as they were at its start, so that rounding and snapping do not add up over the
// moves; its whole course is one undo step.
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "core/adding.h"
#include "core/circle.h"
#include "geometry/entity_geometry.h"
#include "geometry/hit_testing.h"
#include "geometry/plan_item_operations.h"
#include "geometry/selection_handles.h"
#include "interaction/board.h"
#include "interaction/canvas_frame.h"
#include "interaction/face_snapping.h"
#include "interaction/sketch_snapping.h"

namespace ostrelon {
namespace {

// The movement of a whole entity (or of the group that it leads) whose pointer went from `start` to
// `pointer`, as a snap result whose point is the movement: entity points first, then the faces of clean
// walls, then the grid if asked for, then the axes.
SketchSnapResult snappedMove(SketchPoint start, SketchPoint pointer, const SketchViewport& viewport,
                             const SketchEntity& lead, EntitySource entities, const Drawing& drawing,
                             const SketchSnapping::EntityIDs& excluded, bool useGrid) {
  const SketchPoint delta = pointer - start;
  SketchSnapResult result;
  auto match = SketchSnapping::snapEntityMove(delta, viewport, lead, entities, excluded);
  if (!match && drawing.plan.look.cleanWalls) {
    const EntitySet alone{entityID(lead)};
    const EntitySet& moved = excluded.empty() ? alone : excluded;
    const auto* wall = std::get_if<WallEntity>(&lead);
    match = snapEntityMoveToFaces(
        delta, lead, wall != nullptr ? paintedWallThickness(*wall, drawing.wallSystemSpecs) : 0,
        [&](SketchPoint point) { return NearWallFaces(entities, drawing, moved, point, viewport.scale); });
  }
  if (match) {
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

bool Board::beginSelectDrag(SketchPoint press) {
  const auto scope = change();
  if (marquee() != nullptr) gesture = Gesture();
  sketch_.forgetDragStep();
  groupMove_.reset();

  // Handles come before picking, and only a selection of one has them.
  if (const SketchEntity* selected = sketch_.selectedEntity()) {
    if (const auto handle = hitSelectionHandle(*selected, press, scale())) {
      const auto handles = selectionHandles(*selected);
      const auto position = handles.find(*handle);
      const auto fixed = handleFixedPoint(*handle, *selected);
      std::optional<double> reference;
      if (fixed && position != handles.end()) {
        const SketchPoint reach = position->second - *fixed;
        reference = directionDegrees(reach.x, reach.y);
      }
      sketch_.beginDragStep();
      gesture = SelectDrag{HandleDrag{*handle, entityID(*selected), *selected}, reference};
      return true;
    }
  }

  if (const auto item = pickPlanItem(sketch_, press, scale())) {
    sketch_.selectPlanItem(*item);
    hover = Hover();  // its label would lie over the distances
    sketch_.beginDragStep();
    gesture = SelectDrag{PlanItemDrag{*selectedPlanItem(sketch_), press}, std::nullopt};
    return true;
  }

  const auto pick = pickEntityAtPoint(sketch_.index(), press, scale());
  if (!pick) return false;
  const UUID hitID = entityID(pick->entity);
  if (!sketch_.isSelected(hitID)) sketch_.selectOnly(hitID);
  sketch_.beginDragStep();
  if (sketch_.selection->ids.size() == 1) {
    gesture = SelectDrag{BodyDrag{hitID, pick->entity, press}, std::nullopt};
    return true;
  }
  gesture = SelectDrag{MultiBodyDrag{sketch_.selection->ids, sketch_.entities(), sketch_.selectedPositions(),
                                     pick->entity, press},
                       std::nullopt};
  return true;
}

void Board::updateSelectDrag(SketchPoint point) {
  const SelectDrag* drag = selectDrag();
  if (drag == nullptr || !isFinite(point)) return;
  const auto scope = change();
  std::visit(Overloaded{
                 [&](const HandleDrag& handle) { updateHandleDrag(*drag, handle, point); },
                 [&](const BodyDrag& body) { updateBodyDrag(body, point); },
                 [&](const MultiBodyDrag& group) { updateGroupDrag(group, point); },
                 [&](const PlanItemDrag& item) { updatePlanItemDrag(item, point); },
             },
             drag->state);
}

void Board::updateHandleDrag(const SelectDrag& drag, const HandleDrag& handle, SketchPoint point) {
  const SketchEntity* current = sketch_.entity(handle.entityID);
  if (current == nullptr) return;
  const SketchSnapResult snapped =
      onWallFaces(SketchSnapping::snapHandleDrag(handle.handle, handle.anchor, sketch_.index(), point,
                                                 viewport(), sketch_.drawing->showGrid, drag.referenceAngle),
                  wallFacesNear(point, {handle.entityID}));
  auto moved = applyHandleDrag(handle.handle, *current, handle.anchor, snapped.point);
  if (!moved) return;
  replaceEntity(sketch_, handle.entityID, std::move(*moved));
  publishSnap(snapped, handleFixedPoint(handle.handle, handle.anchor));
}

void Board::updateBodyDrag(const BodyDrag& drag, SketchPoint point) {
  if (sketch_.entity(drag.entityID) == nullptr) return;
  const SketchSnapResult move = snappedMove(drag.startSketchPoint, point, viewport(), drag.anchor,
                                            sketch_.index(), sketch_.drawing, {}, sketch_.drawing->showGrid);
  replaceEntity(sketch_, drag.entityID, translatedEntity(drag.anchor, move.point.x, move.point.y));
  publishSnap(move);
}

Board::GroupMove& Board::groupMove(const MultiBodyDrag& drag) {
  if (groupMove_ && groupMove_->writes == sketch_.drawingWrites()) return *groupMove_;
  GroupMove found;
  if (sketch_.entities().sharesAllStorage(drag.start)) {
    found.places = drag.places.list();
  } else {
    std::vector<std::pair<std::size_t, std::size_t>> members;  // where they are, and where they were
    for (const std::size_t start : drag.places) {
      if (const auto place = sketch_.positionOf(entityID(drag.start[start])))
        members.emplace_back(*place, start);
    }
    std::sort(members.begin(), members.end());
    for (const auto& [place, start] : members) {
      found.places.push_back(place);
      found.anchors.push_back(drag.start[start]);
    }
  }
  if (found.anchors.empty()) {
    found.anchors.reserve(found.places.size());
    for (const std::size_t place : found.places) found.anchors.push_back(drag.start[place]);
  }
  found.moved = found.anchors;
  groupMove_ = std::move(found);
  return *groupMove_;
}

// A group does not use the grid: its members are on many lines at once. The snap of the pointer comes from
// the index as it is: while nothing but this drag has written, it is right about all but the members, which
// do not count.
void Board::updateGroupDrag(const MultiBodyDrag& drag, SketchPoint point) {
  GroupMove& group = groupMove(drag);
  if (group.places.empty()) return;
  const SketchSnapResult move = snappedMove(drag.startSketchPoint, point, viewport(), drag.lead,
                                            sketch_.staleIndex(), sketch_.drawing, drag.entityIDs, false);
  const auto moved = [&](const SketchEntity& anchor) {
    return translatedEntity(anchor, move.point.x, move.point.y);
  };
  // All move alike: where the first stays, as under a snap that holds, so do the others.
  if (sketch_.entities()[group.places.front()] == moved(group.anchors.front())) {
    sketch_.countAsEdit(UndoStep::none);
  } else {
    std::transform(group.anchors.begin(), group.anchors.end(), group.moved.begin(), moved);
    sketch_.edit([&](Drawing& drawing) { drawing.entities.replaceAll(group.places, group.moved); },
                 UndoStep::none);
    group.writes = sketch_.drawingWrites();
  }
  publishSnap(move);
}

void Board::updatePlanItemDrag(const PlanItemDrag& drag, SketchPoint point) {
  const auto now = findPlanItem(sketch_.drawing->plan, planItemID(drag.anchor));
  if (!now) return;
  const PlanItem moved = draggedPlanItem(sketch_, drag.anchor, drag.startSketchPoint, point);
  if (moved == *now) return;
  sketch_.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, moved); }, UndoStep::none);
}

void Board::flipSelectedItem() {
  const auto scope = change();
  const auto* drag = selectDrag() != nullptr ? std::get_if<PlanItemDrag>(&selectDrag()->state) : nullptr;
  if (drag == nullptr) {
    flipSelectedPlanItem(sketch_, messages_);
    return;
  }
  const auto now = selectedPlanItem(sketch_);
  const auto next = now ? flippedPlanItem(*now) : std::nullopt;
  if (!next) return;
  sketch_.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, *next); }, UndoStep::none);
  gesture = SelectDrag{PlanItemDrag{*flippedPlanItem(drag->anchor), drag->startSketchPoint}, std::nullopt};
}

std::string Board::draggedItemMisfit() const {
  const auto* drag = selectDrag() != nullptr ? std::get_if<PlanItemDrag>(&selectDrag()->state) : nullptr;
  const auto now =
      drag != nullptr ? findPlanItem(sketch_.drawing->plan, planItemID(drag->anchor)) : std::nullopt;
  return now && *now != drag->anchor ? planItemMisfit(sketch_, *now) : std::string();
}

void Board::finishSelectDrag() {
  const auto scope = change();
  if (const std::string misfit = draggedItemMisfit(); !misfit.empty()) {
    cancelSelectDrag();
    messages_.append(misfit, false, false);
    return;
  }
  sketch_.endDragStep();
  if (selectDrag() != nullptr) gesture = Gesture();
  groupMove_.reset();
  closeLengthEditor();
  clearSnap();
}

void Board::cancelSelectDrag() {
  const auto scope = change();
  sketch_.cancelDragStep();
  if (selectDrag() != nullptr || marquee() != nullptr) gesture = Gesture();
  groupMove_.reset();
  closeLengthEditor();
  clearSnap();
}

}  // namespace ostrelon
