// The drawing entity: a tagged variant of six plain records. Coordinates, lengths and radii are in
// sketch units; the angles of an arc are radians. Every record carries its identifier first, which
// stays with the entity through all edits; the numbers that users see are positions in the list.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "core/shared_list.h"
#include "core/sketch_point.h"
#include "platform/uuid.h"

namespace ostrelon {

class EntityList;

/// Copies share it.
using PolygonVertices = SharedList<SketchPoint>;

struct LineEntity {
  UUID id;
  SketchPoint from;
  SketchPoint to;
  friend bool operator==(const LineEntity&, const LineEntity&) = default;
};

/// `systemSpecID` names a `WallSystemSpec`; the system may be gone, and is then unknown.
struct WallEntity {
  UUID id;
  SketchPoint from;
  SketchPoint to;
  UUID systemSpecID;
  friend bool operator==(const WallEntity&, const WallEntity&) = default;
};

struct CircleEntity {
  UUID id;
  SketchPoint center;
  double radius = 0;
  friend bool operator==(const CircleEntity&, const CircleEntity&) = default;
};

/// Runs counter-clockwise from `startAngle` to `endAngle`, radians.
struct ArcEntity {
  UUID id;
  SketchPoint center;
  double radius = 0;
  double startAngle = 0;
  double endAngle = 0;
  friend bool operator==(const ArcEntity&, const ArcEntity&) = default;
};

/// `origin` is a corner from which `size` extends; a size may be negative.
struct RectangleEntity {
  UUID id;
  SketchPoint origin;
  SketchSize size;
  friend bool operator==(const RectangleEntity&, const RectangleEntity&) = default;
};

/// Closed: the last vertex joins the first, which is not repeated.
struct PolygonEntity {
  UUID id;
  PolygonVertices vertices;
  friend bool operator==(const PolygonEntity&, const PolygonEntity&) = default;
};

/// Equality is exact, identifiers included.
using SketchEntity =
    std::variant<LineEntity, WallEntity, CircleEntity, ArcEntity, RectangleEntity, PolygonEntity>;
static_assert(sizeof(SketchEntity) <= 80, "a million entities must stay small");

/// Joins lambdas into one visitor. Visitors name every case, so that a new one cannot be forgotten.
template <class... Visitors>
struct Overloaded : Visitors... {
  using Visitors::operator()...;
};
template <class... Visitors>
Overloaded(Visitors...) -> Overloaded<Visitors...>;

// --- Naming

const UUID& entityID(const SketchEntity& entity);
/// The same entity under another identifier.
SketchEntity withEntityID(SketchEntity entity, const UUID& id);
/// "line", "wall", "circle", "arc", "rectangle", "polygon".
std::string_view entityKindName(const SketchEntity& entity);
/// "Line", "Wall", "Circle", "Arc", "Rectangle", "Polygon".
std::string_view entityTypeLabel(const SketchEntity& entity);
/// The 1-based position of the entity with this identifier. Linear in the list.
std::optional<int> entityNumber(const UUID& id, const EntityList& entities);
/// "Line 3"; a wall whose system is known adds it: "Wall 2 (W2-EXT)".
std::string entityLabel(const SketchEntity& entity, int number,
                        const std::optional<std::string>& wallSystemName = std::nullopt);
/// The one-line description that goes to the console; a wall of no known system says "unknown".
std::string entityDescription(const SketchEntity& entity,
                              const std::optional<std::string>& wallSystemName = std::nullopt);

// --- Measuring

/// The read-only summary that the inspector shows. Lengths in sketch units, `angle` in degrees.
struct EntityMetrics {
  std::string entityType;
  std::optional<SketchPoint> from;
  std::optional<SketchPoint> to;
  std::optional<double> length;
  std::optional<double> width;
  std::optional<double> angle;
  std::optional<double> area;
  std::optional<int> vertexCount;
  friend bool operator==(const EntityMetrics&, const EntityMetrics&) = default;
};

EntityMetrics entityMetrics(const SketchEntity& entity, std::optional<double> wallThickness = std::nullopt);

/// Sum of all edges, the closing one included; 0 for fewer than 2 vertices.
double polygonPerimeter(const std::vector<SketchPoint>& vertices);
/// Absolute shoelace area; 0 for fewer than 3 vertices.
double polygonArea(const std::vector<SketchPoint>& vertices);
/// The outline of a wall: four corners in the order from + n, to + n, to - n, from - n, where n is
/// the left normal of half the thickness. A wall of no length has none.
std::vector<SketchPoint> wallCorners(SketchPoint from, SketchPoint to, double thickness);

}  // namespace ostrelon
