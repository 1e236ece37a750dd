// The options with which the program is started. Read here without any toolkit; what they ask for is
// done by the caller.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "core/sketch_point.h"
#include "platform/user_error.h"

namespace ostrelon {

/// An option that cannot be understood. The text is one sentence.
class CommandLineError : public UserError {
 public:
  using UserError::UserError;
};

enum class ExportFormat { png, svg, pdf };
enum class ExportTheme { light, dark, tansy };

/// The size of an exported picture where none is given, view points.
inline constexpr SketchSize kDefaultExportSize{1200, 800};
/// The largest side of an exported picture, view points.
inline constexpr int kLargestExportSide = 16384;

struct ExportRequest {
  std::filesystem::path path;
  ExportFormat format = ExportFormat::png;
};

struct CommandLine {
  enum class Mode {
    window,         ///< the main window, with a document to open perhaps
    withoutWindow,  ///< console lines, then files; ends by itself
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
  std::vector<std::string> consoleFiles;  ///< in order; "-" is standard input
  std::optional<std::filesystem::path> saveAs;
  std::vector<ExportRequest> exports;
  SketchSize exportSize = kDefaultExportSize;
  ExportTheme exportTheme = ExportTheme::light;
  bool exportGrid = false;

  // Automation
  std::optional<std::string> clock;  ///< as written
  std::optional<std::string> updateFeed;
  std::optional<std::string> updateKey;
};

/// Reads the arguments, the program's name not among them. Throws `CommandLineError`.
CommandLine parseCommandLine(const std::vector<std::string>& arguments);

/// What `--help` prints.
std::string commandLineHelp();

}  // namespace ostrelon
