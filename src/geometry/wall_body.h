// The body of a wall: what it covers of the plan once its ends are joined. The axis between its two nodes
// divides it into two halves, each a convex quadrilateral between axis and face, whatever the joints are.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "core/sketch_box.h"
#include "geometry/wall_node.h"

namespace ostrelon {

struct JoinedWall;

struct WallBody {
  /// Counter-clockwise: the node at the start, the ends of the right face, the node at the end, the ends of
  /// the left face from end to start.
  enum Corner { startNode, rightStart, rightEnd, endNode, leftEnd, leftStart };
  std::array<SketchPoint, 6> outline;
  SketchBox box;  ///< around the outline, with a little room for edges that nearly touch it

  WallBody() = default;
  WallBody(const JoinAxis& wall, const std::array<JoinEnd, 2>& ends);
  std::array<SketchPoint, 4> leftHalf() const {
    return {outline[startNode], outline[endNode], outline[leftEnd], outline[leftStart]};
  }
  std::array<SketchPoint, 4> rightHalf() const {
    return {outline[startNode], outline[rightStart], outline[rightEnd], outline[endNode]};
  }
};

/// What cuts the edges of other walls: a body with the lines that bound its halves.
class WallCutter {
 public:
  WallCutter() = default;
  WallCutter(const JoinAxis& wall, const WallBody& body);

  const JoinAxis& wall() const { return *wall_; }
  const SketchBox& box() const { return box_; }

  /// Of an edge with a body to its left: what this body hides.
  struct Edge {
    SketchPoint from;
    SketchPoint to;
    double length = 0;
  };
  struct Span {
    double begin = 0;  ///< from the start of the edge, as a share of its length
    double end = 0;
  };
  /// Appends what is hidden of an edge of `owner`. Inside another body of the family an edge is hidden, and
  /// inside one of another family that is stronger. Of edges that coincide, opposite ones are hidden both,
  /// and of equal ones that of the weaker wall.
  void hide(const JoinAxis& owner, const Edge& edge, std::vector<Span>& hidden) const;
  /// Appends where this body lies to the right of an edge of `owner`.
  void cover(const JoinAxis& owner, const Edge& edge, std::vector<Span>& covered) const;

 private:
  void findSpans(const JoinAxis& owner, const Edge& edge, bool withEqual, std::vector<Span>& spans) const;
  // The points p with dot(normal, p) + offset >= 0.
  struct Line {
    SketchPoint normal;
    double offset = 0;
    double distance(SketchPoint point) const { return dot(normal, point) + offset; }
  };
  using Half = std::array<Line, 4>;  // the axis comes first: it is no edge

  const JoinAxis* wall_ = nullptr;
  SketchBox box_;
  std::array<Half, 2> halves_;
};

/// A line that is painted of a wall.
struct WallEdge {
  SketchPoint from;
  SketchPoint to;
  bool isFace = false;  ///< runs along the wall; else it is of a cap, a step or a line between families
  friend bool operator==(const WallEdge&, const WallEdge&) = default;
};

/// What is seen of a wall's outline among the bodies that touch it: faces, caps, steps and lines between
/// families, each with the body to its left.
std::vector<WallEdge> visibleEdges(const JoinAxis& wall, const std::array<JoinEnd, 2>& ends,
                                   const WallBody& body, std::span<const WallCutter* const> others);

}  // namespace ostrelon
