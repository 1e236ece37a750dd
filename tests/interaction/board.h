// A sketch with a canvas of 800 by 600 view points at the fresh scale of 4, and a hand on it that
// points in sketch units.
#pragma once

#include <string>

#include "interaction/canvas_gestures.h"
#include "interaction/canvas_transform.h"
#include "support/test_sketch.h"

namespace ostrelon::testing {

struct Board : TestSketch {
  CanvasGestures gestures{sketch};

  Board() { sketch.updateCanvasSize({800, 600}); }

  SketchPoint view(SketchPoint point) const { return sketchPointToView(point, sketch.viewport); }
  void press(SketchPoint point) { gestures.press(view(point)); }
  void drag(SketchPoint point) { gestures.drag(view(point)); }
  void release(SketchPoint point, bool shift = false) { gestures.release(view(point), shift); }
  void hover(SketchPoint point) { gestures.hover(view(point)); }
  void click(SketchPoint point, bool shift = false) {
    press(point);
    release(point, shift);
  }
  void stroke(SketchPoint from, SketchPoint to, bool shift = false) {
    press(from);
    drag(to);
    release(to, shift);
  }

  const EntityList& entities() const { return sketch.entities; }
  std::size_t undoSteps() const { return sketch.undoStack().undoSnapshots().size(); }
  UUID idOf(std::size_t index) const { return entityID(entities()[index]); }
  const LineEntity& line(std::size_t index) const { return std::get<LineEntity>(entities()[index]); }
  std::string feedback() const { return sketch.snapFeedback->value_or("none"); }
  bool hasNoSnapState() const {
    return sketch.activeAxisSnaps->empty() && !*sketch.activeEntitySnapPoint &&
           !*sketch.activeGridSnapPoint && !*sketch.activeEntitySnapSourcePoint && !*sketch.snapGuideAnchor &&
           !*sketch.snapFeedback;
  }
};

}  // namespace ostrelon::testing
