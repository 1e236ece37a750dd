// A painter that writes down what it is asked to paint: as values, and as a line of text for each call.
#pragma once

#include <cmath>
#include <iomanip>
#include <sstream>
#include <string>
#include <vector>

#include "interaction/canvas_painter.h"

namespace ostrelon::testing {

class RecordingPainter final : public CanvasPainter {
 public:
  struct Call {
    std::vector<std::vector<SketchPoint>> pieces;  ///< of a path; segments as pairs
    CanvasEllipse ellipse;
    Stroke stroke;
    bool isEllipse = false;
  };
  std::vector<Call> calls;

  /// A line for each call, with three decimals.
  std::string text() const { return text_.str(); }

  void strokePath(const CanvasPath& path, const Stroke& stroke) override {
    notePath("stroke", path) << pen(stroke) << "\n";
    calls.back().stroke = stroke;
  }
  void strokeSegments(std::span<const CanvasSegment> segments, const Stroke& stroke) override {
    CanvasPath path;
    for (const auto& [from, to] : segments) path.addSegment(from, to);
    strokePath(path, stroke);
  }
  void strokeEllipse(const CanvasEllipse& ellipse, const Stroke& stroke) override {
    noteEllipse("stroke", ellipse) << pen(stroke) << "\n";
    calls.back().stroke = stroke;
  }
  void strokeRoundedRect(const SketchBox& rect, double cornerRadius, const Stroke& stroke) override {
    noteRect("stroke", rect, cornerRadius) << pen(stroke) << "\n";
  }
  void fillPath(const CanvasPath& path, const Fill& fill) override { notePath("fill", path) << paint(fill); }
  void fillEllipse(const CanvasEllipse& ellipse, const Fill& fill) override {
    noteEllipse("fill", ellipse) << paint(fill);
  }
  void fillRoundedRect(const SketchBox& rect, double cornerRadius, const Fill& fill) override {
    noteRect("fill", rect, cornerRadius) << paint(fill);
  }
  using CanvasPainter::drawText;
  void drawText(std::string_view words, SketchPoint center, double height, const Fill& fill,
                double angle) override {
    calls.emplace_back();
    text_ << "text \"" << words << "\" at " << place(center) << " high " << number(height);
    if (angle != 0) text_ << " turned " << number(angle);
    text_ << paint(fill);
  }

 private:
  std::ostream& notePath(const char* verb, const CanvasPath& path) {
    calls.emplace_back();
    text_ << verb;
    for (const auto& piece : path.pieces()) {
      const auto points = path.points(piece);
      calls.back().pieces.emplace_back(points.begin(), points.end());
      text_ << (piece.closed ? " area" : " line");
      for (const SketchPoint point : points) text_ << " " << place(point);
    }
    return text_;
  }
  std::ostream& noteEllipse(const char* verb, const CanvasEllipse& ellipse) {
    calls.push_back({.pieces = {}, .ellipse = ellipse, .stroke = {}, .isEllipse = true});
    return text_ << verb << " circle " << place(ellipse.center) << " r " << number(ellipse.radius);
  }
  std::ostream& noteRect(const char* verb, const SketchBox& rect, double cornerRadius) {
    calls.emplace_back();
    return text_ << verb << " box " << place({rect.minX, rect.minY}) << " " << place({rect.maxX, rect.maxY})
                 << " rounded " << number(cornerRadius);
  }
  static std::string number(double value) {
    std::ostringstream text;
    text << std::setprecision(12) << std::round(value * 1000) / 1000 + 0.0;
    return text.str();
  }
  static std::string place(SketchPoint point) { return number(point.x) + "," + number(point.y); }
  static std::string paint(const Fill& fill) {
    const auto& [red, green, blue] = fill.color;
    return " in " + number(red) + "/" + number(green) + "/" + number(blue) +
           (fill.opacity < 1 ? " at " + number(fill.opacity) : "") + "\n";
  }
  static std::string pen(const Stroke& stroke) {
    std::string color = paint({stroke.color, stroke.opacity});
    color.pop_back();
    return color + " wide " + number(stroke.width) + (stroke.cap == LineCap::round ? " round" : "") +
           (stroke.join == LineJoin::round ? " joined" : "") +
           (stroke.isDashed() ? " dashed " + number(stroke.dash.on) + " " + number(stroke.dash.off) +
                                    " from " + number(stroke.dashOffset)
                              : "");
  }

  std::ostringstream text_;
};

}  // namespace ostrelon::testing
