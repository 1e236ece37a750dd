#include "geometry/dimension_annotation.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <optional>
#include <tuple>
#include <utility>

#include "core/typed_length.h"
#include "geometry/outline.h"

namespace ostrelon {
namespace {

// --- Sizes on paper, inches

constexpr double kTextHeight = 3.0 / 32;
constexpr double kTick = 1.0 / 8;
/// Between what is measured and the line that goes out from it.
constexpr double kWitnessGap = 1.0 / 16;
/// As much of the line as is drawn where another string stands between.
constexpr double kShortWitness = 1.0 / 8;
/// What stays free between a text and the ticks beside it, and between two texts.
constexpr double kBesideText = 1.0 / 16;
// The middles of texts over their line, over those, and under it. Between two strings there is room for a row
// of texts over the one, a row under the other, and one more of either.
constexpr double kOver = 0.082;
constexpr double kFarOver = 0.186;
constexpr double kUnder = -0.095;

/// The height of capitals, ems.
constexpr double kCapitals = 0.72;
/// Dimensions whose lines are no farther apart, feet, are in one line.
constexpr double kInLine = 1.0 / 192;

// A length in a line of dimensions. Sketch units along it.
struct Piece {
  double begin = 0;
  double end = 0;
  std::string text;
  bool isLeftAway = false;  ///< what is measured lies to the right of the line

  double middle() const { return (begin + end) / 2; }
};

enum class Level : std::uint8_t { over, farOver, under };

struct PlacedText {
  double begin = 0;  ///< along the line, sketch units, with what stays free beside it
  double end = 0;
  Level level = Level::over;

  double middle() const { return (begin + end) / 2; }
};

// Places the texts of one line after another, each behind those of its level that are placed already.
class TextPlacement {
 public:
  explicit TextPlacement(double unitsPerInch, const TextWidth& width) : inch_(unitsPerInch), width_(width) {}

  /// `next`: null for the last. Their begins ascend.
  PlacedText place(const Piece& piece, const Piece* next) {
    const double width = (width_(piece.text) * kTextHeight / kCapitals + 2 * kBesideText) * inch_;
    const double before = reached_;
    reached_ = std::max(reached_, piece.end);
    const double centered = piece.middle() - width / 2;
    if (width <= piece.end - piece.begin && isFree(Level::over, centered)) {
      return take(Level::over, centered, width);
    }
    const bool hasRoomBehind = next == nullptr || next->begin >= piece.end + width;
    if (hasRoomBehind && reached_ <= piece.end && isFree(Level::over, piece.end)) {
      return take(Level::over, piece.end, width);
    }
    if (before <= piece.begin - width && isFree(Level::over, piece.begin - width)) {
      return take(Level::over, piece.begin - width, width);
    }
    // Away from what is measured, or on the other side where it moves less.
    const Level away = piece.isLeftAway ? Level::farOver : Level::under;
    const Level other = piece.isLeftAway ? Level::under : Level::farOver;
    const double begin = std::max(centered, taken(away));
    const double otherBegin = std::max(centered, taken(other));
    return begin <= otherBegin ? take(away, begin, width) : take(other, otherBegin, width);
  }

 private:
  double& taken(Level level) { return taken_[static_cast<std::size_t>(level)]; }
  bool isFree(Level level, double begin) { return begin >= taken(level) - 1e-9 * inch_; }
  PlacedText take(Level level, double begin, double width) {
    taken(level) = begin + width;
    return {begin, begin + width, level};
  }

  static constexpr double kNothing = -std::numeric_limits<double>::infinity();
  double inch_;
  const TextWidth& width_;
  std::array<double, 3> taken_{kNothing, kNothing, kNothing};  // of each level, up to here
  double reached_ = kNothing;                                  // by the pieces before
};

// --- Painting

// Turned so that a text along it stands upright or is read from the right.
SketchPoint readingDirection(SketchPoint along) {
  constexpr double kUpright = 1e-9;
  return along.x < -kUpright || (along.x < kUpright && along.y < 0) ? along * -1 : along;
}

// What is drawn of dimensions in one line. `along` is a reading direction.
class LinePainter {
 public:
  LinePainter(SketchPoint origin, SketchPoint along, double unitsPerInch)
      : origin_(origin), along_(along), inch_(unitsPerInch) {
    annotation_.kind = AnnotationKind::dimension;
  }

  SketchPoint at(double place, double left = 0) const {
    return origin_ + along_ * place + perpendicular(along_) * left;
  }

  void line(SketchPoint from, SketchPoint to) { annotation_.lines.push_back({{from, to}, false}); }

  void tick(double place) {
    const double half = kTick / 2 * std::numbers::sqrt2 / 2 * inch_;
    line(at(place - half, -half), at(place + half, half));
  }

  // From near what is measured to the line; nothing where that is on it.
  void witness(SketchPoint from, SketchPoint to) {
    const double length = distanceBetween(from, to);
    const double gap = kWitnessGap * inch_;
    if (length > gap) line(from + (to - from) * (gap / length), to);
  }

  void text(const Piece& piece, const PlacedText& placed) {
    const double height = kTextHeight * inch_;
    const double left = middleOf(placed.level) * inch_;
    annotation_.texts.push_back(
        {piece.text, at(placed.middle(), left), height, std::atan2(along_.y, along_.x)});
    const double free = kBesideText * inch_;
    if (placed.level != Level::over) {
      const bool isElsewhere = placed.begin > piece.end || placed.end < piece.begin;
      const double near = left - std::copysign(height / 2, left);
      if (isElsewhere) line(at(piece.middle()), at(placed.middle(), near));
    } else if (placed.begin >= piece.end) {  // the line goes on under a text beyond it
      line(at(piece.end), at(placed.end - free));
    } else if (placed.end <= piece.begin) {
      line(at(placed.begin + free), at(piece.begin));
    }
    for (const double end : {placed.begin + free, placed.end - free}) {
      corners_.push_back(at(end, left - height / 2));
      corners_.push_back(at(end, left + height / 2));
    }
  }

  Annotation painted(const UUID& itemID = {}) {
    annotation_.itemID = itemID;
    for (const AnnotationLine& one : annotation_.lines) {
      corners_.insert(corners_.end(), one.points.begin(), one.points.end());
    }
    annotation_.box = outlineBox(corners_);
    return std::move(annotation_);
  }

 private:
  static double middleOf(Level level) {
    if (level == Level::under) return kUnder;
    return level == Level::over ? kOver : kFarOver;
  }

  SketchPoint origin_;
  SketchPoint along_;
  double inch_;
  Annotation annotation_;
  std::vector<SketchPoint> corners_;  // of the texts
};

// --- Dimensions by hand

// The line of a dimension, and its place among those that are in line with it.
struct DimensionLine {
  std::size_t number = 0;
  SketchPoint along;  ///< to read it
  double height = 0;  ///< of the line over the origin of the plan, to the left of `along`
  Piece piece;        ///< along the line, from the foot of the origin

  // Equal for those that are in one line.
  auto key() const {
    return std::tuple(std::llround(along.x * 1e6), std::llround(along.y * 1e6),
                      std::llround(height / kInLine));
  }
};

std::optional<DimensionLine> dimensionLine(const Dimension& dimension, std::size_t number) {
  const SketchPoint axis = dimensionAxis(dimension);
  DimensionLine line;
  line.number = number;
  line.along = readingDirection(axis);
  const double length = dot(dimension.to.point - dimension.from.point, axis);
  const SketchPoint start = dimension.from.point + perpendicular(axis) * dimension.offset;
  const double from = dot(start, line.along);
  const double to = dot(start + axis * length, line.along);
  line.height = dot(start, perpendicular(line.along));
  // Both ends lie on the other side of the line, or the farther of them does.
  const SketchPoint middle = middleOf(dimension.from.point, dimension.to.point);
  line.piece = {std::min(from, to), std::max(from, to), dimensionText(dimension),
                dot(middle, perpendicular(line.along)) <= line.height};
  constexpr double kMost = 1e12;  // feet; beyond there is no paper
  const bool isSeen = std::abs(from) < kMost && std::abs(to) < kMost && std::abs(line.height) < kMost &&
                      isFinite(dimension.from.point) && isFinite(dimension.to.point);
  return isSeen ? std::optional(line) : std::nullopt;
}

Annotation annotationOf(const Dimension& dimension, const DimensionLine& dimensionLine,
                        const PlacedText& placed, double unitsPerInch) {
  const SketchPoint left = perpendicular(dimensionLine.along);
  LinePainter painter(left * dimensionLine.height, dimensionLine.along, unitsPerInch);
  const Piece& piece = dimensionLine.piece;
  painter.line(painter.at(piece.begin), painter.at(piece.end));
  for (const DimensionEnd* end : {&dimension.from, &dimension.to}) {
    const double place = dot(end->point, dimensionLine.along);
    painter.tick(place);
    painter.witness(end->point, painter.at(place));
  }
  painter.text(piece, placed);
  return painter.painted(dimension.id);
}

// --- Strings

// `isBehindAnother`: another string stands between it and the building.
Annotation annotationOf(const DimensionString& string, bool isBehindAnother, double unitsPerInch,
                        const TextWidth& width) {
  const double distance = stringDistance(string.row) * unitsPerInch;
  const SketchPoint along = readingDirection(string.along);
  const bool isReversed = dot(along, string.along) < 0;
  const double whole = string.marks.back().along;
  const SketchPoint first = string.from + string.outward * distance;
  LinePainter painter(isReversed ? first + string.along * whole : first, along, unitsPerInch);
  const auto placeOf = [&](const StringMark& mark) { return isReversed ? whole - mark.along : mark.along; };
  painter.line(painter.at(0), painter.at(whole));
  for (const StringMark& mark : string.marks) {
    const double place = placeOf(mark);
    painter.tick(place);
    const SketchPoint end = painter.at(place);
    if (isBehindAnother) {
      painter.line(end - string.outward * (kShortWitness * unitsPerInch), end);
    } else {
      painter.witness(end - string.outward * (distance + mark.depth), end);
    }
  }
  std::vector<Piece> pieces;
  const std::vector<double> lengths = string.lengths();
  const bool isLeftAway = dot(perpendicular(along), string.outward) > 0;
  for (std::size_t i = 0; i < lengths.size(); ++i) {
    const double a = placeOf(string.marks[i]);
    const double b = placeOf(string.marks[i + 1]);
    pieces.push_back({std::min(a, b), std::max(a, b), formatLength(lengths[i]), isLeftAway});
  }
  if (isReversed) std::reverse(pieces.begin(), pieces.end());
  TextPlacement placement(unitsPerInch, width);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const Piece* next = i + 1 < pieces.size() ? &pieces[i + 1] : nullptr;
    painter.text(pieces[i], placement.place(pieces[i], next));
  }
  return painter.painted();
}

}  // namespace

std::string dimensionText(const Dimension& dimension) {
  const bool isLost = dimension.from.lost || dimension.to.lost;
  return formatLength(measuredLength(dimension)) + (isLost ? "?" : "");
}

std::vector<Annotation> dimensionAnnotations(const SharedList<Dimension>& dimensions, double unitsPerInch,
                                             const TextWidth& width) {
  std::vector<DimensionLine> lines;
  for (std::size_t i = 0; i < dimensions.size(); ++i) {
    if (auto line = dimensionLine(dimensions[i], i)) lines.push_back(std::move(*line));
  }
  std::stable_sort(lines.begin(), lines.end(), [](const DimensionLine& a, const DimensionLine& b) {
    return std::pair(a.key(), a.piece.begin) < std::pair(b.key(), b.piece.begin);
  });
  std::vector<Annotation> annotations(dimensions.size());
  std::optional<TextPlacement> placement;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const DimensionLine& line = lines[i];
    if (i == 0 || lines[i - 1].key() != line.key()) placement.emplace(unitsPerInch, width);
    const bool hasNext = i + 1 < lines.size() && lines[i + 1].key() == line.key();
    const PlacedText placed = placement->place(line.piece, hasNext ? &lines[i + 1].piece : nullptr);
    annotations[line.number] = annotationOf(dimensions[line.number], line, placed, unitsPerInch);
  }
  std::erase_if(annotations, [](const Annotation& annotation) { return annotation.lines.empty(); });
  return annotations;
}

std::vector<Annotation> stringAnnotations(std::span<const DimensionString> strings, double unitsPerInch,
                                          const TextWidth& width) {
  std::vector<Annotation> annotations;
  for (std::size_t i = 0; i < strings.size(); ++i) {
    const bool isBehindAnother =
        i > 0 && strings[i - 1].outward == strings[i].outward && strings[i - 1].row < strings[i].row;
    annotations.push_back(annotationOf(strings[i], isBehindAnother, unitsPerInch, width));
  }
  return annotations;
}

}  // namespace ostrelon
