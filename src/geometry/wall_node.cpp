#include "geometry/wall_node.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace ostrelon {

namespace {

/// Arms that are straight on within 2 degrees are opposite: the sine of that.
constexpr double kOppositeSine = 0.03489949670250097;
/// The sine below which two arms run in the same direction.
constexpr double kSameDirectionSine = 0.002;
/// The corner of a mitre lies at most so many halves of the thicker wall from the node.
constexpr double kLongestMitre = 8;
/// An end so far from its node, in thicknesses, was drawn there by a chain of others and is not moved.
constexpr double kFarthestFromNode = 0.03;

/// Grows with the angle of a direction, from -2 to 2 (a known stand-in for the angle, without trigonometry).
double angleRank(SketchPoint direction) {
  const double rank = direction.x / (std::abs(direction.x) + std::abs(direction.y));
  return direction.y < 0 ? rank - 1 : 1 - rank;
}

/// How far from `a` a line through it crosses the one through `b` along `v`. `sine`: the cross product of the
/// line's direction and `v`.
double crossingAlong(SketchPoint a, SketchPoint b, SketchPoint v, double sine) {
  return cross(b - a, v) / sine;
}

// The left face of one arm and the right face of the next, counter-clockwise.
void joinFaces(WallArm& arm, WallArm& next, SketchPoint node, bool isBetweenFamilies) {
  const SketchPoint u = arm.direction();
  const SketchPoint v = next.direction();
  const SketchPoint a = arm.end() + perpendicular(u) * arm.wall->half;
  const SketchPoint b = next.end() - perpendicular(v) * next.wall->half;
  const double sine = cross(u, v);
  JoinSide left;
  JoinSide right;
  if (dot(u, v) < 0 && std::abs(sine) <= kOppositeSine) {
    const SketchPoint across = perpendicular(u - v);  // the two differ by nearly 2
    left.pull = crossingAlong(a, node, across, cross(u, across));
    right.pull = crossingAlong(b, node, across, cross(v, across));
    left.join = right.join = WallJoin::step;
    left.point = a + u * left.pull;
    right.point = b + v * right.pull;
    left.other = right.point;
    right.other = left.point;
    left.hasStep = arm.wall->half > next.wall->half;
    right.hasStep = next.wall->half > arm.wall->half;
  } else {
    if (std::abs(sine) < kSameDirectionSine) return;
    left.pull = crossingAlong(a, b, v, sine);
    right.pull = crossingAlong(b, a, u, -sine);
    left.join = right.join = WallJoin::mitre;
    left.point = right.point = a + u * left.pull;
    const double farthest = kLongestMitre * std::max(arm.wall->half, next.wall->half);
    if (squaredLength(left.point - node) > farthest * farthest) return;
  }
  if (std::abs(left.pull) > arm.wall->length || std::abs(right.pull) > next.wall->length) return;
  const bool isLeftStronger = isStronger(*arm.wall, *next.wall);
  left.hasSeam = isBetweenFamilies && isLeftStronger;
  right.hasSeam = isBetweenFamilies && !isLeftStronger;
  arm.joined->left = left;
  next.joined->right = right;
}

// All arms are of one family, or there are two of different ones.
void joinRing(std::span<WallArm> arms, std::vector<int>& ring, bool isBetweenFamilies) {
  const auto arm = [&arms](int number) -> WallArm& { return arms[static_cast<std::size_t>(number)]; };
  if (ring.size() > 2) {
    std::sort(ring.begin(), ring.end(), [&](int a, int b) {
      const double rankA = angleRank(arm(a).direction());
      const double rankB = angleRank(arm(b).direction());
      return rankA != rankB ? rankA < rankB : isStronger(*arm(a).wall, *arm(b).wall);
    });
  }
  // Of arms in the same direction the strongest takes part; the others lie within it and end free.
  const auto sameDirection = [&](int a, int b) {
    const SketchPoint u = arm(a).direction();
    const SketchPoint v = arm(b).direction();
    return dot(u, v) > 0 && std::abs(cross(u, v)) < kSameDirectionSine;
  };
  std::size_t kept = 0;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    if (kept > 0 && sameDirection(ring[kept - 1], ring[i])) {
      if (isStronger(*arm(ring[i]).wall, *arm(ring[kept - 1]).wall)) ring[kept - 1] = ring[i];
      continue;
    }
    ring[kept++] = ring[i];
  }
  if (kept > 2 && sameDirection(ring[kept - 1], ring[0])) {
    if (isStronger(*arm(ring[kept - 1]).wall, *arm(ring[0]).wall)) ring[0] = ring[kept - 1];
    --kept;
  }
  ring.resize(kept);
  if (kept < 2) return;

  int strongest = ring.front();
  for (const int number : ring) {
    if (isStronger(*arm(number).wall, *arm(strongest).wall)) strongest = number;
  }
  const SketchPoint node = arm(strongest).end();
  std::erase_if(ring, [&](int number) {
    return distanceBetween(arm(number).end(), node) > kFarthestFromNode * 2 * arm(number).wall->half;
  });
  if (ring.size() < 2) return;
  for (std::size_t i = 0; i < ring.size(); ++i) {
    WallArm& one = arm(ring[i]);
    WallArm& next = arm(ring[(i + 1) % ring.size()]);
    one.joined->node = node;
    joinFaces(one, next, node, isBetweenFamilies);
    if (one.joined->left.join == WallJoin::cap) continue;
    one.leftPartner = ring[(i + 1) % ring.size()];
    next.rightPartner = ring[i];
  }
}

}  // namespace

void joinArms(std::span<WallArm> arms) {
  for (WallArm& arm : arms) *arm.joined = freeEnd(arm.end());
  if (arms.size() < 2) return;
  if (arms.size() == 2) {
    std::vector<int> both{0, 1};
    joinRing(arms, both, arms[0].wall->family != arms[1].wall->family);
    return;
  }
  std::vector<int> byFamily(arms.size());
  for (std::size_t i = 0; i < arms.size(); ++i) byFamily[i] = static_cast<int>(i);
  const auto family = [&arms](int number) { return arms[static_cast<std::size_t>(number)].wall->family; };
  std::stable_sort(byFamily.begin(), byFamily.end(), [&](int a, int b) { return family(a) < family(b); });
  std::vector<int> ring;
  for (std::size_t i = 0; i < byFamily.size();) {
    ring.clear();
    const WallFamily current = family(byFamily[i]);
    for (; i < byFamily.size() && family(byFamily[i]) == current; ++i) ring.push_back(byFamily[i]);
    if (ring.size() > 1) joinRing(arms, ring, false);
  }
}

}  // namespace ostrelon
