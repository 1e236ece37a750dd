#include "geometry/annotation_builder.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "core/plan_look.h"

namespace ostrelon {
namespace {

// Of the measurement type: the width of a letter, and the height of a capital, both in ems.
constexpr double kLetterWidth = 0.6;
constexpr double kCapitalHeight = 0.73;

std::size_t letterCount(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
  }));
}

}  // namespace

double unitsPerInch(const Plan& plan) { return drawingScale(plan).ratio / kInchesPerFoot; }

double annotationTextWidth(std::string_view text) {
  return static_cast<double>(letterCount(text)) * kLetterWidth;
}

double annotationTextWidth(std::string_view text, double capitals) {
  return annotationTextWidth(text) / kCapitalHeight * capitals;
}

std::vector<std::string> textLines(std::string_view text) {
  std::vector<std::string> lines;
  for (std::size_t at = text.find('\n'); at != std::string_view::npos; at = text.find('\n')) {
    lines.emplace_back(text.substr(0, at));
    text.remove_prefix(at + 1);
  }
  lines.emplace_back(text);
  return lines;
}

AnnotationBuilder::AnnotationBuilder(AnnotationKind kind, const UUID& itemID, double unitsPerInch)
    : unitsPerInch_(unitsPerInch) {
  annotation_.kind = kind;
  annotation_.itemID = itemID;
}

void AnnotationBuilder::reach(SketchPoint point) {
  annotation_.box = isEmpty_ ? SketchBox{point.x, point.y, point.x, point.y} : annotation_.box.united(point);
  isEmpty_ = false;
}

void AnnotationBuilder::line(SketchPoint from, SketchPoint to, bool isDashed) {
  annotation_.lines.push_back({{from, to}, isDashed});
  reach(from);
  reach(to);
}

void AnnotationBuilder::fill(std::vector<SketchPoint> outline) {
  for (const SketchPoint point : outline) reach(point);
  annotation_.fills.push_back({std::move(outline)});
}

void AnnotationBuilder::text(std::string text, SketchPoint middle, double angle) {
  constexpr double kQuarter = std::numbers::pi / 2;
  // A text that runs straight up is read from the right, as one that runs straight down would be.
  constexpr double kSlack = 1e-9;
  while (angle > kQuarter + kSlack) angle -= std::numbers::pi;
  while (angle <= -kQuarter + kSlack) angle += std::numbers::pi;
  const double height = textHeight();
  const SketchPoint along =
      SketchPoint{std::cos(angle), std::sin(angle)} * (annotationTextWidth(text, height) / 2);
  const SketchPoint up = SketchPoint{-std::sin(angle), std::cos(angle)} * (height / 2);
  for (const SketchPoint corner : {along + up, along - up}) {
    reach(middle + corner);
    reach(middle - corner);
  }
  annotation_.texts.push_back({std::move(text), middle, height, angle});
}

void AnnotationBuilder::block(const std::vector<std::string>& lines, SketchPoint middle) {
  const double step = textHeight() * kAnnotationLineSpacing;
  double y = middle.y + static_cast<double>(lines.size() - 1) * step / 2;
  for (const std::string& line : lines) {
    text(line, {middle.x, y});
    y -= step;
  }
}

SketchSize AnnotationBuilder::blockSize(const std::vector<std::string>& lines) const {
  double width = 0;
  for (const std::string& line : lines) width = std::max(width, annotationTextWidth(line, textHeight()));
  const double rest = static_cast<double>(lines.size()) - 1;
  return {width, textHeight() * (1 + rest * kAnnotationLineSpacing)};
}

}  // namespace ostrelon
