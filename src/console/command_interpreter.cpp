#include "console/command_interpreter.h"

#include <algorithm>
#include <array>
#include <span>

#include "console/command_chain.h"
#include "console/drawing_commands.h"
#include "console/edit_commands.h"
#include "console/general_commands.h"
#include "console/history_commands.h"
#include "console/selection_commands.h"
#include "console/trim_commands.h"
#include "console/zoom_command.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {
namespace {

using Handler = Reply (*)(const ResolvedCommand& command, SketchViewModel& sketch);

struct HandlerRow {
  std::string_view word;
  Handler handler;
};

// The order of the tests. Rows behind a word of the same handler are its further spellings, which no
// alias resolves.
constexpr std::array kHandlers{
    HandlerRow{"help", helpCommand},
    HandlerRow{"clear", clearCommand},
    HandlerRow{"select", selectCommand},
    HandlerRow{"s", selectCommand},
    HandlerRow{"assign", assignCommand},
    HandlerRow{"copy", copyCommand},
    HandlerRow{"co", copyCommand},
    HandlerRow{"cp", copyCommand},
    HandlerRow{"paste", pasteCommand},
    HandlerRow{"spec", specCommand},
    HandlerRow{"checkpoint", checkpointCommand},
    HandlerRow{"history", historyCommand},
    HandlerRow{"branch", branchCommand},
    HandlerRow{"line", lineCommand},
    HandlerRow{"trim", trimCommand},
    HandlerRow{"tr", trimCommand},
    HandlerRow{"move", moveCommand},
    HandlerRow{"extend", extendCommand},
    HandlerRow{"zoom", zoomCommand},
    HandlerRow{"length", lengthCommand},
    HandlerRow{"nudge", nudgeCommand},
    HandlerRow{"center", centerCommand},
    HandlerRow{"convert", convertCommand},
    HandlerRow{"type", convertCommand},
    HandlerRow{"wall", wallCommand},
    HandlerRow{"circle", circleCommand},
    HandlerRow{"rect", rectangleCommand},
    HandlerRow{"poly", polygonCommand},
};

}  // namespace

Reply executeCommandLine(std::string_view text, SketchViewModel& sketch) {
  const std::string_view line = trimmed(text);
  if (line.find(';') != std::string_view::npos) return runChain(text, sketch);
  const auto resolved = resolveCommandLine(splitAtWhiteSpace(line));
  if (!resolved) return std::nullopt;
  for (const HandlerRow& row : kHandlers) {
    if (row.word == resolved->command) return row.handler(*resolved, sketch);
  }
  return "Unknown command \"" + resolved->head + "\". Type help for commands.";
}

std::optional<ResolvedCommand> resolveCommandLine(const std::vector<std::string>& tokens) {
  if (tokens.empty()) return std::nullopt;
  ResolvedCommand resolved;
  resolved.head = lowerCased(tokens.front());
  const auto& aliases = aliasTable();
  const auto alias = std::find_if(aliases.begin(), aliases.end(),
                                  [&](const CommandAlias& row) { return row.alias == resolved.head; });
  resolved.command = alias == aliases.end() ? resolved.head : alias->command;
  resolved.arguments = tokens;
  resolved.arguments.front() = resolved.command;
  return resolved;
}

const std::vector<CommandAlias>& aliasTable() {
  static const std::vector<CommandAlias> sorted = [] {
    std::vector<CommandAlias> rows{{"polygon", "poly"},   {"pl", "poly"}, {"poly", "poly"},
                                   {"rectangle", "rect"}, {"l", "line"},  {"m", "move"},
                                   {"ex", "extend"},      {"z", "zoom"},  {"?", "help"}};
    std::sort(rows.begin(), rows.end(), [](const CommandAlias& a, const CommandAlias& b) {
      const std::size_t lengthA = characterCount(a.alias);
      const std::size_t lengthB = characterCount(b.alias);
      return lengthA != lengthB ? lengthA > lengthB : a.alias < b.alias;
    });
    return rows;
  }();
  return sorted;
}

std::string aliasHelpText() {
  std::string text;
  for (const CommandAlias& row : aliasTable()) {
    if (!text.empty()) text += '\n';
    text += "    " + row.alias + " -> " + row.command;
  }
  return text;
}

std::vector<std::string> commandWords() {
  std::vector<std::string> words;
  words.reserve(kHandlers.size() + aliasTable().size());
  for (const HandlerRow& row : kHandlers) words.emplace_back(row.word);
  for (const CommandAlias& row : aliasTable()) words.push_back(row.alias);
  std::sort(words.begin(), words.end());
  words.erase(std::unique(words.begin(), words.end()), words.end());
  return words;
}

}  // namespace ostrelon::CommandInterpreter
