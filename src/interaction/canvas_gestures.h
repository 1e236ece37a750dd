// The pointer over the canvas, without a window: presses, drags, scrolling and pinching in view points
// become operations of the board. The window and the automation interface feed this same layer.
//
//   CanvasGestures gestures(board);
//   gestures.press({100, 100});          // the primary button goes down
//   gestures.drag({180, 100});           // … moves while it is held
//   gestures.release({180, 100}, shift);  // … and comes up
//
// A gesture has changed events, the press being the first, and one end; so a click is a drag of no
// length. The press is kept in view points and turned into sketch points with the viewport of the moment
// at which it is used. The end is no change: a draft keeps the point of the last changed event.
//
// A gesture is over before its release once something else (a key, a command, a typed size, undo) has
// ended the draft, drag, marquee or polygon that it works on, and with any change of the tool. What
// follows of it does nothing then, until the next press.
//
// Events with coordinates that are not finite are ignored, as are drags and releases without a press.
#pragma once

#include <cstddef>
#include <optional>

#include "core/observable.h"
#include "core/sketch_point.h"
#include "interaction/context_menu.h"
#include "interaction/sketch_tool.h"

namespace ostrelon {

class Board;

/// A press that travels this far is a drag and no click, view points.
inline constexpr double kDragStartThreshold = 8.0;
/// A press with the polygon tool that travels this far places no vertex, view points.
inline constexpr double kPolygonTapSlop = 8.0;

class CanvasGestures {
 public:
  /// `board` must outlive the object.
  explicit CanvasGestures(Board& board);
  CanvasGestures(const CanvasGestures&) = delete;
  CanvasGestures& operator=(const CanvasGestures&) = delete;
  ~CanvasGestures() = default;

  // --- The primary button

  void press(SketchPoint viewPoint);
  void drag(SketchPoint viewPoint);
  /// `shift` is the state of the Shift key now, at the release.
  void release(SketchPoint viewPoint, bool shift = false);
  /// What the platform delivers after the second release of a double click. It closes a polygon, and opens
  /// the inspector on an item of the plan.
  void doubleClick();
  /// True from the press to the release, or to an earlier end of the gesture.
  bool isPressed() const { return press_.has_value(); }
  /// Forgets a press whose release will never come. What it has begun stays as it is.
  void forgetPress() { press_.reset(); }

  // --- The pointer with no button held

  void hover(SketchPoint viewPoint);
  void leave();

  // --- The view

  /// Moves the view by the deltas of the event, view points.
  void scroll(double dx, double dy);
  /// A pinch: zooms by 1 + `magnification` about the pointer.
  void magnify(SketchPoint viewPoint, double magnification);

  // --- The secondary button

  /// Selects what is under the pointer, with any tool, and gives its menu; absent, with the selection
  /// cleared, when nothing is there. While an entity is being dragged there is no menu either, and
  /// nothing changes.
  std::optional<ContextMenu> contextMenu(SketchPoint viewPoint);

 private:
  /// What a gesture may be working on.
  struct Work {
    SketchTool tool = SketchTool::select;
    std::size_t kind = 0;  ///< of the gesture in progress; 0 is none
    std::optional<SketchPoint> draftStart;
    std::size_t polygonVertices = 0;

    explicit Work(const Board& board);
    bool isContinuedBy(const Work& next) const;
  };

  /// Forgets the press when what it works on has been ended.
  void followWork();
  void changed(SketchPoint viewPoint);
  void selectChanged(SketchPoint viewPoint);
  void selectEnded(SketchPoint press, bool isClick, bool additive);
  void polygonClicked(SketchPoint press, SketchPoint viewPoint);
  void draftChanged(SketchPoint viewPoint);
  void trimClicked(SketchPoint press);
  SketchPoint toSketch(SketchPoint viewPoint) const;
  bool hasCanvas() const;

  Board& board_;
  bool isOnFlipArrow(SketchPoint viewPoint) const;

  std::optional<SketchPoint> press_;  // view points
  bool hasPickedItem_ = false;        // the last click has selected an item of the plan, and not flipped it
  Work work_;
  Subscription subscription_;
};

}  // namespace ostrelon
