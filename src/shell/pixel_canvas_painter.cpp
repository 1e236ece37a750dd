#include "shell/pixel_canvas_painter.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace ostrelon {

namespace {

PixelBuffer bufferOf(QImage& image, const QRect& part) {
  const QRect clip = part & image.rect();
  return {reinterpret_cast<std::uint32_t*>(image.bits()),
          image.bytesPerLine() / static_cast<qsizetype>(sizeof(std::uint32_t)),
          clip.left(),
          clip.top(),
          clip.left() + clip.width(),
          clip.top() + clip.height()};
}

/// Round ends make a join of their own, so such strokes fall apart into lines. A thick line would show
/// where its pieces meet, and so would a translucent one.
bool fallsApart(const Stroke& stroke) {
  return stroke.opacity == 1 && !stroke.isDashed() && stroke.cap == LineCap::round &&
         stroke.join == LineJoin::round && stroke.width < 4;
}

/// Upright and level lines from one side of the picture to the other, as those of a grid. Positions in
/// pixels.
struct Lattice {
  std::vector<double> columns;
  std::vector<double> rows;
};

std::optional<Lattice> latticeOf(const CanvasPath& path, const Stroke& stroke, const PixelBuffer& buffer,
                                 double ratio) {
  if (stroke.isDashed() || stroke.cap != LineCap::butt) return std::nullopt;
  Lattice lattice;
  for (const CanvasPath::Piece& piece : path.pieces()) {
    if (piece.closed || piece.end - piece.begin != 2) return std::nullopt;
    const auto points = path.points(piece);
    const SketchPoint a = points[0] * ratio;
    const SketchPoint b = points[1] * ratio;
    const auto spans = [](double from, double to, int least, int most) {
      return std::min(from, to) <= least - 1 && std::max(from, to) >= most + 1;
    };
    if (a.x == b.x && spans(a.y, b.y, buffer.clipMinY, buffer.clipMaxY)) {
      lattice.columns.push_back(a.x);
    } else if (a.y == b.y && spans(a.x, b.x, buffer.clipMinX, buffer.clipMaxX)) {
      lattice.rows.push_back(a.y);
    } else {
      return std::nullopt;
    }
  }
  return lattice;
}

bool isDashedLine(const CanvasPath& path, const Stroke& stroke) {
  return stroke.isDashed() && stroke.cap == LineCap::butt && path.pieces().size() == 1 &&
         !path.pieces().front().closed && path.pieces().front().end == 2;
}

}  // namespace

PixelCanvasPainter::PixelCanvasPainter(QImage& image, double pixelRatio, const QRect& part)
    : ratio_(pixelRatio), buffer_(bufferOf(image, part)), painter_(&image), canvas_(painter_) {
  painter_.setClipRect(part);
  painter_.scale(ratio_, ratio_);
}

void PixelCanvasPainter::strokePath(const CanvasPath& path, const Stroke& stroke) {
  if (isDashedLine(path, stroke)) {
    const auto points = path.points(path.pieces().front());
    strokeDashes({points[0], points[1]}, stroke);
    return;
  }
  const double width = stroke.width * ratio_;
  if (path.pieces().size() > 1) {
    if (const auto lattice = latticeOf(path, stroke, buffer_, ratio_)) {
      rasterLattice(buffer_, lattice->columns, lattice->rows, width,
                    PixelColor::of(stroke.color, stroke.opacity));
      return;
    }
  }
  if (!fallsApart(stroke)) {
    canvas_.strokePath(path, stroke);
    return;
  }
  const PixelColor color = PixelColor::of(stroke.color);
  for (const CanvasPath::Piece& piece : path.pieces()) {
    const auto points = path.points(piece);
    if (points.empty()) continue;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
      rasterRoundLine(buffer_, toPixels({points[i], points[i + 1]}), width, color);
    }
    if (piece.closed || points.size() == 1) {
      rasterRoundLine(buffer_, toPixels({points.back(), points.front()}), width, color);
    }
  }
}

void PixelCanvasPainter::strokeDashes(const CanvasSegment& line, const Stroke& stroke) {
  const double length = distanceBetween(line.from, line.to);
  if (!(length > 0)) return;
  const SketchPoint direction = (line.to - line.from) * (1 / length);
  const double period = stroke.dash.on + stroke.dash.off;
  const PixelColor color = PixelColor::of(stroke.color, stroke.opacity);
  for (double start = -std::fmod(stroke.dashOffset, period); start < length; start += period) {
    const double from = std::max(start, 0.0);
    const double to = std::min(start + stroke.dash.on, length);
    if (!(to > from)) continue;
    rasterButtLine(buffer_, toPixels({line.from + direction * from, line.from + direction * to}),
                   stroke.width * ratio_, color);
  }
}

void PixelCanvasPainter::strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) {
  if (!fallsApart(stroke)) {
    canvas_.strokeSegments(segments, stroke);
    return;
  }
  const PixelColor color = PixelColor::of(stroke.color);
  for (const CanvasSegment& segment : segments) {
    rasterRoundLine(buffer_, toPixels(segment), stroke.width * ratio_, color);
  }
}

void PixelCanvasPainter::strokeEllipse(const CanvasEllipse& ellipse, const Stroke& stroke) {
  if (stroke.isDashed()) {
    canvas_.strokeEllipse(ellipse, stroke);
    return;
  }
  rasterCircle(buffer_, toPixels(ellipse.center), ellipse.radius * ratio_, stroke.width * ratio_,
               PixelColor::of(stroke.color, stroke.opacity));
}

void PixelCanvasPainter::strokeRoundedRect(const ViewRect& rect, double cornerRadius, const Stroke& stroke) {
  canvas_.strokeRoundedRect(rect, cornerRadius, stroke);
}

void PixelCanvasPainter::fillPath(const CanvasPath& path, const Fill& fill) {
  if (path.pieces().size() == 1) {
    const auto points = path.points(path.pieces().front());
    if (isSmallConvex(points)) {
      std::array<SketchPoint, kMostConvexCorners> corners;
      std::transform(points.begin(), points.end(), corners.begin(),
                     [this](SketchPoint point) { return toPixels(point); });
      rasterConvexArea(buffer_, std::span(corners).first(points.size()),
                       PixelColor::of(fill.color, fill.opacity));
      return;
    }
  }
  canvas_.fillPath(path, fill);
}

void PixelCanvasPainter::fillEllipse(const CanvasEllipse& ellipse, const Fill& fill) {
  canvas_.fillEllipse(ellipse, fill);
}

void PixelCanvasPainter::fillRoundedRect(const ViewRect& rect, double cornerRadius, const Fill& fill) {
  canvas_.fillRoundedRect(rect, cornerRadius, fill);
}

void PixelCanvasPainter::drawText(std::string_view text, SketchPoint center, double height,
                                  const Fill& fill) {
  canvas_.drawText(text, center, height, fill);
}

}  // namespace ostrelon
