// One drawing pass: the view, the colours and the part of the canvas to paint.
#pragma once

#include <optional>
#include <span>

#include "core/sketch_entity.h"
#include "core/theme_palette.h"
#include "core/wall_system.h"
#include "interaction/canvas_painter.h"
#include "interaction/canvas_transform.h"

namespace ostrelon {

struct CanvasFrame {
  CanvasTransform transform;
  ThemePalette palette;
  /// Only what touches this part is painted; absent: the whole canvas. View points.
  std::optional<SketchBox> part = std::nullopt;
  /// Device pixels a view point, to put grid lines on pixel centres; 0 leaves them where they are.
  double gridPixelRatio = 0;
  /// View points a millimetre, for pens of a true width: 96 view points to the inch of a screen.
  double pointsPerMillimetre = 96 / 25.4;

  SketchPoint toView(SketchPoint point) const { return sketchPointToView(point, transform.viewport); }
  double scale() const { return transform.viewport.scale; }
  SketchBox canvasRect() const { return {0, 0, transform.canvasSize.width, transform.canvasSize.height}; }
  SketchBox paintedRect() const { return part ? *part : canvasRect(); }
  /// What geometry is cut to: wide enough that ordinary coordinates pass as they are.
  SketchBox clipBox() const;
};

/// The thickness with which a wall is painted, sketch units.
double paintedWallThickness(const WallEntity& wall, std::span<const WallSystemSpec> systems);

}  // namespace ostrelon
