// Small results of edits, worded by their callers.
#pragma once

#include "core/sketch_point.h"

namespace ostrelon {

enum class EntityConversionTarget { line, wall };

enum class EntityEditResult {
  applied,       ///< the entity changed
  unchanged,     ///< nothing to change; no undo step was taken
  noSelection,   ///< not exactly one entity is selected, or it was not found
  invalidValue,  ///< a bad value
  unsupported,   ///< the operation does not apply to this kind of entity
};

/// The direction in which an alignment brings centres together.
enum class AlignmentAxis { horizontal, vertical };

/// What the length label of a straight segment shows. Sketch units.
struct SegmentLengthIndicator {
  SketchPoint from;
  SketchPoint to;
  double length = 0;
  friend bool operator==(const SegmentLengthIndicator&, const SegmentLengthIndicator&) = default;
};

/// What copies are moved by: duplicates and pastes alike, sketch units.
inline constexpr SketchPoint kDuplicateOffset{24, 24};

}  // namespace ostrelon
