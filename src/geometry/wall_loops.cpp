#include "geometry/wall_loops.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <tuple>
#include <unordered_map>

#include "geometry/wall_grid.h"

namespace ostrelon {

namespace {

/// A directed piece of an outline, with the walls of its family to its left.
struct Piece {
  SketchPoint from;
  SketchPoint to;
  UUID system;
};

bool isLeftOf(SketchPoint a, SketchPoint b) { return a.x != b.x ? a.x < b.x : a.y < b.y; }

// The pieces around each family.
class FamilyOutlines {
 public:
  explicit FamilyOutlines(const JoinedWalls& joined) {
    joined.visitAll([this](const JoinedWall& wall) { walls_.push_back(&wall); });
    std::vector<SketchBox> boxes;
    double extents = 0;
    for (const JoinedWall* wall : walls_) {
      boxes.push_back(wall->body.box);
      extents += std::max(wall->body.box.width(), wall->body.box.height());
      hasFamilies_ |= wall->wall.family != walls_.front()->wall.family;
    }
    if (walls_.empty()) return;
    const WallGrid grid(boxes, extents / static_cast<double>(boxes.size()));
    for (std::size_t i = 0; i < walls_.size(); ++i) addWall(i, boxes, grid);
  }

  std::map<WallFamily, std::vector<Piece>> take() { return std::move(pieces_); }

 private:
  void addWall(std::size_t number, std::span<const SketchBox> boxes, const WallGrid& grid) {
    const JoinedWall& joined = *walls_[number];
    std::vector<const JoinedWall*> others;
    if (hasFamilies_) {
      grid.visitNear(boxes[number], [&](std::uint32_t other) {
        const JoinedWall* wall = walls_[other];
        if (wall->wall.family == joined.wall.family || !boxes[other].overlaps(boxes[number])) return;
        if (std::find(others.begin(), others.end(), wall) == others.end()) others.push_back(wall);
      });
    }
    for (const WallEdge& edge : joined.edges) {
      pieces_[joined.wall.family].push_back({edge.from, edge.to, joined.wall.system});
      if (!others.empty()) addBeyond(joined, edge, others);
    }
  }

  // What lies to the right of the edge is of the strongest wall there, whose outline runs the other way.
  void addBeyond(const JoinedWall& joined, const WallEdge& edge, std::span<const JoinedWall* const> others) {
    struct Cover {
      WallCutter::Span span;
      const JoinedWall* wall;
    };
    std::vector<Cover> covers;
    std::vector<double> stops{0, 1};
    std::vector<WallCutter::Span> spans;
    for (const JoinedWall* other : others) {
      spans.clear();
      WallCutter(other->wall, other->body)
          .cover(joined.wall, {edge.from, edge.to, distanceBetween(edge.from, edge.to)}, spans);
      for (const WallCutter::Span& span : spans) {
        covers.push_back({span, other});
        stops.push_back(span.begin);
        stops.push_back(span.end);
      }
    }
    std::sort(stops.begin(), stops.end());
    const auto at = [&](double share) {
      return share == 0 ? edge.from : share == 1 ? edge.to : edge.from + (edge.to - edge.from) * share;
    };
    for (std::size_t i = 0; i + 1 < stops.size(); ++i) {
      const double middle = (stops[i] + stops[i + 1]) / 2;
      const JoinedWall* beyond = nullptr;
      for (const Cover& cover : covers) {
        if (!(cover.span.begin < middle && middle < cover.span.end)) continue;
        if (beyond == nullptr || isStronger(cover.wall->wall, beyond->wall)) beyond = cover.wall;
      }
      if (beyond == nullptr || stops[i] == stops[i + 1]) continue;
      pieces_[beyond->wall.family].push_back({at(stops[i + 1]), at(stops[i]), beyond->wall.system});
    }
  }

  std::vector<const JoinedWall*> walls_;
  bool hasFamilies_ = false;
  std::map<WallFamily, std::vector<Piece>> pieces_;
};

// Joins pieces end to end.
class LoopTracing {
 public:
  explicit LoopTracing(std::vector<Piece> pieces, double near) : pieces_(std::move(pieces)), near_(near) {
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      starts_.push_back(vertexAt(pieces_[i].from));
      ends_.push_back(vertexAt(pieces_[i].to));
    }
    leaving_.resize(vertices_.size());
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      // What is no longer than two points are apart that count as one is no piece of a loop.
      isUsed_.push_back(starts_[i] == ends_[i]);
      if (!isUsed_.back()) leaving_[starts_[i]].push_back(i);
    }
  }

  void run(std::vector<WallLoop>& loops) {
    for (std::size_t first = 0; first < pieces_.size(); ++first) {
      if (!isUsed_[first]) trace(first, loops);
    }
  }

 private:
  std::size_t vertexAt(SketchPoint point) {
    const double cell = 4 * near_;
    const auto column = [cell](double value) { return static_cast<std::int64_t>(std::floor(value / cell)); };
    for (std::int64_t y = column(point.y - near_); y <= column(point.y + near_); ++y) {
      for (std::int64_t x = column(point.x - near_); x <= column(point.x + near_); ++x) {
        const auto found = cells_.equal_range(keyOf(x, y));
        for (auto place = found.first; place != found.second; ++place) {
          if (distanceBetween(vertices_[place->second], point) <= near_) return place->second;
        }
      }
    }
    cells_.emplace(keyOf(column(point.x), column(point.y)), vertices_.size());
    vertices_.push_back(point);
    return vertices_.size() - 1;
  }
  static std::uint64_t keyOf(std::int64_t x, std::int64_t y) {
    return static_cast<std::uint64_t>(x) * 0x9E3779B97F4A7C15ULL +
           static_cast<std::uint64_t>(y) * 0xD6E8FEB86659FD93ULL;
  }

  // At a corner where loops touch, the sharpest turn to the left stays with the walls to the left.
  std::size_t next(std::size_t piece) const {
    const SketchPoint along = pieces_[piece].to - pieces_[piece].from;
    std::size_t best = pieces_.size();
    double sharpest = 0;
    for (const std::size_t leaving : leaving_[ends_[piece]]) {
      if (isUsed_[leaving]) continue;
      const SketchPoint on = pieces_[leaving].to - pieces_[leaving].from;
      const double turn = std::atan2(cross(along, on), dot(along, on));
      if (best != pieces_.size() && turn <= sharpest) continue;
      best = leaving;
      sharpest = turn;
    }
    return best;
  }

  void trace(std::size_t first, std::vector<WallLoop>& loops) {
    WallLoop loop;
    std::map<UUID, double> lengths;
    std::size_t piece = first;
    while (true) {
      isUsed_[piece] = true;
      loop.points.push_back(pieces_[piece].from);
      lengths[pieces_[piece].system] += distanceBetween(pieces_[piece].from, pieces_[piece].to);
      if (ends_[piece] == starts_[first]) break;
      piece = next(piece);
      if (piece == pieces_.size()) return;  // no loop: numbers too near to each other to be told apart
    }
    dropStraight(loop.points);
    if (loop.points.size() < 3) return;
    std::rotate(loop.points.begin(), std::min_element(loop.points.begin(), loop.points.end(), isLeftOf),
                loop.points.end());
    std::vector<std::pair<double, UUID>> byLength;
    for (const auto& [system, length] : lengths) byLength.emplace_back(-length, system);
    std::sort(byLength.begin(), byLength.end());
    for (const auto& [length, system] : byLength) loop.systems.push_back(system);
    loops.push_back(std::move(loop));
  }

  void dropStraight(std::vector<SketchPoint>& points) const {
    std::vector<SketchPoint> corners;
    for (std::size_t i = 0; i < points.size(); ++i) {
      const SketchPoint before = corners.empty() ? points.back() : corners.back();
      const SketchPoint on = points[(i + 1) % points.size()] - before;
      const double off = std::abs(cross(points[i] - before, on));
      if (dot(points[i] - before, on) > 0 && off <= near_ * lengthOf(on) &&
          dot(points[i] - before, on) < squaredLength(on)) {
        continue;
      }
      corners.push_back(points[i]);
    }
    points = std::move(corners);
  }

  std::vector<Piece> pieces_;
  double near_;
  std::vector<SketchPoint> vertices_;
  std::unordered_multimap<std::uint64_t, std::size_t> cells_;
  std::vector<std::size_t> starts_;
  std::vector<std::size_t> ends_;
  std::vector<std::vector<std::size_t>> leaving_;
  std::vector<bool> isUsed_;
};

}  // namespace

std::vector<WallLoop> wallLoops(const JoinedWalls& joined) {
  double thinnest = 0;
  joined.visitAll([&](const JoinedWall& wall) {
    const double thickness = 2 * wall.wall.half;
    thinnest = thinnest == 0 ? thickness : std::min(thinnest, thickness);
  });
  std::vector<WallLoop> loops;
  for (auto& [family, pieces] : FamilyOutlines(joined).take()) {
    LoopTracing(std::move(pieces), 2 * kCoincidence * thinnest).run(loops);
  }
  std::sort(loops.begin(), loops.end(), [](const WallLoop& a, const WallLoop& b) {
    return std::lexicographical_compare(a.points.begin(), a.points.end(), b.points.begin(), b.points.end(),
                                        isLeftOf);
  });
  return loops;
}

}  // namespace ostrelon
