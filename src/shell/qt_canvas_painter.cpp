#include "shell/qt_canvas_painter.h"

#include <QFont>
#include <QPaintEngine>
#include <QPainterPath>
#include <QtMath>
#include <algorithm>

#include "shell/pixel_canvas_painter.h"
#include "shell/qt_text.h"

namespace ostrelon {

namespace {

QColor colorOf(Color color, double opacity) {
  return QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                          static_cast<float>(color.blue), static_cast<float>(opacity));
}

/// Qt's time for a path to pixels grows faster than its points; longer ones go another way.
constexpr std::size_t kMostPathPoints = 256;

std::size_t pointCount(const CanvasPath& path) {
  return path.pieces().empty() ? 0 : path.pieces().back().end;
}

QPointF pointOf(SketchPoint point) { return {point.x, point.y}; }
QRectF rectOf(const SketchBox& rect) { return {rect.minX, rect.minY, rect.width(), rect.height()}; }

QPainterPath pathOf(const CanvasPath& path) {
  QPainterPath result;
  for (const CanvasPath::Piece& piece : path.pieces()) {
    const auto points = path.points(piece);
    if (points.empty()) continue;
    result.moveTo(pointOf(points.front()));
    for (const SketchPoint point : points.subspan(1)) result.lineTo(pointOf(point));
    if (piece.closed) result.closeSubpath();
  }
  return result;
}

/// `dashUnit`: what the paint engine takes as the unit of a dash, view points.
QPen penOf(const Stroke& stroke, double dashUnit) {
  QPen pen(colorOf(stroke.color, stroke.opacity), stroke.width, Qt::SolidLine,
           stroke.cap == LineCap::round ? Qt::RoundCap : Qt::FlatCap,
           stroke.join == LineJoin::round ? Qt::RoundJoin : Qt::SvgMiterJoin);
  pen.setMiterLimit(kMiterLimit);
  if (stroke.isDashed()) {
    pen.setDashPattern({stroke.dash.on / dashUnit, stroke.dash.off / dashUnit});
    pen.setDashOffset(stroke.dashOffset / dashUnit);
  }
  return pen;
}

}  // namespace

QtCanvasPainter::QtCanvasPainter(QPainter& painter)
    : painter_(painter), isRaster_(painter.paintEngine()->type() == QPaintEngine::Raster) {
  painter_.setRenderHint(QPainter::Antialiasing);
}

void QtCanvasPainter::useStroke(const Stroke& stroke) {
  if (stroke_ != stroke) {
    // A pen counts its dashes in widths; painting to pixels, Qt takes no width for less than 1.
    painter_.setPen(penOf(stroke, isRaster_ ? std::max(stroke.width, 1.0) : stroke.width));
    painter_.setBrush(Qt::NoBrush);
    stroke_ = stroke;
  }
  fill_.reset();
}

void QtCanvasPainter::useFill(const Fill& fill) {
  if (fill_ != fill) {
    painter_.setBrush(colorOf(fill.color, fill.opacity));
    painter_.setPen(Qt::NoPen);
    fill_ = fill;
  }
  stroke_.reset();
}

void QtCanvasPainter::strokePath(const CanvasPath& path, const Stroke& stroke) {
  if (isRaster_ && pointCount(path) > kMostPathPoints) {
    strokeThroughPixels(painter_, path, stroke);
    return;
  }
  useStroke(stroke);
  const auto& pieces = path.pieces();
  if (pieces.size() == 1 && !pieces.front().closed && pieces.front().end == 2) {
    const auto points = path.points(pieces.front());
    painter_.drawLine(pointOf(points[0]), pointOf(points[1]));
    return;
  }
  painter_.drawPath(pathOf(path));
}

void QtCanvasPainter::strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) {
  useStroke(stroke);
  lines_.clear();
  for (const CanvasSegment& segment : segments) {
    // A line of no length would be no line; a hair's breadth shows its round ends as a dot.
    const double breadth = segment.from == segment.to ? 0.01 : 0;
    lines_.emplace_back(segment.from.x, segment.from.y, segment.to.x + breadth, segment.to.y);
  }
  painter_.drawLines(lines_.data(), static_cast<int>(lines_.size()));
}

void QtCanvasPainter::strokeEllipse(const CanvasEllipse& ellipse, const Stroke& stroke) {
  useStroke(stroke);
  painter_.drawEllipse(pointOf(ellipse.center), ellipse.radius, ellipse.radius);
}

void QtCanvasPainter::strokeRoundedRect(const SketchBox& rect, double cornerRadius, const Stroke& stroke) {
  useStroke(stroke);
  if (cornerRadius > 0) {
    painter_.drawRoundedRect(rectOf(rect), cornerRadius, cornerRadius);
  } else {
    painter_.drawRect(rectOf(rect));
  }
}

void QtCanvasPainter::fillPath(const CanvasPath& path, const Fill& fill) {
  useFill(fill);
  if (path.pieces().size() == 1) {
    QPolygonF polygon;
    for (const SketchPoint point : path.points(path.pieces().front())) polygon << pointOf(point);
    painter_.drawPolygon(polygon, Qt::WindingFill);
    return;
  }
  QPainterPath shape = pathOf(path);
  shape.setFillRule(Qt::WindingFill);
  painter_.drawPath(shape);
}

void QtCanvasPainter::fillEllipse(const CanvasEllipse& ellipse, const Fill& fill) {
  useFill(fill);
  painter_.drawEllipse(pointOf(ellipse.center), ellipse.radius, ellipse.radius);
}

void QtCanvasPainter::fillRoundedRect(const SketchBox& rect, double cornerRadius, const Fill& fill) {
  if (cornerRadius > 0) {
    useFill(fill);
    painter_.drawRoundedRect(rectOf(rect), cornerRadius, cornerRadius);
  } else {
    painter_.fillRect(rectOf(rect), colorOf(fill.color, fill.opacity));
  }
}

void QtCanvasPainter::drawText(std::string_view text, SketchPoint center, double height, const Fill& fill,
                               double angle) {
  // Type has whole pixels; any other height, and any angle, is that of the painter.
  if (angle != 0 || height != std::floor(height)) {
    constexpr double kType = 64;
    painter_.save();
    painter_.translate(center.x, center.y);
    painter_.rotate(-qRadiansToDegrees(angle));
    painter_.scale(height / kType, height / kType);
    drawText(text, {0, 0}, kType, fill, 0);
    painter_.restore();
    stroke_.reset();
    fill_.reset();
    return;
  }
  QFont font;
  font.setFamilies({"JetBrains Mono", "DejaVu Sans Mono"});
  font.setPixelSize(static_cast<int>(height));
  font.setWeight(QFont::Medium);
  painter_.setFont(font);
  painter_.setPen(colorOf(fill.color, fill.opacity));
  stroke_.reset();
  fill_.reset();
  constexpr double kRoom = 1000;
  painter_.drawText(QRectF(center.x - kRoom, center.y - kRoom, 2 * kRoom, 2 * kRoom), Qt::AlignCenter,
                    qtText(text));
}

}  // namespace ostrelon
