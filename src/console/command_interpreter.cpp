#include "console/command_interpreter.h"

#include <algorithm>
#include <utility>

#include "console/command_chain.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {

Reply executeCommandLine(std::string_view text, const CommandContext& context) {
  const std::string_view line = trimmed(text);
  if (line.find(';') != std::string_view::npos) return runChain(text, context);
  const auto resolved = resolveCommandLine(splitAtWhiteSpace(line));
  if (!resolved) return Reply::silent();
  const Command* command = findCommand(resolved->command);
  if (command == nullptr) return Reply::error(unknownCommandText(resolved->head));
  auto parsed = parseCommand(*command, resolved->arguments, parseStateOf(context.sketch), Place::alone);
  if (auto* reply = std::get_if<Reply>(&parsed)) return std::move(*reply);
  return run(std::get<Action>(parsed), context);
}

std::optional<ResolvedCommand> resolveCommandLine(Words tokens) {
  if (tokens.empty()) return std::nullopt;
  ResolvedCommand resolved;
  resolved.head = lowerCased(tokens.front());
  const auto& aliases = aliasTable();
  const auto alias = std::find_if(aliases.begin(), aliases.end(),
                                  [&](const CommandAlias& row) { return row.alias == resolved.head; });
  resolved.command = alias == aliases.end() ? resolved.head : alias->command;
  resolved.arguments = std::move(tokens);
  resolved.arguments.front() = resolved.command;
  return resolved;
}

const std::vector<CommandAlias>& aliasTable() {
  static const std::vector<CommandAlias> sorted = [] {
    std::vector<CommandAlias> rows;
    for (const Command& command : commandTable()) {
      for (const std::string_view alias : command.aliases) {
        rows.push_back({std::string(alias), std::string(command.word)});
      }
    }
    std::sort(rows.begin(), rows.end(), [](const CommandAlias& a, const CommandAlias& b) {
      const std::size_t lengthA = characterCount(a.alias);
      const std::size_t lengthB = characterCount(b.alias);
      return lengthA != lengthB ? lengthA > lengthB : a.alias < b.alias;
    });
    return rows;
  }();
  return sorted;
}

std::string unknownCommandText(std::string_view word) {
  return "Unknown command \"" + std::string(word) + "\". Type help for commands.";
}

std::vector<std::string> commandWords() {
  std::vector<std::string> words;
  for (const Command& command : commandTable()) {
    words.emplace_back(command.word);
    words.insert(words.end(), command.spellings.begin(), command.spellings.end());
    words.insert(words.end(), command.aliases.begin(), command.aliases.end());
  }
  std::sort(words.begin(), words.end());
  words.erase(std::unique(words.begin(), words.end()), words.end());
  return words;
}

std::vector<std::string> wordsAfter(const Words& words, const CommandContext& context) {
  const auto resolved = resolveCommandLine(words);
  if (!resolved) return commandWords();
  std::vector<std::string> possible;
  const Command* command = findCommand(resolved->command);
  if (command == nullptr) return possible;
  const std::string last = lowerCased(words.back());
  for (const Completion& completion : command->completions) {
    const bool isHere =
        completion.isLasting ? completion.position <= words.size() : completion.position == words.size();
    if (!isHere) continue;
    if (!completion.onlyAfter.empty() && completion.onlyAfter != last) continue;
    possible.insert(possible.end(), completion.words.begin(), completion.words.end());
    if (completion.names == Completion::Names::wallSystems) {
      for (const WallSystemSpec& spec : context.sketch.drawing->wallSystemSpecs) {
        possible.push_back(spec.name);
      }
    } else if (completion.names != Completion::Names::none) {
      const DocumentHistoryState& history = context.document.history;
      for (const DocumentHistoryBranch& branch : history.metadata.branches) possible.push_back(branch.name);
      if (completion.names == Completion::Names::branches) continue;
      for (const DocumentCheckpoint& checkpoint : history.allCheckpoints()) possible.push_back(checkpoint.id);
    }
  }
  return possible;
}

}  // namespace ostrelon::CommandInterpreter
