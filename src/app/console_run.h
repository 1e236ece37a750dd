// Running a script in the console, for starts without a window.
#pragma once

#include <functional>
#include <optional>
#include <string>
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

/// A script that is run line by line, each as if it had been typed. Lines end in "\n" or "\r\n"; the last one
/// need not. A byte order mark at the start and lines that begin with "#" are left out.
class ConsoleScript {
 public:
  /// A strict script ends at the first line that is refused in any way, and refuses numbers that cannot be
  /// written into a file.
  enum class Rigor { lenient, strict };

  /// `name` is told with the line that ends a script; `afterLine` runs after each, for the work that the line
  /// has started.
  ConsoleScript(Workspace& workspace, std::string name, Rigor rigor, std::function<void()> afterLine)
      : workspace_(workspace), name_(std::move(name)), rigor_(rigor), afterLine_(std::move(afterLine)) {}

  /// Runs these lines, behind those that were run before. False where the script has ended.
  bool run(std::string_view lines);
  /// Some line was refused, as an error or in a plain reply.
  bool hasRefusal() const { return hasRefusal_; }
  /// "plan.txt:12: No entity at index 7.": what ended a strict script.
  const std::optional<std::string>& ending() const { return ending_; }

 private:
  /// What refused the line; absent where nothing did.
  std::optional<std::string> refusalOf(std::string_view line);

  Workspace& workspace_;
  std::string name_;
  Rigor rigor_;
  std::function<void()> afterLine_;
  std::size_t line_ = 0;
  bool hasRefusal_ = false;
  std::optional<std::string> ending_;
};

}  // namespace ostrelon
