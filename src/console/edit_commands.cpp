#include "console/edit_commands.h"

#include "console/command_words.h"
#include "geometry/edit_operations.h"

namespace ostrelon::CommandInterpreter {
namespace {

// What a command says of an edit: its own words for a success, a bad value and an entity that the edit
// does not apply to.
Reply editReply(EntityEditResult result, std::string applied, std::string invalid, std::string unsupported) {
  switch (result) {
    case EntityEditResult::applied:
      return Reply::done(std::move(applied));
    case EntityEditResult::unchanged:
      return Reply::done("No change.");
    case EntityEditResult::noSelection:
      return Reply::refused("Select an entity first.");
    case EntityEditResult::invalidValue:
      return Reply::refused(std::move(invalid));
    case EntityEditResult::unsupported:
      return Reply::refused(std::move(unsupported));
  }
  return Reply::done(std::move(applied));
}

const SketchEntity* primarySelection(const Sketch& sketch) {
  const auto& primary = sketch.selection->primary;
  return primary ? sketch.entity(*primary) : nullptr;
}

bool isWall(const SketchEntity* entity) {
  return entity != nullptr && std::holds_alternative<WallEntity>(*entity);
}

// What the chain made comes after the entities of the document, which their index finds; so the search begins
// at the end.
const SketchEntity* findEntity(const UUID& id, const ParseState& state) {
  if (const SketchEntity* found = state.sketch->entity(id)) return found;
  for (std::size_t i = state.entities.size(); i > 0; --i) {
    const SketchEntity& made = state.entities[i - 1];
    if (entityID(made) == id) return &made;
  }
  return nullptr;
}

// A chain asks for a selection of one, since the primary one is not known before it runs.
bool hasWallToAssign(const ParseState& state, Place place) {
  if (place == Place::alone) return selectedWallID(*state.sketch).has_value();
  return state.selected().size() == 1 && isWall(findEntity(*state.selected().begin(), state));
}

std::string_view wordOf(EntityConversionTarget target) {
  return target == EntityConversionTarget::wall ? "wall" : "line";
}

}  // namespace

std::optional<UUID> selectedWallID(const Sketch& sketch) {
  const SketchEntity* primary = primarySelection(sketch);
  if (!isWall(primary)) return std::nullopt;
  const UUID& id = entityID(*primary);
  return sketch.isSelected(id) ? std::optional(id) : std::nullopt;
}

ParseResult parseAssign(const Words& words, const ParseState& state, Place place) {
  const WallSystemSpec* spec =
      words.size() == 2 ? state.drawing().wallSystem(std::string_view(words[1])) : nullptr;
  if (spec == nullptr || !hasWallToAssign(state, place)) return WrongUse{};
  return AssignWallSystem{spec->id};
}

ParseResult parseMove(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  const auto n = readNumbers(words, 2);
  if (!n) return WrongUse{};
  return MoveSelectedLine{(*n)[0], (*n)[1]};
}

ParseResult parseLength(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  const auto n = readNumbers(words, 1);
  if (!n || !(n->front() > 0)) return WrongUse{};
  return SetSelectedLength{n->front(), words[1]};
}

ParseResult parseNudge(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  const auto n = readNumbers(words, 2);
  if (!n) return WrongUse{};
  return NudgeSelection{(*n)[0], (*n)[1]};
}

ParseResult parseCenter(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  const std::string axis = words.size() == 2 ? lowerCasedWord(words, 1) : std::string();
  if (axis == "h") return AlignSelection{AlignmentAxis::horizontal};
  if (axis == "v") return AlignSelection{AlignmentAxis::vertical};
  return WrongUse{};
}

ParseResult parseConvert(const Words& words, const ParseState& state, Place /*place*/) {
  const std::string target = words.size() <= 3 ? lowerCasedWord(words, 1) : std::string();
  if (target == "line") return ConvertSelection{EntityConversionTarget::line, std::nullopt};
  if (target != "wall") return WrongUse{};
  ConvertSelection toWall{EntityConversionTarget::wall, std::nullopt};
  if (words.size() == 3) {
    const WallSystemSpec* spec = state.drawing().wallSystem(std::string_view(words[2]));
    if (spec == nullptr) return Reply::error("Unknown wall system.");
    toWall.systemSpecID = spec->id;
  }
  return toWall;
}

Reply run(const AssignWallSystem& assign, const CommandContext& context) {
  const auto wall = selectedWallID(context.sketch);
  if (!wall || !assignWallSystem(context.sketch, assign.specID, *wall)) {
    return Reply::refused("Could not assign system to selection.");
  }
  return Reply::done("Wall assigned to " + context.sketch.drawing->wallSystem(assign.specID)->name + ".");
}

Reply run(const MoveSelectedLine& move, const CommandContext& context) {
  const SketchEntity* primary = primarySelection(context.sketch);
  if (primary == nullptr) return Reply::refused("Select a line before moving.");
  if (!std::holds_alternative<LineEntity>(*primary)) {
    return Reply::refused("Move currently supports selected lines only.");
  }
  if (!moveSelectedLine(context.sketch, move.dx, move.dy)) {
    return Reply::refused("Could not move selected line.");
  }
  return Reply::done("Line moved.");
}

Reply run(const SetSelectedLength& length, const CommandContext& context) {
  return editReply(setSelectedEntityLength(context.sketch, length.value),
                   "Length set to " + length.typed + ".", "Invalid length value.",
                   "Length edit is not supported for this selection.");
}

Reply run(const NudgeSelection& nudge, const CommandContext& context) {
  return editReply(nudgeSelectedEntity(context.sketch, nudge.dx, nudge.dy), "Selection nudged.",
                   "Invalid nudge values.", "Nudge is not supported for this selection.");
}

Reply run(const AlignSelection& align, const CommandContext& context) {
  if (context.sketch.selection->ids.size() < 2) return Reply::refused("Select at least 2 entities.");
  const int count = alignSelection(context.sketch, align.axis);
  const std::string direction = align.axis == AlignmentAxis::horizontal ? " horizontally." : " vertically.";
  if (count == 0) return Reply::done("Selection already aligned" + direction);
  return Reply::done("Aligned " + (count == 1 ? "1 entity" : std::to_string(count) + " entities") +
                     direction);
}

Reply run(const ConvertSelection& convert, const CommandContext& context) {
  return editReply(convertSelectedEntity(context.sketch, convert.target, convert.systemSpecID),
                   "Selection converted to " + std::string(wordOf(convert.target)) + ".",
                   "Invalid conversion request.", "Conversion is not supported for this selection.");
}

}  // namespace ostrelon::CommandInterpreter
