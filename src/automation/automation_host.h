// The whole program without a window, driven by one JSON object a line: scripts, other programs and
// black-box tests use it. Every request is answered with exactly one JSON object on one line.
//
//   {"op":"submit","text":"line 0 0 10 10"}
//   {"ok":true,"result":null,"console":[{"text":"> line 0 0 10 10","isError":false,"isSystem":false}, …]}
//
// Time is virtual: it moves by `time.advance` alone. Nothing touches a network, a display or Qt.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

#include "app/drawing_exchange.h"
#include "platform/date.h"
#include "platform/file_system.h"
#include "platform/user_paths.h"

namespace ostrelon {

struct AutomationOptions {
  UserPaths paths;
  Date clock;  ///< where the virtual clock starts
  std::string updateFeed;
  std::string updateKey;
  bool isUITesting = false;
  FileSystem* files = nullptr;    ///< must outlive the host; null: those on disk
  PictureMaker makePicture = {};  ///< empty: only DXF can be exported
};

class AutomationHost {
 public:
  /// Starts the program as the first appearance of its main window does.
  explicit AutomationHost(const AutomationOptions& options);
  AutomationHost(const AutomationHost&) = delete;
  AutomationHost& operator=(const AutomationHost&) = delete;
  ~AutomationHost();

  /// Answers one request line. Never throws; the text has no line end.
  std::string answer(std::string_view line);
  /// A normal end of the program.
  void terminate();

 private:
  class Program;
  std::unique_ptr<Program> program_;
};

/// Answers requests until the input ends, which is a normal end. Gives the exit status.
int runAutomation(const AutomationOptions& options, std::istream& input, std::ostream& output);

}  // namespace ostrelon
