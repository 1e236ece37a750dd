#include "interaction/canvas_frame.h"

namespace ostrelon {

namespace {

/// How far beyond the painted part geometry is let through, view points.
constexpr double kClipMargin = 4096;

}  // namespace

SketchBox CanvasFrame::clipBox() const { return paintedRect().grown(kClipMargin); }

double paintedWallThickness(const WallEntity& wall, std::span<const WallSystemSpec> systems) {
  for (const WallSystemSpec& spec : systems) {
    if (spec.id == wall.systemSpecID) return spec.thickness;
  }
  return kUnknownWallThickness;
}

}  // namespace ostrelon
