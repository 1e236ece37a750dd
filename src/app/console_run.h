// Running a script in the console, for starts without a window.
#pragma once

#include <functional>
#include <string_view>

namespace ostrelon {

class Workspace;

/// Prints the lines of the transcript as they come, each once.
class TranscriptPrinter {
 public:
  using Print = std::function<void(std::string_view line)>;

  TranscriptPrinter(const Workspace& workspace, Print print)
      : workspace_(workspace), print_(std::move(print)) {}

  /// Prints what has been added since the last call.
  void printNewLines();
  /// True when one of the printed lines was an error.
  bool hasSeenError() const { return hasSeenError_; }

 private:
  const Workspace& workspace_;
  Print print_;
  std::size_t printed_ = 0;
  bool hasSeenError_ = false;
};

/// Submits every line of the script as if it had been typed; `afterLine` runs after each, for the work that
/// the line has started. Lines end in "\n" or "\r\n"; the last one need not.
void runConsoleScript(Workspace& workspace, std::string_view script, const std::function<void()>& afterLine);

}  // namespace ostrelon
