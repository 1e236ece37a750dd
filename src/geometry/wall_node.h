// How walls meet at a node, where ends of two or more of them come together.
//
// Seen from the node, each wall is an arm. The arms of one family are sorted by angle, and the left face of
// each is joined with the right face of the next one: both run to the point where they cross. Opposite arms
// meet in a line across the node, with a step where their thicknesses differ. Arms whose faces would meet too
// far away keep their caps. Where a family has one arm alone at a node, that arm ends as if it stood free,
// unless there are just two arms: these are joined, and a line stays between them.
#pragma once

#include <array>
#include <span>

#include "geometry/wall_axis.h"

namespace ostrelon {

enum class WallJoin : std::uint8_t {
  cap,    ///< the face ends at the wall's end, with a cap from there to the middle
  mitre,  ///< the face ends where it meets the next arm's
  step,   ///< the face ends at the line across the node, opposite the next arm's
};

/// One face of an arm at its node.
struct JoinSide {
  WallJoin join = WallJoin::cap;
  /// The walls that are joined here are of different families, and this one paints the line between.
  bool hasSeam = false;
  /// This wall is the thicker one of a step and paints it.
  bool hasStep = false;
  /// From the wall's end to where the face ends, along the wall, sketch units; of a mitre that was given up
  /// where it would have ended.
  double pull = 0;
  SketchPoint point;  ///< where the face ends, except at a cap
  SketchPoint other;  ///< of a step: where the other wall's face ends
  friend bool operator==(const JoinSide&, const JoinSide&) = default;
};

/// One end of a wall; left and right as seen from the end into the wall.
struct JoinEnd {
  SketchPoint node;  ///< the point shared by the walls that are joined, else the wall's own end
  JoinSide left;
  JoinSide right;
  friend bool operator==(const JoinEnd&, const JoinEnd&) = default;
};

/// The end of a wall that is joined with nothing.
inline JoinEnd freeEnd(SketchPoint end) { return {end, {}, {}}; }

/// An end of a wall that takes part in a node.
struct WallArm {
  const JoinAxis* wall = nullptr;
  int which = 0;  ///< 0: the wall's start, 1: its end
  JoinEnd* joined = nullptr;
  // The arms to which its faces are joined, by their place in the node; -1 for none.
  int leftPartner = -1;
  int rightPartner = -1;

  SketchPoint end() const { return wall->end(which); }
  SketchPoint direction() const { return wall->inward(which); }
};

/// Joins the arms of one node: writes `joined` and the partners of each.
void joinArms(std::span<WallArm> arms);

/// The mitres of a face may lie so far along the wall at both ends that nothing is left of it: then they are
/// given up, by this wall and by those on the other sides of them. True for the left or the right face, as
/// seen from the wall's start.
inline bool isLeftOverdrawn(const JoinAxis& wall, const std::array<JoinEnd, 2>& ends) {
  return ends[0].left.pull + ends[1].right.pull > wall.length * (1 - 1e-9);
}
inline bool isRightOverdrawn(const JoinAxis& wall, const std::array<JoinEnd, 2>& ends) {
  return ends[0].right.pull + ends[1].left.pull > wall.length * (1 - 1e-9);
}
/// Gives up the mitre of one face, which ends in a cap then.
inline void giveUp(JoinSide& side) {
  if (side.join == WallJoin::mitre) side = {WallJoin::cap, false, false, side.pull, {}, {}};
}

}  // namespace ostrelon
