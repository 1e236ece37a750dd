// What the canvas is painted with: a small set of strokes, fills and one text, in view points with y
// pointing down. The window, the picture files and the tests each bring their own painter, so that
// one renderer serves them all. Colours are values; a painter keeps no state between its calls.
#pragma once

#include <cmath>
#include <span>
#include <string_view>
#include <vector>

#include "core/sketch_box.h"
#include "core/sketch_point.h"
#include "core/theme_palette.h"

namespace ostrelon {

enum class LineCap { butt, round };
enum class LineJoin { miter, round };

/// Lengths in view points that are painted and left out in turn; 0 and 0 for a solid line.
struct LineDash {
  double on = 0;
  double off = 0;
  friend bool operator==(const LineDash&, const LineDash&) = default;
};

/// The miter limit of every stroke: joins longer than this many half widths are cut off.
inline constexpr double kMiterLimit = 10.0;

struct Stroke {
  Color color;
  double opacity = 1;  ///< 0 to 1
  double width = 1;    ///< view points
  LineCap cap = LineCap::butt;
  LineJoin join = LineJoin::miter;
  LineDash dash = {};
  double dashOffset = 0;  ///< where in the dash the path begins, view points

  bool isDashed() const { return dash.on > 0 && dash.off > 0; }
  friend bool operator==(const Stroke&, const Stroke&) = default;
};

struct Fill {
  Color color;
  double opacity = 1;  ///< 0 to 1
  friend bool operator==(const Fill&, const Fill&) = default;
};

struct CanvasSegment {
  SketchPoint from;
  SketchPoint to;
  friend bool operator==(const CanvasSegment&, const CanvasSegment&) = default;
};

/// Straight pieces, each open or closed. One stroke of a path covers no point twice, also where its
/// pieces cross.
class CanvasPath {
 public:
  struct Piece {
    std::size_t begin = 0;  ///< into the points
    std::size_t end = 0;
    bool closed = false;
  };

  void clear() {
    points_.clear();
    pieces_.clear();
  }
  bool empty() const { return pieces_.empty(); }

  void begin() { pieces_.push_back({points_.size(), points_.size(), false}); }
  /// Adds to the piece begun last.
  void add(SketchPoint point) {
    points_.push_back(point);
    pieces_.back().end = points_.size();
  }
  void close() { pieces_.back().closed = true; }
  void addPiece(std::span<const SketchPoint> points, bool closed) {
    begin();
    for (const SketchPoint point : points) add(point);
    pieces_.back().closed = closed;
  }
  void addSegment(SketchPoint from, SketchPoint to) {
    begin();
    add(from);
    add(to);
  }

  const std::vector<Piece>& pieces() const { return pieces_; }
  std::span<const SketchPoint> points(const Piece& piece) const {
    return std::span(points_).subspan(piece.begin, piece.end - piece.begin);
  }

 private:
  std::vector<SketchPoint> points_;
  std::vector<Piece> pieces_;
};

struct CanvasEllipse {
  SketchPoint center;
  double radius = 0;  ///< view points; the canvas scales both axes alike
  friend bool operator==(const CanvasEllipse&, const CanvasEllipse&) = default;
};

/// A part of a circle, counter-clockwise as it is seen.
struct CanvasArc {
  SketchPoint center;
  double radius = 0;      ///< view points
  double startAngle = 0;  ///< radians from the right, counter-clockwise
  double sweep = 0;       ///< radians, above 0

  /// A point of its circle, view points.
  SketchPoint at(double angle) const {
    return {center.x + radius * std::cos(angle), center.y - radius * std::sin(angle)};
  }
  friend bool operator==(const CanvasArc&, const CanvasArc&) = default;
};

class CanvasPainter {
 public:
  CanvasPainter() = default;
  CanvasPainter(const CanvasPainter&) = delete;
  CanvasPainter& operator=(const CanvasPainter&) = delete;
  virtual ~CanvasPainter() = default;

  virtual void strokePath(const CanvasPath& path, const Stroke& stroke) = 0;
  /// Segments that share nothing but the stroke, which is opaque and solid.
  virtual void strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) = 0;
  virtual void strokeEllipse(const CanvasEllipse& ellipse, const Stroke& stroke) = 0;
  /// `chords`: the same arc in straight pieces, which painters without curves stroke.
  virtual void strokeArc(const CanvasArc& /*arc*/, const CanvasPath& chords, const Stroke& stroke) {
    strokePath(chords, stroke);
  }
  virtual void strokeRoundedRect(const SketchBox& rect, double cornerRadius, const Stroke& stroke) = 0;

  /// Fills the pieces, each taken as closed, by the non-zero winding rule.
  virtual void fillPath(const CanvasPath& path, const Fill& fill) = 0;
  virtual void fillEllipse(const CanvasEllipse& ellipse, const Fill& fill) = 0;
  virtual void fillRoundedRect(const SketchBox& rect, double cornerRadius, const Fill& fill) = 0;

  /// One line of text in the measurement type, centred on a point. `height`: of the type, view points;
  /// `angle`: radians from the right, counter-clockwise.
  virtual void drawText(std::string_view text, SketchPoint center, double height, const Fill& fill,
                        double angle) = 0;
  void drawText(std::string_view text, SketchPoint center, double height, const Fill& fill) {
    drawText(text, center, height, fill, 0);
  }
};

}  // namespace ostrelon
