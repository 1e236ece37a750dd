#include "geometry/dimension_strings.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <optional>
#include <span>
#include <utility>

#include "geometry/outline.h"
#include "geometry/wall_grid.h"

namespace ostrelon {
namespace {

constexpr double kSixteenth = 1.0 / 192;  // of an inch, in feet
/// Marks, depths and faces that are no farther apart are the same.
constexpr double kSame = kSixteenth * 1.001;
/// Directions that differ by less, radians or its sine, are parallel.
constexpr double kParallel = 1e-3;
/// A wall that comes in flatter than this, the sine of its angle, meets no face at a place worth a mark.
constexpr double kLeastSlope = 0.1;
/// What is closed by an edge of this length, feet, between two faces is the end of a wall.
constexpr double kWidestWall = 2;

using Outline = std::vector<SketchPoint>;

// In whole sixteenths. What lies half way between two goes up, however the last digit of its place came out.
double rounded(double length) { return std::floor(length / kSixteenth + 0.5 + 1e-6); }

// --- Buildings

struct Building {
  std::vector<const Outline*> outlines;
  std::vector<OpeningWall> walls;
  std::vector<const PlacedOpening*> openings;
};

// Which boxes belong together: those that touch, and those that touch what these make together.
std::vector<std::size_t> groupedBoxes(const std::vector<SketchBox>& boxes) {
  std::vector<std::size_t> groups(boxes.size());
  std::iota(groups.begin(), groups.end(), std::size_t{0});
  const auto rootOf = [&](std::size_t i) {
    while (groups[i] != i) i = groups[i] = groups[groups[i]];
    return i;
  };
  std::vector<SketchBox> merged = boxes;
  for (bool isChanged = boxes.size() > 1; isChanged;) {
    isChanged = false;
    double extents = 0;
    for (const SketchBox& box : merged) extents += std::max(box.width(), box.height());
    const WallGrid grid(merged, extents / static_cast<double>(merged.size()));
    for (std::size_t i = 0; i < merged.size(); ++i) {
      grid.visitNear(merged[i], [&](std::uint32_t other) {
        if (rootOf(i) == rootOf(other) || !merged[i].overlaps(merged[other])) return;
        groups[rootOf(other)] = rootOf(i);
        isChanged = true;
      });
    }
    if (!isChanged) break;
    for (std::size_t i = 0; i < boxes.size(); ++i) merged[rootOf(i)] = merged[rootOf(i)].united(boxes[i]);
    for (std::size_t i = 0; i < boxes.size(); ++i) merged[i] = merged[rootOf(i)];
  }
  for (std::size_t i = 0; i < groups.size(); ++i) groups[i] = rootOf(i);
  return groups;
}

std::vector<Building> buildingsOf(const Drawing& drawing, const RoomPlan& rooms,
                                  const OpeningLayout& openings, double clearance) {
  std::vector<SketchBox> boxes;
  for (const Outline& outline : rooms.outsides) boxes.push_back(outlineBox(outline).grown(clearance / 2));
  const std::vector<std::size_t> groups = groupedBoxes(boxes);
  std::vector<Building> buildings(boxes.size());
  std::vector<SketchBox> around(boxes.size());
  double extents = 0;
  for (std::size_t i = 0; i < boxes.size(); ++i) {
    Building& building = buildings[groups[i]];
    SketchBox& box = around[groups[i]];
    box = building.outlines.empty() ? boxes[i] : box.united(boxes[i]);
    building.outlines.push_back(&rooms.outsides[i]);
    extents += std::max(boxes[i].width(), boxes[i].height());
  }
  if (boxes.empty()) return buildings;
  for (std::size_t i = 0; i < boxes.size(); ++i) around[i] = around[groups[i]];
  const WallGrid grid(around, extents / static_cast<double>(boxes.size()));
  const auto buildingAt = [&](SketchPoint place) {
    std::optional<std::size_t> found;
    grid.visitNear(SketchBox::centered(place, 0), [&](std::uint32_t number) {
      if (around[number].contains(place)) found = groups[number];
    });
    return found;
  };
  std::size_t position = 0;
  for (const SketchEntity& entity : drawing.entities) {
    const auto wall = openingWall(entity, position++, drawing.wallSystemSpecs);
    const auto at = wall ? buildingAt(middleOf(wall->from, wall->to)) : std::nullopt;
    if (at) buildings[*at].walls.push_back(*wall);
  }
  for (const PlacedOpening& opening : openings.all()) {
    if (opening.fit != OpeningFit::fits) continue;
    if (const auto at = buildingAt(middleOf(opening.wall.from, opening.wall.to))) {
      buildings[*at].openings.push_back(&opening);
    }
  }
  std::erase_if(buildings, [](const Building& building) { return building.outlines.empty(); });
  return buildings;
}

// The direction, of length one and nearer to +x than to y, in which most of the outlines runs or to which
// most of them is square.
SketchPoint mainDirection(const std::vector<const Outline*>& outlines) {
  struct Edge {
    double angle;  // from -45° to 45°, radians
    double length;
    SketchPoint along;
  };
  std::vector<Edge> edges;
  for (const Outline* outline : outlines) {
    for (std::size_t i = 0; i < outline->size(); ++i) {
      const SketchPoint edge = (*outline)[(i + 1) % outline->size()] - (*outline)[i];
      const double length = lengthOf(edge);
      if (!(length > 0) || !std::isfinite(length)) continue;
      SketchPoint along = edge * (1 / length);
      if (std::abs(along.y) > std::abs(along.x)) along = perpendicular(along);
      if (along.x < 0) along = along * -1;
      edges.push_back({std::atan2(along.y, along.x), length, along});
    }
  }
  if (edges.empty()) return {1, 0};
  std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.angle < b.angle; });
  // Around the circle once more, so that those about 45° come together.
  const std::size_t count = edges.size();
  for (std::size_t i = 0; i < count; ++i) {
    edges.push_back(edges[i]);
    edges.back().angle += std::numbers::pi / 2;
  }
  SketchPoint best{1, 0};
  double most = 0;
  std::size_t begin = 0;
  double total = 0;
  for (std::size_t end = 0; end < edges.size(); ++end) {
    total += edges[end].length;
    while (edges[end].angle - edges[begin].angle > kParallel) total -= edges[begin++].length;
    // Of equal ones the nearest to the axes; a difference of rounding makes none longer.
    const bool isNearer = std::abs(edges[end].along.y) < std::abs(best.y) - kParallel;
    if (total < most * (1 - 1e-9) || (total < most * (1 + 1e-9) && !isNearer)) continue;
    most = total;
    best = std::max_element(edges.begin() + static_cast<std::ptrdiff_t>(begin),
                            edges.begin() + static_cast<std::ptrdiff_t>(end) + 1,
                            [](const Edge& a, const Edge& b) { return a.length < b.length; })
               ->along;
  }
  return std::abs(best.y) < 1e-9 ? SketchPoint{1, 0} : best;
}

// --- What is seen from a side

// A place as the side sees it.
struct SidePoint {
  double along = 0;
  double out = 0;  // more is nearer to the viewer
};

// An edge that faces the side, from less to more along it.
struct FacingEdge {
  SidePoint begin;
  SidePoint end;
  bool isFreeAtBegin = false;  // a wall ends here
  bool isFreeAtEnd = false;

  double outAt(double along) const {
    return begin.out + (end.out - begin.out) * (along - begin.along) / (end.along - begin.along);
  }
  bool isSquare() const { return std::abs(end.out - begin.out) <= kParallel * (end.along - begin.along); }
};

// A stretch of the side in which the same edge is the nearest.
struct Stretch {
  double begin = 0;
  double end = 0;
  const FacingEdge* edge = nullptr;
};

class SideView {
 public:
  SideView(const Building& building, SketchPoint along, SketchPoint outward)
      : along_(along), outward_(outward) {
    for (const Outline* outline : building.outlines) addEdges(*outline);
    std::sort(edges_.begin(), edges_.end(),
              [](const FacingEdge& a, const FacingEdge& b) { return a.begin.along < b.begin.along; });
    findStretches();
    if (stretches_.empty()) return;
    markCorners();
    findSeenWalls(building);
    for (const PlacedOpening* opening : building.openings) markOpening(*opening);
    for (const OpeningWall& wall : building.walls) markJoins(wall);
  }

  void appendStrings(std::vector<DimensionString>& strings) const {
    if (stretches_.empty()) return;
    const double first = stretches_.front().begin;
    const double last = stretches_.back().end;
    double front = stretches_.front().edge->begin.out;
    for (const Stretch& stretch : stretches_) {
      front = std::max({front, stretch.edge->outAt(stretch.begin), stretch.edge->outAt(stretch.end)});
    }
    if (!std::isfinite(front) || !std::isfinite((last - first) / kSixteenth) || rounded(last - first) < 1)
      return;
    const auto append = [&](StringRow row, std::vector<SidePoint> marks) {
      DimensionString string{row, along_ * first + outward_ * front, along_, outward_, {}};
      std::sort(marks.begin(), marks.end(),
                [](const SidePoint& a, const SidePoint& b) { return a.along < b.along; });
      for (const SidePoint& mark : marks) {
        const StringMark placed{mark.along - first, front - mark.out};
        if (string.marks.empty() || placed.along - string.marks.back().along > kSame) {
          string.marks.push_back(placed);
        } else {  // its line begins at the nearer one
          string.marks.back().depth = std::min(string.marks.back().depth, placed.depth);
        }
      }
      // A mark that is all but the last is that.
      string.marks.back().along = last - first;
      if (row == StringRow::overall || string.marks.size() > 2) strings.push_back(std::move(string));
    };
    const auto both = [](std::vector<SidePoint> some, const std::vector<SidePoint>& more) {
      some.insert(some.end(), more.begin(), more.end());
      return some;
    };
    if (!jambs_.empty()) append(StringRow::openings, both(corners_, jambs_));
    append(StringRow::walls, both(corners_, joins_));
    append(StringRow::overall, {corners_.front(), corners_.back()});
  }

 private:
  struct SeenWall {
    double begin = 0;  // along the side
    double end = 0;
    double axis = 0;  // out
    double half = 0;
    std::size_t stretch = 0;
  };

  SidePoint seen(SketchPoint point) const { return {dot(point, along_), dot(point, outward_)}; }

  void addEdges(const Outline& outline) {
    const std::size_t count = outline.size();
    const auto at = [&](std::size_t i) { return outline[i % count]; };
    // Whether the edge behind, or before, this one closes a wall: the next but one runs back.
    const auto closesWall = [&](std::size_t edge, std::size_t cap, std::size_t back) {
      return distanceBetween(at(cap), at(cap + 1)) <= kWidestWall &&
             dot(at(edge + 1) - at(edge), at(back + 1) - at(back)) < 0;
    };
    for (std::size_t i = 0; i < count; ++i) {
      const SketchPoint edge = at(i + 1) - at(i);
      const double length = lengthOf(edge);
      if (!(dot(perpendicular(edge), outward_) < -1e-6 * length)) continue;
      const bool isFreeBehind = closesWall(i, i + 1, i + 2);
      const bool isFreeBefore = closesWall(i, i + count - 1, i + count - 2);
      FacingEdge facing{seen(at(i)), seen(at(i + 1)), isFreeBefore, isFreeBehind};
      if (facing.begin.along > facing.end.along) {
        std::swap(facing.begin, facing.end);
        std::swap(facing.isFreeAtBegin, facing.isFreeAtEnd);
      }
      edges_.push_back(facing);
    }
  }

  void findStretches() {
    std::vector<double> places;
    for (const FacingEdge& edge : edges_) {
      places.push_back(edge.begin.along);
      places.push_back(edge.end.along);
    }
    std::sort(places.begin(), places.end());
    std::vector<const FacingEdge*> here;
    std::size_t next = 0;
    for (std::size_t i = 0; i + 1 < places.size(); ++i) {
      const double begin = places[i];
      const double end = places[i + 1];
      while (next < edges_.size() && edges_[next].begin.along <= begin) here.push_back(&edges_[next++]);
      std::erase_if(here, [&](const FacingEdge* edge) { return edge->end.along <= begin; });
      if (here.empty() || end - begin <= kSixteenth / 64) continue;
      const double middle = (begin + end) / 2;
      const FacingEdge* nearest = *std::max_element(
          here.begin(), here.end(),
          [&](const FacingEdge* a, const FacingEdge* b) { return a->outAt(middle) < b->outAt(middle); });
      if (!stretches_.empty() && stretches_.back().edge == nearest &&
          begin - stretches_.back().end <= kSixteenth) {
        stretches_.back().end = end;
      } else {
        stretches_.push_back({begin, end, nearest});
      }
    }
  }

  // Two walls in line that end freely, each towards the other, with nothing before the gap between them: the
  // number of the second's stretch.
  std::optional<std::size_t> behindGap(std::size_t number) const {
    const Stretch& before = stretches_[number];
    if (!before.edge->isFreeAtEnd || !before.edge->isSquare() ||
        before.end < before.edge->end.along - kSame) {
      return std::nullopt;
    }
    const double out = before.edge->end.out;
    for (std::size_t i = number + 1; i < stretches_.size(); ++i) {
      const Stretch& other = stretches_[i];
      const double begin = other.edge->outAt(other.begin);
      if (std::max(begin, other.edge->outAt(other.end)) < out - kSame) continue;
      const bool isInLine = other.edge->isSquare() && std::abs(begin - out) <= kSame;
      if (isInLine && other.edge->isFreeAtBegin && other.begin <= other.edge->begin.along + kSame) return i;
      return std::nullopt;
    }
    return std::nullopt;
  }

  void markCorners() {
    std::vector<Stretch> kept;
    const auto mark = [](std::vector<SidePoint>& marks, const Stretch& stretch, double along) {
      marks.push_back({along, stretch.edge->outAt(along)});
    };
    mark(corners_, stretches_.front(), stretches_.front().begin);
    for (std::size_t i = 0; i < stretches_.size();) {
      const Stretch& stretch = stretches_[i];
      kept.push_back(stretch);
      if (i + 1 == stretches_.size()) break;
      if (const auto behind = behindGap(i)) {
        mark(jambs_, stretch, stretch.end);
        mark(jambs_, stretches_[*behind], stretches_[*behind].begin);
        i = *behind;
        continue;
      }
      const Stretch& next = stretches_[++i];
      if (next.begin - stretch.end > kSame) {  // nothing is there
        mark(corners_, stretch, stretch.end);
        mark(corners_, next, next.begin);
      } else if (!isSameFace(stretch, next)) {
        const double along = stretch.end;
        corners_.push_back({along, std::max(stretch.edge->outAt(along), next.edge->outAt(along))});
      }
    }
    mark(corners_, stretches_.back(), stretches_.back().end);
    stretches_ = std::move(kept);
  }

  static bool isSameFace(const Stretch& stretch, const Stretch& next) {
    const double step = next.edge->outAt(stretch.end) - stretch.edge->outAt(stretch.end);
    const auto slope = [](const FacingEdge& edge) {
      return std::atan2(edge.end.out - edge.begin.out, edge.end.along - edge.begin.along);
    };
    return std::abs(step) <= kSame && std::abs(slope(*stretch.edge) - slope(*next.edge)) <= kParallel;
  }

  // The first stretch that ends behind the place; their number where there is none.
  std::size_t stretchAt(double along) const {
    const auto found = std::upper_bound(stretches_.begin(), stretches_.end(), along,
                                        [](double at, const Stretch& stretch) { return at < stretch.end; });
    return static_cast<std::size_t>(found - stretches_.begin());
  }

  // Whether the face so far out is what is seen in this stretch.
  bool isFace(const Stretch& stretch, double out) const {
    return stretch.edge->isSquare() && std::abs(stretch.edge->begin.out - out) <= kSame;
  }

  bool isParallel(const OpeningWall& wall) const {
    return std::abs(dot(wall.to - wall.from, outward_)) <= kParallel * wall.length();
  }

  void findSeenWalls(const Building& building) {
    for (const OpeningWall& wall : building.walls) {
      if (!isParallel(wall)) continue;
      const SidePoint from = seen(wall.from);
      const SidePoint to = seen(wall.to);
      SeenWall side{std::min(from.along, to.along), std::max(from.along, to.along), (from.out + to.out) / 2,
                    wall.thickness / 2};
      for (side.stretch = stretchAt(side.begin);
           side.stretch < stretches_.size() && stretches_[side.stretch].begin < side.end; ++side.stretch) {
        if (isFace(stretches_[side.stretch], side.axis + side.half)) seenWalls_.push_back(side);
      }
    }
    std::sort(seenWalls_.begin(), seenWalls_.end(),
              [](const SeenWall& a, const SeenWall& b) { return a.stretch < b.stretch; });
  }

  void markOpening(const PlacedOpening& placed) {
    const OpeningWall& wall = placed.wall;
    if (!isParallel(wall)) return;
    const SidePoint near = seen(wall.at(placed.opening.distance));
    const SidePoint far = seen(wall.at(placed.opening.distance + placed.opening.width));
    const double middle = (near.along + far.along) / 2;
    const std::size_t number = stretchAt(middle);
    if (number == stretches_.size() || stretches_[number].begin > middle) return;
    const double face = (near.out + far.out) / 2 + wall.thickness / 2;
    if (!isFace(stretches_[number], face)) return;
    jambs_.push_back({near.along, face});
    jambs_.push_back({far.along, face});
  }

  // The faces of a wall that ends at one that is seen, where they meet its inner face.
  void markJoins(const OpeningWall& wall) {
    const SketchPoint direction = (wall.to - wall.from) * (1 / wall.length());
    const double slope = dot(direction, outward_);
    if (std::abs(slope) < kLeastSlope) return;
    const std::pair<SidePoint, SidePoint> ends[] = {{seen(wall.from), seen(wall.to)},
                                                    {seen(wall.to), seen(wall.from)}};
    for (const auto& [end, other] : ends) {
      const std::size_t number = stretchAt(end.along);
      if (number == stretches_.size()) continue;
      const auto begin =
          std::lower_bound(seenWalls_.begin(), seenWalls_.end(), number,
                           [](const SeenWall& one, std::size_t at) { return one.stretch < at; });
      for (auto one = begin; one != seenWalls_.end() && one->stretch == number; ++one) {
        const double inner = one->axis - one->half;
        if (std::abs(end.out - one->axis) > one->half + kSame || other.out > inner) continue;
        if (end.along < one->begin - kSame || end.along > one->end + kSame) continue;
        const double meets = end.along + (inner - end.out) * dot(direction, along_) / slope;
        const double reach = std::abs(wall.thickness / 2 / slope);
        // A face at a corner is the outside of the wall, which has been marked.
        const Stretch& stretch = stretches_[number];
        if (meets - reach <= stretch.begin + kSame || meets + reach >= stretch.end - kSame) continue;
        joins_.push_back({meets - reach, one->axis + one->half});
        joins_.push_back({meets + reach, one->axis + one->half});
        break;
      }
    }
  }

  SketchPoint along_;
  SketchPoint outward_;
  std::vector<FacingEdge> edges_;
  std::vector<Stretch> stretches_;
  std::vector<SeenWall> seenWalls_;  // by stretch, one for each in which a wall is seen
  std::vector<SidePoint> corners_;
  std::vector<SidePoint> jambs_;
  std::vector<SidePoint> joins_;
};

}  // namespace

double stringDistance(StringRow row) { return 0.375 * (1 + static_cast<double>(row)); }

std::vector<double> DimensionString::lengths() const {
  std::vector<double> lengths;
  for (std::size_t i = 1; i < marks.size(); ++i) {
    lengths.push_back((rounded(marks[i].along) - rounded(marks[i - 1].along)) * kSixteenth);
  }
  return lengths;
}

std::vector<DimensionString> dimensionStrings(const Drawing& drawing, const RoomPlan& rooms,
                                              const OpeningLayout& openings, double unitsPerInch) {
  std::vector<DimensionString> strings;
  const double clearance = 2 * stringDistance(StringRow::overall) * unitsPerInch;
  for (const Building& building : buildingsOf(drawing, rooms, openings, clearance)) {
    const SketchPoint along = mainDirection(building.outlines);
    const SketchPoint up = perpendicular(along);
    SideView(building, along, up * -1).appendStrings(strings);
    SideView(building, along, up).appendStrings(strings);
    SideView(building, up, along * -1).appendStrings(strings);
    SideView(building, up, along).appendStrings(strings);
  }
  return strings;
}

}  // namespace ostrelon
