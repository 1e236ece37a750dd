// The drawing board over a sketch: the view, the tool, the gesture in progress, snapping, tracking, hovering
// and the editor of lengths. The operations that a pointer, a key or a typed size comes down to are here;
// canvas_gestures.h and key_routing.h map events to them.
//
// This object is the only owner of each value. A gesture in progress is one value, so that ending it is
// `gesture = {}`, whatever it was. Points are sketch units unless a name says view points; angles are
// degrees.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/messages.h"
#include "core/sketch.h"
#include "geometry/wall_run.h"
#include "interaction/gesture.h"
#include "interaction/sketch_tool.h"
#include "platform/scheduler.h"

namespace ostrelon {

class NearWallFaces;

/// What the console reports of a click of the trim tool.
struct TrimClick {
  std::string message;
  bool isError = false;
};

/// What a chain of commands may disturb on the board and what is put back when it fails.
struct BoardState {
  SketchTool tool = SketchTool::select;
  Gesture gesture;
  std::optional<UUID> trimCuttingEdge;
  std::vector<AxisSnap> draftAxes;
  LengthEditor lengthEditor;
  Tracking tracking;
};

class Board {
 public:
  /// All of them must outlive the object.
  Board(ChangeTracker& tracker, Sketch& sketch, Messages& messages, Scheduler& scheduler);
  Board(const Board&) = delete;
  Board& operator=(const Board&) = delete;

 private:
  ChangeTracker& tracker_;
  template <class T>
  using Field = Observable<T, Board>;

 public:
  Field<BoardView> view{tracker_};
  Field<SketchTool> tool{tracker_, SketchTool::select};
  Field<Gesture> gesture{tracker_};
  Field<SnapState> snap{tracker_};
  Field<Tracking> tracking{tracker_};
  Field<Hover> hover{tracker_};
  Field<LengthEditor> lengthEditor{tracker_};
  /// Where the pointer is; absent while it is off the canvas.
  Field<std::optional<SketchPoint>> cursor{tracker_};
  /// The axes to which the draft was locked last; tracking prefers them.
  Field<std::vector<AxisSnap>> draftAxes{tracker_};
  Field<std::optional<UUID>> trimCuttingEdge{tracker_};
  /// The part of a wall that the pointer draws. It lasts as long as the program.
  Field<WallJustification> wallJustification{tracker_, WallJustification::middle};

  Sketch& sketch() const { return sketch_; }
  Messages& messages() const { return messages_; }
  Scheduler& scheduler() const { return scheduler_; }
  const SketchViewport& viewport() const { return view->viewport; }
  double scale() const { return view->viewport.scale; }
  [[nodiscard]] ChangeScope change() const { return ChangeScope(tracker_); }
  [[nodiscard]] Subscription observe(FieldMask fields, ChangeTracker::Callback changed) const {
    return tracker_.observe(fields, std::move(changed));
  }

  // --- The gesture by its kind; null when it is another or none

  const SketchDraft* draft() const { return std::get_if<SketchDraft>(&gesture.get()); }
  const PolygonDraft* polygonDraft() const { return std::get_if<PolygonDraft>(&gesture.get()); }
  const SelectMarqueeState* marquee() const { return std::get_if<SelectMarqueeState>(&gesture.get()); }
  const SelectDrag* selectDrag() const { return std::get_if<SelectDrag>(&gesture.get()); }
  const OpeningPlacing* openingPlacing() const { return std::get_if<OpeningPlacing>(&gesture.get()); }
  const DimensionPlacing* dimensionPlacing() const { return std::get_if<DimensionPlacing>(&gesture.get()); }
  /// Items of the plan are being added, click by click.
  bool isPlacing() const { return openingPlacing() != nullptr || dimensionPlacing() != nullptr; }
  bool isDrawing() const { return draft() != nullptr || polygonDraft() != nullptr; }

  // --- Undo, redo and clearing, which end what is in progress (board.cpp)

  void undo();
  void redo();
  /// Removes all entities as one undo step.
  void clearSketch();
  /// Puts these entities in the place of all, as undo and redo do.
  void restoreSnapshot(const EntityList& entities);
  BoardState state() const { return {tool, gesture, trimCuttingEdge, draftAxes, lengthEditor, tracking}; }
  /// As it was before a chain that failed. A drag or marquee is not taken up again.
  void setState(const BoardState& state);
  /// Another document has been opened, with its own view. Any gesture ends.
  void documentOpened(const SketchViewport& viewport);
  /// A new, empty document has been begun. A draft of a two-point tool ends; a polygon, a drag and a marquee
  /// go on.
  void documentBegun();

  // --- Resets (board.cpp)

  void clearSnap() { snap = SnapState(); }
  /// Stops a dwell; a lock stays.
  void cancelTrackingDwell();
  /// Stops a dwell and releases the lock.
  void releaseTracking();
  void closeLengthEditor() { lengthEditor = LengthEditor(); }
  /// Ends the draft of a two-point tool without adding anything.
  void clearDraft();
  /// As `clearDraft`, and drops a polygon in progress.
  void cancelDraft();

  // --- The view (viewport.cpp)

  /// About a view point. A factor that is not above 0, and what would lose the view, does nothing.
  void zoom(double factor, SketchPoint viewAnchor);
  /// The sizes are those of the canvas, view points.
  void zoomToFit(SketchSize canvas);
  void resetViewport(SketchSize canvas);
  /// By view points; what is not finite does nothing.
  void pan(double dx, double dy);
  /// The canvas has this size, view points. The view is centred the first time, and after another document
  /// has come. A size that is not above 0 or not finite does nothing.
  void resizeCanvas(SketchSize size);
  void setViewport(const SketchViewport& viewport);

  // --- Selecting (selecting.cpp)

  /// A click: selects the item of the plan or the entity there alone, or nothing. With `additive` the entity
  /// is added to the selection or taken out of it, and a click beside all entities changes nothing.
  void selectAtPoint(SketchPoint point, bool additive);
  void setMarquee(std::optional<SelectMarqueeState> marquee);
  void beginMarquee(SketchPoint pressViewPoint, SketchPoint currentViewPoint);
  void updateMarquee(SketchPoint currentViewPoint);
  /// Selects what the marquee takes, with `additive` beside what is selected. One that was drawn to the left
  /// takes all that it touches, else what lies wholly inside.
  void finishMarquee(bool additive);

  // --- The select tool's drags (select_drag.cpp)

  /// Starts the drag of a handle of the one selected entity, else of the item of the plan at the press, else
  /// of the entity there with all of the selection that it belongs to; an unselected one is selected first.
  /// False when nothing is there.
  bool beginSelectDrag(SketchPoint press);
  void updateSelectDrag(SketchPoint point);
  /// The drag becomes one undo step, if it has moved anything. An item of the plan that does not fit where it
  /// has been put goes back, and the console says why.
  void finishSelectDrag();
  /// The next way in which the selected item of the plan stands; one that is dragged goes on with the drag.
  void flipSelectedItem();
  /// Puts the dragged entities back, and ends a marquee too.
  void cancelSelectDrag();

  // --- The trim tool (trimming.cpp)

  /// The first click on an entity chooses the cutting edge, each further one trims.
  TrimClick trimAt(SketchPoint point);
  /// What the next click does, in words; absent with any other tool.
  std::optional<std::string> trimInstruction() const;
  void clearTrimCuttingEdge();

  // --- Snapping (snapping.cpp)

  /// Entity point, then the alignment with the locked point, then the grid while it is shown, then the axis
  /// lock or whole coordinates: the snap of the end of a draft that starts at `anchor`.
  SketchSnapResult snapDraftEnd(SketchPoint anchor, SketchPoint pointer) const;
  /// Entity point, then grid if asked for, then the point itself: the snap of a pointer with no start.
  SketchSnapResult snapPointer(SketchPoint point, bool useGrid) const;
  /// Shows the result on the canvas, with guides through `guideAnchor`.
  void publishSnap(const SketchSnapResult& result, std::optional<SketchPoint> guideAnchor = std::nullopt);

  // --- Tracking (tracking.cpp)

  /// The pointer is here now: starts, advances or stops a dwell. A tool that cannot lock a point releases
  /// tracking altogether.
  void tickTracking(SketchPoint pointer, Date now);
  void startTrackingDwell(const EntitySnapTarget& target, Date now);
  void advanceTrackingDwell(Date now);
  /// Looks at the clock again soon, so that a dwell goes on while the pointer rests.
  void scheduleTrackingDwell();
  void lockTrackingTarget(const EntitySnapTarget& target);
  std::string trackingHoldText(const EntitySnapTarget& target) const;
  void showIdleTrackingFeedback(SketchPoint pointer);
  bool isDwelling() const { return dwellTask_.has_value(); }

  // --- The drawing tools (drawing_tools.cpp)

  void beginDraft(SketchPoint point);
  void updateDraft(SketchPoint point);
  void setWallJustification(WallJustification justification) { wallJustification = justification; }
  /// Puts the moving point of the draft exactly there.
  void setDraftCurrent(SketchPoint point);
  /// Adds what the draft has become, unless it is too small for its tool.
  void commitDraft();
  /// As `commitDraft`, whatever the size: for a draft whose size was typed.
  void commitTypedDraft();
  void addPolygonVertex(SketchPoint point);
  void updatePolygonDraft(SketchPoint point);
  /// Adds the polygon in progress. False, with nothing changed, when it has fewer than 3 vertices.
  bool closePolygon();
  void activateTool(SketchTool tool);
  void activateSelectTool();
  /// As a command does it, which disturbs less: `line` and `poly` keep the selection and the cutting
  /// edge, `trim` keeps a draft.
  void activateToolFromConsole(SketchTool tool);
  /// Ends the innermost thing in progress: the length editor, a dwell, a lock, a drag, a marquee, a draft
  /// with its tool, the selection.
  void handleEscape();
  /// The measures of the draft in progress, as its badge shows them; absent without one.
  std::optional<std::string> draftMeasurementText() const;

  // --- Doors, windows and openings by the pointer (opening_placing.cpp); nothing unless they are being
  // placed

  /// Begins with the usual width of the kind, with nothing selected.
  void beginOpeningPlacing(OpeningKind kind);
  /// The pointer is here; absent: off the canvas.
  void updateOpeningPlacing(std::optional<SketchPoint> point);
  /// The next of the four ways in which a door hangs and swings.
  void flipOpeningPlacing();
  /// `width` above 0; `distance` of the near jamb from the wall's start, for the next one alone.
  void setOpeningPlacingSize(double width, std::optional<double> distance);
  /// Adds the one that is previewed, or says in the console why it does not fit.
  void placeOpening();

  // --- Dimensions by the pointer (dimension_placing.cpp); nothing unless they are being placed

  /// Begins with nothing selected.
  void beginDimensionPlacing();
  /// The pointer is here; absent: off the canvas.
  void updateDimensionPlacing(std::optional<SketchPoint> point);
  /// A click where the pointer is: an end, or the line, which adds the dimension. Says in the console where
  /// there is nothing to measure.
  void placeDimensionPoint();
  /// Takes back the last click; without one the mode ends.
  void stepBackFromDimension();

  /// What the next click does, in words, while something is clicked step by step.
  std::optional<std::string> instruction() const;

  // --- Hovering (hover.cpp); view points, absent when the pointer has left the canvas

  /// Sets `cursor` alone.
  void recordPointer(std::optional<SketchPoint> viewPoint);
  /// Sets `cursor`, and shows what a press there would take.
  void hoverMoved(std::optional<SketchPoint> viewPoint);

  // --- The length editor (length_editing.cpp)

  /// The length of the segment being drawn or selected, in feet and inches; absent without one.
  std::optional<std::string> currentLengthText() const;
  /// Opens the editor with this text, else with the current length.
  void beginLengthEdit(std::optional<std::string> text = std::nullopt);
  void setLengthEditText(std::string text);
  /// Applies the text and closes the editor. False, with the error in the editor, for a text that is no
  /// length above 0 and where there is no segment.
  bool commitLengthEdit();
  /// Gives the segment being drawn, dragged or selected this length, above 0. False where there is none.
  bool applyLength(double value);

 private:
  // The members of a group that is being dragged, as the last move has left them.
  struct GroupMove {
    std::vector<std::size_t> places;    // ascending positions in the list
    std::vector<SketchEntity> anchors;  // the members as they were at the start, in the same order
    std::vector<SketchEntity> moved;
    std::uint64_t writes = 0;  // those of the drawing after the last move
  };

  /// Writes one member of the view.
  template <class Change>
  void changeView(const Change& change) {
    BoardView changed = view;
    change(changed);
    view = changed;
  }
  void publishSnap(const SketchSnapResult& result, std::optional<SketchPoint> guideAnchor,
                   std::optional<std::string> feedback);
  /// While a point is locked, a result without an entity point marks the locked one.
  void publishDraftSnap(const SketchSnapResult& result, SketchPoint anchor);
  void publishTrackedTarget(const EntitySnapTarget& target, std::string feedback);
  void showFeedback(std::optional<std::string> feedback);
  /// Advances the dwell to the scheduler's present time.
  void pollTrackingDwell();
  /// What hovering shows for a tool whose first point is not placed yet: entity points alone.
  void showEntityPointFeedback(SketchPoint point);
  /// Where the end of a dimension goes: as `snapPointer`, and to whatever it can hold on to.
  SketchSnapResult snapDimensionEnd(SketchPoint point) const;
  void showHovered(std::optional<UUID> id, std::optional<SketchPoint> viewPoint,
                   std::optional<UUID> planItem = std::nullopt);
  /// Clears the snap state unless a draft or a drag shows it.
  void clearIdleSnap();
  void addDraft(bool whateverItsSize);
  /// The faces of the walls near a point, while the plan has clean walls; else none.
  NearWallFaces wallFacesNear(SketchPoint point, const EntitySet& excluded = {}) const;
  /// A snap result, or where a corner of a face is nearer, or nothing else is near, one on the faces.
  static SketchSnapResult onWallFaces(const SketchSnapResult& plain, const NearWallFaces& faces);
  /// Ends a drag, a marquee and what is selected of the plan before the tool changes.
  void endSelectGestures();
  /// What undo and redo end: anything but a polygon in progress.
  void endAllButPolygon();
  void updateHandleDrag(const SelectDrag& drag, const HandleDrag& handle, SketchPoint point);
  void updateBodyDrag(const BodyDrag& drag, SketchPoint point);
  void updateGroupDrag(const MultiBodyDrag& drag, SketchPoint point);
  void updatePlanItemDrag(const PlanItemDrag& drag, SketchPoint point);
  /// Why the item that is dragged cannot stay where it is; empty where it can.
  std::string draggedItemMisfit() const;
  /// Finds the members of the group, unless nothing but this drag has written since it found them.
  GroupMove& groupMove(const MultiBodyDrag& drag);

  Sketch& sketch_;
  Messages& messages_;
  Scheduler& scheduler_;
  std::optional<GroupMove> groupMove_;
  std::optional<ScheduledTask> dwellTask_;
};

}  // namespace ostrelon
