// The rooms of a plan: the holes of all its walls taken together, whatever their systems, with doors and
// windows closed. Sketch units, which are feet.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "core/drawing.h"
#include "core/sketch_box.h"
#include "core/sketch_point.h"
#include "core/text_table.h"
#include "core/wall_system.h"

namespace ostrelon {

struct Room {
  std::vector<SketchPoint> outline;               ///< along the faces of its walls, clockwise
  std::vector<std::vector<SketchPoint>> islands;  ///< around walls that stand free in it, counter-clockwise
  double area = 0;                                ///< square units, without what stands in it
  double perimeter = 0;                           ///< of the outline and the islands
  SketchBox box;                                  ///< around the outline

  bool contains(SketchPoint point) const;
  /// Nearly as large as its box, so that width and height say what it measures.
  bool isRectangular() const;
};

struct RoomPlan {
  std::vector<Room> rooms;  ///< from the left, at the same place from below
  double wallArea = 0;      ///< what the walls cover, each place once
  double grossArea = 0;     ///< within the outer faces of the outermost walls
  /// Around the walls that stand in no room, counter-clockwise: the outlines of the buildings.
  std::vector<std::vector<SketchPoint>> outsides;
};

/// Worked out from all walls that can be joined. A divider is a wall of no thickness to speak of.
RoomPlan roomPlan(const EntityList& entities, std::span<const WallSystemSpec> systems,
                  const SharedList<RoomDivider>& dividers = {});
RoomPlan roomPlan(const Drawing& drawing);

/// `13'-3" × 9'-9"`; empty for a room that is not rectangular.
std::string roomSizeText(const Room& room);
/// `149 SF`, in whole square feet.
std::string areaText(double squareFeet);

/// Where a name of the plan stands.
struct NamedRoom {
  const RoomName* name = nullptr;
  const Room* room = nullptr;  ///< null where no walls close in on the place: the room is open
};
/// The names with their rooms, in the order of the names. Valid as long as both lists.
std::vector<NamedRoom> namedRooms(const RoomPlan& plan, const SharedList<RoomName>& names);
/// What a label says, line by line: the name, the size of a rectangular room, the area. Of an open room the
/// name alone.
std::vector<std::string> roomLabelLines(const NamedRoom& named);

/// The wall end nearest to the place at which no other wall is; absent where each wall meets others at both.
std::optional<SketchPoint> freeWallEnd(const EntityList& entities, std::span<const WallSystemSpec> systems,
                                       SketchPoint place);

/// "Room 2 is open near (26.0, 12.0).": the name at this position of the plan, counted from 1 in the text,
/// and where a wall ends freely; without the place where none does.
std::string openRoomText(const Drawing& drawing, std::size_t position);

/// The schedule as rows of texts with their headings first: Room, Size, Area, Perimeter; then the total of
/// the rooms, the walls and the gross area. A room has its names, or its number where it has none; two names
/// in one room share its row, and open rooms have none. No rooms: the headings alone.
TextTable roomScheduleTable(const RoomPlan& plan, const SharedList<RoomName>& names = {});

}  // namespace ostrelon
