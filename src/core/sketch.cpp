#include "core/sketch.h"

#include <algorithm>
#include <cassert>
#include <unordered_set>
#include <utility>

#include "core/plan_following.h"
#include "core/plan_items.h"

namespace ostrelon {
namespace {

// A selection of more than this share of the drawing is looked up by walking through it.
constexpr std::size_t kWalkShare = 16;
// Work on so many entities takes a part of a frame.
constexpr std::size_t kMuchWork = 20'000;

}  // namespace

Sketch::Sketch(ChangeTracker& tracker) : tracker_(tracker) {}

// --- Finding

const EntityIndex& Sketch::index() const {
  if (index_.list().sharesAllStorage(entities())) return index_;
  if (offeredIndex_ && offeredIndex_->list().sharesAllStorage(entities())) index_ = std::move(*offeredIndex_);
  offeredIndex_.reset();
  index_.update(entities());
  return index_;
}

std::optional<std::string> Sketch::labelOf(const UUID& id) const {
  const auto position = positionOf(id);
  if (!position) return std::nullopt;
  const SketchEntity& found = entities()[*position];
  return entityLabel(found, static_cast<int>(*position) + 1, drawing->wallSystemName(found));
}

bool Sketch::isSelected(const UUID& id) const { return isIn(selection->ids, id); }

bool Sketch::isIn(const EntitySet& ids, const UUID& id) const {
  if (!ids.isOver(entities())) return ids.contains(id);
  const auto position = positionOf(id);
  return position && ids.containsAt(*position);
}

const SketchEntity* Sketch::selectedEntity() const {
  return selection->ids.size() == 1 ? entity(*selection->ids.begin()) : nullptr;
}

std::string Sketch::selectionSummary() const {
  if (selection->planItem) {
    const auto item = findPlanItem(drawing->plan, *selection->planItem);
    return item ? planItemLabel(*this, *item) : "none";
  }
  if (selection->empty()) return "none";
  if (selection->ids.size() > 1) return std::to_string(selection->ids.size()) + " selected";
  return (selection->primary ? labelOf(*selection->primary) : std::nullopt).value_or("one");
}

std::vector<std::size_t> Sketch::selectedPositions() const {
  if (selection->ids.isOver(entities())) return selection->ids.positions();
  std::vector<std::size_t> positions;
  positions.reserve(selection->ids.size());
  // One walk finds many faster than the index does, and finds what has its identifier in common.
  if (index().hasDuplicates() || selection->ids.size() > entities().size() / kWalkShare) {
    std::size_t position = 0;
    for (const SketchEntity& entity : entities()) {
      if (selection->ids.contains(entityID(entity))) positions.push_back(position);
      ++position;
    }
    return positions;
  }
  for (const UUID& id : selection->ids) {
    if (const auto position = positionOf(id)) positions.push_back(*position);
  }
  std::sort(positions.begin(), positions.end());
  return positions;
}

EntitySet Sketch::setOfAll() const {
  if (!index().hasDuplicates()) return EntitySet::allOf(entities());
  std::unordered_set<UUID> ids;
  for (const SketchEntity& entity : entities()) ids.insert(entityID(entity));
  return ids;
}

// --- Work on much of the drawing

bool Sketch::worksAside(std::size_t entities) const { return runWork_ && entities >= kMuchWork; }

void Sketch::work(std::size_t entities, const std::function<void()>& work) const {
  if (worksAside(entities) && !tracker_.isOpen()) {
    index();  // brought up to date here, so that asking for it is no more than reading meanwhile
    runWork_(work);
  } else {
    work();
  }
}

EntityList Sketch::prepared(std::size_t changed, const std::function<EntityList()>& make) {
  if (!worksAside(changed) || tracker_.isOpen()) return make();
  EntityList next;
  EntityIndex index;
  EntitySet followed = selection->ids;
  runWork_([&] {
    next = make();
    index.update(next);
    followed.follow(next);
  });
  offerIndex(std::move(index));
  offeredSelection_ = std::move(followed);
  return next;
}

void Sketch::prepareFor(const EntityList& next) {
  prepared(std::max(next.unsharedSize(entities()), entities().unsharedSize(next)), [&] { return next; });
}

void Sketch::prepareUndo() {
  const auto& steps = undoStack->undoSnapshots();
  if (!steps.empty()) prepareFor(EntityList(steps.back().entities));
}

void Sketch::prepareRedo() {
  const auto& steps = undoStack->redoSnapshots();
  if (!steps.empty()) prepareFor(EntityList(steps.back().entities));
}

// --- The one way to edit

void Sketch::edit(const std::function<void(Drawing&)>& change, UndoStep step) {
  const ChangeScope scope(tracker_);
  const Plan planBefore = drawing->plan;
  // A copy of the list would have the edit copy what it changes, which only what follows is worth.
  const bool isDragged = step == UndoStep::none && dragStep_;
  const bool hasFollowers = !planBefore.openings.empty() || !planBefore.dimensions.empty();
  const std::optional<Drawing> before =
      hasFollowers && !isDragged ? std::optional(drawing.get()) : std::nullopt;
  const std::vector<WallSystemSpec> systemsBefore =
      step == UndoStep::withWallSystems ? drawing->wallSystemSpecs : std::vector<WallSystemSpec>();
  countAsEdit(step);
  change(drawing.edit());
  followWalls(before, planBefore);
  followEntities();
  if (selection->planItem) settleSelection();
  if (step == UndoStep::none) return;

  UndoTwin twin;
  if (step == UndoStep::withWallSystems) {
    twin.wallSystems = wallSystemChanges(systemsBefore, drawing->wallSystemSpecs);
  }
  if (openSteps_ > 0) {
    openSystemChanges_.insert(openSystemChanges_.end(), twin.wallSystems.begin(), twin.wallSystems.end());
    return;
  }
  if (planBefore != drawing->plan) twin.plan = planBefore;
  if (!twin.empty()) undoStack.edit().setUndoTwin(std::move(twin));
}

EntitySet Sketch::followedSelection() {
  const std::optional<EntitySet> offered = std::exchange(offeredSelection_, std::nullopt);
  if (offered && offered->isOver(entities())) return *offered;
  EntitySet followed = selection->ids;
  followed.follow(entities());
  return followed;
}

// What is gone stays selected until the operation settles the selection.
void Sketch::followEntities() {
  EntitySet followed = followedSelection();
  if (followed.size() == selection->ids.size()) selection.represent().ids = std::move(followed);
}

void Sketch::followWalls(const std::optional<Drawing>& before, const Plan& planBefore) {
  const bool areOpeningsOwn = drawing->plan.openings != planBefore.openings;
  const bool areDimensionsOwn = drawing->plan.dimensions != planBefore.dimensions;
  const Drawing* from = before ? &*before : dragStep_ ? &dragStep_->followedFrom : nullptr;
  if (from != nullptr && !areOpeningsOwn && !planBefore.openings.empty()) {
    drawing.edit().plan.openings = followedOpenings(from->plan.openings, from->entities, entities());
  }
  if (from != nullptr && !areDimensionsOwn && !planBefore.dimensions.empty()) {
    drawing.edit().plan.dimensions = followedDimensions(from->plan.dimensions, *from, drawing,
                                                        [this](const UUID& id) { return entity(id); });
  }
  if (dragStep_ && (areOpeningsOwn || areDimensionsOwn || before)) dragStep_->followedFrom = drawing;
}

void Sketch::countAsEdit(UndoStep step) {
  const ChangeScope scope(tracker_);
  if (step != UndoStep::none && openSteps_ == 0) pushStep({entities()});
  isDirty = true;
}

bool Sketch::asOneStep(const std::function<bool()>& changes) {
  const ChangeScope scope(tracker_);
  const SketchState before = state();
  const std::size_t systemChanges = openSystemChanges_.size();
  ++openSteps_;
  const bool succeeded = changes();
  --openSteps_;
  if (succeeded) {
    recordStep({before.drawing.entities, {before.drawing.plan, {}}});
  } else {
    openSystemChanges_.resize(systemChanges);
    setState(before);
  }
  return succeeded;
}

void Sketch::recordStep(SketchUndoSnapshot before) {
  if (openSteps_ > 0) return;
  UndoTwin& twin = before.twin;
  twin.wallSystems = std::exchange(openSystemChanges_, {});
  if (twin.plan && *twin.plan == drawing->plan) twin.plan.reset();
  if (!twin.empty() || !(before.entities == entities())) pushStep(std::move(before));
}

void Sketch::pushStep(SketchUndoSnapshot before) {
  const ChangeScope scope(tracker_);
  SketchUndoStack& stack = undoStack.edit();
  if (dragStep_ && !dragStep_->isRecorded) {
    dragStep_->isRecorded = true;
    SketchUndoSnapshot dragged = dragStep_->before;
    if (*dragged.twin.plan == (before.twin.plan ? *before.twin.plan : drawing->plan)) {
      dragged.twin.plan.reset();
    }
    if (!dragged.twin.empty() || !(dragged.entities == before.entities)) {
      stack.pushUndoSnapshot(std::move(dragged));
    }
  }
  stack.pushUndoSnapshot(std::move(before));
}

// --- A drag, whose whole course is one step

void Sketch::beginDragStep() { dragStep_ = DragStep{snapshot(), false, drawing}; }

void Sketch::endDragStep() {
  if (!dragStep_) return;
  DragStep step = *std::exchange(dragStep_, std::nullopt);
  if (!step.isRecorded) recordStep(std::move(step.before));
}

void Sketch::cancelDragStep() {
  if (!dragStep_) return;
  const ChangeScope scope(tracker_);
  const DragStep step = *dragStep_;
  const Plan& plan = *step.before.twin.plan;
  if (!(step.before.entities == entities()) || !(plan == drawing->plan)) {
    // The document may have been saved while the drag was under way.
    edit(
        [&](Drawing& edited) {
          edited.entities = step.before.entities;
          edited.plan = plan;
        },
        step.isRecorded ? UndoStep::own : UndoStep::none);
  }
  dragStep_.reset();
  settleSelection();
}

// --- The whole of it

void Sketch::setState(const SketchState& state) {
  const ChangeScope scope(tracker_);
  drawing = state.drawing;
  dragStep_.reset();
  select(state.selection);
  isDirty = state.isDirty;
}

void Sketch::replace(Drawing replacement, std::vector<SketchUndoSnapshot> undoSteps) {
  const ChangeScope scope(tracker_);
  drawing = std::move(replacement);
  dragStep_.reset();
  selection = Selection{{}, std::nullopt, selection->isInspected, {}};
  if (!clipboard->empty() || !clipboardItems_.empty()) setClipboard({});
  undoStack.edit().replaceUndoSnapshots(std::move(undoSteps));
}

void Sketch::setActiveWallSystem(const UUID& id) {
  if (drawing->activeWallSystemSpecID == id) return;
  const ChangeScope scope(tracker_);
  drawing.edit().activeWallSystemSpecID = id;
}

// --- Undo

bool Sketch::undo() {
  if (undoStack->undoSnapshots().empty()) return false;
  const ChangeScope scope(tracker_);
  const auto step = undoStack.edit().popUndoSnapshot();
  undoStack.edit().pushRedoSnapshot(restore(*step));
  return true;
}

bool Sketch::redo() {
  if (undoStack->redoSnapshots().empty()) return false;
  const ChangeScope scope(tracker_);
  const auto step = undoStack.edit().popRedoSnapshot();
  undoStack.edit().appendUndoSnapshot(restore(*step));
  return true;
}

SketchUndoSnapshot Sketch::restore(const SketchUndoSnapshot& step) {
  const ChangeScope scope(tracker_);
  SketchUndoSnapshot back{entities()};
  if (!(step.entities == entities())) drawing.edit().entities = step.entities;
  if (step.twin.plan && *step.twin.plan != drawing->plan) {
    back.twin.plan = drawing->plan;
    drawing.edit().plan = *step.twin.plan;
  }
  if (!step.twin.wallSystems.empty()) {
    Drawing& taken = drawing.edit();
    back.twin.wallSystems = takeBackWallSystemChanges(step.twin.wallSystems, taken.wallSystemSpecs);
    // New walls need a system that is there.
    if (const WallSystemSpec* active = taken.activeWallSystem()) taken.activeWallSystemSpecID = active->id;
  }
  dragStep_.reset();
  settleSelection();
  isDirty = true;
  return back;
}

void Sketch::settleSelection() {
  Selection remaining = selection;
  if (remaining.planItem && !findPlanItem(drawing->plan, *remaining.planItem)) remaining.planItem.reset();
  remaining.ids = followedSelection();
  if (!remaining.ids.isOver(entities())) {
    std::unordered_set<UUID> there;
    for (const UUID& id : remaining.ids) {
      if (entity(id) != nullptr) there.insert(id);
    }
    if (there.size() < remaining.ids.size()) remaining.ids = std::move(there);
  }
  if (remaining.isNothing()) {
    remaining = {};
  } else if (!remaining.empty() && remaining.primary && !isIn(remaining.ids, *remaining.primary)) {
    remaining.primary = *remaining.ids.begin();
  }
  selection = std::move(remaining);
}

void Sketch::setUndoStack(SketchUndoStack stack) {
  const ChangeScope scope(tracker_);
  undoStack.edit() = std::move(stack);
}

// --- The selection and the clipboard

void Sketch::select(Selection selected) {
  if (!selected.empty()) selected.planItem.reset();
  selection = std::move(selected);
}

void Sketch::selectOnly(const UUID& id) { selection = Selection{{id}, id, selection->isInspected, {}}; }

void Sketch::selectPlanItem(const UUID& id) {
  if (findPlanItem(drawing->plan, id)) selection = Selection{{}, {}, selection->isInspected, id};
}

void Sketch::addToSelection(const UUID& id) {
  const ChangeScope scope(tracker_);
  const bool isOver = selection->ids.isOver(entities());
  const auto position = isOver ? positionOf(id) : std::nullopt;
  Selection& selected = selection.edit();
  if (position) {
    selected.ids.insertAt(*position);
  } else {
    selected.ids.insert(id);
  }
  selected.primary = id;
  selected.planItem.reset();
}

void Sketch::deselect(const UUID& id) {
  const bool isMember = isSelected(id);
  if (!isMember && selection->primary != id) return;
  const ChangeScope scope(tracker_);
  const bool isOver = selection->ids.isOver(entities());
  const auto position = isOver ? positionOf(id) : std::nullopt;
  Selection& selected = selection.edit();
  if (position) {
    selected.ids.eraseAt(*position);
  } else if (isMember) {
    selected.ids.erase(id);
  }
  if (selected.primary == id) {
    selected.primary = selected.empty() ? std::optional<UUID>() : std::optional<UUID>(*selected.ids.begin());
  }
  if (selected.empty()) selected.isInspected = false;
}

void Sketch::setInspected(bool inspected) {
  if (selection->isInspected == inspected) return;
  const ChangeScope scope(tracker_);
  selection.edit().isInspected = inspected;
}

}  // namespace ostrelon
