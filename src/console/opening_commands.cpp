#include "console/opening_commands.h"

#include <fmt/format.h>

#include <utility>

#include "console/command_words.h"
#include "core/length_text.h"
#include "geometry/opening_operations.h"
#include "geometry/opening_schedule.h"

namespace ostrelon::CommandInterpreter {
namespace {

// The words of a door behind its width: a hinge, a swing, or both in either order.
bool readDoorWords(const Words& words, std::size_t first, AddOpening& door) {
  bool hasHinge = false;
  bool hasSwing = false;
  for (std::size_t i = first; i < words.size(); ++i) {
    const std::string word = lowerCasedWord(words, i);
    if (!hasHinge && (word == "left" || word == "right")) {
      door.hinge = word == "left" ? DoorHinge::left : DoorHinge::right;
      hasHinge = true;
    } else if (!hasSwing && (word == "in" || word == "out")) {
      door.swing = word == "in" ? DoorSwing::in : DoorSwing::out;
      hasSwing = true;
    } else {
      return false;
    }
  }
  return true;
}

ParseResult parseAny(OpeningKind kind, const Words& words) {
  if (words.size() < 4) return WrongUse{};
  const auto wall = parseEntityNumber(words[1]);
  if (!wall || *wall < 1) return WrongUse{};
  AddOpening add;
  add.kind = kind;
  add.wall = *wall;
  std::size_t next = 2;
  if (lowerCasedWord(words, next) == "mid") {
    ++next;
  } else {
    const auto distance = readLengthAt(words, next);
    if (const auto* reply = std::get_if<Reply>(&distance)) return *reply;
    add.distance = std::get<LengthInWords>(distance).value;
    next = std::get<LengthInWords>(distance).next;
  }
  if (next >= words.size()) return WrongUse{};
  const auto width = readLengthAt(words, next);
  if (const auto* reply = std::get_if<Reply>(&width)) return *reply;
  add.width = std::get<LengthInWords>(width).value;
  next = std::get<LengthInWords>(width).next;
  if (!(add.width > 0)) return Reply::refused("The width must be greater than zero.");
  if (kind != OpeningKind::door && next != words.size()) return WrongUse{};
  if (!readDoorWords(words, next, add)) return WrongUse{};
  return add;
}

}  // namespace

ParseResult parseDoor(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  return parseAny(OpeningKind::door, words);
}

ParseResult parseWindow(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  return parseAny(OpeningKind::window, words);
}

ParseResult parseOpening(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  return parseAny(OpeningKind::opening, words);
}

ParseResult parseOpenings(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() > 1) return WrongUse{};
  return ListOpenings{};
}

Reply run(const AddOpening& add, const CommandContext& context) {
  Sketch& sketch = context.sketch;
  if (static_cast<std::uint64_t>(add.wall) > sketch.entities().size()) {
    return Reply::refused(fmt::format("No entity at index {}.", add.wall));
  }
  const SketchEntity& entity = sketch.entities()[static_cast<std::size_t>(add.wall - 1)];
  const auto wall = openingWall(sketch, entityID(entity));
  if (!wall) {
    if (!std::holds_alternative<WallEntity>(entity)) {
      return Reply::refused(fmt::format("Entity {} is not a wall.", add.wall));
    }
    return Reply::refused(fmt::format("Wall {} has no length.", add.wall));
  }
  const double distance = add.distance.value_or(centeredDistance(*wall, add.width));
  const Opening opening{UUID::random(), wall->id, add.kind, distance, add.width, add.hinge, add.swing};
  const auto placed = addOpening(sketch, opening);
  if (placed->fit != OpeningFit::fits) {
    return Reply::refused(openingMisfitText(*placed, sketch.drawing->plan));
  }
  return Reply::done(fmt::format("{} added to Wall {}.", openingTypeLabel(add.kind), add.wall));
}

Reply run(const ListOpenings& /*list*/, const CommandContext& context) {
  context.messages.appendSystem(
      openingScheduleText(openingLayout(context.sketch), context.sketch.drawing->plan));
  return Reply::silent();
}

}  // namespace ostrelon::CommandInterpreter
