#include "console/trim_commands.h"

#include <fmt/format.h>

#include "console/tool_commands.h"
#include "core/length_text.h"
#include "geometry/trim.h"

namespace ostrelon::CommandInterpreter {
namespace {

// The 0-based index of a number that users see. The lowest number there is has no index; it is out of
// range as it stands.
std::int64_t indexOfNumber(std::int64_t number) { return number > 0 ? number - 1 : -1; }

const SketchEntity* entityNumbered(std::int64_t number, const SketchViewModel& sketch) {
  if (number < 1 || static_cast<std::uint64_t>(number) > sketch.entities->size()) return nullptr;
  return &sketch.entities.get()[static_cast<std::size_t>(number - 1)];
}

bool isStraight(const SketchEntity& entity) {
  return std::holds_alternative<LineEntity>(entity) || std::holds_alternative<WallEntity>(entity);
}

}  // namespace

Reply trimCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto& arguments = command.arguments;
  if (arguments.size() == 1) return activateToolCommand(SketchTool::trim, sketch);
  constexpr std::string_view kUsage = "Usage: trim [<n> <edge> <keep-x> <keep-y>]";
  if (arguments.size() != 5) return std::string(kUsage);
  const auto target = parseEntityNumber(arguments[1]);
  const auto edge = parseEntityNumber(arguments[2]);
  const auto point = parsePoint(arguments[3], arguments[4]);
  if (!target || !edge || !point) return std::string(kUsage);
  return trimResultMessage(sketch.applyTrim(indexOfNumber(*target), indexOfNumber(*edge), *point));
}

Reply extendCommand(const ResolvedCommand& command, SketchViewModel& sketch) {
  const auto& arguments = command.arguments;
  constexpr std::string_view kUsage = "Usage: extend [<line>] <boundary>";
  if (arguments.size() != 2 && arguments.size() != 3) return std::string(kUsage);
  const auto boundaryNumber = parseEntityNumber(arguments.back());
  auto lineNumber = arguments.size() == 3 ? parseEntityNumber(arguments[1]) : std::nullopt;
  if (!boundaryNumber || (arguments.size() == 3 && !lineNumber)) return std::string(kUsage);
  if (!lineNumber) {
    const SketchEntity* selected = sketch.selectedEntity();
    const auto position =
        selected != nullptr && isStraight(*selected) ? sketch.entityIndex(entityID(*selected)) : std::nullopt;
    if (!position) return "Select a line first or use extend <line> <boundary>.";
    lineNumber = static_cast<std::int64_t>(*position) + 1;
  }
  if (*lineNumber == *boundaryNumber) return "Line and boundary must be different entities.";
  const SketchEntity* line = entityNumbered(*lineNumber, sketch);
  if (line == nullptr) return fmt::format("No entity at index {}.", *lineNumber);
  const SketchEntity* boundary = entityNumbered(*boundaryNumber, sketch);
  if (boundary == nullptr) return fmt::format("No entity at index {}.", *boundaryNumber);
  if (!std::holds_alternative<LineEntity>(*line)) return fmt::format("Entity {} is not a line.", *lineNumber);
  if (!isStraight(*boundary)) return fmt::format("Boundary {} must be a line or wall.", *boundaryNumber);
  const UUID lineID = entityID(*line);
  const UUID boundaryID = entityID(*boundary);
  if (!sketch.extendLine(lineID, boundaryID)) {
    return fmt::format("Line {} could not be extended to boundary {}.", *lineNumber, *boundaryNumber);
  }
  return fmt::format("Line {} extended to boundary {}.", *lineNumber, *boundaryNumber);
}

}  // namespace ostrelon::CommandInterpreter
