#include "geometry/rooms.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <unordered_set>

#include "core/typed_length.h"
#include "geometry/outline.h"
#include "geometry/wall_grid.h"
#include "geometry/wall_loops.h"

namespace ostrelon {
namespace {

/// A room that fills less of its box than this is told by its area alone.
constexpr double kRectangularShare = 0.95;
/// Faces so near, sketch units, are in line where rooms are put in order.
constexpr double kSamePlace = 1.0 / 192;

// The systems as one family, with those that walls name and the drawing does not have.
std::vector<WallSystemSpec> asOneFamily(const EntityList& entities, std::span<const WallSystemSpec> systems) {
  std::vector<WallSystemSpec> one(systems.begin(), systems.end());
  std::unordered_set<UUID> known;
  for (WallSystemSpec& system : one) {
    system.name = "Wall";
    known.insert(system.id);
  }
  for (const SketchEntity& entity : entities) {
    const auto* wall = std::get_if<WallEntity>(&entity);
    if (wall == nullptr || !known.insert(wall->systemSpecID).second) continue;
    WallSystemSpec system;
    system.id = wall->systemSpecID;
    system.name = "Wall";
    system.thickness = kUnknownWallThickness;
    one.push_back(system);
  }
  return one;
}

}  // namespace

bool Room::contains(SketchPoint point) const {
  return box.contains(point) && isWithinOutline(outline, point) &&
         std::none_of(islands.begin(), islands.end(),
                      [&](const auto& island) { return isWithinOutline(island, point); });
}

bool Room::isRectangular() const {
  return islands.empty() && area >= kRectangularShare * box.width() * box.height();
}

RoomPlan roomPlan(const EntityList& entities, std::span<const WallSystemSpec> systems) {
  RoomPlan plan;
  const auto oneFamily = asOneFamily(entities, systems);
  std::vector<std::vector<SketchPoint>> bodies;  // what lies around walls
  for (WallLoop& loop : wallLoops(JoinedWalls::of(entities, oneFamily))) {
    const double area = signedArea(loop.points);
    plan.wallArea += area;
    if (area > 0) {
      bodies.push_back(std::move(loop.points));
      continue;
    }
    Room room;
    room.area = -area;
    room.perimeter = polygonPerimeter(loop.points);
    room.box = outlineBox(loop.points);
    room.outline = std::move(loop.points);
    plan.rooms.push_back(std::move(room));
  }
  // Rooms side by side lie at the same place but for the last digits.
  const auto place = [](const Room& room) {
    return std::pair(std::round(room.box.minX / kSamePlace), std::round(room.box.minY / kSamePlace));
  };
  std::sort(plan.rooms.begin(), plan.rooms.end(),
            [&](const Room& a, const Room& b) { return place(a) < place(b); });
  if (plan.rooms.empty()) {
    plan.grossArea = plan.wallArea;
    return plan;
  }

  std::vector<SketchBox> boxes;
  double extents = 0;
  for (const Room& room : plan.rooms) {
    boxes.push_back(room.box);
    extents += std::max(room.box.width(), room.box.height());
  }
  const WallGrid grid(boxes, extents / static_cast<double>(boxes.size()));
  for (std::vector<SketchPoint>& body : bodies) {
    // The smallest room around it is the one that it stands in.
    Room* around = nullptr;
    grid.visitNear(SketchBox::centered(body[0], 0), [&](std::uint32_t number) {
      Room& room = plan.rooms[number];
      const double size = std::abs(signedArea(room.outline));
      if (!room.box.contains(body[0]) || !isWithinOutline(room.outline, body[0])) return;
      if (around == nullptr || size < std::abs(signedArea(around->outline))) around = &room;
    });
    const double area = signedArea(body);
    if (around == nullptr) {
      plan.grossArea += area;
      continue;
    }
    around->area -= area;
    around->perimeter += polygonPerimeter(body);
    around->islands.push_back(std::move(body));
  }
  return plan;
}

std::string roomSizeText(const Room& room) {
  if (!room.isRectangular()) return {};
  return formatLength(room.box.width()) + " × " + formatLength(room.box.height());
}

std::string areaText(double squareFeet) { return fmt::format("{:.0f} SF", std::round(squareFeet)); }

TextTable roomScheduleTable(const RoomPlan& plan) {
  TextTable table{{"Room", "Size", "Area", "Perimeter"}};
  double total = 0;
  for (std::size_t i = 0; i < plan.rooms.size(); ++i) {
    const Room& room = plan.rooms[i];
    total += room.area;
    table.push_back(
        {std::to_string(i + 1), roomSizeText(room), areaText(room.area), formatLength(room.perimeter)});
  }
  if (plan.rooms.empty()) return table;
  table.push_back({"Rooms", "", areaText(total), ""});
  table.push_back({"Walls", "", areaText(plan.wallArea), ""});
  table.push_back({"Gross", "", areaText(plan.grossArea), ""});
  return table;
}

}  // namespace ostrelon
