// The length label of a straight segment: a pill beside the segment being drawn or selected.
#pragma once

#include <optional>
#include <string>

#include "interaction/canvas_painter.h"
#include "interaction/canvas_transform.h"

namespace ostrelon {

class Board;

/// Heights, distances and widths in view points.
inline constexpr double kSegmentLabelDistance = 46;
inline constexpr double kSegmentLabelHeight = 20;
inline constexpr double kSegmentLabelMinimumWidth = 36;
inline constexpr double kSegmentLabelCornerRadius = 5;
inline constexpr double kSegmentLabelTextHeight = 12;

struct SegmentLabel {
  std::string text;
  SketchBox pill;  ///< view points
};

/// The label of the segment that is being drawn or is selected alone; absent when there is none, or it has no
/// length. The pill keeps a distance from the middle of the segment, along the normal that points up the
/// screen, to the right for a segment that is vertical on the screen.
std::optional<SegmentLabel> segmentLabel(const Board& board, const SketchViewport& viewport);

}  // namespace ostrelon
