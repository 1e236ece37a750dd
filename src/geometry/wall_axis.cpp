#include "geometry/wall_axis.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <tuple>

namespace ostrelon {

namespace {

/// A wall must be so long, in thicknesses, for its ends to be joined apart from each other.
constexpr double kShortest = 0.1;
/// Coordinates may be so many thicknesses from the origin: beyond, rounding moves the faces.
constexpr double kFarthest = 1e8;
/// Products of three lengths must stay numbers.
constexpr double kThinnest = 1e-90;
constexpr double kThickest = 1e90;

std::string_view familyName(std::string_view systemName) {
  return systemName.substr(0, systemName.find('-'));
}

}  // namespace

bool isStronger(const JoinAxis& a, const JoinAxis& b) {
  if (a.half != b.half) return a.half > b.half;
  const auto key = [](const JoinAxis& wall) {
    return std::tuple(wall.family, wall.from.x, wall.from.y, wall.to.x, wall.to.y, wall.id);
  };
  return key(a) < key(b);
}

WallStyles::WallStyles(std::span<const WallSystemSpec> systems)
    : unknown_{{}, kUnknownWallThickness / 2, static_cast<WallFamily>(systems.size())} {
  std::vector<std::string_view> families;
  for (const WallSystemSpec& spec : systems) {
    const std::string_view family = familyName(spec.name);
    const auto found = std::find(families.begin(), families.end(), family);
    const auto number = static_cast<WallFamily>(found - families.begin());
    if (found == families.end()) families.push_back(family);
    styles_.push_back({spec.id, std::abs(spec.thickness) / 2, number});
  }
}

std::optional<JoinAxis> WallStyles::axis(const WallEntity& wall) const {
  const Style* style = &unknown_;
  for (const Style& known : styles_) {
    if (known.system != wall.systemSpecID) continue;
    style = &known;
    break;
  }
  const double thickness = 2 * style->half;
  const SketchPoint along = wall.to - wall.from;
  const double length = std::sqrt(squaredLength(along));
  const double farthest =
      std::max({std::abs(wall.from.x), std::abs(wall.from.y), std::abs(wall.to.x), std::abs(wall.to.y)});
  // Written so that what is not a number is refused.
  if (!(thickness >= kThinnest && thickness <= kThickest) || !(length >= kShortest * thickness) ||
      !(farthest <= kFarthest * thickness)) {
    return std::nullopt;
  }
  return JoinAxis{wall.id, wall.systemSpecID, wall.from,    wall.to, {along.x / length, along.y / length},
                  length,  style->half,       style->family};
}

}  // namespace ostrelon
