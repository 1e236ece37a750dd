#include "app/command_line.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <functional>
#include <map>
#include <string_view>

#include "platform/unicode.h"

namespace ostrelon {
namespace {

constexpr std::string_view kDocumentExtension = ".ostrel";

ExportRequest exportRequest(const std::string& path) {
  ExportRequest request{path, ExportFormat::png};
  const std::string extension = lowerCased(request.path.extension().string());
  if (extension == ".png") {
    request.format = ExportFormat::png;
  } else if (extension == ".svg") {
    request.format = ExportFormat::svg;
  } else if (extension == ".pdf") {
    request.format = ExportFormat::pdf;
  } else {
    throw CommandLineError(
        fmt::format("Cannot export to \"{}\": its name must end in .png, .svg or .pdf.", path));
  }
  return request;
}

std::optional<int> side(std::string_view text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (value < 1 || value > kLargestExportSide) return std::nullopt;
  return value;
}

SketchSize exportSize(const std::string& text) {
  const std::size_t cross = text.find_first_of("xX");
  const auto width = side(std::string_view(text).substr(0, cross));
  const auto height =
      cross == std::string::npos ? std::nullopt : side(std::string_view(text).substr(cross + 1));
  if (!width || !height) {
    throw CommandLineError(fmt::format("\"{}\" is not a size such as 1200x800; each side is 1 to {}.", text,
                                       kLargestExportSide));
  }
  return {static_cast<double>(*width), static_cast<double>(*height)};
}

ExportTheme exportTheme(const std::string& text) {
  if (text == "light") return ExportTheme::light;
  if (text == "dark") return ExportTheme::dark;
  if (text == "tansy") return ExportTheme::tansy;
  throw CommandLineError(fmt::format("\"{}\" is not a theme; there are light, dark and tansy.", text));
}

std::filesystem::path documentPath(std::string_view option, const std::string& text) {
  std::filesystem::path path(text);
  if (lowerCased(path.extension().string()) != kDocumentExtension) {
    throw CommandLineError(
        fmt::format("{} needs a document whose name ends in .ostrel, not \"{}\".", option, text));
  }
  return path;
}

}  // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments) {
  CommandLine line;
  bool isAutomation = false;
  std::string exportOption;      // the last option that says how to export
  std::string automationOption;  // the last option that only automation knows
  std::optional<std::filesystem::path> opened;
  std::optional<CommandLine::Mode> asked;

  const std::map<std::string_view, std::function<void()>> flags{
      {"--help", [&] { asked = CommandLine::Mode::help; }},
      {"-h", [&] { asked = CommandLine::Mode::help; }},
      {"--version", [&] { asked = CommandLine::Mode::version; }},
      {"--automation", [&] { isAutomation = true; }},
      {"--grid",
       [&] {
         line.exportGrid = true;
         exportOption = "--grid";
       }},
      {"-uiTestingResetProjectsFolder", [&] { line.isUITesting = true; }},
  };
  const std::map<std::string_view, std::function<void(const std::string&)>> options{
      {"--home", [&](const std::string& value) { line.home = value; }},
      {"--console", [&](const std::string& value) { line.consoleFiles.push_back(value); }},
      {"--open", [&](const std::string& value) { opened = documentPath("--open", value); }},
      {"--save", [&](const std::string& value) { line.saveAs = documentPath("--save", value); }},
      {"--export", [&](const std::string& value) { line.exports.push_back(exportRequest(value)); }},
      {"--size",
       [&](const std::string& value) {
         line.exportSize = exportSize(value);
         exportOption = "--size";
       }},
      {"--theme",
       [&](const std::string& value) {
         line.exportTheme = exportTheme(value);
         exportOption = "--theme";
       }},
      {"--clock",
       [&](const std::string& value) {
         line.clock = value;
         automationOption = "--clock";
       }},
      {"--update-feed",
       [&](const std::string& value) {
         line.updateFeed = value;
         automationOption = "--update-feed";
       }},
      {"--update-key",
       [&](const std::string& value) {
         line.updateKey = value;
         automationOption = "--update-key";
       }},
  };

  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (const auto flag = flags.find(argument); flag != flags.end()) {
      flag->second();
      continue;
    }
    // A value follows as the next argument, or behind an equals sign.
    const std::size_t equals = argument.starts_with("--") ? argument.find('=') : std::string::npos;
    const auto option = options.find(std::string_view(argument).substr(0, equals));
    if (option != options.end()) {
      if (equals == std::string::npos && i + 1 == arguments.size()) {
        throw CommandLineError(fmt::format("The option {} needs a value.", argument));
      }
      const std::string value = equals == std::string::npos ? arguments[++i] : argument.substr(equals + 1);
      if (value.empty()) throw CommandLineError(fmt::format("The option {} needs a value.", option->first));
      option->second(value);
      continue;
    }
    if (argument.starts_with("-")) {
      throw CommandLineError(fmt::format("Unknown option \"{}\"; --help lists them all.", argument));
    }
    if (line.document) {
      throw CommandLineError(fmt::format("Only one document can be opened, not also \"{}\".", argument));
    }
    line.document = documentPath("The program", argument);
  }

  if (asked) {
    line.mode = *asked;
    return line;
  }
  const bool isWithoutWindow = !line.consoleFiles.empty() || opened || line.saveAs || !line.exports.empty();
  if (isAutomation && (isWithoutWindow || line.document)) {
    throw CommandLineError("The option --automation takes its documents from its requests alone.");
  }
  if (!isAutomation && !automationOption.empty()) {
    throw CommandLineError(fmt::format("The option {} belongs to --automation.", automationOption));
  }
  if (line.exports.empty() && !exportOption.empty()) {
    throw CommandLineError(fmt::format("The option {} needs --export.", exportOption));
  }
  if (opened && line.document) {
    throw CommandLineError("Only one document can be opened, by --open or by its name alone.");
  }
  if (opened) line.document = opened;
  if (isAutomation) {
    line.mode = CommandLine::Mode::automation;
  } else if (isWithoutWindow) {
    line.mode = CommandLine::Mode::withoutWindow;
  }
  return line;
}

std::string commandLineHelp() {
  return R"(Ostrelon draws building plans in two dimensions.

  ostrelon [FILE.ostrel]         opens the window, with a document
  ostrelon OPTIONS               does its work without a window and ends
  ostrelon --automation          is driven by requests on standard input

Without a window, done in this order:
  --open FILE.ostrel             opens a document
  --console FILE                 runs the lines of a file in the console and prints
                                 the transcript; - is standard input; may be repeated
  --save FILE.ostrel             saves the document
  --export FILE.png|.svg|.pdf    draws all entities to a picture; may be repeated
  --size WxH                     the size of pictures, 1200x800 unless told
  --theme light|dark|tansy       the colours of pictures, light unless told
  --grid                         draws the grid in pictures

Anywhere:
  --home DIR                     keeps settings and documents in a folder of their own
  --help                         prints this text
  --version                      prints the version
  -uiTestingResetProjectsFolder  starts with the default projects folder, asking nothing

Automation:
  --clock TIME                   where its clock starts, such as 2026-01-01T00:00:00Z
  --update-feed URL, --update-key BASE64
                                 stand for the build's feed address and signing key

The exit status is 0, or 1 when a console line was answered with an error, or 2 for
a bad option or a file that cannot be read or written.
)";
}

}  // namespace ostrelon
