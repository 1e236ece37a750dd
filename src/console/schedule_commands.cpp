#include "console/schedule_commands.h"

#include "core/text_table.h"
#include "geometry/opening_operations.h"
#include "geometry/rooms.h"
#include "geometry/takeoff.h"

namespace ostrelon::CommandInterpreter {

ParseResult parseRooms(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() > 1) return WrongUse{};
  return ListRooms{};
}

ParseResult parseTakeoff(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() > 1) return WrongUse{};
  return ShowTakeoff{};
}

Reply run(const ListRooms& /*list*/, const CommandContext& context) {
  const Drawing& drawing = context.sketch.drawing;
  const RoomPlan plan = roomPlan(drawing);
  const TextTable table = roomScheduleTable(plan, drawing.plan.roomNames);
  std::string open;
  std::size_t number = 0;
  for (const NamedRoom& named : namedRooms(plan, drawing.plan.roomNames)) {
    if (named.room == nullptr) open += (open.empty() ? "" : "\n") + openRoomText(drawing, number);
    ++number;
  }
  if (table.size() == 1) {
    return Reply::done(open.empty() ? "No rooms: no walls close in on any place." : open);
  }
  context.messages.appendSystem(columnsText(table) + (open.empty() ? "" : "\n" + open));
  return Reply::silent();
}

Reply run(const ShowTakeoff& /*show*/, const CommandContext& context) {
  const Drawing& drawing = context.sketch.drawing;
  const OpeningLayout openings = openingLayout(context.sketch);
  const TextTable table =
      takeoffTable(takeoff(drawing.entities, drawing.wallSystemSpecs, openings), openings);
  if (table.size() == 1) return Reply::done("The drawing is empty.");
  context.messages.appendSystem(columnsText(table));
  return Reply::silent();
}

}  // namespace ostrelon::CommandInterpreter
