// The one central object: the open document, the selection, the tool, the gesture in progress, the
// view, the console transcript and the undo stack. Created once a process and never replaced;
// opening a document overwrites its fields.
//
// It is used on the main thread alone. Each operation checks, takes its undo checkpoint, changes,
// and marks the document dirty; observers hear of it once, when the operation has ended. The members
// are told here section by section, each with the file that holds it, so that this page is the table
// of contents of the program.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/console_line.h"
#include "core/document_toast.h"
#include "core/entity_edits.h"
#include "core/entity_index.h"
#include "core/entity_list.h"
#include "core/observable.h"
#include "core/sketch_entity.h"
#include "core/sketch_viewport.h"
#include "core/undo_stack.h"
#include "core/wall_system.h"
#include "documents/document_history_state.h"
#include "documents/document_on_disk.h"
#include "interaction/select_drag_state.h"
#include "interaction/sketch_draft.h"
#include "interaction/sketch_tool.h"
#include "interaction/snap_types.h"
#include "platform/date.h"
#include "platform/host.h"
#include "platform/scheduler.h"

namespace ostrelon {

class DocumentReading;        // documents/document_reading.h
class DocumentSave;           // documents/document_save.h
struct LoadedSketchDocument;  // documents/sketch_document.h
struct SketchDocumentV2;      // documents/sketch_document.h
struct TrimResult;            // geometry/trim.h
struct NumericDraftReply;     // console/numeric_draft_input.h

/// The observable fields, in the order in which they are told.
enum class SketchField : unsigned {
  entities,
  wallSystemSpecs,
  activeWallSystemSpecID,
  selectedEntityIDs,
  primarySelectedEntityID,
  selectMarquee,
  selectedTool,
  consoleLines,
  commandInput,
  isConsoleInputFocused,
  showGrid,
  documentName,
  documentFileURL,
  isDocumentDirty,
  lastSavedAt,
  documentToast,
  documentHistoryState,
  draft,
  polygonDraft,
  hoveredEntityID,
  hoverViewPoint,
  cursorSketchPoint,
  selectDrag,
  isEntityInspectorVisible,
  activeAxisSnaps,
  activeEntitySnapPoint,
  activeGridSnapPoint,
  activeEntitySnapSourcePoint,
  snapGuideAnchor,
  snapFeedback,
  acquiredEntitySnap,
  pendingTrackingAcquire,
  trackingAcquireProgress,
  lastDraftConstraintAxes,
  trackingAcquireDwellStart,
  handleDragReferenceAngle,
  trimCuttingEdgeEntityID,
  viewport,
  hasInitializedViewport,
  canvasSize,
  isSegmentLengthEditing,
  segmentLengthEditText,
  segmentLengthEditError,
  undoStack,
  selectDragUndoBaseline,
  entityClipboard,
  isSaveDialogActive,
  count_,
};
static_assert(static_cast<unsigned>(SketchField::count_) <= 64);

template <class... Fields>
constexpr FieldMask fieldMask(Fields... fields) {
  return (fieldBit(static_cast<unsigned>(fields)) | ... | FieldMask{0});
}

/// What one operation changed. An observer that asks what became of the entities keeps the list as it
/// last saw it, which costs nothing, and takes the difference.
struct SketchChange {
  FieldMask fields = 0;
  std::uint64_t revision = 0;

  bool has(SketchField field) const { return (fields & fieldMask(field)) != 0; }
};

class SketchViewModel {
  ChangeTracker tracker_;

  template <class T>
  using Field = Observable<T, SketchViewModel>;

 public:
  /// `host` must outlive the object. Building it reads and writes nothing.
  explicit SketchViewModel(Host host);
  SketchViewModel(const SketchViewModel&) = delete;
  SketchViewModel& operator=(const SketchViewModel&) = delete;
  ~SketchViewModel();

  // --- The document
  Field<EntityList> entities{tracker_, n(SketchField::entities)};
  Field<std::vector<WallSystemSpec>> wallSystemSpecs{tracker_, n(SketchField::wallSystemSpecs)};
  Field<UUID> activeWallSystemSpecID{tracker_, n(SketchField::activeWallSystemSpecID)};
  Field<bool> showGrid{tracker_, n(SketchField::showGrid), true};
  Field<std::string> documentName{tracker_, n(SketchField::documentName), "Untitled Project"};
  Field<std::optional<std::filesystem::path>> documentFileURL{tracker_, n(SketchField::documentFileURL)};
  Field<bool> isDocumentDirty{tracker_, n(SketchField::isDocumentDirty)};
  Field<std::optional<Date>> lastSavedAt{tracker_, n(SketchField::lastSavedAt)};
  Field<DocumentHistoryState> documentHistoryState{tracker_, n(SketchField::documentHistoryState)};

  // --- Selection and its gestures
  Field<std::unordered_set<UUID>> selectedEntityIDs{tracker_, n(SketchField::selectedEntityIDs)};
  Field<std::optional<UUID>> primarySelectedEntityID{tracker_, n(SketchField::primarySelectedEntityID)};
  Field<std::optional<SelectMarqueeState>> selectMarquee{tracker_, n(SketchField::selectMarquee)};
  Field<std::optional<SelectDragState>> selectDrag{tracker_, n(SketchField::selectDrag)};
  /// Degrees, 0 up to but not including 360.
  Field<std::optional<double>> handleDragReferenceAngle{tracker_, n(SketchField::handleDragReferenceAngle)};
  Field<std::optional<UUID>> hoveredEntityID{tracker_, n(SketchField::hoveredEntityID)};
  Field<std::optional<SketchPoint>> hoverViewPoint{tracker_,
                                                   n(SketchField::hoverViewPoint)};  ///< view points
  Field<bool> isEntityInspectorVisible{tracker_, n(SketchField::isEntityInspectorVisible)};

  // --- Tools and drafts
  Field<SketchTool> selectedTool{tracker_, n(SketchField::selectedTool), SketchTool::select};
  Field<std::optional<SketchDraft>> draft{tracker_, n(SketchField::draft)};
  Field<std::optional<PolygonDraft>> polygonDraft{tracker_, n(SketchField::polygonDraft)};
  Field<std::vector<AxisSnap>> lastDraftConstraintAxes{tracker_, n(SketchField::lastDraftConstraintAxes)};
  Field<std::optional<SketchPoint>> cursorSketchPoint{tracker_, n(SketchField::cursorSketchPoint)};
  Field<std::optional<UUID>> trimCuttingEdgeEntityID{tracker_, n(SketchField::trimCuttingEdgeEntityID)};

  // --- The last snap, as the canvas shows it
  Field<std::vector<AxisSnap>> activeAxisSnaps{tracker_, n(SketchField::activeAxisSnaps)};
  Field<std::optional<SketchPoint>> activeEntitySnapPoint{tracker_, n(SketchField::activeEntitySnapPoint)};
  Field<std::optional<SketchPoint>> activeGridSnapPoint{tracker_, n(SketchField::activeGridSnapPoint)};
  Field<std::optional<SketchPoint>> activeEntitySnapSourcePoint{tracker_,
                                                                n(SketchField::activeEntitySnapSourcePoint)};
  Field<std::optional<SketchPoint>> snapGuideAnchor{tracker_, n(SketchField::snapGuideAnchor)};
  Field<std::optional<std::string>> snapFeedback{tracker_, n(SketchField::snapFeedback)};

  // --- Tracking
  Field<std::optional<EntitySnapTarget>> acquiredEntitySnap{tracker_, n(SketchField::acquiredEntitySnap)};
  Field<std::optional<EntitySnapTarget>> pendingTrackingAcquire{tracker_,
                                                                n(SketchField::pendingTrackingAcquire)};
  Field<double> trackingAcquireProgress{tracker_, n(SketchField::trackingAcquireProgress)};  ///< 0 to 1
  Field<std::optional<Date>> trackingAcquireDwellStart{tracker_, n(SketchField::trackingAcquireDwellStart)};

  // --- The view
  Field<SketchViewport> viewport{tracker_, n(SketchField::viewport)};
  Field<bool> hasInitializedViewport{tracker_, n(SketchField::hasInitializedViewport)};
  Field<SketchSize> canvasSize{tracker_, n(SketchField::canvasSize)};  ///< view points

  // --- The length editor over a segment
  Field<bool> isSegmentLengthEditing{tracker_, n(SketchField::isSegmentLengthEditing)};
  Field<std::string> segmentLengthEditText{tracker_, n(SketchField::segmentLengthEditText)};
  Field<std::optional<std::string>> segmentLengthEditError{tracker_, n(SketchField::segmentLengthEditError)};

  // --- Console and messages
  Field<std::vector<ConsoleLine>> consoleLines{tracker_, n(SketchField::consoleLines)};
  Field<std::string> commandInput{tracker_, n(SketchField::commandInput)};
  Field<bool> isConsoleInputFocused{tracker_, n(SketchField::isConsoleInputFocused)};
  Field<std::optional<DocumentToastState>> documentToast{tracker_, n(SketchField::documentToast)};
  Field<bool> isSaveDialogActive{tracker_, n(SketchField::isSaveDialogActive)};

  // --- Clipboard and undo
  Field<std::vector<SketchEntity>> entityClipboard{tracker_, n(SketchField::entityClipboard)};
  static constexpr SketchPoint entityClipboardPasteOffset = kDuplicateOffset;
  Field<std::optional<SketchUndoSnapshot>> selectDragUndoBaseline{tracker_,
                                                                  n(SketchField::selectDragUndoBaseline)};
  const SketchUndoStack& undoStack() const { return undoStack_; }
  bool isApplyingUndoRedo() const { return isApplyingUndoRedo_; }
  int undoCheckpointSuppressionDepth() const { return undoCheckpointSuppressionDepth_; }
  bool hasDocumentToastDismissTask() const { return documentToastDismissTask_.has_value(); }
  bool hasTrackingAcquireDwellTask() const { return trackingAcquireDwellTask_.has_value(); }

  // --- Observation (core/sketch_view_model.cpp)

  /// Calls back once after each operation that changed one of the fields.
  [[nodiscard]] Subscription observe(FieldMask fields, std::function<void(const SketchChange&)> changed);
  /// The number of operations that have changed something.
  std::uint64_t revision() const { return tracker_.revision(); }
  /// Runs several operations as one change, of which observers hear once, at its end.
  void performAsOneChange(const std::function<void()>& operations);
  const Host& host() const { return host_; }

  // --- Console output and input (core/console_output.cpp; the submit in console/submit.cpp)

  void appendConsoleLine(std::string text, bool isError, bool isSystem);
  void setCommandInput(std::string text);
  void setConsoleInputFocused(bool focused);
  void submitCommandInput();
  /// The description of this entity as a system line; nothing for an unknown identifier.
  void printEntityDescription(const UUID& id);

  // --- Toasts (core/console_output.cpp)

  /// `duration`: seconds until it goes; absent takes the style's own, and a `saving` toast then stays.
  void showDocumentToast(std::string message, DocumentToastState::Style style,
                         std::optional<double> duration = std::nullopt);
  void clearDocumentToast();

  // --- Entities by identifier (core/sketch_view_model.cpp)

  /// The index over `entities`, brought up to date. Valid until the entities change.
  const EntityIndex& index() const;
  const SketchEntity* entity(const UUID& id) const;
  std::optional<std::size_t> entityIndex(const UUID& id) const;
  /// The label with number and wall system name; absent for an unknown identifier.
  std::optional<std::string> entityLabelText(const UUID& id) const;
  std::optional<std::string> wallSystemName(const SketchEntity& entity) const;

  // --- Wall systems (core/wall_systems.cpp)

  /// The active system, or the first one when it is gone; null only when there is none at all.
  const WallSystemSpec* activeWallSystemSpec() const;
  const WallSystemSpec* wallSystemSpec(const UUID& id) const;
  /// The first system of this name, without regard to case.
  const WallSystemSpec* wallSystemSpec(std::string_view named) const;
  void setActiveWallSystem(const WallSystemSpec& spec);
  void updateWallSystemSpec(const WallSystemSpec& spec);

  // --- Document (core/document_state.cpp)

  void setShowGrid(bool value);
  void newDocument();

  // --- Adding and clearing (core/adding.cpp)

  void addLine(SketchPoint from, SketchPoint to);
  void addRectangle(SketchPoint origin, SketchSize size);
  void addCircle(SketchPoint center, double radius);
  /// Fewer than 3 vertices add nothing.
  void addPolygon(std::vector<SketchPoint> vertices);
  /// The wall becomes the selection. Without a system the active one is taken.
  void addWall(std::optional<UUID> systemSpecID, SketchPoint from, SketchPoint to);
  /// All of them as one undo step; none is nothing. Their identifiers must be new to the document.
  void addEntities(std::vector<SketchEntity> added);
  void clearSketch();

  // --- Undo (core/undo.cpp)

  void captureUndoCheckpoint();
  void undo();
  void redo();
  void restoreSnapshot(const EntityList& entities);
  void clearUndoHistory();
  void replaceUndoSnapshots(std::vector<SketchUndoSnapshot> snapshots);
  SketchCommandMutationState captureCommandMutationState() const;
  void restoreCommandMutationState(const SketchCommandMutationState& state);
  void commitCommandMutationState(const SketchCommandMutationState& state);
  /// While above 0 no checkpoint is taken.
  void changeUndoCheckpointSuppressionDepth(int by);

  // --- Resets of fields (core/resets.cpp)

  void clearSelection();
  void clearSnapState();
  /// Stops a dwell; a lock stays.
  void cancelTrackingDwell();
  void closeSegmentLengthEdit();
  /// Ends the draft without adding anything.
  void clearDraft();
  /// As `clearDraft`, and drops a polygon in progress.
  void cancelDraft();

  // --- Selection (geometry/selection.cpp)

  const SketchEntity* selectedEntity() const;
  std::string selectionSummary() const;
  void selectAtPoint(SketchPoint point, bool additive);
  void toggleEntitySelection(const UUID& id);
  void selectSingleEntity(std::optional<UUID> id);
  /// 0-based indices; those beyond the list are left out.
  void selectEntities(const std::vector<std::int64_t>& indices);
  void selectAll();
  void setSelectMarquee(std::optional<SelectMarqueeState> marquee);
  void beginMarquee(SketchPoint pressViewPoint, SketchPoint currentViewPoint);
  void updateMarquee(SketchPoint currentViewPoint);
  void finishMarquee(bool additive);
  /// Writes an entity in place. No undo step of its own; an unknown identifier does nothing.
  void replaceEntity(const UUID& id, SketchEntity entity);

  // --- Edits (geometry/entity_edit_operations.cpp)

  EntityEditResult setSelectedEntityLength(double value);
  EntityEditResult nudgeSelectedEntity(double dx, double dy);
  EntityEditResult convertSelectedEntity(EntityConversionTarget target,
                                         std::optional<UUID> wallSystemID = std::nullopt);
  bool assignWallSystem(const UUID& wallSystemID, const UUID& entityID);
  /// The number of entities moved.
  int alignSelection(AlignmentAxis axis);
  /// False unless the selection is one line, and for movements that are not finite.
  bool moveSelectedLine(double dx, double dy);
  void deleteEntity(const UUID& id);
  void deleteSelection();
  void duplicateEntity(const UUID& id, double dx, double dy);
  void duplicateSelection(double dx, double dy);
  int copySelection();
  int pasteClipboard(std::optional<SketchPoint> offset = std::nullopt);

  // --- Trim and extend (geometry/trim_operations.cpp)

  TrimResult applyTrim(std::int64_t targetIndex, std::int64_t edgeIndex, SketchPoint point);
  std::string handleTrimClick(SketchPoint point);
  std::optional<std::string> trimInstruction() const;
  void clearTrimCuttingEdge();
  bool extendLine(const UUID& lineID, const UUID& boundaryID);

  // --- The length editor (geometry/segment_length.cpp)

  std::optional<std::string> currentSegmentLengthText() const;
  void beginSegmentLengthEdit(std::optional<std::string> text = std::nullopt);
  void setSegmentLengthEditText(std::string text);
  bool commitSegmentLengthEdit();
  bool applySegmentLength(double value);

  // --- The view (interaction/viewport.cpp)

  void zoomViewport(double factor, SketchPoint viewAnchor);
  void zoomToFit(SketchSize canvas);
  void resetViewport(SketchSize canvas);
  void panViewport(double dx, double dy);
  void updateCanvasSize(SketchSize size);
  void setViewport(double panX, double panY, double scale);

  // --- Snapping (interaction/snap_state.cpp)

  SketchSnapResult snapDraftEnd(SketchPoint anchor, SketchPoint pointer) const;
  /// Entity point, then grid if asked for, then the point itself: the snap of a pointer with no start.
  SketchSnapResult snapPointer(SketchPoint point, bool useGrid) const;
  void publishSnap(const SketchSnapResult& result, std::optional<SketchPoint> guideAnchor = std::nullopt);

  // --- Tracking (interaction/tracking.cpp)

  void tickTrackingAcquire(SketchPoint pointer, Date now);
  void startTrackingDwell(const EntitySnapTarget& target, Date now);
  void advanceTrackingDwell(Date now);
  void scheduleTrackingDwell();
  void lockTrackingTarget(const EntitySnapTarget& target);
  std::string trackingHoldText(const EntitySnapTarget& target) const;
  void showIdleTrackingFeedback(SketchPoint pointer);

  // --- Drawing tools (interaction/drawing_tools.cpp)

  void beginDraft(SketchPoint point);
  void updateDraft(SketchPoint point);
  /// Puts the moving point of the draft exactly there.
  void setDraftCurrent(SketchPoint point);
  void commitDraft();
  /// As `commitDraft`, whatever the size: for a draft whose size was typed.
  void commitTypedDraft();
  void addPolygonVertex(SketchPoint point);
  void updatePolygonDraft(SketchPoint point);
  bool closePolygon();
  void activateTool(SketchTool tool);
  void activateSelectTool();
  void handleEscape();
  std::optional<std::string> draftMeasurementText() const;

  // --- Hovering (interaction/hover.cpp); view points, absent when the pointer has left the canvas

  void hoverMoved(std::optional<SketchPoint> viewPoint);
  void recordPointer(std::optional<SketchPoint> viewPoint);

  // --- The select tool's drags (interaction/select_drag.cpp)

  bool beginSelectDrag(SketchPoint press);
  void updateSelectDrag(SketchPoint point);
  void finishSelectDrag();
  void cancelSelectDrag();

  // --- Numeric input while drawing (console/numeric_draft_input.cpp)

  std::optional<NumericDraftReply> applyNumericDraftInput(std::string_view text);

  // --- Tool forms of the console (console/tool_commands.cpp)

  void activateToolFromConsole(SketchTool tool);

  // --- Chains (console/command_chain_run.cpp)

  /// Moves the end of the line or wall at this position; a wall becomes the selection. No undo step
  /// of its own: the chain takes one.
  void extendChainSegment(std::size_t index, SketchPoint to);
  /// What a chain's `select` may close and a failed chain leaves alone.
  struct OpenWork {
    std::optional<PolygonDraft> polygonDraft;
    std::vector<AxisSnap> lastDraftConstraintAxes;
    bool isEntityInspectorVisible = false;
    bool isSegmentLengthEditing = false;
    bool isSegmentLengthTextOffered = false;
    std::string segmentLengthEditText;
    std::optional<std::string> segmentLengthEditError;
    std::optional<EntitySnapTarget> acquiredEntitySnap;
    std::optional<EntitySnapTarget> pendingTrackingAcquire;
    std::optional<Date> trackingAcquireDwellStart;
    double trackingAcquireProgress = 0;
  };
  OpenWork openWork() const;
  void restoreAfterFailedChain(const SketchCommandMutationState& before, const OpenWork& work);

  // --- Documents (documents/document_operations.cpp); failures are thrown as UserError

  SketchDocumentV2 makeDocumentV2(bool includeUndo) const;
  void applyLoadedDocument(LoadedSketchDocument document);
  void saveDocumentFile(const std::filesystem::path& url);
  void openDocumentFile(const std::filesystem::path& url);
  /// The second half of a save whose file has been written: moves it into its place. The document is
  /// clean then, unless it has changed since the save was begun.
  void finishDocumentSave(DocumentSave& save);
  /// The second half of an opening whose file has been read: the document takes the place of this one.
  void finishDocumentOpening(DocumentReading& reading);
  /// What was last read from or written to a document file; absent before the first time.
  const std::optional<DocumentOnDisk>& documentOnDisk() const { return documentOnDisk_; }
  void setSaveDialogActive(bool active);

  // --- History (documents/history_operations.cpp); failures are thrown as UserError

  void refreshDocumentHistory();
  DocumentCheckpoint saveCheckpoint(std::optional<std::string> message = std::nullopt);
  DocumentHistoryBranch createHistoryBranch(const std::string& name,
                                            std::optional<std::string> sourceCheckpointID = std::nullopt);
  DocumentHistoryBranch switchBranch(const std::string& nameOrID);
  std::string documentHistoryText() const;

  // --- The inspector (core/resets.cpp)

  void showEntityInspector();
  void toggleEntityInspector();
  void setEntityInspectorVisible(bool visible);

 private:
  static constexpr unsigned n(SketchField field) { return static_cast<unsigned>(field); }

  /// One more step to go back to. An edit in the middle of a drag has what was dragged so far as a step of
  /// its own beneath it.
  void pushUndoStep(const SketchUndoSnapshot& before);
  /// Some member of the selection becomes the primary entity when the primary one is gone; none, and no
  /// inspector, when nothing is selected.
  void settleSelection();
  void addDraft(bool whateverItsSize);
  /// Checkpoint, append, dirty: the common end of every operation that adds one entity.
  void appendNewEntity(SketchEntity entity);
  /// The new selection of one, with its entity as the primary one.
  void selectOnly(const UUID& id);
  /// Takes the identifier out of the selection; a primary that goes is replaced by some member.
  void deselect(const UUID& id);

  void publishSnap(const SketchSnapResult& result, std::optional<SketchPoint> guideAnchor,
                   std::optional<std::string> feedback);
  /// While a point is locked, a result without an entity point marks the locked one.
  void publishDraftSnap(const SketchSnapResult& result, SketchPoint anchor);
  void publishTrackedTarget(const EntitySnapTarget& target, std::string feedback);
  /// Stops the dwell and lets go of the lock.
  void releaseTracking();
  /// One look of the dwell task at the clock.
  void pollTrackingDwell();
  /// What hovering shows for a tool whose first point is not placed yet: entity points alone.
  void showEntityPointFeedback(SketchPoint point);
  void showHovered(std::optional<UUID> id, std::optional<SketchPoint> viewPoint);
  /// Clears the snap state unless a draft or a drag shows it.
  void clearIdleSnapState();
  /// Ends a drag and a marquee before the tool changes.
  void endSelectGestures();
  void updateHandleDrag(const HandleDrag& drag, SketchPoint point);
  void updateBodyDrag(const BodyDrag& drag, SketchPoint point);
  void updateGroupDrag(const MultiBodyDrag& drag, SketchPoint point);

  /// Writes what `edit` makes of the one selected entity, as one undo step.
  EntityEditResult applyToSelectedEntity(
      const std::function<std::optional<SketchEntity>(const SketchEntity&)>& edit);
  /// The positions of the selected entities, ascending.
  std::vector<std::size_t> selectedPositions() const;
  /// Appends one or more copies as one undo step and makes them the selection, the first one primary.
  void appendCopies(std::vector<SketchEntity> copies);

  // The members of a group that is being dragged, as the last move has left them.
  struct GroupMove {
    std::vector<std::size_t> places;    // ascending positions in the list
    std::vector<SketchEntity> anchors;  // the members as they were at the start, in the same order
    std::vector<SketchEntity> moved;
    std::uint64_t writes = 0;  // those of `entities` after the last move
  };
  /// Finds the members of the group, unless nothing but this drag has written since it found them.
  GroupMove& groupMove(const MultiBodyDrag& drag);

  Host host_;
  mutable EntityIndex index_;  // follows `entities`, lazily
  std::optional<GroupMove> groupMove_;
  SketchUndoStack undoStack_;
  std::optional<DocumentOnDisk> documentOnDisk_;
  bool isApplyingUndoRedo_ = false;
  bool hasUndoStepOfDrag_ = false;           // what the drag moves can be undone already
  bool isSegmentLengthTextOffered_ = false;  // the editor shows the text with which it opened
  int undoCheckpointSuppressionDepth_ = 0;
  std::optional<ScheduledTask> documentToastDismissTask_;
  std::optional<ScheduledTask> trackingAcquireDwellTask_;
};

}  // namespace ostrelon
