// What the placed items of a plan look like: room labels, dividers, dimensions, notes. Each becomes lines,
// filled outlines and texts of one line, in sketch units, and the window, print, PDF, SVG, PNG and DXF all
// paint or write the same values. Sizes on paper become sketch units by the drawing scale.
#pragma once

#include <string>
#include <vector>

#include "core/sketch_box.h"
#include "core/sketch_point.h"
#include "platform/uuid.h"

namespace ostrelon {

/// What an annotation belongs to; layers of exports and the weight of its lines go by it.
enum class AnnotationKind { room, divider, dimension, note };

struct AnnotationLine {
  std::vector<SketchPoint> points;  ///< two at least, open
  bool isDashed = false;
};

struct AnnotationFill {
  std::vector<SketchPoint> outline;  ///< closed
};

struct AnnotationText {
  std::string text;    ///< one line
  SketchPoint middle;  ///< of its width, and of the height of its capitals
  double height = 0;   ///< of its capitals, sketch units
  double angle = 0;    ///< radians from +x, counter-clockwise, within ±π/2: never upside down
};

struct Annotation {
  AnnotationKind kind = AnnotationKind::note;
  UUID itemID;  ///< of the item of the plan; nil for what is derived from the walls, which cannot be selected
  std::vector<AnnotationLine> lines;
  std::vector<AnnotationFill> fills;
  std::vector<AnnotationText> texts;
  SketchBox box;  ///< around all of it; what is picked and what a marquee takes go by it
};

}  // namespace ostrelon
