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

/// Round ends make a join of their own, so such strokes fall apart into lines. A translucent one would
/// show where its pieces meet.
bool fallsApart(const Stroke& stroke) {
  return stroke.opacity == 1 && !stroke.isDashed() && stroke.cap == LineCap::round &&
         stroke.join == LineJoin::round;
}

/// Vertical and horizontal lines from one side of the picture to the other, as those of a grid. Positions in
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

/// Dashes with square ends that no corner bends.
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
    strokeDashes(path.points(path.pieces().front()), false, stroke);
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
  strokePieces(path, stroke);
}

void PixelCanvasPainter::strokeDashes(std::span<const SketchPoint> points, bool closed,
                                      const Stroke& stroke) {
  const double period = stroke.dash.on + stroke.dash.off;
  const PixelColor color = PixelColor::of(stroke.color, stroke.opacity);
  double phase = std::fmod(stroke.dashOffset, period);
  for (std::size_t i = 0; i + (closed ? 0 : 1) < points.size(); ++i) {
    const SketchPoint begin = points[i];
    const SketchPoint end = points[(i + 1) % points.size()];
    const double length = distanceBetween(begin, end);
    if (!(length > 0)) continue;
    const SketchPoint direction = (end - begin) * (1 / length);
    for (double start = -phase; start < length; start += period) {
      const double from = std::max(start, 0.0);
      const double to = std::min(start + stroke.dash.on, length);
      if (!(to > from)) continue;
      rasterButtLine(buffer_, toPixels({begin + direction * from, begin + direction * to}),
                     stroke.width * ratio_, color);
    }
    phase = std::fmod(phase + length, period);
  }
}

void PixelCanvasPainter::strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) {
  if (!fallsApart(stroke)) {
    canvas_.strokeSegments(segments, stroke);
    return;
  }
  const PixelColor color = opaque(stroke.color);
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

void PixelCanvasPainter::strokeRoundedRect(const SketchBox& rect, double cornerRadius, const Stroke& stroke) {
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
  } else if (std::all_of(path.pieces().begin(), path.pieces().end(),
                         [&](const auto& piece) { return isSmallConvex(path.points(piece)); })) {
    rasterConvexAreas(buffer_, path, ratio_, PixelColor::of(fill.color, fill.opacity));
    return;
  }
  canvas_.fillPath(path, fill);
}

void PixelCanvasPainter::fillEllipse(const CanvasEllipse& ellipse, const Fill& fill) {
  canvas_.fillEllipse(ellipse, fill);
}

void PixelCanvasPainter::fillRoundedRect(const SketchBox& rect, double cornerRadius, const Fill& fill) {
  canvas_.fillRoundedRect(rect, cornerRadius, fill);
}

void PixelCanvasPainter::drawText(std::string_view text, SketchPoint center, double height, const Fill& fill,
                                  double angle) {
  canvas_.drawText(text, center, height, fill, angle);
}

// Most strokes of a drawing have the colour of the one before.
PixelColor PixelCanvasPainter::opaque(Color color) {
  if (!(color == lastColor_)) {
    lastColor_ = color;
    lastPixelColor_ = PixelColor::of(color);
  }
  return lastPixelColor_;
}

void PixelCanvasPainter::strokePieces(const CanvasPath& path, const Stroke& stroke) {
  const PixelColor color = opaque(stroke.color);
  for (const CanvasPath::Piece& piece : path.pieces()) {
    const auto points = path.points(piece);
    if (points.empty()) continue;
    if (stroke.isDashed()) {
      strokeDashes(points, piece.closed, stroke);
      continue;
    }
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
      rasterRoundLine(buffer_, toPixels({points[i], points[i + 1]}), stroke.width * ratio_, color);
    }
    if (piece.closed || points.size() == 1) {
      rasterRoundLine(buffer_, toPixels({points.back(), points.front()}), stroke.width * ratio_, color);
    }
  }
}

void strokeThroughPixels(QPainter& painter, const CanvasPath& path, const Stroke& stroke) {
  // Only what the painter shows of the path, on whole pixels.
  const QTransform toDevice = painter.deviceTransform();
  const double ratio = toDevice.m11();
  QPolygonF all;
  for (const CanvasPath::Piece& piece : path.pieces()) {
    for (const SketchPoint point : path.points(piece)) all << QPointF(point.x, point.y);
  }
  const double reach = stroke.width + 1;
  const QRectF shown = painter.hasClipping()
                           ? painter.clipBoundingRect()
                           : painter.worldTransform().inverted().mapRect(QRectF(painter.viewport()));
  const QRectF bounds = all.boundingRect().adjusted(-reach, -reach, reach, reach) & shown;
  if (bounds.isEmpty()) return;
  const QRect pixels = QRectF(bounds.topLeft() * ratio, bounds.size() * ratio).toAlignedRect();
  QImage layer(pixels.size(), QImage::Format_ARGB32_Premultiplied);
  if (layer.isNull()) return;
  layer.fill(Qt::transparent);

  const SketchPoint origin{pixels.left() / ratio, pixels.top() / ratio};
  CanvasPath moved;
  for (const CanvasPath::Piece& piece : path.pieces()) {
    moved.begin();
    for (const SketchPoint point : path.points(piece)) moved.add(point - origin);
    if (piece.closed) moved.close();
  }
  Stroke opaque = stroke;
  opaque.opacity = 1;
  PixelCanvasPainter(layer, ratio).strokePieces(moved, opaque);
  painter.save();
  painter.setOpacity(stroke.opacity);
  painter.drawImage(QRectF(QPointF(origin.x, origin.y), QSizeF(pixels.size()) / ratio), layer);
  painter.restore();
}

}  // namespace ostrelon
