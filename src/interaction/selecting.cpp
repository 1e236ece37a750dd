// Clicks and marquees of the select tool.
#include "geometry/edit_operations.h"
#include "geometry/hit_testing.h"
#include "geometry/marquee.h"
#include "geometry/plan_item_operations.h"
#include "interaction/board.h"
#include "interaction/canvas_transform.h"

namespace ostrelon {

void Board::selectAtPoint(SketchPoint point, bool additive) {
  const auto scope = change();
  closeLengthEditor();
  // Items of the plan lie over the entities. One is selected alone: what is added is an entity.
  const auto item = additive ? std::nullopt : pickPlanItem(sketch_, point, scale());
  const auto pick = item ? std::nullopt : pickEntityAtPoint(sketch_.index(), point, scale());
  if (item) {
    sketch_.selectPlanItem(*item);
  } else if (!pick) {
    if (!additive) sketch_.clearSelection();
  } else if (additive) {
    toggleEntitySelection(sketch_, entityID(pick->entity));
  } else {
    sketch_.selectOnly(entityID(pick->entity));
  }
  if (selectDrag() != nullptr || marquee() != nullptr) gesture = Gesture();
}

void Board::setMarquee(std::optional<SelectMarqueeState> marquee) {
  if (marquee) {
    gesture = *marquee;
  } else if (this->marquee() != nullptr) {
    gesture = Gesture();
  }
}

void Board::beginMarquee(SketchPoint pressViewPoint, SketchPoint currentViewPoint) {
  gesture = SelectMarqueeState{viewPointToSketch(pressViewPoint, viewport()),
                               viewPointToSketch(currentViewPoint, viewport()), pressViewPoint.x,
                               currentViewPoint.x};
}

void Board::updateMarquee(SketchPoint currentViewPoint) {
  if (marquee() == nullptr) return;
  SelectMarqueeState moved = *marquee();
  moved.currentSketchPoint = viewPointToSketch(currentViewPoint, viewport());
  moved.currentViewX = currentViewPoint.x;
  gesture = moved;
}

void Board::finishMarquee(bool additive) {
  if (marquee() == nullptr) return;
  const SelectMarqueeState drawn = *marquee();
  const SketchBox box = SketchBox::spanning(drawn.startSketchPoint, drawn.currentSketchPoint);
  const bool isCrossing = drawn.currentViewX < drawn.startViewX;
  EntitySet hits;
  const EntityIndex& index = sketch_.index();
  sketch_.work(index.list().size(), [&] { hits = entitiesInMarquee(index, box, isCrossing); });
  const auto scope = change();
  Selection selected = additive
                           ? sketch_.selection.get()
                           : Selection{{}, sketch_.selection->primary, sketch_.selection->isInspected, {}};
  if (!hits.empty()) selected.primary = *hits.begin();
  selected.ids.merge(hits);
  if (selected.isNothing()) selected.isInspected = false;
  sketch_.select(std::move(selected));
  gesture = Gesture();
}

}  // namespace ostrelon
