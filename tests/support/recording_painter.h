// A painter that writes down what it is asked to paint.
#pragma once

#include <string>
#include <vector>

#include "interaction/canvas_painter.h"

namespace ostrelon::testing {

struct PaintCall {
  enum class Kind { stroke, fill, text };
  enum class Shape { path, segments, ellipse, rect, text };

  Kind kind = Kind::stroke;
  Shape shape = Shape::path;
  std::vector<std::vector<SketchPoint>> pieces;  ///< of a path; segments as pairs
  std::vector<bool> closed;                      ///< piece by piece
  CanvasEllipse ellipse;
  SketchBox rect;
  double cornerRadius = 0;
  std::string text;
  double textHeight = 0;
  Stroke stroke;
  Fill fill;
};

class RecordingPainter final : public CanvasPainter {
 public:
  std::vector<PaintCall> calls;

  void strokePath(const CanvasPath& path, const Stroke& stroke) override {
    PaintCall call = pathCall(path);
    call.stroke = stroke;
    calls.push_back(std::move(call));
  }
  void strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) override {
    PaintCall call;
    call.shape = PaintCall::Shape::segments;
    for (const auto& [from, to] : segments) call.pieces.push_back({from, to});
    call.closed.resize(call.pieces.size());
    call.stroke = stroke;
    calls.push_back(std::move(call));
  }
  void strokeEllipse(const CanvasEllipse& ellipse, const Stroke& stroke) override {
    calls.push_back({.shape = PaintCall::Shape::ellipse, .ellipse = ellipse, .stroke = stroke});
  }
  void strokeRoundedRect(const SketchBox& rect, double cornerRadius, const Stroke& stroke) override {
    calls.push_back(
        {.shape = PaintCall::Shape::rect, .rect = rect, .cornerRadius = cornerRadius, .stroke = stroke});
  }
  void fillPath(const CanvasPath& path, const Fill& fill) override {
    PaintCall call = pathCall(path);
    call.kind = PaintCall::Kind::fill;
    call.fill = fill;
    calls.push_back(std::move(call));
  }
  void fillEllipse(const CanvasEllipse& ellipse, const Fill& fill) override {
    calls.push_back({.kind = PaintCall::Kind::fill,
                     .shape = PaintCall::Shape::ellipse,
                     .ellipse = ellipse,
                     .fill = fill});
  }
  void fillRoundedRect(const SketchBox& rect, double cornerRadius, const Fill& fill) override {
    calls.push_back({.kind = PaintCall::Kind::fill,
                     .shape = PaintCall::Shape::rect,
                     .rect = rect,
                     .cornerRadius = cornerRadius,
                     .fill = fill});
  }
  void drawText(std::string_view text, SketchPoint center, double height, const Fill& fill) override {
    calls.push_back({.kind = PaintCall::Kind::text,
                     .shape = PaintCall::Shape::text,
                     .rect = SketchBox::centered(center, 0),
                     .text = std::string(text),
                     .textHeight = height,
                     .fill = fill});
  }

 private:
  static PaintCall pathCall(const CanvasPath& path) {
    PaintCall call;
    for (const auto& piece : path.pieces()) {
      const auto points = path.points(piece);
      call.pieces.emplace_back(points.begin(), points.end());
      call.closed.push_back(piece.closed);
    }
    return call;
  }
};

}  // namespace ostrelon::testing
