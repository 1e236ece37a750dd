// The sketch that is open: its drawing, the selection in it and its undo steps, and the one way to
// change them. It lives as long as the program; opening a document puts another drawing in its place.
//
// Everyone may read the values; they are written by the operations below alone. An edit of the drawing is a
// function that is handed the drawing as it is and leaves it as it should be:
//
//   sketch.edit([&](Drawing& drawing) { drawing.entities.append(line); });
//
// `edit` takes the undo step, marks the sketch as changed since its last save, and notifies. Callers have
// checked before: a refused operation does not get here. Where the edit leaves the openings as they are, they
// follow their walls: what is gone takes its openings with it, in the same step; dimensions follow what they
// hold on to likewise. Operations that do several things open a `change()` first, and observers are notified
// once, when the outermost one ends.
//
// The operations on entities are functions over a sketch in geometry/; those that add entities, in
// core/adding.h.
#pragma once

#include <cstddef>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "core/drawing.h"
#include "core/entity_index.h"
#include "core/observable.h"
#include "core/undo_stack.h"

namespace ostrelon {

/// What an edit means for undo.
enum class UndoStep {
  own,              ///< it is a step, whatever it changes; inside `asOneStep` it is part of that one
  withWallSystems,  ///< likewise, and what it changes of the wall systems is part of the step
  none,             ///< it is no step: a drag records one at its end, and wall systems and the grid have none
};

/// All that a group of commands may disturb and that is taken back when one of them fails.
struct SketchState {
  Drawing drawing;
  Selection selection;
  bool isDirty = false;
  friend bool operator==(const SketchState&, const SketchState&) = default;
};

class Sketch {
 public:
  /// `tracker` must outlive the object.
  explicit Sketch(ChangeTracker& tracker);
  Sketch(const Sketch&) = delete;
  Sketch& operator=(const Sketch&) = delete;

 private:
  ChangeTracker& tracker_;
  template <class T>
  using Field = Observable<T, Sketch>;

 public:
  Field<Drawing> drawing{tracker_};
  Field<Selection> selection{tracker_};
  Field<SketchUndoStack> undoStack{tracker_};
  /// Something that a document's file holds has changed since it was last saved or opened.
  Field<bool> isDirty{tracker_};
  /// What `copy` took last. Gone with the document.
  Field<std::vector<SketchEntity>> clipboard{tracker_};

  /// One change for the observers, as long as the scope lives.
  [[nodiscard]] ChangeScope change() const { return ChangeScope(tracker_); }

  // --- Finding

  const EntityList& entities() const { return drawing->entities; }
  /// The index over the entities, brought up to date. Valid until they change.
  const EntityIndex& index() const;
  /// The index without bringing it up to date: right about all entities but those written since.
  const EntityIndex& staleIndex() const { return index_; }
  /// Null for an unknown identifier. Valid until the entities change.
  const SketchEntity* entity(const UUID& id) const { return index().find(id); }
  /// The 0-based position.
  std::optional<std::size_t> positionOf(const UUID& id) const { return index().positionOf(id); }
  /// The label with number and wall system name; absent for an unknown identifier.
  std::optional<std::string> labelOf(const UUID& id) const;
  /// Of an entity of the drawing; a large selection is not searched for it.
  bool isSelected(const UUID& id) const;
  /// The same of any set.
  bool isIn(const EntitySet& ids, const UUID& id) const;
  /// The entity of a selection of one, else null.
  const SketchEntity* selectedEntity() const;
  /// "none", the label of the one selected entity or item of the plan, or "3 selected".
  std::string selectionSummary() const;
  /// The positions of the selected entities, ascending.
  std::vector<std::size_t> selectedPositions() const;
  /// Calls `visit(entity)` for each selected entity, in the order of the list.
  template <class Visit>
  void visitSelected(Visit visit) const {
    if (!selection->ids.isOver(entities())) {
      for (const std::size_t position : selectedPositions()) visit(entities()[position]);
      return;
    }
    std::size_t position = 0;
    for (const SketchEntity& entity : entities()) {
      if (selection->ids.containsAt(position++)) visit(entity);
    }
  }
  /// All entities.
  EntitySet setOfAll() const;
  /// How often the drawing has been written since the program began.
  std::uint64_t drawingWrites() const { return drawing.writes(); }

  // --- Work on much of the drawing

  /// Does work that would hold the program for long, and returns once it is done. The work reads values
  /// alone.
  using WorkRunner = std::function<void(const std::function<void()>& work)>;
  /// Without one all work is done at once, and wherever an operation is under way already.
  void setWorkRunner(WorkRunner runner) { runWork_ = std::move(runner); }
  /// For work on a file of which only its reading will tell how much it holds: it counts as much.
  static constexpr std::size_t kUnknownSize = std::numeric_limits<std::size_t>::max();
  /// Whether work on about so many entities is done by the runner.
  bool worksAside(std::size_t entities) const;
  /// Does work on about so many entities, by the runner where they are many.
  void work(std::size_t entities, const std::function<void()>& work) const;
  /// What `make` gives, which an edit is going to put in the place of the entities. It is made by `work`, and
  /// where they are many, what follows from the list as well: its index, and what is selected in it.
  /// `changed`: about how many entities are others.
  EntityList prepared(std::size_t changed, const std::function<EntityList()>& make);
  /// Prepares what follows from a list that is about to take the place of the entities.
  void prepareFor(const EntityList& next);
  /// Prepares the entities of the next undo or redo.
  void prepareUndo();
  void prepareRedo();
  /// The index over a list that the drawing is about to have.
  void offerIndex(EntityIndex index) { offeredIndex_ = std::move(index); }

  // --- The one way to edit

  void edit(const std::function<void(Drawing&)>& change, UndoStep step = UndoStep::own);
  /// An edit that leaves the drawing as it is: it takes its step and counts as a change all the same.
  void countAsEdit(UndoStep step);
  /// The drawing as it is becomes a step, and nothing is changed.
  void takeStep() { pushStep({entities()}); }
  /// All edits that `changes` makes are one step, or none where the entities end as they began. When it
  /// returns false, everything in `SketchState` is put back.
  bool asOneStep(const std::function<bool()>& changes);
  /// Records what was done without a step as one, unless the entities, and the plan where one is given, are
  /// what they were before. Inside `asOneStep` it is part of that one.
  void recordStep(SketchUndoSnapshot before);

  // --- A drag, whose whole course is one step. An edit in the middle of it has what was dragged so far as
  // a step of its own beneath it.

  void beginDragStep();
  void endDragStep();
  /// Puts the entities back as they were when the drag began. What a command has added meanwhile goes
  /// with the drag, and so does its selection; where it took a step, undo brings it back.
  void cancelDragStep();
  /// The drag leaves no step.
  void forgetDragStep() { dragStep_.reset(); }
  /// The entities when the drag began, while one is under way.
  const EntityList* dragStart() const { return dragStep_ ? &dragStep_->before.entities : nullptr; }

  // --- The whole of it

  SketchState state() const { return {drawing, selection, isDirty}; }
  void setState(const SketchState& state);
  /// Another document takes the place of this one: nothing is selected or copied, and the undo steps are
  /// those given, oldest first. Whether the sketch counts as changed and whether the inspector is open stay
  /// as they are.
  void replace(Drawing drawing, std::vector<SketchUndoSnapshot> undoSteps = {});
  void setDirty(bool dirty) { isDirty = dirty; }
  /// New walls take this system from now on. Neither an undo step nor a change of the document.
  void setActiveWallSystem(const UUID& id);

  // --- Undo. False when there is no step.

  bool undo();
  bool redo();
  /// The common end of both: these entities, with whatever of the selection is still among them, and what
  /// else the step takes back. Gives the step that takes this back in turn.
  SketchUndoSnapshot restore(const SketchUndoSnapshot& step);
  void setUndoStack(SketchUndoStack stack);

  // --- The selection and the clipboard

  /// Entities leave no item of the plan selected.
  void select(Selection selected);
  /// This one alone. The inspector stays as it is.
  void selectOnly(const UUID& id);
  /// This item of the plan alone; nothing for an unknown one. The inspector stays as it is.
  void selectPlanItem(const UUID& id);
  /// Adds it and makes it the primary one.
  void addToSelection(const UUID& id);
  /// Takes it out of the selection, and as the primary one also where it is not selected; some member
  /// takes its place. The inspector closes with the last one.
  void deselect(const UUID& id);
  /// Nothing is selected, and the inspector closes.
  void clearSelection() { selection = Selection(); }
  /// The inspector opens on a selection alone.
  void setInspected(bool inspected);
  /// Leaves out of the selection what is not there any more, after an edit that may have removed some.
  void keepSelectionOfEntities() { settleSelection(); }
  /// `items`: those of the plan that come with the entities, or one that stands by itself.
  void setClipboard(std::vector<SketchEntity> entities, std::vector<PlanItem> items = {}) {
    const ChangeScope scope(tracker_);
    clipboard.edit() = std::move(entities);
    clipboardItems_ = std::move(items);
  }
  const std::vector<PlanItem>& clipboardItems() const { return clipboardItems_; }

 private:
  struct DragStep {
    SketchUndoSnapshot before;
    bool isRecorded = false;  // what was dragged can be undone already
    // What openings and dimensions follow from: the start of the drag, so that a wall that is dragged out and
    // back has them exactly where they were, or the last edit meanwhile that was not the drag's own.
    Drawing followedFrom;
  };

  /// The drawing as it is, with its plan.
  SketchUndoSnapshot snapshot() const { return {entities(), {drawing->plan, {}}}; }
  void pushStep(SketchUndoSnapshot before);
  /// Has a large selection know its members by their positions in the entities as they are now.
  void followEntities();
  EntitySet followedSelection();
  /// `before`: where there was anything to follow from, and no drag that knows it.
  void followWalls(const std::optional<Drawing>& before, const Plan& planBefore);
  /// Leaves out of the selection what is gone. Some member becomes the primary one when that is gone;
  /// none, and no inspector, when nothing is selected.
  void settleSelection();

  mutable EntityIndex index_;                        // follows the entities, lazily
  mutable std::optional<EntityIndex> offeredIndex_;  // over a list that they are about to be
  std::optional<EntitySet> offeredSelection_;        // of the same list
  WorkRunner runWork_;
  int openSteps_ = 0;                                // how many `asOneStep` are under way
  std::vector<WallSystemChange> openSystemChanges_;  // what these have changed of the wall systems
  std::vector<PlanItem> clipboardItems_;
  std::optional<DragStep> dragStep_;
};

}  // namespace ostrelon
