// What the commands of the console do once they have been read: plain values, one record for each action.
// Sketch units; whether entity numbers count from 0 or 1 is stated at each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/drawing_scale.h"
#include "core/entity_edits.h"
#include "core/plan.h"
#include "core/sketch_point.h"
#include "core/wall_system.h"
#include "documents/merge.h"
#include "geometry/wall_run.h"
#include "interaction/sketch_tool.h"
#include "platform/uuid.h"

namespace ostrelon::CommandInterpreter {

// --- Drawing (drawing_commands.h)

struct DrawLine {
  SketchPoint from;
  SketchPoint to;
};
struct DrawWall {
  SketchPoint from;
  SketchPoint to;
  UUID systemSpecID;
};
struct DrawCircle {
  SketchPoint center;
  double radius = 0;  ///< above 0
};
struct DrawRectangle {
  SketchPoint origin;
  SketchSize size;  ///< above 0
};
struct DrawPolygon {
  std::vector<SketchPoint> vertices;  ///< 3 or more
};
/// Walls along a typed path (run_command.h).
struct DrawRun {
  std::vector<WallAxis> axes;  ///< 1 or more
  UUID systemSpecID;
  double typedLength = 0;  ///< of the path
};
struct ClearDrawing {};

// --- Selecting and copying (selection_commands.h)

struct ActivateTool {
  SketchTool tool = SketchTool::select;
};
struct SelectEntities {
  std::vector<std::int64_t> indices;  ///< 0-based; empty activates the select tool
};
struct CopySelection {};
struct PasteClipboard {};

// --- Edits of the selection (edit_commands.h)

struct AssignWallSystem {
  UUID specID;
};
struct MoveSelectedLine {
  double dx = 0;
  double dy = 0;
};
struct SetSelectedLength {
  double value = 0;
  std::string typed;  ///< the value as the reply repeats it
};
struct NudgeSelection {
  double dx = 0;
  double dy = 0;
};
struct AlignSelection {
  AlignmentAxis axis = AlignmentAxis::horizontal;
};
struct ConvertSelection {
  EntityConversionTarget target = EntityConversionTarget::line;
  std::optional<UUID> systemSpecID;  ///< absent: the active one
};

// --- Cutting and lengthening (trim_commands.h)

struct TrimEntity {
  std::int64_t target = 0;  ///< 1-based, as typed
  std::int64_t edge = 0;    ///< 1-based, as typed
  SketchPoint point;        ///< on the portion that goes
};
struct ExtendToBoundary {
  std::optional<std::int64_t> line;  ///< 1-based, as typed; absent: the selected one
  std::int64_t boundary = 0;         ///< 1-based, as typed
};

// --- Doors, windows and openings (opening_commands.h)

struct AddOpening {
  std::int64_t wall = 0;  ///< 1-based, as typed
  OpeningKind kind = OpeningKind::door;
  std::optional<double> distance;  ///< of the near jamb from the wall's start; absent: in the middle
  double width = 0;                ///< above 0
  DoorHinge hinge = DoorHinge::left;
  DoorSwing swing = DoorSwing::in;
};
struct ListOpenings {};

// --- Rooms (room_commands.h)

struct NameRoom {
  SketchPoint place;
  std::string name;  ///< not empty
};

struct PartRooms {
  SketchPoint start;
  SketchPoint end;
};

// --- Dimensions (dimension_commands.h)

struct AddDimension {
  SketchPoint from;
  SketchPoint to;
  DimensionDirection direction = DimensionDirection::aligned;
  std::optional<double> offset;  ///< to the left of from → to; absent: a little on paper
};
struct SwitchDimensionStrings {
  bool isOn = false;
};

// --- Notes and the sheet (sheet_commands.h)

struct AddNote {
  SketchPoint place;
  std::string text;  ///< not empty; lines are parted by \n
  std::optional<SketchPoint> target;
};
/// The drawing scale; told where there is none.
struct ScaleSheet {
  std::optional<DrawingScale> scale;
};

// --- Other schedules (schedule_commands.h)

struct ListRooms {};
struct ShowTakeoff {};

// --- Wall systems (wall_system_commands.h)

struct UseWallSystem {
  UUID specID;
};
struct ShowWallSystem {
  std::optional<std::string> name;  ///< absent: that of the selected wall, or the active one
};
struct ListWallSystems {};

// --- Changes of wall systems (system_commands.h)

struct AddWallSystem {
  WallSystemSpec spec;
};
struct ChangeWallSystem {
  WallSystemSpec spec;  ///< as it is to be
};
struct DeleteWallSystem {
  UUID specID;
  std::optional<UUID> successorID;  ///< takes over its walls; absent where there are to be none
};
struct ConvertWallSystems {
  bool isConfirmed = false;  ///< else it only tells
};

// --- The view (zoom_command.h)

struct ZoomView {
  enum class To { in, out, fit, reset };
  To to = To::in;
};

// --- The look of the plan (look_command.h)

struct ChangeLook {
  /// What is switched, by its word, in the order typed; nothing: the look is told.
  std::vector<std::pair<std::string, bool>> parts;
};

// --- Documents (history_commands.h)

struct SaveCheckpoint {
  std::string message;  ///< may be empty
};
struct ShowHistory {};
struct CreateBranch {
  std::string name;
  std::optional<std::string> checkpointID;  ///< absent: the head of the current branch
};
struct SwitchBranch {
  std::string nameOrID;
};

// --- Kept drawings (kept_commands.h)

struct ListKept {};
struct RestoreKept {
  std::size_t index = 0;  ///< 0 is the newest
};

// --- Other drawings (compare_commands.h). A name is that of a branch, a checkpoint or a document.

struct CompareDrawing {
  std::string name;
};
struct MergeDrawing {
  std::string name;
  std::optional<MergeChoice> choice;  ///< absent: conflicts refuse the merge
};

// --- Help (help_commands.h)

struct ShowHelp {};
struct ShowMore {};

using Action =
    std::variant<DrawLine, DrawWall, DrawCircle, DrawRectangle, DrawPolygon, DrawRun, ClearDrawing,
                 ActivateTool, SelectEntities, CopySelection, PasteClipboard, AssignWallSystem,
                 MoveSelectedLine, SetSelectedLength, NudgeSelection, AlignSelection, ConvertSelection,
                 TrimEntity, ExtendToBoundary, AddOpening, ListOpenings, NameRoom, PartRooms, AddNote,
                 ScaleSheet, AddDimension, SwitchDimensionStrings, ListRooms, ShowTakeoff, UseWallSystem,
                 ShowWallSystem, ListWallSystems, AddWallSystem, ChangeWallSystem, DeleteWallSystem,
                 ConvertWallSystems, ZoomView, ChangeLook, SaveCheckpoint, ShowHistory, CreateBranch,
                 SwitchBranch, ListKept, RestoreKept, CompareDrawing, MergeDrawing, ShowHelp, ShowMore>;

}  // namespace ostrelon::CommandInterpreter
