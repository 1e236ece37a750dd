#include "console/trim_commands.h"

#include <fmt/format.h>

#include "core/length_text.h"
#include "geometry/edit_operations.h"

namespace ostrelon::CommandInterpreter {
namespace {

// The 0-based index of a number that users see. The lowest number there is has no index; it is out of range
// unchanged.
std::int64_t indexOfNumber(std::int64_t number) { return number > 0 ? number - 1 : -1; }

const SketchEntity* entityNumbered(std::int64_t number, const Sketch& sketch) {
  if (number < 1 || static_cast<std::uint64_t>(number) > sketch.entities().size()) return nullptr;
  return &sketch.entities()[static_cast<std::size_t>(number - 1)];
}

bool isStraight(const SketchEntity& entity) {
  return std::holds_alternative<LineEntity>(entity) || std::holds_alternative<WallEntity>(entity);
}

// The 1-based number of the selected line or wall.
std::optional<std::int64_t> selectedSegmentNumber(const Sketch& sketch) {
  const SketchEntity* selected = sketch.selectedEntity();
  if (selected == nullptr || !isStraight(*selected)) return std::nullopt;
  const auto position = sketch.positionOf(entityID(*selected));
  return position ? std::optional(static_cast<std::int64_t>(*position) + 1) : std::nullopt;
}

}  // namespace

ParseResult parseTrim(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() == 1) return ActivateTool{SketchTool::trim};
  if (words.size() != 5) return WrongUse{};
  const auto target = parseEntityNumber(words[1]);
  const auto edge = parseEntityNumber(words[2]);
  const auto point = parsePoint(words[3], words[4]);
  if (!target || !edge || !point) return WrongUse{};
  return TrimEntity{*target, *edge, *point};
}

ParseResult parseExtend(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() != 2 && words.size() != 3) return WrongUse{};
  const auto boundary = parseEntityNumber(words.back());
  const auto line = words.size() == 3 ? parseEntityNumber(words[1]) : std::nullopt;
  if (!boundary || (words.size() == 3 && !line)) return WrongUse{};
  return ExtendToBoundary{line, *boundary};
}

Reply run(const TrimEntity& trim, const CommandContext& context) {
  const TrimResult result =
      applyTrim(context.sketch, indexOfNumber(trim.target), indexOfNumber(trim.edge), trim.point);
  const bool isDone = result.code == TrimResult::Code::success;
  return {trimResultMessage(result), isDone ? ReplyKind::done : ReplyKind::refused};
}

Reply run(const ExtendToBoundary& extend, const CommandContext& context) {
  const Sketch& sketch = context.sketch;
  const auto number = extend.line ? extend.line : selectedSegmentNumber(sketch);
  if (!number) return Reply::refused("Select a line first or use extend <line> <boundary>.");
  if (*number == extend.boundary) return Reply::refused("Line and boundary must be different entities.");
  const SketchEntity* line = entityNumbered(*number, sketch);
  if (line == nullptr) return Reply::refused(fmt::format("No entity at index {}.", *number));
  const SketchEntity* boundary = entityNumbered(extend.boundary, sketch);
  if (boundary == nullptr) return Reply::refused(fmt::format("No entity at index {}.", extend.boundary));
  if (!std::holds_alternative<LineEntity>(*line)) {
    return Reply::refused(fmt::format("Entity {} is not a line.", *number));
  }
  if (!isStraight(*boundary)) {
    return Reply::refused(fmt::format("Boundary {} must be a line or wall.", extend.boundary));
  }
  const UUID lineID = entityID(*line);
  const UUID boundaryID = entityID(*boundary);
  if (!extendLine(context.sketch, lineID, boundaryID)) {
    return Reply::refused(
        fmt::format("Line {} could not be extended to boundary {}.", *number, extend.boundary));
  }
  return Reply::done(fmt::format("Line {} extended to boundary {}.", *number, extend.boundary));
}

}  // namespace ostrelon::CommandInterpreter
