// Making one annotation. Sizes are those on paper, so that an annotation is as large in every output as it is
// on a sheet at the drawing's scale.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/plan.h"
#include "geometry/annotation.h"

namespace ostrelon {

// --- Sizes on paper, inches

inline constexpr double kAnnotationTextHeight = 3.0 / 32;  ///< of capitals
inline constexpr double kAnnotationTick = 1.0 / 8;         ///< from end to end
/// From one line of a text to the next, in heights of its capitals.
inline constexpr double kAnnotationLineSpacing = 1.7;

/// Sketch units to an inch of paper, at the scale of the plan.
double unitsPerInch(const Plan& plan);

/// The width of a text of one line, ems. Its typeface has one width for all letters.
double annotationTextWidth(std::string_view text);
/// The same of one whose capitals are so high, in the unit of the height.
double annotationTextWidth(std::string_view text, double capitals);

/// The lines of a text that are parted by \n; one at least.
std::vector<std::string> textLines(std::string_view text);

/// Collects what an annotation consists of, and the box around it.
class AnnotationBuilder {
 public:
  AnnotationBuilder(AnnotationKind kind, const UUID& itemID, double unitsPerInch);

  /// Sketch units of so many inches of paper.
  double onPaper(double inches) const { return inches * unitsPerInch_; }
  double textHeight() const { return onPaper(kAnnotationTextHeight); }

  void line(SketchPoint from, SketchPoint to, bool isDashed = false);
  void fill(std::vector<SketchPoint> outline);
  /// One line of text. `angle`: radians from +x; turned by half a turn where it would stand upside down.
  void text(std::string text, SketchPoint middle, double angle = 0);
  /// Lines beneath each other, centred on a point.
  void block(const std::vector<std::string>& lines, SketchPoint middle);
  /// Width and height of a block.
  SketchSize blockSize(const std::vector<std::string>& lines) const;

  Annotation take() { return std::move(annotation_); }

 private:
  void reach(SketchPoint point);

  Annotation annotation_;
  double unitsPerInch_;
  bool isEmpty_ = true;
};

}  // namespace ostrelon
