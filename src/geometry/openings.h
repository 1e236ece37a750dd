// Doors, windows and openings on the ground: where in its wall each of them is, whether it fits there, and
// what is drawn of it. Pure functions; sketch units.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/drawing.h"
#include "core/entity_source.h"

namespace ostrelon {

/// What an opening is placed on: a wall, its centre line from start to end, with the thickness that it is
/// painted with.
struct OpeningWall {
  UUID id;
  std::size_t position = 0;  ///< 0-based, in the list
  SketchPoint from;
  SketchPoint to;
  double thickness = 0;

  double length() const { return distanceBetween(from, to); }
  /// The point so far from the start.
  SketchPoint at(double distance) const;
  /// How far along the wall the point is that lies nearest on its line; may be beyond either end.
  double along(SketchPoint point) const;
};

enum class OpeningFit : std::uint8_t {
  fits,
  beyondWall,  ///< wider than the wall, or beyond one of its ends
  overlaps,    ///< another opening is there
  crossed,     ///< another wall crosses, or ends, there
};

/// An opening in its wall.
struct PlacedOpening {
  Opening opening;
  OpeningWall wall;
  OpeningFit fit = OpeningFit::fits;
  /// The one that it overlaps, or the wall that crosses: that one's 0-based position in the list of openings
  /// or of entities.
  std::size_t obstacle = 0;
};

/// Openings that overlap, or reach beyond the wall, by less than this do not: as much as a wall of a few
/// hundred feet may become shorter when a file narrows its ends to 32 bits.
inline constexpr double kOpeningTolerance = 1e-4;

/// Absent for what is no wall, and for walls of no length or of numbers that are not finite.
std::optional<OpeningWall> openingWall(const SketchEntity& entity, std::size_t position,
                                       const std::vector<WallSystemSpec>& systems);

/// Whether the opening fits the wall beside all others, which may hold itself. `entities`: all of the
/// drawing.
PlacedOpening placedOpening(const Opening& opening, const OpeningWall& wall, const EntitySource& entities,
                            const SharedList<Opening>& others);

/// All openings of a drawing whose walls are walls, in their order. Of two that overlap the later one does
/// not fit.
class OpeningLayout {
 public:
  OpeningLayout() = default;
  OpeningLayout(const Drawing& drawing, const EntitySource& entities);

  const std::vector<PlacedOpening>& all() const { return all_; }
  bool empty() const { return all_.empty(); }
  /// Those of a wall, as positions in `all`, from its start to its end.
  const std::vector<std::size_t>& ofWall(const UUID& wallID) const;
  const PlacedOpening* find(const UUID& openingID) const;
  /// How many wait in lines until these are walls again.
  std::size_t waiting() const { return waiting_; }
  /// How many do not fit.
  std::size_t misfits() const;

 private:
  std::vector<PlacedOpening> all_;
  std::unordered_map<UUID, std::vector<std::size_t>> byWall_;
  std::size_t waiting_ = 0;
};

/// The stretches of a wall, from start to end, that its openings leave: distances from the start. One that is
/// the whole wall where it has none that fit.
std::vector<std::pair<double, double>> wallBesideOpenings(const OpeningWall& wall,
                                                          const OpeningLayout& layout);

/// The entities with walls cut open: each stretch beside the openings that fit is a wall by itself, so that
/// joined outlines end at the jambs. The first keeps the wall's identifier.
EntityList cutOpen(const EntityList& entities, const OpeningLayout& openings);

// --- Neighbours

/// The free stretch of a wall around a place.
struct OpeningRoom {
  double from = 0;  ///< the end of the neighbour before, or 0
  double to = 0;    ///< the beginning of the neighbour behind, or the length of the wall
};
/// `without`: an opening that is no neighbour, as the one that is being moved.
OpeningRoom openingRoom(const OpeningWall& wall, double at, const SharedList<Opening>& openings,
                        const std::optional<UUID>& without = std::nullopt);

/// Where an opening of this width goes that is wanted around `middle`, a distance from the wall's start: its
/// near jamb to the inch, and within the free stretch there where that is wide enough.
double roundedDistance(const OpeningWall& wall, double middle, double width,
                       const SharedList<Opening>& openings,
                       const std::optional<UUID>& without = std::nullopt);

// --- What is drawn

struct OpeningArc {
  SketchPoint center;
  double radius = 0;
  double startAngle = 0;  ///< radians; runs counter-clockwise
  double endAngle = 0;
};

struct OpeningShape {
  using Line = std::pair<SketchPoint, SketchPoint>;

  /// The gap in the wall: its corners in order, from the near jamb on the left of the wall's direction.
  std::array<SketchPoint, 4> gap;
  std::array<Line, 2> jambs;
  std::vector<Line> lines;        ///< of a window its faces and its glass
  std::optional<Line> leaf;       ///< of a door, from its hinge to its tip when open
  std::optional<OpeningArc> arc;  ///< of a door, what its tip runs along
};
OpeningShape openingShape(const Opening& opening, const OpeningWall& wall);
/// The box around all that is drawn of it.
SketchBox openingBounds(const OpeningShape& shape);
/// How far a point is from it: 0 in its gap, else the distance to the gap, the leaf or what the leaf's tip
/// runs along. The gap counts between the jambs alone, so that the wall beside it stays the wall.
double distanceToOpening(const OpeningShape& shape, SketchPoint point);

}  // namespace ostrelon
