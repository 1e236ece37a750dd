// The one road from the console field into the system.
#include "console/command_interpreter.h"
#include "console/numeric_draft_input.h"
#include "platform/unicode.h"

namespace ostrelon {
namespace {

// A reply shows as an error by its first word alone.
bool readsAsError(std::string_view reply) {
  return reply.starts_with("Unknown") || reply.starts_with("Usage:") || reply.starts_with("Chain error");
}

}  // namespace

void SketchViewModel::submitCommandInput() {
  const std::string text = commandInput;
  commandInput = std::string();
  if (trimmed(text).empty()) return;
  appendConsoleLine("> " + text, false, false);
  if (auto reply = applyNumericDraftInput(text)) {
    appendConsoleLine(std::move(reply->message), reply->isError, false);
    return;
  }
  if (auto reply = CommandInterpreter::executeCommandLine(text, *this)) {
    const bool isError = readsAsError(*reply);
    appendConsoleLine(std::move(*reply), isError, false);
  }
}

}  // namespace ostrelon
