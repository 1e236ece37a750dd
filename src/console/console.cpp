#include "console/console.h"

#include "console/command_interpreter.h"
#include "console/numeric_draft_input.h"
#include "platform/unicode.h"

namespace ostrelon {

Console::Console(ChangeTracker& tracker, CommandContext context) : tracker_(tracker), context_(context) {}

CommandInterpreter::ReplyKind Console::runInput() {
  const std::string text = input;
  input = std::string();
  if (trimmed(text).empty()) return CommandInterpreter::ReplyKind::done;
  context_.messages.appendReply("> " + text);
  auto reply = CommandInterpreter::applyNumericDraftInput(text, context_.board);
  if (!reply) reply = CommandInterpreter::executeCommandLine(text, context_);
  if (reply->text) {
    const bool isError = reply->kind == CommandInterpreter::ReplyKind::error;
    context_.messages.append(*std::move(reply->text), isError, false);
  }
  return reply->kind;
}

}  // namespace ostrelon
