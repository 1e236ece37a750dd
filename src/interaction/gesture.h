// What the board has in progress: one gesture at a time, and the values that go with it. Each is reset by
// assigning its default.
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "core/plan.h"
#include "core/sketch_point.h"
#include "core/sketch_viewport.h"
#include "interaction/select_drag_state.h"
#include "interaction/sketch_draft.h"
#include "interaction/snap_types.h"
#include "platform/date.h"

namespace ostrelon {

/// The drag of a handle, of an entity, of a group or of an item of the plan.
struct SelectDrag {
  SelectDragState state;
  /// The direction of a handle from the point that stays, when the drag began. Degrees, 0 up to but not
  /// including 360.
  std::optional<double> referenceAngle;
  friend bool operator==(const SelectDrag&, const SelectDrag&) = default;
};

/// Doors, windows or openings are being put into walls: a click adds the one that is previewed, and the
/// gesture goes on until something ends it. Sketch units.
struct OpeningPlacing {
  OpeningKind kind = OpeningKind::door;
  double width = 0;
  DoorHinge hinge = DoorHinge::left;
  DoorSwing swing = DoorSwing::in;
  std::optional<double> distance;  ///< as typed; absent: where the pointer is
  std::optional<Opening> preview;  ///< in the wall under the pointer, with a null identifier
  friend bool operator==(const OpeningPlacing&, const OpeningPlacing&) = default;
};

/// Dimensions are being placed: a click for each end, then one for the line; and from the start again until
/// something ends it. Sketch units.
struct DimensionPlacing {
  std::optional<SketchPoint> from;     ///< once clicked, as all of them
  std::optional<SketchPoint> to;       ///< once clicked
  std::optional<SketchPoint> pointer;  ///< where the next click goes, snapped
  std::optional<Dimension> preview;    ///< as it would be now, with a null identifier
  friend bool operator==(const DimensionPlacing&, const DimensionPlacing&) = default;
};

/// The gesture in progress; `std::monostate` is none.
using Gesture = std::variant<std::monostate, SketchDraft, PolygonDraft, SelectMarqueeState, SelectDrag,
                             OpeningPlacing, DimensionPlacing>;

/// The last snap, as the canvas shows it. Sketch units.
struct SnapState {
  std::vector<AxisSnap> axes;
  std::optional<SketchPoint> entityPoint;
  std::optional<SketchPoint> gridPoint;
  std::optional<SketchPoint> entitySourcePoint;  ///< of a moved entity: its own point that met another
  std::optional<SketchPoint> guideAnchor;
  std::optional<std::string> feedback;  ///< the words of the badge
  friend bool operator==(const SnapState&, const SnapState&) = default;
};

/// The point that is locked, and the one that is about to be.
struct Tracking {
  std::optional<EntitySnapTarget> locked;
  std::optional<EntitySnapTarget> pending;
  double progress = 0;  ///< of the dwell on `pending`, 0 to 1; 1 once it has locked
  std::optional<Date> dwellStart;
  friend bool operator==(const Tracking&, const Tracking&) = default;
};

/// The entity or the item of the plan under the pointer, and where the pointer is.
struct Hover {
  std::optional<UUID> entityID;
  std::optional<SketchPoint> viewPoint;  ///< view points
  std::optional<UUID> planItem = {};
  friend bool operator==(const Hover&, const Hover&) = default;
};

/// The editor over the length of a segment.
struct LengthEditor {
  bool isOpen = false;
  std::string text;
  std::optional<std::string> error;
  bool isTextOffered = false;  ///< the text is that with which the editor opened
  friend bool operator==(const LengthEditor&, const LengthEditor&) = default;
};

/// What of the sketch the canvas shows.
struct BoardView {
  SketchViewport viewport;
  SketchSize canvasSize;       ///< view points
  bool isInitialized = false;  ///< else the next size of the canvas centres the view
  friend bool operator==(const BoardView&, const BoardView&) = default;
};

}  // namespace ostrelon
