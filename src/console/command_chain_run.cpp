// Running a chain that has been checked.
#include <fmt/format.h>

#include <array>
#include <cmath>

#include "console/command_chain.h"
#include "console/edit_commands.h"
#include "console/general_commands.h"
#include "geometry/entity_geometry.h"

namespace ostrelon::CommandInterpreter {
namespace {

// The sine of 8 degrees: up to this bend a continuation is one with the segment before it.
constexpr double kNearlyCollinear = 0.13917310096006544;

bool isNearlyCollinear(SketchPoint a, SketchPoint b) {
  const double product = lengthOf(a) * lengthOf(b);
  return product > 0 && std::fabs(cross(a, b)) <= product * kNearlyCollinear;
}

void runSegment(SketchPoint from, SketchPoint to, const ChainSegmentKind& kind,
                ChainExecutionContext& context, SketchViewModel& sketch) {
  const auto& previous = context.previousSegment;
  const bool continues = previous && previous->to == from &&
                         previous->kind.wallSystemSpecID.has_value() == kind.wallSystemSpecID.has_value();
  if (continues) {
    if (!isNearlyCollinear(previous->to - previous->from, to - from)) {
      ++context.cornerJoins;
    } else if (previous->kind == kind) {
      sketch.extendChainSegment(previous->entityIndex, to);
      ++context.collinearMerges;
      context.previousSegment->to = to;
      return;
    }
  }
  if (kind.wallSystemSpecID) {
    sketch.addWall(kind.wallSystemSpecID, from, to);
    ++context.wallsAdded;
  } else {
    sketch.addLine(from, to);
    ++context.linesAdded;
  }
  context.previousSegment = ChainSegment{sketch.entities->size() - 1, kind, from, to};
}

}  // namespace

std::optional<std::string> executeChainCommand(const ChainCommand& command, ChainExecutionContext& context,
                                               SketchViewModel& sketch) {
  using Error = std::optional<std::string>;
  if (!std::holds_alternative<ChainLine>(command) && !std::holds_alternative<ChainWall>(command)) {
    context.previousSegment = std::nullopt;
  }
  return std::visit(Overloaded{
                        [&](const ChainLine& line) {
                          runSegment(line.from, line.to, {}, context, sketch);
                          return Error();
                        },
                        [&](const ChainWall& wall) {
                          runSegment(wall.from, wall.to, {wall.systemSpecID}, context, sketch);
                          return Error();
                        },
                        [&](const ChainCircle& circle) {
                          sketch.addCircle(circle.center, circle.radius);
                          ++context.circlesAdded;
                          return Error();
                        },
                        [&](const ChainRectangle& rectangle) {
                          sketch.addRectangle(rectangle.origin, rectangle.size);
                          ++context.rectanglesAdded;
                          return Error();
                        },
                        [&](const ChainSelect& select) {
                          if (select.indices.empty()) {
                            sketch.activateSelectTool();
                          } else {
                            sketch.selectEntities(select.indices);
                          }
                          ++context.selectionUpdates;
                          return Error();
                        },
                        [&](const ChainAssign& assign) {
                          const auto wall = selectedWallID(sketch);
                          if (!wall || !sketch.assignWallSystem(assign.specID, *wall)) {
                            return Error("Could not assign system to selection.");
                          }
                          ++context.wallAssignments;
                          return Error();
                        },
                        [&](const ChainSpecUse& use) {
                          if (const WallSystemSpec* spec = sketch.wallSystemSpec(use.specID)) {
                            sketch.setActiveWallSystem(WallSystemSpec(*spec));
                          }
                          ++context.specCommands;
                          return Error();
                        },
                        [&](const ChainSpecShow& show) {
                          printWallSystem(show.name, sketch);
                          ++context.specCommands;
                          return Error();
                        },
                        [&](const ChainSpecList&) {
                          printWallSystems(sketch);
                          ++context.specCommands;
                          return Error();
                        },
                    },
                    command);
}

std::string runChain(std::string_view text, SketchViewModel& sketch) {
  const auto chainError = [](std::size_t segment, const std::string& message) {
    return fmt::format("Chain error at segment {}: {}", segment, message);
  };
  const auto parsed = parseChain(text, sketch);
  if (const auto* error = std::get_if<ChainError>(&parsed)) return chainError(error->segment, error->message);
  const auto& commands = std::get<0>(parsed);

  std::string reply;
  sketch.performAsOneChange([&] {
    const SketchCommandMutationState before = sketch.captureCommandMutationState();
    const SketchViewModel::OpenWork work = sketch.openWork();
    sketch.changeUndoCheckpointSuppressionDepth(1);
    ChainExecutionContext context;
    std::optional<std::string> failure;
    std::size_t number = 0;
    while (number < commands.size() && !failure) {
      failure = executeChainCommand(commands[number++], context, sketch);
    }
    sketch.changeUndoCheckpointSuppressionDepth(-1);
    if (failure) {
      sketch.restoreAfterFailedChain(before, work);
      reply = chainError(number, *failure);
    } else {
      sketch.commitCommandMutationState(before);
      reply = chainSummary(context, commands.size());
    }
  });
  return reply;
}

std::string chainSummary(const ChainExecutionContext& context, std::size_t count) {
  struct Part {
    int count;
    std::string_view one;
    std::string_view more;
  };
  const std::array parts{
      Part{context.linesAdded, "line added", "lines added"},
      Part{context.wallsAdded, "wall added", "walls added"},
      Part{context.circlesAdded, "circle added", "circles added"},
      Part{context.rectanglesAdded, "rectangle added", "rectangles added"},
      Part{context.collinearMerges, "collinear merge", "collinear merges"},
      Part{context.cornerJoins, "corner join", "corner joins"},
      Part{context.selectionUpdates, "selection updated", "selections updated"},
      Part{context.wallAssignments, "wall assignment", "wall assignments"},
      Part{context.specCommands, "spec command", "spec commands"},
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

namespace ostrelon {

SketchViewModel::OpenWork SketchViewModel::openWork() const {
  return {polygonDraft,
          lastDraftConstraintAxes,
          isEntityInspectorVisible,
          isSegmentLengthEditing,
          isSegmentLengthTextOffered_,
          segmentLengthEditText,
          segmentLengthEditError,
          acquiredEntitySnap,
          pendingTrackingAcquire,
          trackingAcquireDwellStart,
          trackingAcquireProgress};
}

void SketchViewModel::restoreAfterFailedChain(const SketchCommandMutationState& before,
                                              const OpenWork& work) {
  const ChangeScope scope(tracker_);
  restoreCommandMutationState(before);
  polygonDraft = work.polygonDraft;
  lastDraftConstraintAxes = work.lastDraftConstraintAxes;
  isEntityInspectorVisible = work.isEntityInspectorVisible;
  isSegmentLengthEditing = work.isSegmentLengthEditing;
  isSegmentLengthTextOffered_ = work.isSegmentLengthTextOffered;
  segmentLengthEditText = work.segmentLengthEditText;
  segmentLengthEditError = work.segmentLengthEditError;
  acquiredEntitySnap = work.acquiredEntitySnap;
  pendingTrackingAcquire = work.pendingTrackingAcquire;
  trackingAcquireDwellStart = work.trackingAcquireDwellStart;
  trackingAcquireProgress = work.trackingAcquireProgress;
  scheduleTrackingDwell();
}

void SketchViewModel::extendChainSegment(std::size_t index, SketchPoint to) {
  const ChangeScope scope(tracker_);
  SketchEntity extended = entities.get()[index];
  bool isWall = false;
  if (auto* wall = std::get_if<WallEntity>(&extended)) {
    wall->to = to;
    isWall = true;
  } else if (auto* line = std::get_if<LineEntity>(&extended)) {
    line->to = to;
  }
  const UUID id = entityID(extended);
  entities.edit().replace(index, std::move(extended));
  if (isWall) selectOnly(id);
  isDocumentDirty = true;
}

}  // namespace ostrelon
