// The command language of the console: how a line is split, how its word is resolved, what may follow,
// and what comes of it. All state is that of the context; a failure is a reply like any other.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "console/command.h"

namespace ostrelon::CommandInterpreter {

/// Runs one line, which may be a chain.
Reply executeCommandLine(std::string_view text, const CommandContext& context);

// --- Words

struct CommandAlias {
  std::string alias;
  std::string command;
};

struct ResolvedCommand {
  std::string head;     ///< the first word, lower-cased
  std::string command;  ///< the canonical word
  Words arguments;      ///< the canonical word, then the tokens behind the head
};

/// Absent for an empty list.
std::optional<ResolvedCommand> resolveCommandLine(Words tokens);
/// All aliases, longer ones first, equal lengths by text.
const std::vector<CommandAlias>& aliasTable();
/// The reply to a word that is none of a command.
std::string unknownCommandText(std::string_view word);

// --- Texts, and words to complete

/// The alias lines of the help text.
std::string aliasHelpText();
/// What `help` writes: the commands whose help is fixed, and the aliases.
std::string helpText();
/// What `more` writes: all other commands, with an example each.
std::string moreText();

/// Every word that the interpreter answers to, aliases included, sorted.
std::vector<std::string> commandWords();
/// What may stand behind these words of a line: command words when there are none, else the sub-command
/// words and names that the command takes there.
std::vector<std::string> wordsBehind(const Words& words, const CommandContext& context);

}  // namespace ostrelon::CommandInterpreter
