#include "console/help_commands.h"

#include <algorithm>

#include "console/command_interpreter.h"
#include "platform/unicode.h"

namespace ostrelon::CommandInterpreter {
namespace {

// At least this wide is the first column of `more`, as it is in most rows of `help`.
constexpr std::size_t kFirstColumn = 31;

}  // namespace

ParseResult parseHelp(const Words& /*words*/, const ParseState& /*state*/, Place /*place*/) {
  return ShowHelp{};
}

ParseResult parseMore(const Words& words, const ParseState& /*state*/, Place /*place*/) {
  if (words.size() > 1) return WrongUse{};
  return ShowMore{};
}

Reply run(const ShowHelp& /*help*/, const CommandContext& context) {
  context.messages.appendSystem(helpText());
  return Reply::silent();
}

Reply run(const ShowMore& /*more*/, const CommandContext& context) {
  context.messages.appendSystem(moreText());
  return Reply::silent();
}

std::string aliasHelpText() {
  std::string text;
  for (const CommandAlias& row : aliasTable()) {
    if (!text.empty()) text += '\n';
    text += "    " + row.alias + " -> " + row.command;
  }
  return text;
}

std::string helpText() {
  std::string text;
  for (const Command& command : commandTable()) text += command.help;
  return text + "\naliases:\n" + aliasHelpText();
}

std::string moreText() {
  std::string text;
  for (const Command& command : commandTable()) {
    if (!command.help.empty()) continue;
    const std::size_t width = characterCount(command.usage);
    if (!text.empty()) text += '\n';
    text += std::string(command.usage) + std::string(std::max(kFirstColumn, width + 1) - width, ' ') +
            std::string(command.summary) + "; example: " + std::string(command.example);
  }
  return text;
}

}  // namespace ostrelon::CommandInterpreter
