#include "geometry/opening_operations.h"

#include <fmt/format.h>

#include <utility>

#include "core/typed_length.h"

namespace ostrelon {
namespace {

constexpr double kInch = 1.0 / 12;
constexpr double kBetweenCopies = 0.5;  // sketch units
constexpr int kMostPlaces = 2400;       // that are tried on one side, an inch apart

}  // namespace

std::optional<OpeningWall> openingWall(const Sketch& sketch, const UUID& wallID) {
  const auto position = sketch.positionOf(wallID);
  if (!position) return std::nullopt;
  return openingWall(sketch.entities()[*position], *position, sketch.drawing->wallSystemSpecs);
}

std::optional<PlacedOpening> placedOpening(const Sketch& sketch, const Opening& opening) {
  const auto wall = openingWall(sketch, opening.wallID);
  if (!wall) return std::nullopt;
  return placedOpening(opening, *wall, sketch.index(), sketch.drawing->plan.openings);
}

OpeningLayout openingLayout(const Sketch& sketch) {
  if (sketch.drawing->plan.openings.empty()) return {};
  return {sketch.drawing, sketch.index()};
}

double centeredDistance(const OpeningWall& wall, double width) { return (wall.length() - width) / 2; }

std::optional<PlacedOpening> addOpening(Sketch& sketch, const Opening& opening) {
  auto placed = placedOpening(sketch, opening);
  if (!placed || placed->fit != OpeningFit::fits) return placed;
  sketch.edit([&](Drawing& drawing) {
    std::vector<Opening> openings = drawing.plan.openings.list();
    openings.push_back(opening);
    drawing.plan.openings = std::move(openings);
  });
  return placed;
}

std::optional<Opening> copyBeside(const Sketch& sketch, const Opening& opening) {
  Opening copy = opening;
  copy.id = UUID::random();
  for (const int side : {1, -1}) {
    copy.distance = opening.distance + side * (opening.width + kBetweenCopies);
    for (int place = 0; place < kMostPlaces; ++place) {
      const auto placed = placedOpening(sketch, copy);
      if (!placed || placed->fit == OpeningFit::beyondWall) break;
      if (placed->fit == OpeningFit::fits) return copy;
      if (placed->fit == OpeningFit::overlaps) {
        const Opening& other = sketch.drawing->plan.openings[placed->obstacle];
        copy.distance = side > 0 ? other.distance + other.width + kBetweenCopies
                                 : other.distance - copy.width - kBetweenCopies;
      } else {
        copy.distance += side * kInch;
      }
    }
  }
  return std::nullopt;
}

std::string openingMisfitText(const PlacedOpening& placed, const Plan& plan) {
  const std::size_t number = placed.wall.position + 1;
  switch (placed.fit) {
    case OpeningFit::fits:
      return {};
    case OpeningFit::beyondWall:
      return fmt::format("Does not fit Wall {} ({}).", number, formatLength(placed.wall.length()));
    case OpeningFit::overlaps: {
      const Opening& other = plan.openings[placed.obstacle];
      return fmt::format("Overlaps the {} at {} in Wall {}.", openingKindName(other.kind),
                         formatLength(other.distance), number);
    }
    case OpeningFit::crossed:
      return fmt::format("Wall {} crosses Wall {} there.", placed.obstacle + 1, number);
  }
  return {};
}

}  // namespace ostrelon
