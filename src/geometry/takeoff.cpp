#include "geometry/takeoff.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "core/circle.h"
#include "core/half_plane.h"
#include "core/typed_length.h"
#include "geometry/joined_walls.h"
#include "geometry/opening_schedule.h"
#include "geometry/outline.h"
#include "geometry/rooms.h"
#include "geometry/wall_grid.h"

namespace ostrelon {
namespace {

constexpr std::string_view kUnknownSystem = "Unknown system";

// What two convex polygons share, both counter-clockwise.
double sharedArea(std::span<const SketchPoint> a, std::span<const SketchPoint> b) {
  std::vector<SketchPoint> rest(a.begin(), a.end());
  for (std::size_t i = 0; i < b.size() && rest.size() > 2; ++i) {
    const SketchPoint from = b[i];
    const SketchPoint along = b[(i + 1) % b.size()] - from;
    const auto side = [&](SketchPoint p) { return cross(along, p - from); };
    rest = cutByHalfPlane(
        rest, [&](SketchPoint p) { return side(p) >= 0; },
        [&](SketchPoint p, SketchPoint q) { return p + (q - p) * (side(p) / (side(p) - side(q))); });
  }
  return rest.size() > 2 ? std::abs(signedArea(rest)) : 0;
}

double sharedArea(const WallBody& a, const WallBody& b) {
  double area = 0;
  for (const auto& mine : {a.leftHalf(), a.rightHalf()}) {
    for (const auto& other : {b.leftHalf(), b.rightHalf()}) area += sharedArea(mine, other);
  }
  return area;
}

// What each wall covers that no stronger one does, by its identifier.
std::unordered_map<UUID, double> groundOfWalls(const EntityList& entities,
                                               std::span<const WallSystemSpec> systems) {
  std::unordered_map<UUID, double> ground;
  const JoinedWalls joined = JoinedWalls::of(entities, systems);
  std::vector<const JoinedWall*> walls;
  std::vector<SketchBox> boxes;
  double extents = 0;
  joined.visitAll([&](const JoinedWall& wall) {
    walls.push_back(&wall);
    boxes.push_back(wall.body.box);
    extents += std::max(wall.body.box.width(), wall.body.box.height());
  });
  if (walls.empty()) return ground;
  const WallGrid grid(boxes, extents / static_cast<double>(boxes.size()));
  for (std::size_t i = 0; i < walls.size(); ++i) {
    const JoinedWall& wall = *walls[i];
    double area = signedArea(wall.body.outline);
    std::vector<std::uint32_t> near;
    grid.visitNear(boxes[i], [&](std::uint32_t other) {
      if (other != i && boxes[other].overlaps(boxes[i])) near.push_back(other);
    });
    std::sort(near.begin(), near.end());
    near.erase(std::unique(near.begin(), near.end()), near.end());
    for (const std::uint32_t other : near) {
      if (isStronger(walls[other]->wall, wall.wall)) area -= sharedArea(wall.body, walls[other]->body);
    }
    ground.emplace(wall.wall.id, std::max(0.0, area));
  }
  return ground;
}

// The lengths and areas of what is no wall.
ShapeTakeoff measured(const SketchEntity& entity) {
  return std::visit(
      Overloaded{
          [](const LineEntity& line) {
            return ShapeTakeoff{"Lines", 1, distanceBetween(line.from, line.to), 0};
          },
          [](const WallEntity&) { return ShapeTakeoff{}; },
          [](const CircleEntity& circle) {
            return ShapeTakeoff{"Circles", 1, kFullTurn * circle.radius,
                                kFullTurn / 2 * circle.radius * circle.radius};
          },
          [](const ArcEntity& arc) {
            return ShapeTakeoff{"Arcs", 1, arc.radius * arcSpan(arc.startAngle, arc.endAngle), 0};
          },
          [](const RectangleEntity& rectangle) {
            const double width = std::abs(rectangle.size.width);
            const double height = std::abs(rectangle.size.height);
            return ShapeTakeoff{"Rectangles", 1, 2 * (width + height), width * height};
          },
          [](const PolygonEntity& polygon) {
            return ShapeTakeoff{"Polygons", 1, polygonPerimeter(polygon.vertices.list()),
                                polygonArea(polygon.vertices.list())};
          },
      },
      entity);
}

std::string volumeText(double cubicFeet) { return fmt::format("{:.0f} CF", std::round(cubicFeet)); }

}  // namespace

Takeoff takeoff(const EntityList& entities, std::span<const WallSystemSpec> systems,
                const OpeningLayout& openings) {
  const auto ground = groundOfWalls(entities, systems);
  std::vector<WallTakeoff> bySystem(systems.size() + 1);
  std::vector<double> heights(systems.size() + 1, 0);
  for (std::size_t i = 0; i < systems.size(); ++i) {
    bySystem[i].system = systems[i].name;
    heights[i] = systems[i].height;
  }
  bySystem.back().system = kUnknownSystem;
  std::vector<ShapeTakeoff> shapes{{"Lines"}, {"Circles"}, {"Arcs"}, {"Rectangles"}, {"Polygons"}};
  for (const SketchEntity& entity : entities) {
    const auto* wall = std::get_if<WallEntity>(&entity);
    if (wall == nullptr) {
      const ShapeTakeoff one = measured(entity);
      for (ShapeTakeoff& kind : shapes) {
        if (kind.kind != one.kind) continue;
        ++kind.count;
        if (std::isfinite(one.length)) kind.length += one.length;
        if (std::isfinite(one.area)) kind.area += one.area;
      }
      continue;
    }
    const auto found = std::find_if(systems.begin(), systems.end(), [&](const WallSystemSpec& system) {
      return system.id == wall->systemSpecID;
    });
    const auto number = static_cast<std::size_t>(found - systems.begin());
    WallTakeoff& row = bySystem[number];
    ++row.walls;
    const auto covered = ground.find(wall->id);
    if (covered == ground.end()) continue;
    double open = 0;
    double thickness = 0;
    for (const std::size_t place : openings.ofWall(wall->id)) {
      const PlacedOpening& placed = openings.all()[place];
      if (placed.fit != OpeningFit::fits) continue;
      open += placed.opening.width;
      thickness = std::abs(placed.wall.thickness);
    }
    const double length = distanceBetween(wall->from, wall->to);
    row.length += length;
    row.faceArea += heights[number] * std::max(0.0, length - open);
    row.volume += heights[number] * std::max(0.0, covered->second - open * thickness);
  }
  Takeoff result;
  for (WallTakeoff& row : bySystem) {
    if (row.walls > 0) result.walls.push_back(std::move(row));
  }
  for (ShapeTakeoff& kind : shapes) {
    if (kind.count > 0) result.shapes.push_back(std::move(kind));
  }
  return result;
}

TextTable takeoffTable(const Takeoff& takeoff, const OpeningLayout& openings) {
  TextTable table{{"Item", "Count", "Length", "Area", "Volume"}};
  for (const WallTakeoff& row : takeoff.walls) {
    table.push_back({"Walls " + row.system, std::to_string(row.walls), formatLength(row.length),
                     areaText(row.faceArea), volumeText(row.volume)});
  }
  for (const OpeningScheduleRow& row : openingSchedule(openings)) {
    const std::string kind(openingTypeLabel(row.kind));
    table.push_back(
        {fmt::format("{}s {}", kind, formatLength(row.width)), std::to_string(row.count), "", "", ""});
  }
  for (const ShapeTakeoff& row : takeoff.shapes) {
    table.push_back({row.kind, std::to_string(row.count), formatLength(row.length),
                     row.area > 0 ? areaText(row.area) : std::string(), ""});
  }
  return table;
}

}  // namespace ostrelon
