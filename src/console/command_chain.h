// Chains: several immediate commands in one line, `cmd; cmd`, parsed and checked whole, then run all
// or not at all, as one undo step. Consecutive segments join: an exact continuation in nearly the
// same direction lengthens the segment before it, one that turns counts as a corner.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

/// Runs the line.
Reply runChain(std::string_view text, const CommandContext& context);

// --- Parsing and checking (command_chain.cpp)

/// A segment (counted from 1) and what is wrong with it.
struct ChainError {
  std::size_t segment = 0;
  std::string message;
};

std::variant<std::vector<Action>, ChainError> parseChain(std::string_view text, const Sketch& sketch);
/// The command, or the reply that says what is wrong with it. At least one token.
std::variant<Action, Reply> parseChainSegment(const Words& tokens, const ParseState& state);
/// Brings the state to where it is once the command has run.
void applyToValidationState(const Action& command, ParseState& state);

// --- Running (command_chain_run.cpp)

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
  int runsAdded = 0;
  int doorsAdded = 0;
  int windowsAdded = 0;
  int openingsAdded = 0;
  int roomsAdded = 0;
  int dimensionsAdded = 0;
  int notesAdded = 0;
};

/// Runs one command; a message says why it could not run.
std::optional<std::string> executeChainCommand(const Action& command, ChainExecutionContext& chain,
                                               const CommandContext& context);
/// The reply to a chain of `count` commands that has run.
std::string chainSummary(const ChainExecutionContext& chain, std::size_t count);

}  // namespace ostrelon::CommandInterpreter
