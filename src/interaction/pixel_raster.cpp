#include "interaction/pixel_raster.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <vector>

namespace ostrelon {

namespace {

/// Two 8-bit components at once, each times `by` / 255, rounded.
std::uint32_t scaledPair(std::uint32_t pair, std::uint32_t by) {
  const std::uint32_t product = pair * by + 0x00800080;
  return ((product + ((product >> 8) & 0x00FF00FF)) >> 8) & 0x00FF00FF;
}

std::uint32_t scaled(std::uint32_t pixel, std::uint32_t by) {
  return scaledPair(pixel & 0x00FF00FF, by) | (scaledPair((pixel >> 8) & 0x00FF00FF, by) << 8);
}

/// The same for two pixels, side by side in one number.
std::uint64_t scaledTwo(std::uint64_t pixels, std::uint64_t by) {
  constexpr std::uint64_t kPairs = 0x00FF00FF00FF00FF;
  const auto scaledPairs = [by](std::uint64_t pairs) {
    const std::uint64_t product = pairs * by + 0x0080008000800080;
    return ((product + ((product >> 8) & kPairs)) >> 8) & kPairs;
  };
  return scaledPairs(pixels & kPairs) | (scaledPairs((pixels >> 8) & kPairs) << 8);
}

/// 0 to 255 for a coverage of 0 to 1.
std::uint32_t shareOf(double coverage) {
  constexpr double kToNearest = 0.5;  // what is never negative needs no slower rounding
  return static_cast<std::uint32_t>(coverage * 255 + kToNearest);
}

/// Lays one colour over pixels by coverage.
class Ink {
 public:
  explicit Ink(PixelColor color)
      : full_(scaled(0xFF000000 | (color.red << 16) | (color.green << 8) | color.blue, color.alpha)),
        isOpaque_(color.alpha == 255) {}

  void layFull(std::uint32_t& pixel) const { pixel = isOpaque_ ? full_ : over(full_, pixel); }
  void layFull(std::uint32_t* from, std::uint32_t* to) const {
    if (isOpaque_) {
      std::fill(from, to, full_);
      return;
    }
    const std::uint64_t left = 255 - (full_ >> 24);
    for (; to - from >= 2; from += 2) {
      std::uint64_t below = 0;
      std::memcpy(&below, from, sizeof(below));
      const std::uint64_t result = (std::uint64_t{full_} << 32 | full_) + scaledTwo(below, left);
      std::memcpy(from, &result, sizeof(result));
    }
    if (from != to) layFull(*from);
  }
  /// Laying more of the ink would change nothing.
  bool isSaturated(std::uint32_t pixel) const { return isOpaque_ && pixel == full_; }
  void lay(std::uint32_t& pixel, double coverage) const {
    if (!(coverage > 0)) return;
    if (coverage >= 1) {
      layFull(pixel);
    } else {
      layShare(pixel, shareOf(coverage));
    }
  }
  /// `share`: 0 to 255.
  void layShare(std::uint32_t& pixel, std::uint32_t share) const {
    pixel = over(scaled(full_, share), pixel);
  }

 private:
  static std::uint32_t over(std::uint32_t top, std::uint32_t below) {
    return top + scaled(below, 255 - (top >> 24));
  }

  std::uint32_t full_;  // premultiplied
  bool isOpaque_;
};

/// Corners that turn by no more than this sine are taken as straight.
constexpr double kStraightSine = 1e-9;

struct IntRange {
  int begin = 0;
  int end = 0;  ///< not included
};

/// The pixels whose middles may lie between two coordinates, within a range that does not begin below 0.
IntRange pixelsBetween(double from, double to, int least, int most) {
  // Held to the range before the conversion, which has no meaning for larger numbers, and which rounds
  // down where they are not negative.
  const double first = std::clamp(from, static_cast<double>(least), static_cast<double>(most));
  const double last = std::clamp(to + 2, static_cast<double>(least), static_cast<double>(most));
  return {static_cast<int>(first), static_cast<int>(last)};
}

std::uint32_t* rowOf(const PixelBuffer& buffer, int y) { return buffer.pixels + y * buffer.stride; }

/// Calls `cover(middle)` for the pixels of a band around a line, and lays the ink.
template <class Cover>
void rasterBand(const PixelBuffer& buffer, const CanvasSegment& line, SketchPoint direction, double reach,
                const Ink& ink, const Cover& cover) {
  const auto [from, to] = line;
  const IntRange rows = pixelsBetween(std::min(from.y, to.y) - reach, std::max(from.y, to.y) + reach,
                                      buffer.clipMinY, buffer.clipMaxY);
  const double minX = std::min(from.x, to.x) - reach;
  const double maxX = std::max(from.x, to.x) + reach;
  const SketchPoint normal = perpendicular(direction);
  const bool isSlanted = std::abs(normal.x) > 1e-9;
  // Where a row crosses the band: |(x - from.x) · normal.x + (y - from.y) · normal.y| ≤ reach.
  const double slant = isSlanted ? normal.y / normal.x : 0;
  const double halfSpan = isSlanted ? reach / std::abs(normal.x) : 0;
  for (int y = rows.begin; y < rows.end; ++y) {
    const double middleY = y + 0.5;
    double left = minX;
    double right = maxX;
    if (isSlanted) {
      const double middleX = from.x - (middleY - from.y) * slant;
      left = std::max(left, middleX - halfSpan);
      right = std::min(right, middleX + halfSpan);
    }
    if (!(left <= right)) continue;
    const IntRange columns = pixelsBetween(left, right, buffer.clipMinX, buffer.clipMaxX);
    std::uint32_t* row = rowOf(buffer, y);
    for (int x = columns.begin; x < columns.end; ++x) {
      if (!ink.isSaturated(row[x])) ink.lay(row[x], cover(SketchPoint{x + 0.5, middleY}));
    }
  }
}

/// A line of pixels, column or row, and how far it is covered.
struct CoveredLine {
  int at = 0;
  double coverage = 0;
};

/// The pixels that lines across one axis cover, in ascending order, each once.
std::vector<CoveredLine> coveredLines(std::span<const double> middles, double width, int least, int most) {
  std::vector<CoveredLine> covered;
  const double reach = width / 2 + 0.5;
  for (const double middle : middles) {
    const IntRange pixels = pixelsBetween(middle - reach, middle + reach, least, most);
    for (int at = pixels.begin; at < pixels.end; ++at) {
      const double coverage = std::min({reach - std::abs(at + 0.5 - middle), width, 1.0});
      if (coverage > 0) covered.push_back({at, coverage});
    }
  }
  std::sort(covered.begin(), covered.end(), [](const CoveredLine& a, const CoveredLine& b) {
    return a.at != b.at ? a.at < b.at : a.coverage > b.coverage;
  });
  const auto repeated = std::unique(covered.begin(), covered.end(),
                                    [](const CoveredLine& a, const CoveredLine& b) { return a.at == b.at; });
  covered.erase(repeated, covered.end());
  return covered;
}

}  // namespace

PixelColor PixelColor::of(Color color, double opacity) {
  const auto component = [](double value) {
    return static_cast<std::uint32_t>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
  };
  return {component(color.red), component(color.green), component(color.blue), component(opacity)};
}

void rasterDot(const PixelBuffer& buffer, SketchPoint center, double width, PixelColor color) {
  const Ink ink(color);
  const double reach = width / 2 + 0.5;
  const double most = std::min(1.0, width);
  // Within this distance a pixel is covered as far as it can be.
  const double solid = reach - most;
  const double solidSquared = solid * solid;
  const double reachSquared = reach * reach;
  const IntRange rows = pixelsBetween(center.y - reach, center.y + reach, buffer.clipMinY, buffer.clipMaxY);
  const IntRange columns =
      pixelsBetween(center.x - reach, center.x + reach, buffer.clipMinX, buffer.clipMaxX);
  for (int y = rows.begin; y < rows.end; ++y) {
    std::uint32_t* row = rowOf(buffer, y);
    const double dy = y + 0.5 - center.y;
    for (int x = columns.begin; x < columns.end; ++x) {
      if (ink.isSaturated(row[x])) continue;
      const double dx = x + 0.5 - center.x;
      const double squared = dx * dx + dy * dy;
      if (squared >= reachSquared) continue;
      ink.lay(row[x], squared <= solidSquared ? most : reach - std::sqrt(squared));
    }
  }
}

void rasterRoundLine(const PixelBuffer& buffer, const CanvasSegment& line, double width, PixelColor color) {
  if (line.from == line.to) {
    rasterDot(buffer, line.from, width, color);
    return;
  }
  const double half = width / 2;
  const double most = std::min(1.0, width);
  const double length = distanceBetween(line.from, line.to);
  const SketchPoint direction = length > 0 ? (line.to - line.from) * (1 / length) : SketchPoint{1, 0};
  const SketchPoint from = line.from;
  rasterBand(buffer, line, direction, half + 0.5, Ink(color), [=](SketchPoint middle) {
    const SketchPoint d = middle - from;
    const double along = dot(d, direction);
    const double across = cross(direction, d);
    const double beyond = along < 0 ? along : along > length ? along - length : 0;
    const double distance = beyond == 0 ? std::abs(across) : std::sqrt(across * across + beyond * beyond);
    return std::min(half + 0.5 - distance, most);
  });
}

void rasterButtLine(const PixelBuffer& buffer, const CanvasSegment& line, double width, PixelColor color) {
  const double half = width / 2;
  const double most = std::min(1.0, width);
  const double length = distanceBetween(line.from, line.to);
  if (!(length > 0)) return;
  const double mostAlong = std::min(1.0, length);
  const SketchPoint direction = (line.to - line.from) * (1 / length);
  const SketchPoint from = line.from;
  rasterBand(buffer, line, direction, half + 0.5, Ink(color), [=](SketchPoint middle) {
    const SketchPoint d = middle - from;
    const double along = dot(d, direction);
    const double ends = std::clamp(std::min(along, length - along) + 0.5, 0.0, mostAlong);
    const double sides = std::clamp(half + 0.5 - std::abs(cross(direction, d)), 0.0, most);
    return ends * sides;
  });
}

void rasterLattice(const PixelBuffer& buffer, std::span<const double> columns, std::span<const double> rows,
                   double width, PixelColor color) {
  const Ink ink(color);
  const auto upright = coveredLines(columns, width, buffer.clipMinX, buffer.clipMaxX);
  const auto level = coveredLines(rows, width, buffer.clipMinY, buffer.clipMaxY);
  auto nextLevel = level.begin();
  for (int y = buffer.clipMinY; y < buffer.clipMaxY; ++y) {
    std::uint32_t* row = rowOf(buffer, y);
    if (nextLevel == level.end() || nextLevel->at != y) {
      for (const CoveredLine& line : upright) ink.lay(row[line.at], line.coverage);
      continue;
    }
    const double coverage = nextLevel->coverage;
    ++nextLevel;
    int x = buffer.clipMinX;
    for (const CoveredLine& line : upright) {
      for (; x < line.at; ++x) ink.lay(row[x], coverage);
      ink.lay(row[x++], std::max(coverage, line.coverage));
    }
    for (; x < buffer.clipMaxX; ++x) ink.lay(row[x], coverage);
  }
}

void rasterCircle(const PixelBuffer& buffer, SketchPoint center, double radius, double width,
                  PixelColor color) {
  const Ink ink(color);
  const double half = width / 2;
  const double most = std::min(1.0, width);
  const double reach = half + 0.5;
  const double outer = radius + reach;
  const double inner = std::max(0.0, radius - reach);
  const IntRange rows = pixelsBetween(center.y - outer, center.y + outer, buffer.clipMinY, buffer.clipMaxY);
  for (int y = rows.begin; y < rows.end; ++y) {
    const double dy = y + 0.5 - center.y;
    const double outerSquared = outer * outer - dy * dy;
    if (outerSquared < 0) continue;
    const double outerX = std::sqrt(outerSquared);
    const double innerSquared = inner * inner - dy * dy;
    const double innerX = innerSquared > 0 ? std::sqrt(innerSquared) : 0;
    std::uint32_t* row = rowOf(buffer, y);
    const auto cover = [&](IntRange columns) {
      for (int x = columns.begin; x < columns.end; ++x) {
        const double dx = x + 0.5 - center.x;
        const double distance = std::abs(std::sqrt(dx * dx + dy * dy) - radius);
        ink.lay(row[x], std::min(reach - distance, most));
      }
    };
    const IntRange left =
        pixelsBetween(center.x - outerX, center.x - innerX, buffer.clipMinX, buffer.clipMaxX);
    IntRange right = pixelsBetween(center.x + innerX, center.x + outerX, buffer.clipMinX, buffer.clipMaxX);
    // Near the top and the bottom the two sides meet; no pixel is painted twice.
    right.begin = std::max(right.begin, left.end);
    cover(left);
    cover(right);
  }
}

bool isSmallConvex(std::span<const SketchPoint> corners) {
  if (corners.size() < 3 || corners.size() > kMostConvexCorners) return false;
  double least = 0;
  double most = 0;
  // A star turns one way as well, but more than once around: it goes back and forth more than once.
  int turnsBack = 0;
  double lastAcross = 0;
  const auto goes = [&](double across) {
    if (across * lastAcross < 0) ++turnsBack;
    if (across != 0) lastAcross = across;
  };
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const SketchPoint a = corners[i];
    const SketchPoint b = corners[(i + 1) % corners.size()];
    const SketchPoint c = corners[(i + 2) % corners.size()];
    const double turn = cross(b - a, c - b);
    // Of three points on a line rounding leaves a turn of either sign.
    if (turn * turn > kStraightSine * kStraightSine * squaredLength(b - a) * squaredLength(c - b)) {
      least = std::min(least, turn);
      most = std::max(most, turn);
    }
    goes(b.x - a.x);
  }
  goes(corners[1].x - corners[0].x);
  return least * most == 0 && least + most != 0 && turnsBack <= 2;
}

namespace {

/// Hands over what of a convex polygon lies within the clip, row by row: `solid(y, from, to)` for pixels that
/// it fills, `edge(y, x, coverage)` for others that it may touch.
template <class Solid, class Edge>
void visitConvexArea(const PixelBuffer& clip, std::span<const SketchPoint> corners, const Solid& solid,
                     const Edge& edge) {
  struct Side {
    SketchPoint inward;  // unit normal
    double offset = 0;
    double slant = 0;  // columns by which the side moves for one pixel of distance; 0 along the rows
  };
  std::array<Side, kMostConvexCorners> edges;
  const std::size_t count = std::min(corners.size(), kMostConvexCorners);
  double turn = 0;
  SketchBox box = SketchBox::centered(corners[0], 0);
  for (std::size_t i = 0; i < count; ++i) {
    const SketchPoint a = corners[i];
    turn += cross(a, corners[(i + 1) % count]);
    box = box.united(a);
  }
  std::size_t used = 0;
  for (std::size_t i = 0; i < count; ++i) {
    const SketchPoint a = corners[i];
    const SketchPoint d = corners[(i + 1) % count] - a;
    const double length = lengthOf(d);
    if (length == 0) continue;
    const double side = (turn > 0 ? 1 : -1) / length;
    const SketchPoint inward = perpendicular(d) * side;
    edges[used++] = {inward, dot(a, inward), std::abs(inward.x) < 1e-9 ? 0 : 1 / inward.x};
  }
  const IntRange rows = pixelsBetween(box.minY - 0.5, box.maxY + 0.5, clip.clipMinY, clip.clipMaxY);
  for (int y = rows.begin; y < rows.end; ++y) {
    const double middleY = y + 0.5;
    // Between these columns the row is touched, and between the solid ones it is full.
    double left = box.minX - 0.5, right = box.maxX + 0.5;
    double solidLeft = left, solidRight = right;
    for (std::size_t i = 0; i < used; ++i) {
      const auto& [inward, offset, slant] = edges[i];
      // The distance inwards is x · inward.x + rest.
      const double rest = middleY * inward.y - offset;
      const double touched = (-0.5 - rest) * slant;
      const double filled = (0.5 - rest) * slant;
      if (slant > 0) {
        left = std::max(left, touched);
        solidLeft = std::max(solidLeft, filled);
      } else if (slant < 0) {
        right = std::min(right, touched);
        solidRight = std::min(solidRight, filled);
      } else {
        if (rest < -0.5) right = left - 1;
        if (rest < 0.5) solidRight = solidLeft - 1;
      }
    }
    if (!(left <= right)) continue;
    const IntRange columns = pixelsBetween(left, right, clip.clipMinX, clip.clipMaxX);
    IntRange full{columns.end, columns.end};
    if (solidLeft <= solidRight) {
      full.begin = std::clamp(static_cast<int>(std::ceil(solidLeft - 0.5)), columns.begin, columns.end);
      full.end = std::clamp(static_cast<int>(std::floor(solidRight - 0.5)) + 1, full.begin, columns.end);
    }
    const auto coverEdge = [&](int from, int to) {
      for (int x = from; x < to; ++x) {
        double coverage = 1;
        for (std::size_t i = 0; i < used; ++i) {
          const auto& [inward, offset, slant] = edges[i];
          coverage = std::min(coverage, (x + 0.5) * inward.x + middleY * inward.y - offset + 0.5);
        }
        edge(y, x, coverage);
      }
    };
    coverEdge(columns.begin, full.begin);
    if (full.begin < full.end) solid(y, full.begin, full.end);
    coverEdge(full.end, columns.end);
  }
}

}  // namespace

void rasterConvexArea(const PixelBuffer& buffer, std::span<const SketchPoint> corners, PixelColor color) {
  const Ink ink(color);
  visitConvexArea(
      buffer, corners,
      [&](int y, int from, int to) { ink.layFull(rowOf(buffer, y) + from, rowOf(buffer, y) + to); },
      [&](int y, int x, double coverage) { ink.lay(rowOf(buffer, y)[x], coverage); });
}

void rasterConvexAreas(const PixelBuffer& buffer, const CanvasPath& path, double pixelRatio,
                       PixelColor color) {
  // The shares of all areas add up in a mask: where two meet along an edge a pixel is covered by both in
  // part, and together whole.
  SketchBox box{1, 1, -1, -1};
  for (const CanvasPath::Piece& piece : path.pieces()) {
    for (const SketchPoint point : path.points(piece)) {
      box = box.minX > box.maxX ? SketchBox::centered(point * pixelRatio, 0) : box.united(point * pixelRatio);
    }
  }
  const IntRange rows = pixelsBetween(box.minY - 0.5, box.maxY + 0.5, buffer.clipMinY, buffer.clipMaxY);
  const IntRange columns = pixelsBetween(box.minX - 0.5, box.maxX + 0.5, buffer.clipMinX, buffer.clipMaxX);
  if (rows.begin >= rows.end || columns.begin >= columns.end) return;
  const auto width = static_cast<std::size_t>(columns.end - columns.begin);
  std::vector<std::uint8_t> mask(width * static_cast<std::size_t>(rows.end - rows.begin), 0);
  const auto maskAt = [&](int y, int x) {
    return mask.data() + static_cast<std::size_t>(y - rows.begin) * width + (x - columns.begin);
  };
  std::array<SketchPoint, kMostConvexCorners> corners;
  for (const CanvasPath::Piece& piece : path.pieces()) {
    const auto points = path.points(piece);
    const std::size_t count = std::min(points.size(), kMostConvexCorners);
    std::transform(points.begin(), points.begin() + static_cast<std::ptrdiff_t>(count), corners.begin(),
                   [&](SketchPoint point) { return point * pixelRatio; });
    visitConvexArea(
        buffer, std::span(corners).first(count),
        [&](int y, int from, int to) { std::fill(maskAt(y, from), maskAt(y, to), std::uint8_t{255}); },
        [&](int y, int x, double coverage) {
          if (!(coverage > 0)) return;
          std::uint8_t& at = *maskAt(y, x);
          at = static_cast<std::uint8_t>(std::min(at + shareOf(std::min(coverage, 1.0)), 255U));
        });
  }
  const Ink ink(color);
  for (int y = rows.begin; y < rows.end; ++y) {
    std::uint32_t* row = rowOf(buffer, y) + columns.begin;
    const std::uint8_t* shares = maskAt(y, columns.begin);
    for (std::size_t x = 0; x < width;) {
      std::size_t end = x + 1;
      while (end < width && shares[end] == shares[x]) ++end;
      if (shares[x] == 255) {
        ink.layFull(row + x, row + end);
      } else if (shares[x] != 0) {
        for (std::size_t at = x; at < end; ++at) ink.layShare(row[at], shares[x]);
      }
      x = end;
    }
  }
}

}  // namespace ostrelon
