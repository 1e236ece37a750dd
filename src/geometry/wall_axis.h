// A wall as the joining of walls sees it: its centre line, half its painted thickness and its family.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "core/sketch_entity.h"
#include "core/wall_system.h"

namespace ostrelon {

/// Walls of one family open into one another; between walls of different families the line stays. Systems
/// are of one family whose names are the same up to the first hyphen; unknown systems are one family.
using WallFamily = std::uint32_t;

struct JoinAxis {
  UUID id;
  UUID system;
  SketchPoint from;
  SketchPoint to;
  SketchPoint direction;  ///< from start to end, of length 1
  double length = 0;      ///< sketch units
  double half = 0;        ///< half the thickness, sketch units, above 0
  WallFamily family = 0;

  /// The end at the start (0) or at the end (1) of the wall.
  SketchPoint end(int which) const { return which == 0 ? from : to; }
  /// Away from that end, along the wall.
  SketchPoint inward(int which) const { return which == 0 ? direction : direction * -1; }
  friend bool operator==(const JoinAxis&, const JoinAxis&) = default;
};

/// How near points must come to be one, as a share of the thinner wall's thickness.
inline constexpr double kNodeTolerance = 0.01;

/// Edges so near, as a share of the thinner wall's thickness, coincide.
inline constexpr double kCoincidence = 1e-4;

/// Ends of these two walls that are no farther apart meet, sketch units.
inline double nodeReach(double half, double otherHalf) {
  return 2 * kNodeTolerance * (half < otherHalf ? half : otherHalf);
}

/// An order of all walls that depends on nothing but themselves: where two of different families overlap, the
/// stronger one's outline stays, and of edges that coincide the stronger one's is painted. Thickness first.
bool isStronger(const JoinAxis& a, const JoinAxis& b);

/// Thicknesses and families by system.
class WallStyles {
 public:
  explicit WallStyles(std::span<const WallSystemSpec> systems);

  /// The wall, where it can be joined: not one of no length or thickness, or shorter than a tenth of its
  /// thickness, nor one of numbers that are not finite or too large to tell its faces apart.
  std::optional<JoinAxis> axis(const WallEntity& wall) const;

 private:
  struct Style {
    UUID system;
    double half = 0;
    WallFamily family = 0;
  };
  std::vector<Style> styles_;
  Style unknown_;
};

}  // namespace ostrelon
