#include "console/room_commands.h"

#include <fmt/format.h>

#include <utility>

#include "console/command_words.h"
#include "core/plan_items.h"
#include "geometry/rooms.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseRoom(const Words& words, const ParseState& /*state*/, Place /*where*/) {
  const auto place = readPointAt(words, 1);
  if (const auto* refusal = std::get_if<ParseResult>(&place)) return *refusal;
  const auto [point, next] = std::get<PointInWords>(place);
  NameRoom room{point, {}};
  if (next < words.size()) room.name = joinedWords(words, next);
  if (room.name.empty()) return WrongUse{};
  return room;
}

Reply run(const NameRoom& named, const CommandContext& context) {
  Sketch& sketch = context.sketch;
  const RoomName room{UUID::random(), named.place, named.name, {}};
  sketch.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, room); });
  const Drawing& drawing = sketch.drawing;
  const RoomPlan plan = roomPlan(drawing);
  const SharedList<RoomName> added{room};
  const std::vector<NamedRoom> rooms = namedRooms(plan, added);
  if (rooms.front().room != nullptr) {
    return Reply::done(fmt::format("Room {} added, {}.", named.name, areaText(rooms.front().room->area)));
  }
  return Reply::done(fmt::format("Room {} added. ", named.name) +
                     openRoomText(drawing, drawing.plan.roomNames.size() - 1));
}

ParseResult parseDivide(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  const auto start = readPointAt(words, 1);
  if (const auto* refusal = std::get_if<ParseResult>(&start)) return *refusal;
  const auto end = readPointAt(words, std::get<PointInWords>(start).next);
  if (const auto* refusal = std::get_if<ParseResult>(&end)) return *refusal;
  if (std::get<PointInWords>(end).next < words.size()) return WrongUse{};
  const PartRooms part{std::get<PointInWords>(start).point, std::get<PointInWords>(end).point};
  if (part.start == part.end) return Reply::error("The two ends of a divider must be two places.");
  return part;
}

Reply run(const PartRooms& part, const CommandContext& context) {
  const RoomDivider divider{UUID::random(), part.start, part.end};
  const std::size_t before = roomPlan(context.sketch.drawing).rooms.size();
  context.sketch.edit([&](Drawing& drawing) { putPlanItem(drawing.plan, divider); });
  const std::size_t after = roomPlan(context.sketch.drawing).rooms.size();
  return Reply::done(after > before ? "Divider added." : "Divider added. It parts no room.");
}

}  // namespace ostrelon::CommandInterpreter
