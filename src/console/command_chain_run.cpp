// Running a chain that has been checked.
#include <fmt/format.h>

#include <array>
#include <cmath>

#include "console/command_chain.h"
#include "console/wall_system_commands.h"
#include "core/adding.h"
#include "geometry/entity_geometry.h"

namespace ostrelon::CommandInterpreter {
namespace {

// The sine of 8 degrees: up to this bend a continuation is one with the segment before it.
constexpr double kNearlyCollinear = 0.13917310096006544;

bool isNearlyCollinear(SketchPoint a, SketchPoint b) {
  const double product = lengthOf(a) * lengthOf(b);
  return product > 0 && std::fabs(cross(a, b)) <= product * kNearlyCollinear;
}

// Moves the end of the line or wall at this position; a wall becomes the selection.
void extendSegment(Sketch& sketch, std::size_t index, SketchPoint to) {
  SketchEntity extended = sketch.entities()[index];
  const auto* wall = std::get_if<WallEntity>(&extended);
  if (wall != nullptr) sketch.selectOnly(wall->id);
  std::visit(Overloaded{[&](LineEntity& line) { line.to = to; },
                        [&](WallEntity& segment) { segment.to = to; }, [](auto&) {}},
             extended);
  sketch.edit([&](Drawing& drawing) { drawing.entities.replace(index, std::move(extended)); });
}

void runSegment(SketchPoint from, SketchPoint to, const ChainSegmentKind& kind, ChainExecutionContext& chain,
                Sketch& sketch) {
  const auto& previous = chain.previousSegment;
  const bool continues = previous && previous->to == from &&
                         previous->kind.wallSystemSpecID.has_value() == kind.wallSystemSpecID.has_value();
  if (continues) {
    if (!isNearlyCollinear(previous->to - previous->from, to - from)) {
      ++chain.cornerJoins;
    } else if (previous->kind == kind) {
      extendSegment(sketch, previous->entityIndex, to);
      ++chain.collinearMerges;
      chain.previousSegment->to = to;
      return;
    }
  }
  if (kind.wallSystemSpecID) {
    addWall(sketch, kind.wallSystemSpecID, from, to);
    ++chain.wallsAdded;
  } else {
    addLine(sketch, from, to);
    ++chain.linesAdded;
  }
  chain.previousSegment = ChainSegment{sketch.entities().size() - 1, kind, from, to};
}

// The counter that a command raises; null for those that are not counted.
int* counterOf(const Action& command, ChainExecutionContext& chain) {
  return std::visit(Overloaded{
                        [&](const DrawCircle&) { return &chain.circlesAdded; },
                        [&](const DrawRectangle&) { return &chain.rectanglesAdded; },
                        [&](const DrawRun&) { return &chain.runsAdded; },
                        [&](const AddOpening& add) {
                          return add.kind == OpeningKind::door     ? &chain.doorsAdded
                                 : add.kind == OpeningKind::window ? &chain.windowsAdded
                                                                   : &chain.openingsAdded;
                        },
                        [&](const NameRoom&) { return &chain.roomsAdded; },
                        [&](const AddDimension&) { return &chain.dimensionsAdded; },
                        [&](const AddNote&) { return &chain.notesAdded; },
                        [&](const SelectEntities&) { return &chain.selectionUpdates; },
                        [&](const AssignWallSystem&) { return &chain.wallAssignments; },
                        [&](const UseWallSystem&) { return &chain.specCommands; },
                        [&](const ShowWallSystem&) { return &chain.specCommands; },
                        [&](const ListWallSystems&) { return &chain.specCommands; },
                        [](const auto&) -> int* { return nullptr; },
                    },
                    command);
}

Reply chainError(std::size_t segment, const std::string& message) {
  return Reply::error(fmt::format("Chain error at segment {}: {}", segment, message));
}

}  // namespace

std::optional<std::string> executeChainCommand(const Action& command, ChainExecutionContext& chain,
                                               const CommandContext& context) {
  if (const auto* line = std::get_if<DrawLine>(&command)) {
    runSegment(line->from, line->to, {}, chain, context.sketch);
    return std::nullopt;
  }
  if (const auto* wall = std::get_if<DrawWall>(&command)) {
    runSegment(wall->from, wall->to, {wall->systemSpecID}, chain, context.sketch);
    return std::nullopt;
  }
  chain.previousSegment = std::nullopt;
  const Reply reply = run(command, context);
  // A drawing without wall systems has none to show, which is no reason to take a chain back.
  const bool mayFail = !std::holds_alternative<ShowWallSystem>(command);
  if (mayFail && reply.kind != ReplyKind::done) return reply.text;
  if (int* counter = counterOf(command, chain)) ++*counter;
  return std::nullopt;
}

Reply runChain(std::string_view text, const CommandContext& context) {
  const auto parsed = parseChain(text, context.sketch);
  if (const auto* error = std::get_if<ChainError>(&parsed)) return chainError(error->segment, error->message);
  const auto& commands = std::get<std::vector<Action>>(parsed);

  const auto change = context.sketch.change();
  const BoardState before = context.board.state();
  ChainExecutionContext chain;
  std::size_t number = 0;
  std::optional<std::string> failure;
  context.sketch.asOneStep([&] {
    while (number < commands.size() && !failure) {
      failure = executeChainCommand(commands[number++], chain, context);
    }
    return !failure;
  });
  if (!failure) return Reply::done(chainSummary(chain, commands.size()));
  context.board.setState(before);
  return chainError(number, *failure);
}

std::string chainSummary(const ChainExecutionContext& chain, std::size_t count) {
  struct Part {
    int count;
    std::string_view one;
    std::string_view more;
  };
  const std::array parts{
      Part{chain.linesAdded, "line added", "lines added"},
      Part{chain.wallsAdded, "wall added", "walls added"},
      Part{chain.circlesAdded, "circle added", "circles added"},
      Part{chain.rectanglesAdded, "rectangle added", "rectangles added"},
      Part{chain.collinearMerges, "collinear merge", "collinear merges"},
      Part{chain.cornerJoins, "corner join", "corner joins"},
      Part{chain.selectionUpdates, "selection updated", "selections updated"},
      Part{chain.wallAssignments, "wall assignment", "wall assignments"},
      Part{chain.specCommands, "spec command", "spec commands"},
      Part{chain.runsAdded, "run added", "runs added"},
      Part{chain.doorsAdded, "door added", "doors added"},
      Part{chain.windowsAdded, "window added", "windows added"},
      Part{chain.openingsAdded, "opening added", "openings added"},
      Part{chain.roomsAdded, "room added", "rooms added"},
      Part{chain.dimensionsAdded, "dimension added", "dimensions added"},
      Part{chain.notesAdded, "note added", "notes added"},
  };
  std::string text;
  for (const Part& part : parts) {
    if (part.count == 0) continue;
    if (!text.empty()) text += ", ";
    text += fmt::format("{} {}", part.count, part.count == 1 ? part.one : part.more);
  }
  if (text.empty()) text = "no drawing changes";
  return fmt::format("Chain OK ({} commands): {}.", count, text);
}

}  // namespace ostrelon::CommandInterpreter
