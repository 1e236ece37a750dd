// What a command of the console is: a row of one table. The interpreter, chains, completion and both
// help texts read the same rows, so a new command is
//
// - a record in actions.h, for what it does;
// - a `parse…` and a `run` in a file of its family, say drawing_commands.h;
// - its row in command_table.cpp.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "console/actions.h"
#include "console/command_context.h"
#include "core/entity_list.h"

namespace ostrelon::CommandInterpreter {

// --- What a command answers

enum class ReplyKind {
  done,     ///< it has done what was asked, or there was nothing to do
  refused,  ///< it could not be done, and nothing has changed; shown as a plain line
  error,  ///< the line does not read, or names what there is not; nothing has changed, and it is shown as an
          ///< error
};

struct Reply {
  std::optional<std::string> text;  ///< absent when the command has written its own output
  ReplyKind kind = ReplyKind::done;

  static Reply silent() { return {}; }
  static Reply done(std::string text) { return {std::move(text), ReplyKind::done}; }
  static Reply refused(std::string text) { return {std::move(text), ReplyKind::refused}; }
  static Reply error(std::string text) { return {std::move(text), ReplyKind::error}; }
  friend bool operator==(const Reply&, const Reply&) = default;
};

// --- How a command is read

/// The words of a line: the command's own, then those after it with their case untouched.
using Words = std::vector<std::string>;

/// Where a command stands. Some forms of some commands are for a line of their own.
enum class Place { alone, chain };

/// What a command is checked against: the sketch, and what the earlier commands of the chain would have made
/// of it.
struct ParseState {
  const Sketch* sketch = nullptr;  ///< never null while parsing; its wall systems change in no chain
  EntityList entities;
  std::optional<EntitySet> selectedEntityIDs;  ///< absent: those of the sketch
  UUID activeWallSystemSpecID;

  const Drawing& drawing() const { return sketch->drawing; }
  const EntitySet& selected() const {
    return selectedEntityIDs ? *selectedEntityIDs : sketch->selection->ids;
  }
};

/// The state before the first command.
ParseState parseStateOf(const Sketch& sketch);

/// The words are not in the form that the command takes.
struct WrongUse {
  std::string_view usage = {};  ///< the right form; empty: that of the command's row
};

/// What the words mean, or the reply that says why they mean nothing.
using ParseResult = std::variant<Action, WrongUse, Reply>;

using Parse = ParseResult (*)(const Words& words, const ParseState& state, Place place);

// --- The row

/// What may stand at one place after a command word.
struct Completion {
  enum class Names { none, wallSystems, branches, drawings };  ///< drawings: branches and checkpoints
  std::size_t position = 1;                                    ///< 1: the first word after the command
  std::vector<std::string_view> words = {};
  Names names = Names::none;
  std::string_view onlyAfter = {};  ///< the word before must be this one, if any is named
  bool isLasting = false;           ///< at every later place too
};

struct Command {
  std::string_view word;
  /// Further words, which `resolveCommandLine` leaves as they are.
  std::vector<std::string_view> spellings = {};
  /// Further words that resolve to `word` outside of chains.
  std::vector<std::string_view> aliases = {};
  std::string_view usage = {};       ///< its form, as the error gives it after "Usage: "
  std::string_view chainUsage = {};  ///< where it has another form in a chain
  /// Its rows of the help text, which is fixed. Empty for the commands of `more`.
  std::string_view help = {};
  /// For the commands of `more`: what it does, and a line to try.
  std::string_view summary = {};
  std::string_view example = {};
  std::vector<Completion> completions = {};
  /// A chain knows the word, in all its spellings and aliases.
  bool isKnownInChains = false;
  /// Why a chain that knows the word does not take the command; empty when it does.
  std::string_view chainRefusal = {};
  Parse parse = nullptr;
};

/// All commands, in the order of the help text. No word occurs twice.
std::span<const Command> commandTable();
/// By word or spelling; null for any other. Aliases have to be resolved before.
const Command* findCommand(std::string_view word);
/// By word, spelling or alias, lower-case; null for what no chain knows.
const Command* findChainCommand(std::string_view word);

/// What the words mean for this command, or the reply that says why they mean nothing.
std::variant<Action, Reply> parseCommand(const Command& command, const Words& words, const ParseState& state,
                                         Place place);
Reply run(const Action& action, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
