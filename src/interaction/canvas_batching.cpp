#include "interaction/canvas_batching.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ostrelon {

namespace {

constexpr double kCellSide = 16;        // view points
constexpr double kMostCells = 1 << 20;  // beyond it the map is left out
constexpr std::size_t kMostWaiting = 1 << 15;

ViewRect boundsOf(std::span<const SketchPoint> points, ViewRect bounds) {
  for (const SketchPoint p : points) {
    bounds = {std::min(bounds.minX, p.x), std::min(bounds.minY, p.y), std::max(bounds.maxX, p.x),
              std::max(bounds.maxY, p.y)};
  }
  return bounds;
}

ViewRect boundsOf(const CanvasPath& path) {
  constexpr double inf = std::numeric_limits<double>::infinity();
  ViewRect bounds{inf, inf, -inf, -inf};
  for (const CanvasPath::Piece& piece : path.pieces()) bounds = boundsOf(path.points(piece), bounds);
  return bounds;
}

ViewRect boundsOf(const CanvasEllipse& ellipse) { return ViewRect::centered(ellipse.center, ellipse.radius); }

/// Round ends make a join of their own, so such strokes fall apart into segments without a trace.
bool fallsApart(const Stroke& stroke) {
  return stroke.opacity == 1 && !stroke.isDashed() && stroke.cap == LineCap::round &&
         stroke.join == LineJoin::round;
}

bool isDashedOpaque(const Stroke& stroke) {
  return stroke.opacity == 1 && stroke.isDashed() && stroke.cap == LineCap::butt;
}

bool isSegmentOnly(const CanvasPath& path) {
  return std::all_of(path.pieces().begin(), path.pieces().end(), [](const CanvasPath::Piece& piece) {
    return !piece.closed && piece.end - piece.begin == 2;
  });
}

void addDashes(const CanvasSegment& line, const Stroke& stroke, std::vector<CanvasSegment>& dashes) {
  const double length = distanceBetween(line.from, line.to);
  if (!(length > 0)) return;
  const SketchPoint direction = (line.to - line.from) * (1 / length);
  const double period = stroke.dash.on + stroke.dash.off;
  for (double start = -std::fmod(stroke.dashOffset, period); start < length; start += period) {
    const double from = std::max(start, 0.0);
    const double to = std::min(start + stroke.dash.on, length);
    if (to > from) dashes.push_back({line.from + direction * from, line.from + direction * to});
  }
}

}  // namespace

BatchingPainter::BatchingPainter(CanvasPainter& painter, const ViewRect& area)
    : painter_(painter), area_(area) {
  const double columns = std::ceil(area.width() / kCellSide);
  const double rows = std::ceil(area.height() / kCellSide);
  if (columns > 0 && rows > 0 && columns * rows <= kMostCells) {
    columns_ = static_cast<int>(columns);
    rows_ = static_cast<int>(rows);
    cells_.resize(static_cast<std::size_t>(columns_) * static_cast<std::size_t>(rows_));
  }
}

BatchingPainter::~BatchingPainter() { flush(); }

void BatchingPainter::flush() {
  for (std::size_t i = 0; i < usedBatches_; ++i) {
    Batch& batch = batches_[i];
    if (!batch.segments.empty()) painter_.strokeSegments(batch.segments, batch.stroke);
    for (const CanvasEllipse& ellipse : batch.ellipses) painter_.strokeEllipse(ellipse, batch.stroke);
    batch.segments.clear();
    batch.ellipses.clear();
    batch.markedSegments = 0;
    batch.markedEllipses = 0;
  }
  usedBatches_ = 0;
  waiting_ = 0;
  ++round_;
}

BatchingPainter::Batch& BatchingPainter::batchFor(const Stroke& stroke) {
  if (usedBatches_ > 0 && batches_.front().stroke.color != stroke.color) flush();
  if (waiting_ >= kMostWaiting) flush();
  for (std::size_t i = 0; i < usedBatches_; ++i) {
    if (batches_[i].stroke == stroke) return batches_[i];
  }
  if (usedBatches_ == batches_.size()) batches_.emplace_back();
  batches_[usedBatches_].stroke = stroke;
  return batches_[usedBatches_++];
}

void BatchingPainter::strokePath(const CanvasPath& path, const Stroke& stroke) {
  if (fallsApart(stroke)) {
    Batch& batch = batchFor(stroke);
    for (const CanvasPath::Piece& piece : path.pieces()) {
      const auto points = path.points(piece);
      for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        batch.segments.push_back({points[i], points[i + 1]});
      }
      if (piece.closed && points.size() > 2) batch.segments.push_back({points.back(), points.front()});
      if (points.size() == 1) batch.segments.push_back({points.front(), points.front()});
      waiting_ += points.size();
    }
    return;
  }
  if (isDashedOpaque(stroke) && isSegmentOnly(path)) {
    Stroke solid = stroke;
    solid.dash = {};
    solid.dashOffset = 0;
    Batch& batch = batchFor(solid);
    for (const CanvasPath::Piece& piece : path.pieces()) {
      const auto points = path.points(piece);
      addDashes({points[0], points[1]}, stroke, batch.segments);
    }
    waiting_ += 1;
    return;
  }
  flush();
  painter_.strokePath(path, stroke);
}

void BatchingPainter::strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) {
  Batch& batch = batchFor(stroke);
  batch.segments.insert(batch.segments.end(), segments.begin(), segments.end());
  waiting_ += segments.size();
}

void BatchingPainter::strokeEllipse(const CanvasEllipse& ellipse, const Stroke& stroke) {
  if (!fallsApart(stroke)) {
    flush();
    painter_.strokeEllipse(ellipse, stroke);
    return;
  }
  batchFor(stroke).ellipses.push_back(ellipse);
  ++waiting_;
}

void BatchingPainter::strokeRoundedRect(const ViewRect& rect, double cornerRadius, const Stroke& stroke) {
  flush();
  painter_.strokeRoundedRect(rect, cornerRadius, stroke);
}

void BatchingPainter::fillPath(const CanvasPath& path, const Fill& fill) {
  makeWayFor(boundsOf(path));
  painter_.fillPath(path, fill);
}

void BatchingPainter::fillEllipse(const CanvasEllipse& ellipse, const Fill& fill) {
  makeWayFor(boundsOf(ellipse));
  painter_.fillEllipse(ellipse, fill);
}

void BatchingPainter::fillRoundedRect(const ViewRect& rect, double cornerRadius, const Fill& fill) {
  makeWayFor(rect);
  painter_.fillRoundedRect(rect, cornerRadius, fill);
}

void BatchingPainter::drawText(std::string_view text, SketchPoint center, double height, const Fill& fill) {
  flush();
  painter_.drawText(text, center, height, fill);
}

void BatchingPainter::makeWayFor(const ViewRect& bounds) {
  if (usedBatches_ == 0) return;
  markWaiting();
  if (cells_.empty() || isMarked(bounds)) flush();
}

void BatchingPainter::markWaiting() {
  for (std::size_t i = 0; i < usedBatches_; ++i) {
    Batch& batch = batches_[i];
    const double reach = batch.stroke.width / 2 + 1;
    for (; batch.markedSegments < batch.segments.size(); ++batch.markedSegments) {
      const auto [from, to] = batch.segments[batch.markedSegments];
      // A long slanting line does not take all of its box, so it is marked in steps.
      const double length = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
      const int steps = static_cast<int>(std::clamp(std::ceil(length / kCellSide), 1.0, 4096.0));
      SketchPoint last = from;
      for (int s = 1; s <= steps; ++s) {
        const SketchPoint next = from + (to - from) * (static_cast<double>(s) / steps);
        const SketchPoint ends[] = {last, next};
        mark(boundsOf(ends, {last.x, last.y, last.x, last.y}).grown(reach));
        last = next;
      }
    }
    for (; batch.markedEllipses < batch.ellipses.size(); ++batch.markedEllipses) {
      mark(boundsOf(batch.ellipses[batch.markedEllipses]).grown(reach));
    }
  }
}

BatchingPainter::CellRange BatchingPainter::cellsOf(const ViewRect& bounds) const {
  if (!bounds.touches(area_)) return {};
  const auto cell = [](double value, double origin, int count) {
    return static_cast<int>(std::clamp(std::floor((value - origin) / kCellSide), 0.0, count - 1.0));
  };
  return {cell(bounds.minX, area_.minX, columns_), cell(bounds.minY, area_.minY, rows_),
          cell(bounds.maxX, area_.minX, columns_), cell(bounds.maxY, area_.minY, rows_)};
}

void BatchingPainter::mark(const ViewRect& bounds) {
  if (cells_.empty()) return;
  const CellRange range = cellsOf(bounds);
  for (int y = range.minY; y <= range.maxY; ++y) {
    for (int x = range.minX; x <= range.maxX; ++x) {
      cells_[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns_) + static_cast<std::size_t>(x)] =
          round_;
    }
  }
}

bool BatchingPainter::isMarked(const ViewRect& bounds) const {
  const CellRange range = cellsOf(bounds);
  for (int y = range.minY; y <= range.maxY; ++y) {
    for (int x = range.minX; x <= range.maxX; ++x) {
      if (cells_[static_cast<std::size_t>(y) * static_cast<std::size_t>(columns_) +
                 static_cast<std::size_t>(x)] == round_) {
        return true;
      }
    }
  }
  return false;
}

}  // namespace ostrelon
