#include "console/room_commands.h"

#include <fmt/format.h>

#include <utility>

#include "console/command_words.h"
#include "core/plan_items.h"
#include "geometry/rooms.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseRoom(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  NameRoom room;
  std::size_t next = 1;
  for (double* coordinate : {&room.place.x, &room.place.y}) {
    if (next >= words.size()) return WrongUse{};
    const auto length = readLengthAt(words, next);
    if (const auto* reply = std::get_if<Reply>(&length)) return *reply;
    *coordinate = std::get<LengthInWords>(length).value;
    next = std::get<LengthInWords>(length).next;
  }
  if (next < words.size()) room.name = joinedWords(words, next);
  if (room.name.empty()) return WrongUse{};
  return room;
}

Reply run(const NameRoom& named, const CommandContext& context) {
  Sketch& sketch = context.sketch;
  const RoomName room{UUID::random(), named.place, named.name, {}};
  sketch.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, room); });
  const Drawing& drawing = sketch.drawing;
  const RoomPlan plan = roomPlan(drawing.entities, drawing.wallSystemSpecs);
  const SharedList<RoomName> added{room};
  const std::vector<NamedRoom> rooms = namedRooms(plan, added);
  if (rooms.front().room != nullptr) {
    return Reply::done(fmt::format("Room {} added, {}.", named.name, areaText(rooms.front().room->area)));
  }
  return Reply::done(fmt::format("Room {} added. ", named.name) +
                     openRoomText(drawing, drawing.plan.roomNames.size() - 1));
}

}  // namespace ostrelon::CommandInterpreter
