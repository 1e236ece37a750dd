#include "geometry/wall_body.h"

#include <algorithm>
#include <cmath>

#include "geometry/outline.h"

namespace ostrelon {

namespace {

/// Edges that turn from each other by more than this sine only cross.
constexpr double kNearlyParallelSine = 0.01;

}  // namespace

WallBody::WallBody(const JoinAxis& wall, const std::array<JoinEnd, 2>& ends) {
  const SketchPoint toLeft = perpendicular(wall.direction) * wall.half;
  const auto corner = [](const JoinSide& side, SketchPoint cap) {
    return side.join == WallJoin::cap ? cap : side.point;
  };
  outline[startNode] = ends[0].node;
  outline[rightStart] = corner(ends[0].right, wall.from - toLeft);
  outline[leftStart] = corner(ends[0].left, wall.from + toLeft);
  // Seen from the end, left is right.
  outline[rightEnd] = corner(ends[1].left, wall.to - toLeft);
  outline[endNode] = ends[1].node;
  outline[leftEnd] = corner(ends[1].right, wall.to + toLeft);
  box = outlineBox(outline).grown(2 * kCoincidence * wall.half);
}

WallCutter::WallCutter(const JoinAxis& wall, const WallBody& body) : wall_(&wall), box_(body.box) {
  const auto throughPoints = [](SketchPoint a, SketchPoint b) {
    const SketchPoint toLeft = perpendicular(b - a);
    const double length = std::sqrt(squaredLength(toLeft));
    const SketchPoint normal{toLeft.x / length, toLeft.y / length};
    return Line{normal, -dot(normal, a)};
  };
  using enum WallBody::Corner;
  const auto& at = body.outline;
  const SketchPoint left = perpendicular(wall.direction);
  const Line axis = throughPoints(at[startNode], at[endNode]);
  halves_[0] = {axis, throughPoints(at[endNode], at[leftEnd]),
                Line{left * -1, dot(left, wall.from) + wall.half},
                throughPoints(at[leftStart], at[startNode])};
  halves_[1] = {Line{axis.normal * -1, -axis.offset}, throughPoints(at[startNode], at[rightStart]),
                Line{left, -dot(left, wall.from) + wall.half}, throughPoints(at[rightEnd], at[endNode])};
}

void WallCutter::hide(const JoinAxis& owner, const Edge& edge, std::vector<Span>& hidden) const {
  const bool isWeaker = isStronger(*wall_, owner);
  if (owner.family == wall_->family || isWeaker) findSpans(owner, edge, isWeaker, hidden);
}

void WallCutter::cover(const JoinAxis& owner, const Edge& edge, std::vector<Span>& covered) const {
  findSpans(owner, edge, false, covered);
}

// `withEqual`: also where the edge coincides with one of this body's that runs the same way.
void WallCutter::findSpans(const JoinAxis& owner, const Edge& edge, bool withEqual,
                           std::vector<Span>& spans) const {
  const double near = 2 * kCoincidence * std::min(owner.half, wall_->half);
  const SketchPoint intoOwner = perpendicular(edge.to - edge.from);
  for (const Half& half : halves_) {
    double begin = 0;
    double end = 1;
    const Line* alike = nullptr;
    double alikeAtStart = 0;
    double alikeAtEnd = 0;
    for (const Line& line : half) {
      const double atStart = line.distance(edge.from);
      const double atEnd = line.distance(edge.to);
      if (&line != half.data() && std::abs(atEnd - atStart) <= kNearlyParallelSine * edge.length) {
        // Whether the two coincide is seen once it is known how far they run along each other. Of two such
        // lines of a narrow half, the edge lies along the nearer one.
        const double distance = std::min(std::abs(atStart), std::abs(atEnd));
        if (alike == nullptr || distance < std::min(std::abs(alikeAtStart), std::abs(alikeAtEnd))) {
          if (alike != nullptr) {
            if (alikeAtStart < 0) begin = std::max(begin, alikeAtStart / (alikeAtStart - alikeAtEnd));
            if (alikeAtEnd < 0) end = std::min(end, alikeAtStart / (alikeAtStart - alikeAtEnd));
          }
          alike = &line;
          alikeAtStart = atStart;
          alikeAtEnd = atEnd;
          continue;
        }
      }
      if (atStart < 0 && atEnd < 0) {
        end = -1;
        break;
      }
      if (atStart < 0) begin = std::max(begin, atStart / (atStart - atEnd));
      if (atEnd < 0) end = std::min(end, atStart / (atStart - atEnd));
    }
    if (end < begin) continue;
    if (alike != nullptr) {
      const double atBegin = alikeAtStart + (alikeAtEnd - alikeAtStart) * begin;
      const double atLast = alikeAtStart + (alikeAtEnd - alikeAtStart) * end;
      if (std::abs(atBegin) <= near && std::abs(atLast) <= near) {
        const bool isEqual = dot(alike->normal, intoOwner) > 0;
        if (isEqual && !withEqual) continue;
      } else {
        if (alikeAtStart < 0 && alikeAtEnd < 0) continue;
        if (alikeAtStart < 0) begin = std::max(begin, alikeAtStart / (alikeAtStart - alikeAtEnd));
        if (alikeAtEnd < 0) end = std::min(end, alikeAtStart / (alikeAtStart - alikeAtEnd));
      }
    }
    if (begin < end) spans.push_back({begin, end});
  }
}

namespace {

// Cuts the edges of one wall, and keeps what is seen of them.
class EdgeCutting {
 public:
  EdgeCutting(const JoinAxis& wall, std::span<const WallCutter* const> others)
      : wall_(wall), others_(others) {
    edges_.reserve(4);
  }

  void add(SketchPoint from, SketchPoint to, bool isFace) {
    const SketchPoint along = to - from;
    const double length = std::sqrt(squaredLength(along));
    const double least = kCoincidence * wall_.half;
    if (!(length > least)) return;
    hidden_.clear();
    const SketchBox box = SketchBox::spanning(from, to).grown(least);
    for (const WallCutter* other : others_) {
      if (other->box().overlaps(box)) other->hide(wall_, {from, to, length}, hidden_);
    }
    if (hidden_.size() > 1) {
      std::sort(hidden_.begin(), hidden_.end(), [](auto& a, auto& b) { return a.begin < b.begin; });
    }
    const double smallest = least / length;
    double seen = 0;
    const auto keep = [&](double until) {
      if (until - seen <= smallest) return;
      edges_.push_back(
          {seen == 0 ? from : from + along * seen, until == 1 ? to : from + along * until, isFace});
    };
    for (const WallCutter::Span& span : hidden_) {
      keep(span.begin);
      seen = std::max(seen, span.end);
    }
    keep(1);
  }

  std::vector<WallEdge> take() { return std::move(edges_); }

 private:
  const JoinAxis& wall_;
  std::span<const WallCutter* const> others_;
  std::vector<WallCutter::Span> hidden_;
  std::vector<WallEdge> edges_;
};

}  // namespace

std::vector<WallEdge> visibleEdges(const JoinAxis& wall, const std::array<JoinEnd, 2>& ends,
                                   const WallBody& body, std::span<const WallCutter* const> others) {
  using enum WallBody::Corner;
  const auto& at = body.outline;
  EdgeCutting cutting(wall, others);
  cutting.add(at[rightStart], at[rightEnd], true);
  cutting.add(at[leftEnd], at[leftStart], true);
  for (int which = 0; which < 2; ++which) {
    const JoinEnd& end = ends[static_cast<std::size_t>(which)];
    // Seen from the wall's end, its left is the right as seen into it from there; the outline runs from the
    // arm's left corner over the node to its right corner at both ends.
    const SketchPoint left = which == 0 ? at[leftStart] : at[rightEnd];
    const SketchPoint right = which == 0 ? at[rightStart] : at[leftEnd];
    if (end.left.join == WallJoin::cap && end.right.join == WallJoin::cap) {
      cutting.add(left, right, false);
      continue;
    }
    if (end.left.join == WallJoin::cap) cutting.add(left, end.node, false);
    if (end.left.hasStep) cutting.add(left, end.left.other, false);
    if (end.left.hasSeam) cutting.add(end.left.hasStep ? end.left.other : left, end.node, false);
    if (end.right.hasSeam) cutting.add(end.node, end.right.hasStep ? end.right.other : right, false);
    if (end.right.hasStep) cutting.add(end.right.other, right, false);
    if (end.right.join == WallJoin::cap) cutting.add(end.node, right, false);
  }
  return cutting.take();
}

}  // namespace ostrelon
