// Antialiased lines, circles and convex areas, straight into pixels. A drawing is mostly thin opaque
// lines; these take a fraction of a microsecond each, where a general path painter takes several.
//
// A pixel is covered by how far its middle lies from the shape: fully from half a pixel inside, not
// at all from half a pixel outside, and linearly between. That is exact for edges along the axes and
// within 0.2 of a pixel for others, the ends of thin lines included.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "core/theme_palette.h"
#include "interaction/canvas_painter.h"

namespace ostrelon {

/// A picture of 32-bit pixels, premultiplied ARGB in the byte order of the machine. All positions are
/// in pixels, with the middle of the first one at (0.5, 0.5). Nothing outside the clip is touched.
struct PixelBuffer {
  std::uint32_t* pixels = nullptr;
  std::ptrdiff_t stride = 0;  ///< pixels from one row to the next
  // The clip, within the picture: columns and rows from the first up to but not including the last.
  int clipMinX = 0;
  int clipMinY = 0;
  int clipMaxX = 0;
  int clipMaxY = 0;
};

/// A colour as the functions below take it.
struct PixelColor {
  std::uint32_t red = 0, green = 0, blue = 0;  ///< 0 to 255
  std::uint32_t alpha = 255;                   ///< 0 to 255

  static PixelColor of(Color color, double opacity = 1);
};

/// A round dot. `width` in pixels.
void rasterDot(const PixelBuffer& buffer, SketchPoint center, double width, PixelColor color);
/// A line with round ends; without length a dot. `width` in pixels. Coordinates are finite and within
/// some million pixels.
void rasterRoundLine(const PixelBuffer& buffer, const CanvasSegment& line, double width, PixelColor color);
/// A line with ends cut off square; without length nothing.
void rasterButtLine(const PixelBuffer& buffer, const CanvasSegment& line, double width, PixelColor color);
/// Vertical lines at these columns and horizontal ones at these rows, all across the clip. Where they cross
/// nothing is painted twice.
void rasterLattice(const PixelBuffer& buffer, std::span<const double> columns, std::span<const double> rows,
                   double width, PixelColor color);
/// The outline of a circle.
void rasterCircle(const PixelBuffer& buffer, SketchPoint center, double radius, double width,
                  PixelColor color);
/// The inside of a convex polygon of up to ten corners, in either direction of turning.
void rasterConvexArea(const PixelBuffer& buffer, std::span<const SketchPoint> corners, PixelColor color);
inline constexpr std::size_t kMostConvexCorners = 10;
/// The inside of all pieces of the path, each of them convex, as one area: where they overlap or meet nothing
/// is painted twice. `pixelRatio`: pixels for one unit of the path.
void rasterConvexAreas(const PixelBuffer& buffer, const CanvasPath& path, double pixelRatio,
                       PixelColor color);
/// True for a convex polygon of 3 to 10 corners and some area.
bool isSmallConvex(std::span<const SketchPoint> corners);

}  // namespace ostrelon
