// Chains: several immediate commands in one line, `cmd; cmd`, parsed and checked whole, then run all
// or not at all, as one undo step. Consecutive segments join: an exact continuation in nearly the
// same direction lengthens the segment before it, one that turns counts as a corner.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <variant>
#include <vector>

#include "core/sketch_view_model.h"

namespace ostrelon::CommandInterpreter {

struct ChainLine {
  SketchPoint from;
  SketchPoint to;
};
struct ChainWall {
  SketchPoint from;
  SketchPoint to;
  UUID systemSpecID;
};
struct ChainCircle {
  SketchPoint center;
  double radius = 0;
};
struct ChainRectangle {
  SketchPoint origin;
  SketchSize size;
};
struct ChainSelect {
  std::vector<std::int64_t> indices;  ///< 0-based; empty activates the select tool
};
struct ChainAssign {
  UUID specID;
};
struct ChainSpecUse {
  UUID specID;
};
struct ChainSpecShow {
  std::optional<std::string> name;
};
struct ChainSpecList {};

using ChainCommand = std::variant<ChainLine, ChainWall, ChainCircle, ChainRectangle, ChainSelect, ChainAssign,
                                  ChainSpecUse, ChainSpecShow, ChainSpecList>;

struct ChainFailure {
  std::string message;
};
using ChainParseResult = std::variant<ChainCommand, ChainFailure>;

/// What the document would look like if the segments before had run, as far as checking needs it.
struct ChainValidationState {
  const SketchViewModel* sketch = nullptr;  ///< the wall systems, which no chain changes
  EntityList entities;
  std::unordered_set<UUID> selectedEntityIDs;
  UUID activeWallSystemSpecID;
};

struct ChainSegmentKind {
  std::optional<UUID> wallSystemSpecID;  ///< absent for a line
  friend bool operator==(const ChainSegmentKind&, const ChainSegmentKind&) = default;
};

/// The last line or wall that the chain made.
struct ChainSegment {
  std::size_t entityIndex = 0;
  ChainSegmentKind kind;
  SketchPoint from;
  SketchPoint to;
};

/// The state of one run.
struct ChainExecutionContext {
  std::optional<ChainSegment> previousSegment;
  int linesAdded = 0;
  int wallsAdded = 0;
  int circlesAdded = 0;
  int rectanglesAdded = 0;
  int selectionUpdates = 0;
  int wallAssignments = 0;
  int specCommands = 0;
  int collinearMerges = 0;
  int cornerJoins = 0;
};

/// A segment (counted from 1) and what is wrong with it.
struct ChainError {
  std::size_t segment = 0;
  std::string message;
};

/// Runs the line and gives the reply.
std::string runChain(std::string_view text, SketchViewModel& sketch);

std::variant<std::vector<ChainCommand>, ChainError> parseChain(std::string_view text,
                                                               const SketchViewModel& sketch);
ChainParseResult parseChainSegment(const std::vector<std::string>& tokens, const ChainValidationState& state);
void applyToValidationState(const ChainCommand& command, ChainValidationState& state);
/// Runs one command; a message says why it could not run.
std::optional<std::string> executeChainCommand(const ChainCommand& command, ChainExecutionContext& context,
                                               SketchViewModel& sketch);
std::string chainSummary(const ChainExecutionContext& context, std::size_t count);

}  // namespace ostrelon::CommandInterpreter
