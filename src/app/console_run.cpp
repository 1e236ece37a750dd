#include "app/console_run.h"

#include <string>

#include "app/workspace.h"

namespace ostrelon {

void TranscriptPrinter::printNewLines() {
  const auto& lines = *workspace_.messages.lines;
  // The transcript only grows, but a command may empty it.
  if (printed_ > lines.size()) printed_ = 0;
  for (; printed_ < lines.size(); ++printed_) {
    hasSeenError_ |= lines[printed_].isError;
    print_(lines[printed_].text);
  }
}

void runConsoleScript(Workspace& workspace, std::string_view script, const std::function<void()>& afterLine) {
  while (!script.empty()) {
    const std::size_t end = script.find('\n');
    std::string_view line = script.substr(0, end);
    script = end == std::string_view::npos ? std::string_view() : script.substr(end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    workspace.console.setInput(std::string(line));
    workspace.console.submit();
    afterLine();
  }
}

}  // namespace ostrelon
