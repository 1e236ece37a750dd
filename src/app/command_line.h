// The options with which the program is started. Read here without any toolkit; what they ask for is
// done by the caller.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "documents/merge.h"
#include "exchange/dxf_import.h"
#include "exchange/export_options.h"
#include "platform/user_error.h"

namespace ostrelon {

/// An option that cannot be understood. The text is one sentence.
class CommandLineError : public UserError {
 public:
  using UserError::UserError;
};

struct CommandLine {
  enum class Mode {
    window,         ///< the main window, with a document to open perhaps
    withoutWindow,  ///< console lines, then files; ends by itself
    compare,        ///< prints what differs between two files
    merge,          ///< merges three files into one
    describe,       ///< prints a file as text
    automation,
    help,
    version,
  };

  Mode mode = Mode::window;

  std::optional<std::filesystem::path> home;  ///< a private home
  bool isUITesting = false;

  /// The document: of a start with a window the one named last on the line, else that of `--open`.
  std::optional<std::filesystem::path> document;

  // Without a window
  std::vector<std::filesystem::path> imports;  ///< DXF files, in order; one may come to a window
  DxfImportOptions importOptions;
  std::vector<std::string> consoleFiles;  ///< in order; "-" is standard input
  bool isStrict = false;                  ///< the first refused line of them ends everything
  std::optional<std::filesystem::path> saveAs;
  std::vector<std::filesystem::path> exports;  ///< each of the kind that its name ends in
  ExportOptions exportOptions;

  // Files of drawings, as the shell names them: old and new; base, ours and theirs; or one
  std::vector<std::filesystem::path> files;
  std::optional<MergeChoice> prefer;  ///< how a merge settles conflicts

  // Automation
  std::optional<std::string> clock;  ///< as written
  std::optional<std::string> updateFeed;
  std::optional<std::string> updateKey;
};

/// The value of an environment variable; empty when there is none.
using Environment = std::function<std::string(const std::string& name)>;

/// Reads the arguments, the program's name not among them, and what the environment says in their place.
/// Throws `CommandLineError`.
CommandLine parseCommandLine(const std::vector<std::string>& arguments, const Environment& environment = {});

/// What `--help` prints.
std::string commandLineHelp();

}  // namespace ostrelon
