// The command language of the console: how a line is split, how its word is resolved, and which
// handler takes it. All state lives on the view model; a failure is a reply text like any other.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/sketch_view_model.h"

namespace ostrelon::CommandInterpreter {

struct CommandAlias {
  std::string alias;
  std::string command;
};

struct ResolvedCommand {
  std::string head;     ///< the first word, lower-cased
  std::string command;  ///< the canonical word
  /// The canonical word, then the tokens behind the head with their case untouched.
  std::vector<std::string> arguments;
};

/// What a handler gives back: a reply, or nothing when it wrote its own output.
using Reply = std::optional<std::string>;

/// Runs one line. Absent when the command has written its own output or there was nothing to do.
Reply executeCommandLine(std::string_view text, SketchViewModel& sketch);

/// Absent for an empty list.
std::optional<ResolvedCommand> resolveCommandLine(const std::vector<std::string>& tokens);

/// All aliases, longer ones first, equal lengths by text.
const std::vector<CommandAlias>& aliasTable();
/// The alias lines of the help text.
std::string aliasHelpText();
/// The whole help text.
std::string helpText();

/// Every word that the interpreter answers to, aliases included, for completion. Sorted.
std::vector<std::string> commandWords();

}  // namespace ostrelon::CommandInterpreter
