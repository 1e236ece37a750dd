#include "geometry/rooms.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "core/typed_length.h"
#include "geometry/entity_geometry.h"
#include "geometry/outline.h"
#include "geometry/wall_grid.h"
#include "geometry/wall_loops.h"

namespace ostrelon {
namespace {

/// A room that fills less of its box than this is told by its area alone.
constexpr double kRectangularShare = 0.95;
/// Faces so near, sketch units, are in line where rooms are put in order.
constexpr double kSamePlace = 1.0 / 192;
/// Thin enough to cover nothing that a text shows, and thick enough to be told from a wall that is a line.
constexpr double kDividerThickness = 1e-5;

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

// The entities with a wall for each divider.
EntityList withDividers(const EntityList& entities, const SharedList<RoomDivider>& dividers,
                        std::vector<WallSystemSpec>& systems) {
  if (dividers.empty()) return entities;
  WallSystemSpec system;
  system.id = UUID::random();
  system.name = "Wall";
  system.thickness = kDividerThickness;
  systems.push_back(system);
  EntityList all = entities;
  for (const RoomDivider& divider : dividers) {
    all.append(WallEntity{divider.id, divider.start, divider.end, system.id});
  }
  return all;
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

RoomPlan roomPlan(const Drawing& drawing) {
  return roomPlan(drawing.entities, drawing.wallSystemSpecs, drawing.plan.roomDividers);
}

RoomPlan roomPlan(const EntityList& walls, std::span<const WallSystemSpec> systems,
                  const SharedList<RoomDivider>& dividers) {
  RoomPlan plan;
  auto oneFamily = asOneFamily(walls, systems);
  const EntityList entities = withDividers(walls, dividers, oneFamily);
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
    plan.outsides = std::move(bodies);
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
      plan.outsides.push_back(std::move(body));
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

std::vector<NamedRoom> namedRooms(const RoomPlan& plan, const SharedList<RoomName>& names) {
  std::vector<NamedRoom> named;
  for (const RoomName& name : names) {
    const auto room = std::find_if(plan.rooms.begin(), plan.rooms.end(),
                                   [&](const Room& one) { return one.contains(name.place); });
    named.push_back({&name, room == plan.rooms.end() ? nullptr : &*room});
  }
  return named;
}

std::vector<std::string> roomLabelLines(const NamedRoom& named) {
  std::vector<std::string> lines{named.name->name};
  if (named.room == nullptr) return lines;
  if (std::string size = roomSizeText(*named.room); !size.empty()) lines.push_back(std::move(size));
  lines.push_back(areaText(named.room->area));
  return lines;
}

std::optional<SketchPoint> freeWallEnd(const EntityList& entities, std::span<const WallSystemSpec> systems,
                                       SketchPoint place) {
  struct Body {
    SketchPoint from;
    SketchPoint to;
    double half = 0;
  };
  std::vector<Body> walls;
  for (const SketchEntity& entity : entities) {
    const auto* wall = std::get_if<WallEntity>(&entity);
    if (wall == nullptr) continue;
    const auto system = std::find_if(systems.begin(), systems.end(),
                                     [&](const WallSystemSpec& one) { return one.id == wall->systemSpecID; });
    const double thickness = system == systems.end() ? kUnknownWallThickness : system->thickness;
    walls.push_back({wall->from, wall->to, std::abs(thickness) / 2});
  }
  struct End {
    SketchPoint point;
    std::size_t wall = 0;
    double distance = 0;
  };
  std::vector<End> ends;
  for (std::size_t i = 0; i < walls.size(); ++i) {
    for (const SketchPoint point : {walls[i].from, walls[i].to})
      ends.push_back({point, i, distanceBetween(point, place)});
  }
  std::sort(ends.begin(), ends.end(), [](const End& a, const End& b) { return a.distance < b.distance; });
  for (const End& end : ends) {
    const bool isMet = std::any_of(walls.begin(), walls.end(), [&](const Body& other) {
      return &other != &walls[end.wall] &&
             distanceToSegment(end.point, other.from, other.to) <= other.half + walls[end.wall].half;
    });
    if (!isMet) return end.point;
  }
  return std::nullopt;
}

std::string openRoomText(const Drawing& drawing, std::size_t position) {
  const SketchPoint place = drawing.plan.roomNames[position].place;
  const auto end = freeWallEnd(drawing.entities, drawing.wallSystemSpecs, place);
  if (!end) return fmt::format("Room {} is open.", position + 1);
  return fmt::format("Room {} is open near ({:.1f}, {:.1f}).", position + 1, end->x + 0.0, end->y + 0.0);
}

TextTable roomScheduleTable(const RoomPlan& plan, const SharedList<RoomName>& names) {
  std::unordered_map<const Room*, std::string> namesOf;
  for (const NamedRoom& named : namedRooms(plan, names)) {
    std::string& text = namesOf[named.room];
    text += (text.empty() ? "" : " / ") + named.name->name;
  }
  TextTable table{{"Room", "Size", "Area", "Perimeter"}};
  double total = 0;
  for (std::size_t i = 0; i < plan.rooms.size(); ++i) {
    const Room& room = plan.rooms[i];
    total += room.area;
    const auto name = namesOf.find(&room);
    table.push_back({name == namesOf.end() ? std::to_string(i + 1) : name->second, roomSizeText(room),
                     areaText(room.area), formatLength(room.perimeter)});
  }
  if (plan.rooms.empty()) return table;
  table.push_back({"Rooms", "", areaText(total), ""});
  table.push_back({"Walls", "", areaText(plan.wallArea), ""});
  table.push_back({"Gross", "", areaText(plan.grossArea), ""});
  return table;
}

}  // namespace ostrelon
