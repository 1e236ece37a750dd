// Painting the annotations of a drawing, and keeping them while it is edited.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "core/sketch.h"
#include "geometry/annotation.h"
#include "geometry/rooms.h"
#include "interaction/canvas_frame.h"
#include "interaction/canvas_painter.h"

namespace ostrelon {

/// Those that touch the painted part. Texts that would be too small to be read are left out.
void paintAnnotations(CanvasPainter& painter, const CanvasFrame& frame,
                      std::span<const Annotation> annotations);

/// Those of a sketch, worked out again when it has changed, and its rooms when its walls may have.
class KeptAnnotations {
 public:
  /// Valid until the next call.
  const std::vector<Annotation>& of(const Sketch& sketch);

 private:
  const RoomPlan* rooms(const Drawing& drawing);

  std::vector<Annotation> annotations_;
  std::uint64_t writes_ = 0;  // of the sketch, when these were worked out
  EntityList entities_;       // what the rooms are of
  std::vector<WallSystemSpec> systems_;
  SharedList<RoomDivider> dividers_;
  RoomPlan rooms_;
};

}  // namespace ostrelon
