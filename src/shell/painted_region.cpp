#include "shell/painted_region.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace ostrelon {
namespace {

/// A slanted line is taken in pieces of this length, view points, so that the boxes around them stay
/// small.
constexpr double kPiece = 96;
/// A line of more pieces is taken as a whole.
constexpr double kMostPieces = 48;
/// More boxes than this cost more than the one around them.
constexpr std::size_t kMostBoxes = 128;
/// What antialiasing adds around a shape, view points.
constexpr double kSoftEdge = 1.5;

double reachOf(const Stroke& stroke) {
  return stroke.width / 2 * (stroke.join == LineJoin::miter ? kMiterLimit : 1) + kSoftEdge;
}

}  // namespace

QRegion PaintedRegion::within(const QRect& bounds) const {
  const SketchBox limits{static_cast<double>(bounds.left()), static_cast<double>(bounds.top()),
                         static_cast<double>(bounds.left() + bounds.width()),
                         static_cast<double>(bounds.top() + bounds.height())};
  std::vector<SketchBox> boxes;
  for (const SketchBox& rect : touched_) {
    if (!rect.overlaps(limits)) continue;
    if (boxes.size() == kMostBoxes) {
      boxes = {std::accumulate(boxes.begin(), boxes.end(), boxes.front(),
                               [](const SketchBox& a, const SketchBox& b) { return a.united(b); })};
    }
    boxes.push_back(rect.intersected(limits));
  }
  QRegion region;
  for (const SketchBox& box : boxes) {
    region += QRectF(QPointF(box.minX, box.minY), QPointF(box.maxX, box.maxY)).toAlignedRect() & bounds;
  }
  return region;
}

void PaintedRegion::touchLine(SketchPoint from, SketchPoint to, double reach) {
  const SketchBox whole = SketchBox::spanning(from, to);
  const double count = std::ceil(std::min(whole.width(), whole.height()) / kPiece);
  if (!(count > 1) || count > kMostPieces) {
    touch(whole.grown(reach));
    return;
  }
  const SketchPoint step = (to - from) * (1 / count);
  for (double i = 0; i < count; ++i)
    touch(SketchBox::spanning(from + step * i, from + step * (i + 1)).grown(reach));
}

void PaintedRegion::strokePath(const CanvasPath& path, const Stroke& stroke) {
  const double reach = reachOf(stroke);
  for (const CanvasPath::Piece& piece : path.pieces()) {
    const auto points = path.points(piece);
    if (points.empty()) continue;
    if (points.size() > kMostBoxes) {
      SketchBox box = SketchBox::spanning(points.front(), points.front());
      for (const SketchPoint point : points) box = box.united(point);
      touch(box.grown(reach));
      continue;
    }
    for (std::size_t i = 1; i < points.size(); ++i) touchLine(points[i - 1], points[i], reach);
    if (piece.closed || points.size() == 1) touchLine(points.back(), points.front(), reach);
  }
}

void PaintedRegion::strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) {
  for (const CanvasSegment& segment : segments) touchLine(segment.from, segment.to, reachOf(stroke));
}

void PaintedRegion::strokeEllipse(const CanvasEllipse& ellipse, const Stroke& stroke) {
  touch(SketchBox::centered(ellipse.center, ellipse.radius + stroke.width / 2 + kSoftEdge));
}

void PaintedRegion::strokeRoundedRect(const SketchBox& rect, double /*cornerRadius*/, const Stroke& stroke) {
  touch(rect.grown(stroke.width / 2 + kSoftEdge));
}

void PaintedRegion::fillPath(const CanvasPath& path, const Fill& /*fill*/) {
  for (const CanvasPath::Piece& piece : path.pieces()) {
    const auto points = path.points(piece);
    if (points.empty()) continue;
    SketchBox box = SketchBox::spanning(points.front(), points.front());
    for (const SketchPoint point : points) box = box.united(point);
    touch(box.grown(kSoftEdge));
  }
}

void PaintedRegion::fillEllipse(const CanvasEllipse& ellipse, const Fill& /*fill*/) {
  touch(SketchBox::centered(ellipse.center, ellipse.radius + kSoftEdge));
}

void PaintedRegion::fillRoundedRect(const SketchBox& rect, double /*cornerRadius*/, const Fill& /*fill*/) {
  touch(rect.grown(kSoftEdge));
}

void PaintedRegion::drawText(std::string_view text, SketchPoint center, double height, const Fill& /*fill*/,
                             double /*angle*/) {
  // No letter of the measurement type is wider than it is high.
  touch(SketchBox::centered(center, std::max(1.0, static_cast<double>(text.size())) * height));
}

}  // namespace ostrelon
